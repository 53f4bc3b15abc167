#include "host/author/split.h"

#include "context/install_rules.h"
#include "host/author/new_set.h"
#include "host/base/child_process.h"
#include "host/base/exit_status.h"
#include "host/base/regular_file.h"
#include "host/base/stop_request.h"
#include "host/base/text.h"
#include "host/base/unicode.h"
#include "host/set/attributes_edit.h"
#include "host/set/installer_set.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string_view>
#include <sys/file.h>
#include <unistd.h>
#include <utility>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kCopiedPiece = 1048576;   // bytes of a read
constexpr const char* kDraftFolder = ".split";  // in "discs"; hidden, so that it is no disc

// Room for a disc's own part of a manifest: two lines for each file, of its path and at most so many bytes
// more.
std::int64_t manifestBytes(const SourceLibrary& library) {
  constexpr std::int64_t kPerFile = 110;
  constexpr std::int64_t kHead = 4096;
  std::int64_t bytes = kHead;
  for (const LibraryEntry& entry : library.entries) {
    bytes += kPerFile + static_cast<std::int64_t>(entry.path.size());
  }
  return bytes;
}

bool isIn(const std::string& path, const std::string& folder) {
  return path == folder || path.starts_with(folder + "/");
}

// All entries, or with editions those of both and those of the Full one alone.
std::vector<std::vector<LibraryEntry>> byEdition(const SourceLibrary& library, const SplitRequest& request) {
  if (request.fullOnly.empty()) {
    return {library.entries};
  }
  std::vector<std::string> folders;
  for (const std::string& given : request.fullOnly) {
    std::string folder = fs::path(given).lexically_normal().string();
    folder.erase(folder.find_last_not_of('/') + 1);
    const auto isThere = [&](const std::string& place) {
      return std::any_of(library.entries.begin(), library.entries.end(),
                         [&](const LibraryEntry& entry) { return isIn(entry.path, place); });
    };
    const std::string place = isThere(folder) ? folder : library.place + "/" + folder;
    if (!isThere(place)) {
      throw UsageError(format(_("there is no {0} in the library"), {given}));
    }
    folders.push_back(place);
  }
  std::vector<std::vector<LibraryEntry>> editions(2);
  for (const LibraryEntry& entry : library.entries) {
    const bool isFullOnly = std::any_of(folders.begin(), folders.end(), [&entry](const std::string& folder) {
      return isIn(entry.path, folder);
    });
    editions[isFullOnly ? 1 : 0].push_back(entry);
  }
  if (editions[0].empty()) {
    throw UsageError(_("nothing would be left for a Lite edition"));
  }
  return editions;
}

// The discs of the set, if there is nothing of value on them.
std::vector<fs::path> placeholderDiscs(const InstallerSet& set) {
  std::vector<fs::path> discs;
  for (const Disc& disc : set.discs) {
    const SourceTree tree = SourceTree::ofFolder(disc.path);
    const bool isPlaceholder =
        !disc.isImage && std::all_of(tree.entries().begin(), tree.entries().end(), [](const TreeEntry& entry) {
          return entry.kind == EntryKind::folder || entry.name() == kPlaceholderName;
        });
    if (!isPlaceholder) {
      throw UsageError(format(_("{0} is there already; remove the set's discs, or use a set of its own"),
                              {disc.path.string()}));
    }
    discs.push_back(disc.path);
  }
  if (!set.notDiscs.empty()) {
    throw UsageError(format(_("{0} is there already; remove the set's discs, or use a set of its own"),
                            {set.notDiscs.front().string()}));
  }
  return discs;
}

std::string attributesFor(const Split& split, const InstallPlan& plan, bool hasEditions,
                          const std::string& choice) {
  std::string text(plan.attributes.bytes());
  std::int64_t bytes = 0;
  for (const Split::SplitDisc& disc : split.discs) {
    bytes += disc.bytes;
  }
  text = withNumber(text, "NumberOfVolumes", static_cast<std::int64_t>(split.discs.size()));
  text = withNumber(text, "TotalSizeMillionsBytes", millionsToAnnounce(bytes));
  if (hasEditions) {
    text = withNumber(text, "Component1SizeMillionsBytes", millionsToAnnounce(split.discs.front().bytes));
    text = withText(text, "LiteVsFullPrompt", "Yes");
    if (!plan.attributes.findText("LiteVsFullPromptText")) {
      text = withText(text, "LiteVsFullPromptText", choice);
    }
  }
  return text;
}

// Whether the page, reading these attributes, would ask for these discs.
bool readsBack(const std::string& attributes, std::size_t discs, bool hasEditions) {
  const AttributesReading reading = AttributesReading::parse(attributes);
  const bool prompts = foldCase(reading.findText("LiteVsFullPrompt").value) == "yes";
  return reading.findNumber("NumberOfVolumes").number == static_cast<std::int64_t>(discs) &&
         reading.findNumber("TotalSizeMillionsBytes").number > 0 && (discs != 2 || prompts == hasEditions) &&
         (!hasEditions || reading.findNumber("Component1SizeMillionsBytes").number > 0);
}

void putFile(const fs::path& from, const fs::path& to, std::int64_t size, SplitMethod method,
             const std::function<void(std::int64_t)>& progress) {
  const auto fail = [](const char* what, const fs::path& file, int error) {
    throw UsageError(format(what, {file.string(), std::strerror(error)}), ExitStatus::failure);
  };
  if (method != SplitMethod::copy) {
    if (link(from.c_str(), to.c_str()) == 0) {
      progress(size);
      return;
    }
    if (method == SplitMethod::link) {
      fail(_("cannot make a link to {0}: {1}"), from, errno);
    }
  }
  RegularFile source(from);
  const OwnedDescriptor copy(open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
  if (copy.get() < 0) {
    fail(_("cannot write {0}: {1}"), to, errno);
  }
  std::vector<char> piece(kCopiedPiece);
  std::int64_t copied = 0;
  for (std::string_view bytes = source.read(piece); !bytes.empty(); bytes = source.read(piece)) {
    if (!writeAll(copy.get(), bytes)) {
      fail(_("cannot write {0}: {1}"), to, errno);
    }
    copied += static_cast<std::int64_t>(bytes.size());
    progress(static_cast<std::int64_t>(bytes.size()));
  }
  if (source.error() != 0) {
    fail(_("cannot read {0}: {1}"), from, source.error());
  }
  if (copied != size) {
    throw UsageError(format(_("{0} has changed while it was read"), {from.string()}), ExitStatus::failure);
  }
}

// So that `check` knows it.
void noteDiscSize(const Split& split) {
  const fs::path file = split.set / "rehearsal.json";
  nlohmann::ordered_json json = nlohmann::ordered_json::object();
  if (std::ifstream stream(file); stream.is_open()) {
    json = nlohmann::ordered_json::parse(stream);
  }
  json["discSize"] = split.medium.given;
  replaceFile(file, json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n");
}

}  // namespace

SplitLock::SplitLock(const fs::path& set) : folder_(open(set.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  if (folder_ >= 0 && flock(folder_, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
    close(folder_);
    throw UsageError(format(_("another split writes into the set {0}"), {set.string()}), ExitStatus::failure);
  }
}

SplitLock::~SplitLock() {
  if (folder_ >= 0) {
    close(folder_);
  }
}

Split planSplit(const SplitRequest& request) {
  const InstallerSet set = openInstallerSet(request.set);
  PlanRequest planned;
  planned.package = set.package.string();
  const std::string& product = request.product.empty() ? set.product : request.product;
  if (product.empty()) {
    throw UsageError(_("the set names no product; give --product"));
  }
  planned.product = productNamed(product);
  planned.installType = "Full";
  const InstallPlan plan = planInstall(planned);
  if (plan.mode != kModeVolumes || !plan.attributes.isFilePresent()) {
    throw UsageError(format(_("{0} is no set for discs; make one with {1}"),
                            {request.set.string(), "tavinstall new --mode discs"}));
  }
  const bool hasEditions = !request.fullOnly.empty();
  if (plan.editions.isOffered && !hasEditions) {
    throw UsageError(
        _("the set has a Lite and a Full edition: name with --full-only what a Lite one does not have"));
  }
  Split split;
  split.set = set.folder;
  split.medium = request.medium;
  split.attributesFile = plan.attributes.path();
  split.library = readLibrary(request.library, planned.product.folderName);
  if (isIn(set.folder.string(), split.library.folder.string())) {
    throw UsageError(
        format(_("the set {0} is in the library, and would become a part of it"), {set.folder.string()}));
  }
  split.replaced = placeholderDiscs(set);
  const std::int64_t reserve = request.reserve + (request.hasManifest ? manifestBytes(split.library) : 0);
  const DiscSpace space = request.medium.space(reserve);
  if (space.capacity <= 0) {
    throw UsageError(_("nothing is left of a disc for files; give a smaller --reserve or larger discs"));
  }
  split.room = space.capacity;
  if (auto problems = libraryProblems(split.library, request.medium, reserve); !problems.empty()) {
    throw CannotSplit(std::move(problems));
  }
  for (const std::vector<LibraryEntry>& entries : byEdition(split.library, request)) {
    DiscLayout layout = layOut(entries, space);
    if (hasEditions && layout.discs.size() > 1) {
      throw UsageError(format(_("each edition's part has to fit on one disc, but {0} needs {1} of them"),
                              {split.discs.empty() ? _("that of both") : _("that of the Full one"),
                               std::to_string(layout.discs.size())}));
    }
    split.fewestPossible += layout.fewestPossible;
    std::move(layout.dividedFolders.begin(), layout.dividedFolders.end(),
              std::back_inserter(split.dividedFolders));
    for (const DiscLayout::DiscPart& part : layout.discs) {
      Split::SplitDisc& disc = split.discs.emplace_back();
      disc.bytesOnDisc = part.bytes;
      for (const std::size_t index : part.entries) {
        disc.entries.push_back(entries[index]);
        disc.bytes += entries[index].size;
      }
    }
  }
  if (split.discs.size() > kMostDiscs) {
    throw UsageError(format(_("{0} discs would be needed, but the page has names for {1}; use larger ones"),
                            {std::to_string(split.discs.size()), std::to_string(kMostDiscs)}));
  }
  int number = 0;
  for (Split::SplitDisc& disc : split.discs) {
    disc.name = discName(planned.product, number++);
    disc.folder = set.folder / "discs" / (std::to_string(number) + " " + disc.name);
  }
  split.attributes =
      attributesFor(split, plan, hasEditions, newSetTexts({{}, planned.product.pluginName}).choice);
  if (!readsBack(split.attributes, split.discs.size(), hasEditions)) {
    throw UsageError(format(_("the page would not read the new values in {0}; see tavinstall check"),
                            {split.attributesFile.string()}));
  }
  return split;
}

void makeDiscs(const Split& split, SplitMethod method, const std::function<void(std::int64_t)>& progress) {
  const fs::path drafts = split.set / "discs" / kDraftFolder;
  try {
    fs::remove_all(drafts);
    for (const Split::SplitDisc& disc : split.discs) {
      const fs::path folder = drafts / disc.folder.filename();
      for (const LibraryEntry& entry : disc.entries) {
        const fs::path file = folder / entry.path;
        fs::create_directories(entry.isFolder ? file : file.parent_path());
        if (!entry.isFolder) {
          putFile(split.library.source(entry), file, entry.size, method, progress);
        }
      }
    }
    for (const fs::path& placeholder : split.replaced) {
      fs::remove_all(placeholder);
    }
    for (const Split::SplitDisc& disc : split.discs) {
      fs::rename(drafts / disc.folder.filename(), disc.folder);
    }
    fs::remove_all(drafts);
    replaceFile(split.attributesFile, split.attributes);
    noteDiscSize(split);
  } catch (const fs::filesystem_error& error) {
    std::error_code ignored;
    fs::remove_all(drafts, ignored);
    throw UsageError(format(_("cannot write {0}: {1}"), {error.path1().string(), error.code().message()}),
                     ExitStatus::failure);
  } catch (const UsageError&) {
    std::error_code ignored;
    fs::remove_all(drafts, ignored);
    throw;
  } catch (const Stopped&) {
    std::error_code error;
    fs::remove_all(drafts, error);
    if (error) {
      throw UsageError(format(_("cannot remove {0}: {1}"), {drafts.string(), error.message()}),
                       ExitStatus::failure);
    }
    throw;
  }
}

}  // namespace tavenhall

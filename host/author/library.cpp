#include "host/author/library.h"

#include "host/base/exit_status.h"
#include "host/base/text.h"
#include "host/base/unicode.h"
#include "host/set/install_plan.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <utility>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kLongestJolietName = 103;  // in UTF-16; longer ones make xorriso 1.5.4 fail

// One sentence for each kind of problem, with its first paths, and how many more there are.
class Problems {
 public:
  void add(std::string_view sentence, const std::string& path, const std::string& detail = {}) {
    auto problem = std::find_if(problems_.begin(), problems_.end(),
                                [sentence](const Problem& known) { return known.sentence == sentence; });
    if (problem == problems_.end()) {
      problem = problems_.insert(problem, {std::string(sentence), "", 0});
    }
    if (++problem->count <= kShown) {
      problem->paths += "\n  " + printableLine(path) + (detail.empty() ? "" : ": ") + detail;
    }
  }

  [[nodiscard]] std::vector<std::string> sentences() const {
    std::vector<std::string> sentences;
    for (const Problem& problem : problems_) {
      std::string& text = sentences.emplace_back(problem.sentence + problem.paths);
      if (problem.count > kShown) {
        text += "\n  " + format(_("and {0} more"), {std::to_string(problem.count - kShown)});
      }
    }
    return sentences;
  }

 private:
  static constexpr std::size_t kShown = 5;

  struct Problem {
    std::string sentence;
    std::string paths;
    std::size_t count = 0;
  };

  std::vector<Problem> problems_;
};

std::size_t utf16Length(std::string_view name) {
  std::size_t length = 0;
  for (const char32_t character : decodeUtf8(name)) {
    length += character > 0xFFFF ? 2 : 1;
  }
  return length;
}

class Examination {
 public:
  Examination(const SourceLibrary& library, const DiscMedium& medium, std::int64_t reserve)
      : medium_(medium),
        space_(medium.space(reserve)),
        placePrefix_(library.place + "/"),
        longestPrefix_(std::string(kLongHome) + "/Library/Application Support/Tavenhall/" + placePrefix_) {}

  void examine(const TreeEntry& entry) {
    const std::string name = entry.name();
    if (entry.isHidden) {
      // What is in a hidden folder goes without saying.
      if (name.starts_with('.') && !isSystemLitter(name)) {
        problems_.add(_("Hidden files and folders are never installed; rename or remove them:"), entry.path);
      }
      return;
    }
    switch (entry.kind) {
      case EntryKind::linkToFile:
      case EntryKind::linkToFolder:
      case EntryKind::brokenLink:
        problems_.add(_("Links are not installed as links; put the files in their places:"), entry.path);
        return;
      case EntryKind::other: problems_.add(_("These are not regular files:"), entry.path); return;
      case EntryKind::file:
      case EntryKind::folder: break;
    }
    examineName(entry.path, name);
    const LibraryEntry onDisc{placePrefix_ + entry.path, entry.size, entry.kind == EntryKind::folder};
    if (!fitsOnDisc(onDisc, space_)) {
      problems_.add(_("These files are larger than a disc:"), entry.path, sizeText(entry.size));
    }
  }

  void addUnlisted(const std::string& folder) {
    problems_.add(_("These folders cannot be opened:"), folder.empty() ? "." : folder);
  }

  [[nodiscard]] std::vector<std::string> problems() const { return problems_.sentences(); }

 private:
  void examineName(const std::string& path, const std::string& name) {
    const bool isUtf8 = isValidUtf8(name);
    if (!isUtf8) {
      problems_.add(_("These names are not UTF-8:"), path);
    } else if (medium_.isOptical && utf16Length(name) > kLongestJolietName) {
      problems_.add(_("These names are longer than the 103 characters of a disc with Joliet:"), path);
    }
    const char* forbidden = medium_.isOptical ? ":\\" : "\"*:<>?\\|";
    if (name.find_first_of(forbidden) != std::string::npos || (isUtf8 && name != printableLine(name))) {
      problems_.add(_("These names have a character that the disc's file system does not:"), path);
    }
    if (longestPrefix_.size() + path.size() >= kFilePathSize) {
      problems_.add(
          _("These paths are too long: for a user whose name has 20 letters the installed file's would have "
            "more than 1023 bytes:"),
          path);
    }
    const auto [first, isNew] = names_.try_emplace(comparedName(path), path);
    if (!isNew) {
      problems_.add(
          _("These names differ only in case, or in how a letter is composed, so a Mac keeps only one:"), path,
          first->second);
    }
  }

  const DiscMedium& medium_;
  const DiscSpace space_;
  const std::string placePrefix_;
  const std::string longestPrefix_;
  Problems problems_;
  std::map<std::string, std::string> names_;
};

}  // namespace

SourceLibrary readLibrary(const fs::path& folder, const std::string& dataFolder) {
  std::error_code error;
  const fs::path top = fs::canonical(folder, error);
  if (error || !fs::is_directory(top, error)) {
    throw UsageError(format(_("there is no folder {0}"), {folder.string()}));
  }
  SourceLibrary library;
  if (fs::is_directory(top / dataFolder, error)) {
    library.folder = top / dataFolder;
    library.place = dataFolder;
    for (const std::string& name : listNames(top.string())) {
      if (name != dataFolder) {
        library.leftOut.push_back(name);
      }
    }
    std::sort(library.leftOut.begin(), library.leftOut.end());
  } else {
    library.folder = top;
    library.place = top.filename() == dataFolder ? dataFolder : dataFolder + "/" + top.filename().string();
  }
  library.tree = SourceTree::ofFolder(library.folder);
  std::set<std::string> filled;
  for (const TreeEntry& entry : library.tree.entries()) {
    if (!entry.isHidden) {
      filled.insert(fs::path(entry.path).parent_path().string());
    }
  }
  for (const TreeEntry& entry : library.tree.entries()) {
    const bool isFolder = entry.kind == EntryKind::folder;
    if (!entry.isHidden && !(isFolder && filled.contains(entry.path))) {
      library.entries.push_back({library.place + "/" + entry.path, entry.size, isFolder});
      library.bytes += entry.size;
    }
  }
  if (library.bytes == 0 && library.tree.unlisted().empty()) {
    throw UsageError(format(_("there is no file with content in {0}"), {library.folder.string()}));
  }
  return library;
}

fs::path SourceLibrary::source(const LibraryEntry& entry) const {
  return folder / entry.path.substr(place.size() + 1);
}

std::vector<std::string> libraryProblems(const SourceLibrary& library, const DiscMedium& medium,
                                         std::int64_t reserve) {
  Examination examination(library, medium, reserve);
  for (const TreeEntry& entry : library.tree.entries()) {
    examination.examine(entry);
  }
  for (const std::string& folder : library.tree.unlisted()) {
    examination.addUnlisted(folder);
  }
  return examination.problems();
}

}  // namespace tavenhall

#include "host/cli/run_description.h"

#include "context/first_line.h"
#include "context/open_file.h"
#include "host/base/build_facts.h"
#include "host/base/files.h"
#include "host/base/text.h"
#include "host/engine/other_users.h"
#include "host/log/log_records.h"
#include "host/log/logged_run.h"
#include "host/set/installer_set.h"
#include "platform/installer_pane.h"
#include "platform/strings_file.h"
#include "platform/system.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <sys/stat.h>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMostSources = 8;
constexpr std::string_view kVolumes = "/Volumes/";

// Normalises paths for display: the page joins them with redundant slashes and dots.
std::string tidyPath(const std::string& path) {
  std::string tidy = fs::path(path).lexically_normal().string();
  if (tidy.size() > 1 && tidy.back() == '/') {
    tidy.pop_back();
  }
  return tidy;
}

void addOnce(std::vector<std::string>& texts, const std::string& text) {
  if (std::find(texts.begin(), texts.end(), text) == texts.end()) {
    texts.push_back(text);
  }
}

std::string sourceName(const PlannedVolume& volume) {
  if (!volume.isMounted) {
    return tidyPath(volume.root);
  }
  const std::string name =
      volume.root.starts_with(kVolumes) ? volume.root.substr(kVolumes.size()) : volume.root;
  return format(volume.isOptional ? _("Disc {0} (if you have it)") : _("Disc {0}"), {name});
}

std::string whatText(const InstallPlan& plan) {
  const std::string& name = plan.product.pluginName;
  const EditionPlan& editions = plan.editions;
  if (plan.mode == kModeProductUpdater) {
    return editions.libraries.empty() ? format(_("This updates {0}."), {name})
                                      : plural("This updates {1} and the data of {0} library.",
                                               "This updates {1} and the data of {0} libraries.",
                                               static_cast<std::int64_t>(editions.libraries.size()), {name});
  }
  const char* text = !editions.isOffered   ? _("This installs the sample data of {0}.")
                     : editions.allAreLite ? _("This installs the sample data of {0}, the Lite edition.")
                                           : _("This installs the sample data of {0}, the Full edition.");
  return format(text, {name});
}

void collectPlaces(const InstallPlan& plan, Introduction& introduction) {
  for (const PlannedFolder& folder : plan.systemFolders) {
    addOnce(introduction.from, tidyPath(folder.source));
    addOnce(introduction.to, tidyPath(folder.destination));
  }
  for (const PlannedPass& pass : plan.passes) {
    for (const PlannedVolume& volume : pass.volumes) {
      addOnce(introduction.from, sourceName(volume));
    }
    addOnce(introduction.to, tidyPath(pass.destination));
  }
  if (introduction.from.size() > kMostSources) {
    const std::size_t more = introduction.from.size() - kMostSources + 1;
    introduction.from.resize(kMostSources - 1);
    introduction.from.push_back(format(_("and {0} more"), {std::to_string(more)}));
  }
}

std::string packagePath(const EngineOptions& options) {
  BoundedText<kFirstLineSize> location;
  if (options.package.empty() && readFirstLine(kLocationFile, location)) {
    return location.c_str();
  }
  return options.package.string();
}

std::string withRemedy(const std::string& line) {
  return line.empty() ? "" : format(_("{0}; use --trusted to install anyway"), {line});
}

}  // namespace

Introduction introduce(const InstallPlan& plan, const FreeBytes& freeBytes) {
  Introduction introduction;
  introduction.productName = plan.product.pluginName;
  introduction.pageTitle = plan.title;
  introduction.what = whatText(plan);
  introduction.barWraps = plan.mode == kModeProductUpdater;
  collectPlaces(plan, introduction);
  if (plan.announced.isKnown && plan.announced.bytes > 0) {
    introduction.neededBytes = plan.announced.bytes;
  }
  // The passes of an update may use two disks; then the fuller one counts.
  for (const PlannedPass& pass : plan.passes) {
    const auto free = freeBytes(pass.destination);
    if (free && (!introduction.freeBytes || *free < *introduction.freeBytes)) {
      introduction.freeBytes = free;
    }
  }
  for (const PlannedPass& pass : plan.passes) {
    introduction.destination = tidyPath(pass.destination);
    if (pass.folderName == plan.product.folderName) {
      struct stat found {};
      introduction.isDestinationThere = stat(pass.destination.c_str(), &found) == 0;
      break;
    }
  }
  return introduction;
}

Failures failuresInLog(const std::string& log, std::int64_t start) {
  Failures failures;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(openToRead(log.c_str()), std::fclose);
  if (file == nullptr) {
    return failures;
  }
  std::fseek(file.get(), 0, SEEK_END);
  const bool isShorter = std::ftell(file.get()) < start;
  std::fseek(file.get(), isShorter ? 0 : static_cast<long>(start), SEEK_SET);
  LoggedRuns runs([&failures](const LoggedRun& run) {
    for (const RunFailure& failure : run.failures) {
      failures.add({failure.kind, failure.file.empty() ? failure.detail : failure.file, ""});
    }
    failures.count += run.failureCount - static_cast<std::int64_t>(run.failures.size());
  });
  LogRecords records([&runs](const LogRecord& record) { runs.add(record); });
  std::array<char, 65536> piece{};
  while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), file.get())) {
    records.add({piece.data(), count});
  }
  records.finish();
  runs.finish();
  return failures;
}

InstallPlan planFor(const EngineOptions& options) {
  const StringTable strings = loadBundleStrings((options.bundle / "Contents").string());
  PlanRequest request;
  request.package = packagePath(options);
  request.product = {strings.text("PluginName"), strings.text("FolderName")};
  if (std::string support; firstUserSearchPath(SearchPath::applicationSupport, support)) {
    request.dataRoot = support + "/Tavenhall";
  }
  if (!options.installType.empty()) {
    request.installType = options.installType;
  }
  return planInstall(request);
}

void requireNamedProduct(const fs::path& package) {
  const std::string named = productOfSet(package);
  if (!named.empty() && named != kDefaultProduct) {
    throw UsageError(format(_("rehearsal.json says that this set is for {0}; add --product {0}"), {named}));
  }
}

std::string missingAttributes(const InstallPlan& plan) {
  return format(_("there is no .InstallationAttributes.dat beside the package in {0} or one folder above; use "
                  "--without-attributes to install one disc without it"),
                {plan.packageFolder});
}

std::string cannotExamine(const UnexaminedPlace& place) {
  return format(_("cannot read {0}: {1}"), {place.path, place.error.message()});
}

event::AuditFailure unreadableAttributes(const EngineOptions& options) {
  return {"not-readable", packageFolderOf(packagePath(options)) + "/.InstallationAttributes.dat", "", 0, ""};
}

std::string refusalToCopyOntoItself(const InstallPlan& plan) {
  for (const PlannedFolder& folder : plan.systemFolders) {
    std::error_code error;
    if (fs::equivalent(folder.source, folder.destination, error)) {
      return format(_("the update would copy {0} onto itself; move the package into its own folder"),
                    {folder.source});
    }
  }
  return {};
}

std::string refusalToTrust(const EngineOptions& options) {
  std::string line =
      options.package.empty() ? writtenByOthers(kLocationFile) : changeableByOthers(options.package);
  if (line.empty() && options.installType.empty()) {
    line = writtenByOthers(kInstallTypeFile);
  }
  return withRemedy(line);
}

std::string refusalToTrust(const InstallPlan& plan) {
  std::string line;
  for (const PlannedFolder& folder : plan.systemFolders) {
    line = line.empty() ? sourceChangeableByOthers(folder.source, Depth::withContents) : line;
  }
  for (const PlannedPass& pass : plan.passes) {
    for (const PlannedVolume& volume : pass.volumes) {
      for (const std::string& source : {volume.primary, volume.alternate}) {
        line = line.empty() && !volume.isMounted ? sourceChangeableByOthers(source, Depth::folderAlone) : line;
      }
    }
  }
  return withRemedy(line);
}

std::vector<ExpectedCopy> expectedCopies(const InstallPlan& plan) {
  std::vector<ExpectedCopy> copies;
  for (const PlannedFolder& folder : plan.systemFolders) {
    copies.push_back({folder.source, "", folder.destination, 0});
  }
  for (const PlannedPass& pass : plan.passes) {
    for (const PlannedVolume& volume : pass.volumes) {
      std::error_code error;
      const bool hasData =
          volume.isMounted || fs::exists(volume.primary, error) || fs::exists(volume.alternate, error);
      if (volume.isOptional || !hasData) {
        continue;
      }
      if (!volume.librariesOnly) {
        copies.push_back({volume.primary, volume.alternate, pass.destination, volume.number + 1});
        continue;
      }
      for (const PlannedLibrary& library : plan.editions.libraries) {
        if (!library.isLite) {
          const std::string below = "/" + library.folderName;
          copies.push_back(
              {volume.primary + below, volume.alternate + below, pass.destination + below, volume.number + 1});
        }
      }
    }
  }
  return copies;
}

void addFacts(const InstallPlan& plan, event::RunFacts& facts) {
  facts.product = plan.product.pluginName;
  facts.edition = !plan.editions.isOffered ? "" : plan.editions.allAreLite ? "Lite" : "Full";
  for (const PlannedPass& pass : plan.passes) {
    facts.volumes = std::max(facts.volumes, pass.volumeCount);
    if (pass.folderName == plan.product.folderName || facts.destination.empty()) {
      facts.destination = tidyPath(pass.destination);
    }
  }
}

RunDescription describeRun(const InstallPlan& plan) {
  RunDescription description;
  description.introduction = introduce(plan, freeBytesAt);
  description.watchLog(usersInstallationLog());
  return description;
}

}  // namespace tavenhall

#include "host/set/install_plan.h"

#include "context/first_line.h"
#include "context/install_decisions.h"
#include "context/installed_editions.h"
#include "context/text_expansion.h"
#include "host/base/exit_status.h"
#include "host/base/text.h"
#include "host/set/product_table.h"
#include "platform/installer_pane.h"

#include <algorithm>
#include <optional>
#include <sys/stat.h>

namespace tavenhall {

namespace {

constexpr const char* kNobodysDataRoot = "~/Library/Application Support/Tavenhall";
constexpr std::int32_t kMostVolumesListed = 100;

bool exists(const std::string& path) {
  struct stat found {};
  return stat(path.c_str(), &found) == 0;
}

std::string subfolderOf(const std::string& folder, const std::string& subfolder) {
  return folder + "/" + subfolder;
}

void settleMode(InstallPlan& plan) {
  plan.modeFound = plan.attributes.findText("Mode", kModeSize);
  plan.mode = plan.modeFound ? installModeForValue(plan.modeFound.value) : kModeVolumes;
}

// ---- Editions ----

void readChoice(const PlanRequest& request, EditionPlan& editions) {
  if (request.installType) {
    editions.source = EditionSource::request;
    editions.choice = *request.installType;
  } else if (BoundedText<kFirstLineSize> line;
             request.readsChoiceFile && readFirstLine(kInstallTypeFile, line)) {
    editions.source = EditionSource::choiceFile;
    editions.choice = line.c_str();
  } else {
    editions.source = EditionSource::noChoice;
  }
  editions.allAreLite = editions.source != EditionSource::noChoice && choiceIsLite(editions.choice);
}

void detectEditions(const PlanRequest& request, const std::string& centralFolder, InstallPlan& plan) {
  EditionPlan& editions = plan.editions;
  editions.source = EditionSource::detection;
  if (request.detectsEditions) {
    detectInstalledEditions(request.dataRoot ? centralFolder : std::string(), editions.libraries);
  }
  std::vector<std::int32_t> choices;
  for (const PlannedLibrary& library : editions.libraries) {
    choices.push_back(library.isLite ? 1 : 0);
  }
  editions.allAreLite = allChoicesAreLite(choices);
}

void settleEditions(const PlanRequest& request, const std::string& centralFolder, InstallPlan& plan) {
  EditionPlan& editions = plan.editions;
  plan.numberOfVolumes = plan.attributes.findNumber("NumberOfVolumes").number;
  const auto readPromptIsYes = [&plan] {
    const FoundText prompt = plan.attributes.findText("LiteVsFullPrompt");
    return prompt && promptIsYes(prompt.value);
  };
  const auto countLibraries = [&plan] {
    if (const FoundText path = plan.attributes.findText("RelativePath2")) {
      plan.editions.libraries = listLibraries(subfolderOf(plan.packageFolder, path.value) + "/TANVO");
    }
    return plan.editions.libraries.size();
  };
  editions.isOffered = editionsAreOffered(
      plan.mode, [&plan] { return plan.numberOfVolumes; }, readPromptIsYes, countLibraries);
  if (!editions.isOffered) {
    return;
  }
  if (choiceFileDecides(plan.mode)) {
    readChoice(request, editions);
  } else {
    detectEditions(request, centralFolder, plan);
  }
}

// ---- Passes and volumes ----

std::string mountPathOf(const Product& product, std::int32_t number) {
  BoundedText<kPathSize> path;
  volumeMountPath(product.pluginName, number, path);
  return path.c_str();
}

std::string rootAt(const InstallPlan& plan, const VolumeRoot& root, std::int32_t number, std::string before) {
  switch (root.kind) {
    case RootKind::asBefore: break;
    case RootKind::mounted: return mountPathOf(plan.product, number);
    case RootKind::optionalDisc: return root.disc->mountPath;
    case RootKind::relativePath:
      return subfolderOf(plan.packageFolder, plan.attributes.textOrFallback("RelativePath"));
    case RootKind::relativePath2:
      // Required of the page: with the key missing, the root is what the lookup left in the buffer.
      return subfolderOf(plan.packageFolder, plan.attributes.findText("RelativePath2").value);
  }
  return before;
}

PlannedPass planPass(const InstallPlan& plan, const std::string& folderName, const std::string& dataRoot) {
  PlannedPass pass;
  pass.folderName = folderName;
  pass.destination = dataRoot + "/" + folderName;
  pass.text = expandFormat(plan.attributes.textOrFallback("InstallingData"), pass.destination.c_str());
  const EditionPlan& editions = plan.editions;
  pass.volumeCount =
      volumeCount(plan.mode, editions.isOffered, editions.allAreLite, [&plan] { return plan.numberOfVolumes; });

  std::string root;
  bool hasOptionalDiscs = false;
  for (std::int32_t number = 0; number < std::min(pass.volumeCount, kMostVolumesListed); ++number) {
    const VolumeRoot chosen =
        volumeRoot(number, plan.mode, editions.isOffered, editions.allAreLite, hasOptionalDiscs);
    root = rootAt(plan, chosen, number, root);
    if (number == 0) {
      hasOptionalDiscs = rootHasOptionalDiscs(root);
    }
    PlannedVolume volume;
    volume.number = number;
    volume.isMounted = chosen.kind == RootKind::mounted || chosen.kind == RootKind::optionalDisc;
    volume.isOptional = chosen.kind == RootKind::optionalDisc;
    volume.root = root;
    volume.primary = root + "/" + folderName;
    volume.alternate = root + "/Mac OSX/" + folderName;
    volume.librariesOnly = holdsLibrariesInFull(plan.mode, number);
    pass.volumes.push_back(std::move(volume));
  }
  return pass;
}

void settlePasses(const std::string& dataRoot, InstallPlan& plan) {
  if (plan.mode != kModeProductUpdater) {
    plan.passes.push_back(planPass(plan, plan.product.folderName, dataRoot));
    return;
  }
  for (const char* folder : kSystemFolders) {
    if (exists(plan.packageFolder + folder)) {
      plan.systemFolders.push_back({plan.packageFolder + folder, std::string(folder) + "/"});
    }
  }
  for (const char* folderName : kUpdatePasses) {
    plan.passes.push_back(planPass(plan, folderName, dataRoot));
  }
}

void settleAnnouncedSize(InstallPlan& plan) {
  AnnouncedSize& announced = plan.announced;
  announced.totalMillions = plan.attributes.findNumber("TotalSizeMillionsBytes").number;
  announced.componentMillions = plan.attributes.findNumber("Component1SizeMillionsBytes").number;
  const bool isComponent = componentIsAnnounced(plan.editions.isOffered, plan.editions.allAreLite);
  announced.countedKey = isComponent ? "Component1SizeMillionsBytes" : "TotalSizeMillionsBytes";
  announced.countedMillions = isComponent ? announced.componentMillions : announced.totalMillions;
  announced.isKnown = announced.countedMillions != 0;
  announced.bytes = announced.isKnown ? announcedBytes(announced.countedMillions) : kExpectedBytesWhenUnknown;
}

}  // namespace

Product productNamed(const std::string& name) {
  std::string known;
  for (const ProductRow& row : kProductTable) {
    if (name.empty() || name == row.pluginName) {
      return {std::string(row.pluginName), std::string(row.folderName)};
    }
    known += (known.empty() ? "" : ", ") + std::string(row.pluginName);
  }
  throw UsageError(format(_("unknown product {0}; the products are {1}"), {name, known}));
}

std::string packageFolderOf(const std::string& package) {
  std::string folder = package;
  if (!folder.empty() && (folder.back() == '/' || folder.back() == '\\')) {
    folder.pop_back();
  }
  return folder.substr(0, folder.find_last_of("/\\"));
}

InstallPlan planInstall(const PlanRequest& request) {
  InstallPlan plan;
  plan.product = request.product;
  plan.packageFolder = packageFolderOf(request.package);
  plan.attributes = AttributesReading::besidePackage(plan.packageFolder);
  if (request.attributes) {
    const std::filesystem::path path =
        plan.attributes.isFilePresent()
            ? plan.attributes.path()
            : plan.packageFolder / std::filesystem::path(".InstallationAttributes.dat");
    plan.attributes = AttributesReading::parse(*request.attributes, path);
  }
  plan.title = plan.attributes.textOrFallback("InstallDataTitle");

  const std::string dataRoot = request.dataRoot.value_or(kNobodysDataRoot);
  const std::string centralFolder = dataRoot + "/" + plan.product.folderName;
  plan.enteringText = expandFormat(plan.attributes.textOrFallback("InstallingData"), centralFolder.c_str());

  settleMode(plan);
  settleEditions(request, centralFolder, plan);
  settlePasses(dataRoot, plan);
  settleAnnouncedSize(plan);
  plan.completionText =
      expandFormat(plan.attributes.textOrFallback("InstalledData"), plan.passes.back().destination.c_str());
  return plan;
}

std::string modeReason(const InstallPlan& plan) {
  if (!plan.attributes.isFilePresent()) {
    return _("There is no .InstallationAttributes.dat, so the page installs from discs.");
  }
  if (!plan.modeFound) {
    return _("No line has the key Mode, so the page installs from discs.");
  }
  return format(_("The Mode in line {0} of {1} reads \"{2}\"."),
                {std::to_string(plan.modeFound.key->line), plan.attributes.path().filename().string(),
                 plan.modeFound.value});
}

std::string editionReason(const InstallPlan& plan) {
  const EditionPlan& editions = plan.editions;
  if (plan.mode == kModeProductUpdater) {
    return editions.isOffered
               ? plural("The update carries {0} library, each installed in the edition that the user has.",
                        "The update carries {0} libraries, each installed in the edition that the user has.",
                        static_cast<std::int64_t>(editions.libraries.size()))
               : _("The update lists no libraries, so it is installed as a whole.");
  }
  if (!editions.isOffered) {
    return _("There is one edition.");
  }
  const char* offer =
      plan.mode == kModeVolumes
          ? _("NumberOfVolumes is 2 and LiteVsFullPrompt is Yes, so there is a Lite and a Full edition.")
          : _("NumberOfVolumes is 2, so there is a Lite and a Full edition.");
  const char* edition = editions.allAreLite ? "Lite" : "Full";
  switch (editions.source) {
    case EditionSource::request: return format(_("{0} {1} was requested."), {offer, edition});
    case EditionSource::choiceFile:
      return format(_("{0} {1} says \"{2}\": {3}."), {offer, kInstallTypeFile, editions.choice, edition});
    default: return format(_("{0} There is no {1}, so it is Full."), {offer, kInstallTypeFile});
  }
}

namespace {

// Collects the libraries that are found, up to a limit.
struct LibraryList {
  std::size_t limit;
  std::vector<PlannedLibrary> libraries;

  [[nodiscard]] bool isFull() const { return libraries.size() >= limit; }
  void foundLibrary(const char* name) { libraries.push_back({name}); }
  static void foundPacks(const char* /*path*/) {}
  void foundPack(const char* name) { libraries.push_back({std::string(kMirelPacks) + "/" + name}); }
};

struct NoObserver {
  static void examines(const char* /*path*/) {}
  static void searches(const char* /*path*/) {}
  static void foundDatabase(const char* /*path*/, std::int32_t /*size*/) {}
};

}  // namespace

std::vector<std::string> listNames(const std::string& folder) {
  std::vector<std::string> names;
  FolderListing listing(folder.c_str());
  while (const dirent* entry = listing.next()) {
    names.emplace_back(entry->d_name);
  }
  return names;
}

std::vector<PlannedLibrary> listLibraries(const std::string& dataFolder, std::size_t limit) {
  LibraryList list{limit, {}};
  listUpdateLibraries(dataFolder, list);
  return std::move(list.libraries);
}

void detectInstalledEditions(const std::string& centralFolder, std::vector<PlannedLibrary>& libraries) {
  const std::string folder = centralFolder.empty() ? "/dev/null" : centralFolder;  // nothing is in the one
  for (PlannedLibrary& library : libraries) {
    NoObserver observer;
    const std::optional<bool> isLite =
        installedEditionIsLite<std::string>(folder, library.folderName, observer);
    library.isDetected = isLite.has_value();
    library.isLite = isLite.value_or(false);
  }
}

}  // namespace tavenhall

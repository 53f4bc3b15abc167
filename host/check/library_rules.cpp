#include "host/base/text.h"
#include "host/check/rules.h"
#include "host/check/spelling.h"
#include "host/set/install_plan.h"

#include <algorithm>
#include <limits>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kMirelPacks = "Mirel Packs";

class LibraryRules {
 public:
  LibraryRules(const CheckedSet& checked, Diagnostics& diagnostics)
      : checked_(checked),
        diagnostics_(diagnostics),
        path_(checked.whole.attributes.findText("RelativePath2")) {
    folder_ = fs::path(checked.whole.packageFolder) / path_.value / "TANVO";
    libraries_ = listLibraries(folder_.string(), std::numeric_limits<std::size_t>::max());
  }

  void check() {
    if (!path_) {
      return;  // then nothing is listed, and nothing is meant to be
    }
    std::error_code error;
    if (!fs::exists(folder_, error)) {
      diagnostics_.add("data-folder-missing", checked_.attributesPlace(path_.key),
                       _("RelativePath2 names a folder without TANVO, so the page lists no libraries and "
                         "installs the same for every user."));
      return;
    }
    checkCount();
    for (const PlannedLibrary& library : libraries_) {
      checkLibrary(library);
    }
    for (const CheckedVolume& volume : checked_.volumes) {
      for (const std::string& name : volume.leftOut) {
        if (isBeyondTheLast(name)) {
          continue;  // the count has been diagnosticed
        }
        diagnostics_.add("folder-left-out", {volume.shown(name)},
                         format(_("The page copies only the listed libraries of the second component, and {0} "
                                  "is not among them, so it is never installed."),
                                {quotedText(name)}));
      }
      if (volume.folderName == "TANVO" && !volume.chosen.empty()) {
        volume.volume.number == 0 ? checkFirstComponent(volume) : checkPacks(volume);
      }
    }
    checkInstalledPacks();
  }

 private:
  // Whether only the page's limit keeps this library from being listed.
  [[nodiscard]] bool isBeyondTheLast(const std::string& name) const {
    return std::any_of(libraries_.begin(), libraries_.end(),
                       [&name](const PlannedLibrary& library) { return library.folderName == name; });
  }

  void checkCount() {
    if (libraries_.size() > kLibrarySlots) {
      diagnostics_.add("too-many-libraries", {checked_.shown(folder_)},
                       format(_("The update carries {0} libraries, but the page handles only {1}, so the "
                                "others do not get their second component."),
                              {std::to_string(libraries_.size()), std::to_string(kLibrarySlots)}));
    }
  }

  void checkLibrary(const PlannedLibrary& library) {
    std::error_code error;
    const fs::path path = folder_ / library.folderName;
    if (!fs::is_directory(path, error)) {
      diagnostics_.add("library-not-a-folder", {checked_.shown(path)},
                       format(_("The page treats this file as a library, so it shows \"Full installation "
                                "detected for {0}\" and does not install it."),
                              {libraryDisplayName(library.folderName).view()}));
    }
    if (library.folderName != kMirelPacks && library.folderName.find('/') == std::string::npos &&
        isMisspellingOf(library.folderName, kMirelPacks)) {
      diagnostics_.add("mirel-pack-unseen", {checked_.shown(path)},
                       _("Only a folder named exactly \"Mirel Packs\" holds packs, so the page treats this one "
                         "as one library that is always Full."));
    }
  }

  // The page copies unlisted libraries of the first component without detecting their edition.
  void checkFirstComponent(const CheckedVolume& volume) {
    for (const TreeEntry& entry : volume.tree.entries()) {
      const bool isLibrary = !entry.isHidden && entry.kind == EntryKind::folder && entry.path != kMirelPacks &&
                             (entry.path.find('/') == std::string::npos ||
                              (entry.path.starts_with("Mirel Packs/") && depthOf(entry.path) == 1));
      if (isLibrary && !isListed(entry.path)) {
        diagnostics_.add("library-not-listed", {volume.shown(entry.path)},
                         format(_("The folder of RelativePath2 has no {0}, so the page does not detect which "
                                  "edition the user has."),
                                {quotedText(entry.path)}));
      }
    }
    checkPacks(volume);
  }

  // The content that the detection will find after this install: a folder with the pack's name and " Library",
  // and a database in each folder directly below it.
  void checkPacks(const CheckedVolume& volume) {
    for (const TreeEntry& entry : volume.tree.entries()) {
      const bool isFactory = !entry.isHidden && entry.kind == EntryKind::folder && depthOf(entry.path) == 3 &&
                             entry.path.starts_with("Mirel Packs/") &&
                             entry.path.ends_with("/Soundsources/Factory");
      if (isFactory) {
        checkPack(volume, entry.path);
      }
    }
  }

  void checkPack(const CheckedVolume& volume, const std::string& factory) {
    const std::size_t start = kMirelPacks.size() + 1;
    const std::string pack = factory.substr(start, factory.find('/', start) - start);
    const std::string library = factory + "/" + pack + " Library";
    if (!isAnywhere([&library](const TreeEntry& entry) {
          return entry.path == library && entry.kind == EntryKind::folder;
        })) {
      diagnostics_.add("mirel-pack-unseen", {volume.shown(factory)},
                       format(_("The pack has no folder {0} here, so the page cannot detect its edition and "
                                "treats it as Full."),
                              {quotedText(pack + " Library")}));
      return;
    }
    const bool bringsDatabases = isAnywhere([&library](const TreeEntry& entry) {
      return isDatabase(entry) && entry.path.starts_with(library + "/");
    });
    if (!bringsDatabases) {
      return;  // the ones that the user has count
    }
    for (const TreeEntry& entry : volume.tree.entries()) {
      if (entry.kind == EntryKind::folder && !entry.isHidden && entry.path.starts_with(library + "/") &&
          depthOf(entry.path) == 5 && !hasDatabase(entry.path)) {
        diagnostics_.add("mirel-pack-unseen", {volume.shown(entry.path)},
                         _("There is no .db file directly in this folder. If the system lists the folder "
                           "first, the page cannot detect the pack's edition and treats it as Full."));
      }
    }
  }

  void checkInstalledPacks() {
    if (!checked_.isInstalledKnown) {
      return;
    }
    const fs::path central = fs::path(checked_.dataRoot) / checked_.product.folderName;
    for (const PlannedLibrary& library : checked_.plan.editions.libraries) {
      std::error_code error;
      const fs::path path = central / library.folderName;
      if (isMirelPack(library.folderName) && !library.isDetected && fs::exists(path, error)) {
        diagnostics_.add("mirel-pack-unseen", {checked_.shown(path)},
                         _("The page finds no database of this pack where it looks for one, so it treats the "
                           "pack as Full."));
      }
    }
  }

  static std::ptrdiff_t depthOf(const std::string& path) { return std::count(path.begin(), path.end(), '/'); }

  static bool isDatabase(const TreeEntry& entry) {
    return entry.kind == EntryKind::file && !entry.isHidden && isDatabaseName(entry.name());
  }

  // Both components are installed into the same folder, so one of them suffices.
  template <typename Test>
  [[nodiscard]] bool isAnywhere(Test test) const {
    return std::any_of(checked_.volumes.begin(), checked_.volumes.end(), [&test](const CheckedVolume& volume) {
      const auto& entries = volume.tree.entries();
      return volume.folderName == "TANVO" && std::any_of(entries.begin(), entries.end(), test);
    });
  }

  [[nodiscard]] bool hasDatabase(const std::string& folder) const {
    return isAnywhere([&folder](const TreeEntry& entry) {
      return isDatabase(entry) && entry.path == folder + "/" + entry.name();
    });
  }

  [[nodiscard]] bool isListed(const std::string& name) const {
    return std::any_of(libraries_.begin(), libraries_.end(),
                       [&name](const PlannedLibrary& library) { return library.folderName == name; });
  }

  const CheckedSet& checked_;
  Diagnostics& diagnostics_;
  FoundText path_;
  fs::path folder_;
  std::vector<PlannedLibrary> libraries_;
};

}  // namespace

void checkLibraries(const CheckedSet& checked, Diagnostics& diagnostics) {
  if (checked.whole.mode == kModeProductUpdater) {
    LibraryRules(checked, diagnostics).check();
  }
}

}  // namespace tavenhall

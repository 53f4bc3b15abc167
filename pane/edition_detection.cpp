#include "context/attributes_line.h"
#include "context/install_settings.h"
#include "context/installation_log.h"
#include "context/internal_lookups.h"
#include "pane/folder_listing.h"
#include "pane/install_data_pane.h"

#include <sys/stat.h>

namespace tavenhall {

namespace {

constexpr std::size_t kDetectionPathSize = 2048;
using DetectionPath = BoundedText<kDetectionPathSize>;

constexpr const char* kMirelPacks = "Mirel Packs";

// The name of the first database file in `folder`; false when there is none.
bool findDatabase(const char* folder, BoundedText<kFolderNameSize>& name) {
  FolderListing listing(folder);
  while (const dirent* entry = listing.next()) {
    if (entry->d_type == DT_REG && isDatabaseName(entry->d_name)) {
      name.assign(entry->d_name);
      return true;
    }
  }
  return false;
}

}  // namespace

void InstallDataPane::storeTwoComponentInstallFolderNames() noexcept {
  BoundedText<kAttributesValueSize> relativePath;
  if (!findRelativePath2(relativePath.data())) {
    return;  // what the buffer holds now is some other line's value
  }
  getFolderContainingPKGfile(relativePath.c_str());
  DetectionPath folder;
  folder.format("%s/TANVO", sOutputPathWithCallersSubfolder.c_str());

  FolderListing listing(folder.c_str());
  while (gNumTwoComponentInstallFolders < kLibrarySlots) {
    const dirent* entry = listing.next();
    if (entry == nullptr) {
      return;
    }
    gTwoComponentInstallFolderNames[gNumTwoComponentInstallFolders].assign(entry->d_name);
    if (std::string_view(entry->d_name) == kMirelPacks) {
      storeMirelPackNames(folder.c_str());  // the slot is not counted; the first pack takes it
    } else {
      ++gNumTwoComponentInstallFolders;
    }
  }
}

void InstallDataPane::storeMirelPackNames(const char* folder) noexcept {
  DetectionPath packs;
  packs.format("%s/%s", folder, kMirelPacks);
  addEventToInstallationLog("Searching for Mirel Packs update data: %s \n", packs.c_str());

  FolderListing listing(packs.c_str());
  while (gNumTwoComponentInstallFolders < kLibrarySlots) {
    const dirent* entry = listing.next();
    if (entry == nullptr) {
      return;
    }
    auto& name = gTwoComponentInstallFolderNames[gNumTwoComponentInstallFolders];
    name.format("%s/%s", kMirelPacks, entry->d_name);
    addEventToInstallationLog("Found Mirel Packs library: %s\n", name.c_str());
    ++gNumTwoComponentInstallFolders;
    ++gNumMirelPacksInstallFolders;
  }
}

void InstallDataPane::determineInstallationTypesInLocalTANVOFolder() noexcept {
  for (std::int32_t i = 0; i < gNumTwoComponentInstallFolders; ++i) {
    const std::string_view name = gTwoComponentInstallFolderNames[i].view();
    if (isMirelPack(name)) {
      detectMirelPackEdition(i);
    } else if (name == "Tessaphon") {
      // The one instrument that a Lite edition lacks.
      DetectionPath path;
      path.assign(gTANVOorDOVA_destinationPath);
      path.append("/Tessaphon/Soundsources/Factory/Tessaphon Library/Keyboards/Glassophone.db");
      struct stat found {};
      const bool isLite = stat(path.c_str(), &found) != 0;
      gTwoComponentInstallChoicesAreLite[i] = isLite ? 1 : 0;
      addEventToInstallationLog(isLite ? "Confirmed Tessaphon Library Installation is Lite\n"
                                       : "Confirmed Tessaphon Library Installation is Full\n");
    }
  }
}

void InstallDataPane::detectMirelPackEdition(std::int32_t index) noexcept {
  const std::string library(mirelPackLibrary(gTwoComponentInstallFolderNames[index].view()));
  DetectionPath path;
  path.format("%s/Mirel Packs/%s/Soundsources/Factory/%s Library", gTANVOorDOVA_destinationPath,
              library.c_str(), library.c_str());
  addEventToInstallationLog("Searching: %s \n", path.c_str());

  FolderListing listing(path.c_str());
  while (const dirent* entry = listing.next()) {
    if (entry->d_type != DT_DIR) {
      continue;
    }
    // Required: the path only grows. A subfolder without a database stays in it, so in effect the first
    // subfolder of the listing decides.
    path.append("/");
    path.append(entry->d_name);
    BoundedText<kFolderNameSize> database;
    if (!findDatabase(path.c_str(), database)) {
      continue;
    }
    path.append("/");
    path.append(database.view());
    struct stat found {};
    stat(path.c_str(), &found);  // required: a failure counts as a size of 0
    const auto size = static_cast<std::int32_t>(found.st_size);
    addEventToInstallationLog("Found %s file with size = %d\n", path.c_str(), size);
    const bool isLite = databaseSizeIsLite(size);
    gTwoComponentInstallChoicesAreLite[index] = isLite ? 1 : 0;
    addEventToInstallationLog(
        isLite ? "Confirmed %s Library Installation is Lite\n" : "Confirmed %s Library Installation is Full\n",
        library.c_str());
    return;
  }
}

}  // namespace tavenhall

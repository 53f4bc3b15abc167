#include "context/attributes_line.h"
#include "context/install_settings.h"
#include "context/installation_log.h"
#include "context/installed_editions.h"
#include "context/internal_lookups.h"
#include "pane/install_data_pane.h"

#include <optional>
#include <string>

namespace tavenhall {

namespace {

constexpr std::size_t kDetectionPathSize = 2048;
using DetectionPath = BoundedText<kDetectionPathSize>;

// Stores the libraries that are found in the page's slots.
class LibrarySlots {
 public:
  explicit LibrarySlots(InstallDataPane& pane) noexcept : pane_(pane) {}

  [[nodiscard]] bool isFull() const noexcept { return pane_.gNumTwoComponentInstallFolders >= kLibrarySlots; }
  void foundLibrary(const char* name) noexcept {
    slot().assign(name);
    ++pane_.gNumTwoComponentInstallFolders;
  }
  // The slot is not counted; the first pack overwrites it.
  void foundPacks(const char* path) noexcept {
    slot().assign(kMirelPacks);
    addEventToInstallationLog("Searching for Mirel Packs update data: %s \n", path);
  }
  void foundPack(const char* name) noexcept {
    slot().format("%s/%s", kMirelPacks, name);
    addEventToInstallationLog("Found Mirel Packs library: %s\n", slot().c_str());
    ++pane_.gNumTwoComponentInstallFolders;
    ++pane_.gNumMirelPacksInstallFolders;
  }

 private:
  [[nodiscard]] BoundedText<kFolderNameSize>& slot() noexcept {
    return pane_.gTwoComponentInstallFolderNames[pane_.gNumTwoComponentInstallFolders];
  }

  InstallDataPane& pane_;
};

struct DetectionLog {
  static void examines(const char* /*path*/) noexcept {}
  static void searches(const char* path) noexcept { addEventToInstallationLog("Searching: %s \n", path); }
  static void foundDatabase(const char* path, std::int32_t size) noexcept {
    addEventToInstallationLog("Found %s file with size = %d\n", path, size);
  }
};

}  // namespace

void InstallDataPane::storeTwoComponentInstallFolderNames() noexcept {
  BoundedText<kAttributesValueSize> relativePath;
  if (!findRelativePath2(relativePath.data())) {
    return;  // the buffer now holds another line's value
  }
  getFolderContainingPKGfile(relativePath.c_str());
  DetectionPath folder;
  folder.format("%s/TANVO", sOutputPathWithCallersSubfolder.c_str());
  LibrarySlots slots(*this);
  listUpdateLibraries(folder, slots);
}

void InstallDataPane::determineInstallationTypesInLocalTANVOFolder() noexcept {
  const char* centralFolder = gTANVOorDOVA_destinationPath != nullptr ? gTANVOorDOVA_destinationPath : "(null)";
  for (std::int32_t i = 0; i < gNumTwoComponentInstallFolders; ++i) {
    const std::string_view name = gTwoComponentInstallFolderNames[i].view();
    DetectionLog log;
    const std::optional<bool> isLite = installedEditionIsLite<DetectionPath>(centralFolder, name, log);
    if (isLite) {
      gTwoComponentInstallChoicesAreLite[i] = *isLite ? 1 : 0;
      addEventToInstallationLog(*isLite ? "Confirmed %s Library Installation is Lite\n"
                                        : "Confirmed %s Library Installation is Full\n",
                                std::string(mirelPackLibrary(name)).c_str());
    }
  }
}

}  // namespace tavenhall

#include "context/folder_listing.h"
#include "context/install_decisions.h"
#include "context/installation_log.h"
#include "pane/install_data_pane.h"
#include "pane/process_wide.h"
#include "platform/copy_hints.h"
#include "platform/system.h"

namespace tavenhall {

namespace {

constexpr int kReadinessAttempts = 3;
constexpr unsigned kSecondsForDiscToInitialise = 5;
constexpr std::size_t kSubfolderPathSize = 2048;

// Waits until a disc that was just inserted is readable. After the last failed attempt the copy starts all the
// same, and reports what it cannot read.
void waitForReadableFolder(const char* folder) {
  for (int attempt = 0; attempt < kReadinessAttempts; ++attempt) {
    {
      FolderListing listing(folder);
      if (!listing.isOpen()) {
        addEventToInstallationLog("copySingleVolume: cannot open top level folder. Attempt %d", attempt);
      } else if (listing.next() != nullptr) {
        return;
      } else {
        addEventToInstallationLog("copySingleVolume: no items found in top level folder. Attempt %d", attempt);
      }
    }
    addEventToInstallationLog("copySingleVolume: sleep to give disc a chance to initialize");
    sleepSeconds(kSecondsForDiscToInitialise);
  }
}

}  // namespace

void InstallDataPane::copySingleVolume() noexcept {
  if (gInstallMode == kModeVolumes) {
    waitForReadableFolder(copySrcPath);
  }
  progressSizeForLoggingUnitBytes = 0;
  progressCounterForLogging = 0;

  if (holdsLibrariesInFull(gInstallMode, gCurrentVolumeNumber)) {
    // The last copy's result counts.
    for (std::int32_t i = 0; i < gNumTwoComponentInstallFolders; ++i) {
      if (gTwoComponentInstallChoicesAreLite[i] != 0) {
        continue;
      }
      const char* name = gTwoComponentInstallFolderNames[i].c_str();
      BoundedText<kSubfolderPathSize> source;
      source.format("%s/%s", copySrcPath, name);
      BoundedText<kSubfolderPathSize> destination;
      if (copyDstPath != nullptr) {
        destination.format("%s/%s", copyDstPath, name);
      }
      addEventToInstallationLog("Begin copySingleVolume for copySrcPathWithSubFolder %s\n", source.c_str());
      const ReadAhead readAhead(source.c_str());
      readyToProceed = copyTree(source.c_str(), copyDstPath != nullptr ? destination.c_str() : nullptr,
                                gTANVOorDOVAnameOnly.c_str());
    }
  } else {
    addEventToInstallationLog("Begin copySingleVolume: copySrcPath %s\n", copySrcPath);
    const ReadAhead readAhead(copySrcPath);
    readyToProceed = copyTree(copySrcPath, copyDstPath, gTANVOorDOVAnameOnly.c_str());
  }

  status->setTitleWithMnemonic(" ");
  addEventToInstallationLog("End copySingleVolume: copySrcPath %s\n", copySrcPath);
  copySingleVolumeRunning.store(0, std::memory_order_release);  // the last act: the install thread continues
}

}  // namespace tavenhall

#include "context/attributes_line.h"
#include "context/install_decisions.h"
#include "context/install_settings.h"
#include "context/installation_log.h"
#include "context/internal_lookups.h"
#include "pane/install_data_pane.h"
#include "pane/power_assertions.h"

#include <sys/stat.h>

namespace tavenhall {

// The closing steps run after every result of the passes: readyToProceed decides whether the install succeeded,
// when the user leaves the page.
void InstallDataPane::doEntireInstall() noexcept {
  onMainThread([this] {
    progressIndicator->setDoubleValue(0.0);
    progressIndicator->displayIfNeeded();
  });

  if (gInstallMode == kModeProductUpdater) {
    copySupportHubExternalFolders();

    gTANVOorDOVAnameOnly.assign(kUpdatePasses.front());
    gTANVOorDOVA_destinationPath = findCentralFolder(kUpdatePasses.front());
    installAllVolumesForOneOf_TANVOorDOVA();

    BoundedText<kAttributesValueSize> relativePath;
    getRelativePath(relativePath.data());
    getFolderContainingPKGfile(relativePath.c_str());
    gPathOfSourceDataExcludingTANVOtail.assign(sOutputPathWithCallersSubfolder.view());

    gTANVOorDOVAnameOnly.assign(kUpdatePasses.back());
    gTANVOorDOVA_destinationPath = findCentralFolder(kUpdatePasses.back());
  } else {
    gTANVOorDOVAnameOnly.assign(_localizedStringForKey("FolderName"));
  }
  installAllVolumesForOneOf_TANVOorDOVA();
  addEventToInstallationLog("Finished with all TANVO/DOVA data");

  onMainThread([this] {
    host().beginAnimationGrouping();
    host().setAnimationDuration(0.0);
    progressIndicator->setMinValue(0.0);
    progressIndicator->setMaxValue(1.0);
    progressIndicator->setDoubleValue(1.0);
    progressIndicator->displayIfNeeded();
    host().endAnimationGrouping();
  });

  _updateNextButtonState();
  displayCompletionMessage();

  // Required: Next is enabled twice, before and after the power assertions are released.
  host().setNextEnabled(true);
  addEventToInstallationLog("Enabling Next button 1");
  addEventToInstallationLog("Re-enabling sleep");
  releasePowerAssertions(host());
  host().setNextEnabled(true);
  host().setPreviousEnabled(false);
  addEventToInstallationLog("Enabling Next button 2");
  addEventToInstallationLog(
      "Installation complete\n*********************************************************\n");
}

// Skips a folder that is not beside the package; nothing reports it.
void InstallDataPane::copySupportHubExternalFolders() noexcept {
  for (const char* folder : kSystemFolders) {
    getFolderContainingPKGfile(nullptr);
    BoundedText<4096> source;
    source.assign(sOutputPathWithCallersSubfolder.view());
    source.append(folder);
    struct stat found {};
    if (stat(source.c_str(), &found) != 0) {
      continue;
    }
    BoundedText<1024> destination;
    destination.format("%s/", folder);
    copyTree(source.c_str(), destination.c_str(), "");  // sheets report failures
  }
}

}  // namespace tavenhall

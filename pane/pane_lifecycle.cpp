#include "context/attributes_line.h"
#include "context/install_settings.h"
#include "context/installation_log.h"
#include "context/text_expansion.h"
#include "pane/install_data_pane.h"
#include "platform/system.h"

#include <sys/stat.h>

namespace tavenhall {

namespace {

constexpr std::int64_t kExpectedBytesUntilKnown = 100000000;
constexpr std::size_t kPageTextSize = 4096;

}  // namespace

InstallDataPane::InstallDataPane(InstallerHost& host) noexcept
    : InstallerPane(host),
      instructions(&host.instructions()),
      status(&host.status()),
      uiButton(&host.uiButton()),
      progressIndicator(&host.progressIndicator()) {}

// Ignores the direction: entering does the same forwards and backwards, the first time and later.
void InstallDataPane::didEnterPane(std::int64_t /*direction*/) noexcept {
  addEventToInstallationLog(
      "\n\n**********************************************************************************************\n"
      "  Install Data Pane Enter: %s",
      "Version 7.7");

  // Required: the mode, the edition option, the volume number, the copy flag and the copy's two paths keep
  // their values.
  totalNumBytesExpectedAcrossAllVolumes = kExpectedBytesUntilKnown;
  kBytesCopied = 0;
  bytesWritten = 0;
  filesBegun = 0;
  filesDone = 0;
  currentFile.clear();
  readyToProceed = 0;
  gVolumeCount = 1;
  gItemCurrentlyBeingInstalled.clear();
  gTANVOorDOVAnameOnly.clear();
  gPathOfSourceDataExcludingTANVOtail.clear();
  gPathOfSourceDataIncludingTANVOtail.clear();
  gAltSrcFolder.clear();
  gPluginNameChar.clear();
  gCompletionMessage.clear();
  gAllTwoComponentInstallChoicesAreLite = 0;
  gNumTwoComponentInstallFolders = 0;
  gNumMirelPacksInstallFolders = 0;
  for (auto& name : gTwoComponentInstallFolderNames) {
    name.clear();
  }
  gTwoComponentInstallChoicesAreLite.fill(0);

  _updateNextButtonState();
  gTANVOorDOVA_destinationPath = findCentralFolder("");

  BoundedText<kPageTextSize> text;
  getInstallingDataString(text.data());
  instructions->setTitleWithMnemonic(expandFormat(text.view(), gTANVOorDOVA_destinationPath).c_str());

  struct stat found {};
  if (gTANVOorDOVA_destinationPath != nullptr && stat(gTANVOorDOVA_destinationPath, &found) == 0) {
    spawnBackgroundInstallJob();
    return;
  }
  addEventToInstallationLog("InstallData fatal error: TANVO or DOVA folder not found.");
  showSheet(_localizedStringForKey("FindError").c_str());
  _updateNextButtonState();
}

// Required: the user may always leave an updater forwards, even before its copy has succeeded.
bool InstallDataPane::shouldExitPane(std::int64_t direction) noexcept {
  if (direction != kDirectionForward || readyToProceed != 0 || gInstallMode == kModeProductUpdater) {
    host().setNextEnabled(true);
    return true;
  }
  _updateNextButtonState();
  addEventToInstallationLog("readyToProceed is False: issuing InstallError message\n");
  showSheet(_localizedStringForKey("InstallError").c_str());
  return false;
}

// The installer may ask for the title at any time, so this touches no state of the page.
std::string InstallDataPane::title() noexcept {
  BoundedText<kAttributesValueSize> text;
  getInstallDataTitle(text.data());
  return text.c_str();
}

void InstallDataPane::controlTextDidChange() noexcept { _updateNextButtonState(); }

void InstallDataPane::updateText() noexcept {}

std::int32_t InstallDataPane::isReadyToProceed() const noexcept { return readyToProceed; }

PaneSnapshot InstallDataPane::snapshot() const noexcept {
  PaneSnapshot copy;
  copy.readyToProceed = readyToProceed;
  copy.installMode = gInstallMode;
  copy.kBytesCopied = kBytesCopied;
  copy.bytesWritten = bytesWritten;
  copy.filesBegun = filesBegun;
  copy.filesDone = filesDone;
  copy.currentFile = currentFile;
  copy.currentVolumeNumber = gCurrentVolumeNumber;
  copy.volumeCount = gVolumeCount;
  copy.sourceFolder = copySrcPath != nullptr ? copySrcPath : "";
  copy.destinationFolder = gTANVOorDOVA_destinationPath != nullptr ? gTANVOorDOVA_destinationPath : "";
  return copy;
}

bool InstallDataPane::_entriesAreValid() const noexcept { return readyToProceed != 0; }

// This page never enables Previous.
void InstallDataPane::_updateNextButtonState() noexcept {
  host().setPreviousEnabled(false);
  host().setNextEnabled(_entriesAreValid());
}

std::string InstallDataPane::_localizedStringForKey(const char* key) noexcept { return localizedString(key); }

void InstallDataPane::displayCompletionMessage() noexcept {
  if (gCompletionMessage.empty()) {
    getCompletionMessage(0, gCompletionMessage.data());
  }
  instructions->setTitleWithMnemonic(
      expandFormat(gCompletionMessage.view(), gTANVOorDOVA_destinationPath).c_str());
}

void InstallDataPane::showSheet(const char* message) noexcept {
  const std::string button = _localizedStringForKey("OK_BUTTON");
  host().beginInformationalSheet({button.c_str(), message});
}

void InstallDataPane::showSheetFromWorker(const char* message) noexcept {
  onMainThread([this, message] { showSheet(message); });
}

}  // namespace tavenhall

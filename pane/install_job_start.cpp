#include "context/attributes_line.h"
#include "context/first_line.h"
#include "context/install_decisions.h"
#include "context/install_settings.h"
#include "context/installation_log.h"
#include "context/internal_lookups.h"
#include "pane/install_data_pane.h"
#include "pane/power_assertions.h"
#include "pane/process_wide.h"
#include "platform/system.h"

namespace tavenhall {

namespace {

bool readPromptIsYes() {
  BoundedText<kAttributesValueSize> prompt;
  if (getStringFromAttributesFile("LiteVsFullPrompt", prompt.data(), prompt.capacity()) == 0) {
    addEventToInstallationLog("Did not find LiteVsFullPrompt string in attributes file ");
    return false;
  }
  addEventToInstallationLog("Data from attributes file::  LiteVsFullPrompt =%s ", prompt.c_str());
  return promptIsYes(prompt.view());
}

}  // namespace

void InstallDataPane::spawnBackgroundInstallJob() noexcept {
  gVolumeCount = 1;
  takePowerAssertions(host());

  gInstallMode = getInstallationMode();
  gInstallationHasLiteVsFullOption = 0;
  settleEditionOption();

  gPluginNameChar.assign(_localizedStringForKey("PluginName"));
  settleSourceRoot();
  announceDetectedEditions();
  determineNumVolumesToInstall();

  const auto body = [](void* pane) { static_cast<InstallDataPane*>(pane)->doEntireInstall(); };
  if (!detachNewThread(host(), "doEntireInstall", body, this)) {
    addEventToInstallationLog("spawnBackgroundInstallJob: could not start the install thread");
    releasePowerAssertions(host());
    showSheet(_localizedStringForKey("InstallError").c_str());
  }
}

void InstallDataPane::settleEditionOption() noexcept {
  const auto countLibraries = [this] {
    storeTwoComponentInstallFolderNames();
    return gNumTwoComponentInstallFolders;
  };
  const bool isOffered = editionsAreOffered(gInstallMode, readNumberOfVolumes, readPromptIsYes, countLibraries);
  gInstallationHasLiteVsFullOption = isOffered ? 1 : 0;
  if (!choiceFileDecides(gInstallMode)) {
    determineInstallationTypesInLocalTANVOFolder();
  } else if (isOffered) {
    readEditionChoiceFile();
  }
}

void InstallDataPane::readEditionChoiceFile() noexcept {
  BoundedText<kFirstLineSize> choice;
  if (!readFirstLine(kInstallTypeFile, choice)) {
    addEventToInstallationLog("Could not open install type file  %s", kInstallTypeFile);
    return;
  }
  addEventToInstallationLog("contentsOfTavInstallTypeFile = %s", choice.c_str());
  const bool isLite = choiceIsLite(choice.view());
  gTwoComponentInstallChoicesAreLite[0] = isLite ? 1 : 0;
  addEventToInstallationLog(isLite ? "Install Type = Lite" : "Install Type = Full");
}

void InstallDataPane::settleSourceRoot() noexcept {
  if (firstRoot(gInstallMode) == RootKind::mounted) {
    addEventToInstallationLog("Install kind:  Disc/flash.");
    getFullPathOfVolumeNumber(0, gPathOfSourceDataExcludingTANVOtail);
    return;
  }
  addEventToInstallationLog(
      "Install kind:  Relative path (Either Data updater or single-step fully-downloaded).");
  BoundedText<kAttributesValueSize> relativePath;
  getRelativePath(relativePath.data());
  getFolderContainingPKGfile(relativePath.c_str());
  gPathOfSourceDataExcludingTANVOtail.assign(sOutputPathWithCallersSubfolder.view());
}

void InstallDataPane::announceDetectedEditions() noexcept {
  if (gInstallMode != kModeProductUpdater || gInstallationHasLiteVsFullOption != 1) {
    return;
  }
  for (std::int32_t i = 0; i < gNumTwoComponentInstallFolders; ++i) {
    addEventToInstallationLog("Displaying Lite Vs Full Informational Prompt %d", i);
    const std::string_view folder = gTwoComponentInstallFolderNames[i].view();
    const EditionWords words = editionWords(folder, gTwoComponentInstallChoicesAreLite[i] != 0);
    BoundedText<kDisplayNameSize + 128> text;
    text.format("%s installation detected for %s. Performing %s data update.", words.edition,
                libraryDisplayName(folder).c_str(), words.phrase);
    static constexpr std::array<const char*, 1> kButtons{"Continue"};
    static_cast<void>(
        host().runModal({"Detected Installation Type", text.c_str(), kButtons, kAlertStyleInformational}));
  }
}

}  // namespace tavenhall

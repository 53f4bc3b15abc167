#include "context/attributes_line.h"
#include "context/first_line.h"
#include "context/install_settings.h"
#include "context/installation_log.h"
#include "context/internal_lookups.h"
#include "pane/install_data_pane.h"
#include "pane/process_wide.h"
#include "pane/sleep_holds.h"
#include "platform/system.h"

#include <strings.h>

namespace tavenhall {

namespace {

bool readVolumesOfferEditions() {
  const std::int64_t number = getLongLongFromAttributesFile("NumberOfVolumes");
  addEventToInstallationLog("Data from attributes file::   num Vol=%lld ", static_cast<long long>(number));
  return volumesOfferEditions(number);
}

bool promptIsWanted() {
  BoundedText<kAttributesValueSize> prompt;
  if (getStringFromAttributesFile("LiteVsFullPrompt", prompt.data(), prompt.capacity()) == 0) {
    addEventToInstallationLog("Did not find LiteVsFullPrompt string in attributes file ");
    return false;
  }
  addEventToInstallationLog("Data from attributes file::  LiteVsFullPrompt =%s ", prompt.c_str());
  return strcasecmp(prompt.c_str(), "Yes") == 0;
}

}  // namespace

void InstallDataPane::spawnBackgroundInstallJob() noexcept {
  gVolumeCount = 1;
  takeSleepHolds(host());

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
    releaseSleepHolds(host());
    showSheet(_localizedStringForKey("InstallError").c_str());
  }
}

// Required: the modes differ in what they ask. Two volumes alone mean two editions in modes 0 and 3, mode 2
// also wants the prompt, and mode 4 looks at what the user has.
void InstallDataPane::settleEditionOption() noexcept {
  switch (gInstallMode) {
    case kModeDataUpdater:
    case kModeOtherRelative: gInstallationHasLiteVsFullOption = readVolumesOfferEditions() ? 1 : 0; break;
    case kModeVolumes:
      gInstallationHasLiteVsFullOption = readVolumesOfferEditions() && promptIsWanted() ? 1 : 0;
      break;
    case kModeProductUpdater:
      storeTwoComponentInstallFolderNames();
      gInstallationHasLiteVsFullOption = gNumTwoComponentInstallFolders > 0 ? 1 : 0;
      determineInstallationTypesInLocalTANVOFolder();
      return;  // the choice file is for the other modes
    default: return;
  }
  if (gInstallationHasLiteVsFullOption != 0) {
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
  if (gInstallMode == kModeVolumes) {
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

#include "context/attributes_line.h"
#include "context/install_decisions.h"
#include "context/install_settings.h"
#include "context/installation_log.h"
#include "context/internal_lookups.h"
#include "context/text_expansion.h"
#include "pane/install_data_pane.h"
#include "platform/system.h"

#include <algorithm>
#include <sys/stat.h>

namespace tavenhall {

namespace {

constexpr std::int32_t kFirstOptionalVolume = 2;
constexpr std::size_t kVolumesPrefixLength = 9;  // of "/Volumes/"
constexpr unsigned kSecondsBetweenDiscChecks = 10;

bool exists(const char* path) {
  struct stat found {};
  return stat(path, &found) == 0;
}

}  // namespace

void InstallDataPane::installAllVolumesForOneOf_TANVOorDOVA() noexcept {
  // Tests the root that the caller set, before a volume changes it.
  const bool hasOptionalDiscs = rootHasOptionalDiscs(gPathOfSourceDataExcludingTANVOtail.view());
  determineNumVolumesToInstall();
  // Read the count after each volume: the first one may change it.
  for (gCurrentVolumeNumber = 0; gCurrentVolumeNumber < gVolumeCount; ++gCurrentVolumeNumber) {
    const OptionalDisc* optionalDisc = chooseVolumeRoot(hasOptionalDiscs);
    auto& root = gPathOfSourceDataExcludingTANVOtail;
    gPathOfSourceDataIncludingTANVOtail.format("%s/%s", root.c_str(), gTANVOorDOVAnameOnly.c_str());
    addEventToInstallationLog("Volume %d %s\n", gCurrentVolumeNumber,
                              gPathOfSourceDataIncludingTANVOtail.c_str());
    gAltSrcFolder.format("%s/Mac OSX/%s", root.c_str(), gTANVOorDOVAnameOnly.c_str());
    status->setTitleWithMnemonic(" ");

    if (gInstallMode == kModeVolumes) {
      host().discBegun(root.c_str());
      if (!waitForVolume(optionalDisc)) {
        continue;
      }
    }
    if (gCurrentVolumeNumber == 0) {
      prepareFirstVolume();
    }
    if (const char* folder = chooseFolderToCopy()) {
      copyVolumeOnItsThread(folder);
    } else if (gInstallMode != kModeProductUpdater) {
      gCurrentVolumeNumber = gVolumeCount;  // the last step of the pass still increments it
    }
  }
}

const OptionalDisc* InstallDataPane::chooseVolumeRoot(bool hasOptionalDiscs) noexcept {
  auto& root = gPathOfSourceDataExcludingTANVOtail;
  if (gCurrentVolumeNumber == 0) {
    return nullptr;  // the caller of the pass has decided it
  }
  const VolumeRoot chosen =
      volumeRoot(gCurrentVolumeNumber, gInstallMode, gInstallationHasLiteVsFullOption != 0,
                 gAllTwoComponentInstallChoicesAreLite != 0, hasOptionalDiscs);
  switch (chosen.kind) {
    case RootKind::asBefore:
    case RootKind::relativePath: break;
    case RootKind::mounted: getFullPathOfVolumeNumber(gCurrentVolumeNumber, root); break;
    case RootKind::optionalDisc: root.assign(chosen.disc->mountPath); break;
    case RootKind::relativePath2: {
      BoundedText<kAttributesValueSize> relativePath;
      getRelativePath2(relativePath.data());
      getFolderContainingPKGfile(relativePath.c_str());
      root.assign(sOutputPathWithCallersSubfolder.view());
      break;
    }
  }
  return chosen.disc;
}

bool InstallDataPane::waitForVolume(const OptionalDisc* optionalDisc) noexcept {
  const char* root = gPathOfSourceDataExcludingTANVOtail.c_str();
  const char* primary = gPathOfSourceDataIncludingTANVOtail.c_str();
  const char* alternate = gAltSrcFolder.c_str();
  while (true) {
    addEventToInstallationLog("File check: %s %s %s", root, primary, alternate);
    if (exists(root) && (exists(primary) || exists(alternate))) {
      return true;
    }
    addEventToInstallationLog("Disc not ready: %d %d %d", exists(root), exists(primary), exists(alternate));
    if (optionalDisc != nullptr) {
      if (askForOptionalDisc(*optionalDisc) == kAlertSecondButtonReturn) {
        addEventToInstallationLog("Skipping an optional disc (ProcessThisDisc false)");
        return false;
      }
    } else {
      askForMandatoryVolume();
    }
    sleepSeconds(kSecondsBetweenDiscChecks);
  }
}

int InstallDataPane::askForOptionalDisc(const OptionalDisc& disc) noexcept {
  addEventToInstallationLog("Dialog prompting to insert optional disc: %d %s\n",
                            gCurrentVolumeNumber - kFirstOptionalVolume, disc.title);
  int choice = 0;
  onMainThread([this, &disc, &choice] {
    BoundedText<256> text;
    text.format("Insert %s Outrider disc. Press Skip if you do not have this disc.", disc.title);
    static constexpr std::array<const char*, 2> kButtons{"OK", "Skip"};
    choice = host().runModal({"Ready for next volume", text.c_str(), kButtons, kAlertStyleInformational});
    if (choice != kAlertSecondButtonReturn) {
      host().discAwaited(kSecondsBetweenDiscChecks);
    }
  });
  addEventToInstallationLog("Optional disc button choice %d\n", choice);
  return choice;
}

void InstallDataPane::askForMandatoryVolume() noexcept {
  BoundedText<512> name;
  const std::string_view root = gPathOfSourceDataExcludingTANVOtail.view();
  name.assign(root.substr(std::min(kVolumesPrefixLength, root.size())));
  onMainThread([this, &name] {
    addEventToInstallationLog("Dialog prompting to insert mandatory volume %d %s ", gCurrentVolumeNumber + 1,
                              name.c_str());
    BoundedText<name.capacity() + 16> text;
    text.format("Please insert %s", name.c_str());
    static constexpr std::array<const char*, 1> kButtons{"OK"};
    static_cast<void>(
        host().runModal({"Ready for next volume", text.c_str(), kButtons, kAlertStyleInformational}));
    host().discAwaited(kSecondsBetweenDiscChecks);
  });
}

void InstallDataPane::prepareFirstVolume() noexcept {
  getCompletionMessage(0, gCompletionMessage.data());

  BoundedText<kAttributesValueSize> installing;
  getInstallingDataString(installing.data());
  instructions->setTitleWithMnemonic(expandFormat(installing.view(), gTANVOorDOVA_destinationPath).c_str());

  std::int64_t millions = getLongLongFromAttributesFile("TotalSizeMillionsBytes");
  if (componentIsAnnounced(gInstallationHasLiteVsFullOption != 0, gAllTwoComponentInstallChoicesAreLite != 0)) {
    millions = getLongLongFromAttributesFile("Component1SizeMillionsBytes");
  }
  totalNumBytesExpectedAcrossAllVolumes = announcedBytes(millions);
  addEventToInstallationLog("Data from attributes file:   data size=%lld (bytes)",
                            static_cast<long long>(totalNumBytesExpectedAcrossAllVolumes));
  if (millions != 0) {
    host().beginAnimationGrouping();
    host().setAnimationDuration(0.0);
    progressIndicator->setMinValue(0.0);
    progressIndicator->setMaxValue(barMaximumForBytes(totalNumBytesExpectedAcrossAllVolumes));
    host().endAnimationGrouping();
  } else {
    // Required: the text says 10 GB, the value is 100 MB, and neither the bar's range nor the volume count
    // changes.
    addEventToInstallationLog(
        "Unable to read expectd size from installation instruction file. Assuming 1 volume and 10 GB.");
    totalNumBytesExpectedAcrossAllVolumes = kExpectedBytesWhenUnknown;
  }

  if (gInstallMode == kModeVolumes) {
    determineNumVolumesToInstall();  // again, now that the first volume is readable
  }
  addEventToInstallationLog("Volume count: %d", gVolumeCount);
}

const char* InstallDataPane::chooseFolderToCopy() noexcept {
  const char* root = gPathOfSourceDataExcludingTANVOtail.c_str();
  const char* primary = gPathOfSourceDataIncludingTANVOtail.c_str();
  const char* alternate = gAltSrcFolder.c_str();
  if (exists(primary)) {
    addEventToInstallationLog("Using primary folder %s %s %s", root, primary, alternate);
    return primary;
  }
  if (exists(alternate)) {
    addEventToInstallationLog("Using alternate folder %s %s %s", root, primary, alternate);
    return alternate;
  }
  if (gInstallMode != kModeProductUpdater) {
    addEventToInstallationLog("Files to be installed not found %s %s %s", root, primary, alternate);
    showSheetFromWorker("Files to be installed not found.");
    _updateNextButtonState();
  }
  return nullptr;  // an updater may lack folders; nothing reports them
}

void InstallDataPane::copyVolumeOnItsThread(const char* folder) noexcept {
  copySrcPath = folder;
  copyDstPath = gTANVOorDOVA_destinationPath;
  copySingleVolumeRunning = 1;
  const auto body = [](void* pane) { static_cast<InstallDataPane*>(pane)->copySingleVolume(); };
  if (!detachNewThread(host(), "copySingleVolume", body, this)) {
    copySingleVolume();  // cannot start a thread: copy on this one
  }
  while (copySingleVolumeRunning.load(std::memory_order_acquire) != 0) {
    sleepSeconds(1);
  }
  if (gInstallMode == kModeVolumes) {
    host().ejectBegun();
    runShellCommand("drutil -drive 1 eject");
  }
}

}  // namespace tavenhall

#include "context/installation_log.h"
#include "context/internal_lookups.h"
#include "pane/install_data_pane.h"

#include <algorithm>

namespace tavenhall {

void InstallDataPane::determineNumVolumesToInstall() noexcept {
  if (gInstallationHasLiteVsFullOption != 0) {
    if (gInstallMode == kModeProductUpdater) {
      const auto* first = gTwoComponentInstallChoicesAreLite.data();
      const auto* last = first + std::max(gNumTwoComponentInstallFolders, 0);
      const bool allAreLite = std::all_of(first, last, [](std::int32_t isLite) { return isLite != 0; });
      gAllTwoComponentInstallChoicesAreLite = allAreLite ? 1 : 0;
      gVolumeCount = allAreLite ? 1 : 2;
      return;
    }
    gAllTwoComponentInstallChoicesAreLite = gTwoComponentInstallChoicesAreLite[0];
    if (gAllTwoComponentInstallChoicesAreLite != 0) {
      gVolumeCount = 1;
      return;
    }
    if (gInstallMode != kModeVolumes) {
      gVolumeCount = 2;
      return;
    }
  }
  const std::int64_t number = getLongLongFromAttributesFile("NumberOfVolumes");
  addEventToInstallationLog("Data from attributes file::   num Vol=%lld ", static_cast<long long>(number));
  gVolumeCount = volumeCountForNumber(number);
}

void InstallDataPane::getFullPathOfVolumeNumber(std::int32_t number,
                                                BoundedText<kPathSize>& outputPath) const noexcept {
  volumeMountPath(gPluginNameChar.view(), number, outputPath);
  addEventToInstallationLog("Volume %d path should be: %s", number, outputPath.c_str());
}

}  // namespace tavenhall

#include "context/install_decisions.h"
#include "context/install_settings.h"
#include "context/installation_log.h"
#include "context/internal_lookups.h"
#include "pane/install_data_pane.h"

#include <algorithm>
#include <span>

namespace tavenhall {

void InstallDataPane::determineNumVolumesToInstall() noexcept {
  const bool offersEditions = gInstallationHasLiteVsFullOption != 0;
  if (offersEditions) {
    const std::span choices(gTwoComponentInstallChoicesAreLite);
    const auto libraries = static_cast<std::size_t>(std::max(gNumTwoComponentInstallFolders, 0));
    const std::size_t count = choiceFileDecides(gInstallMode) ? 1 : libraries;
    gAllTwoComponentInstallChoicesAreLite = allChoicesAreLite(choices.first(count)) ? 1 : 0;
  }
  gVolumeCount = volumeCount(gInstallMode, offersEditions, gAllTwoComponentInstallChoicesAreLite != 0,
                             readNumberOfVolumes);
}

void InstallDataPane::getFullPathOfVolumeNumber(std::int32_t number,
                                                BoundedText<kPathSize>& outputPath) const noexcept {
  volumeMountPath(gPluginNameChar.view(), number, outputPath);
  addEventToInstallationLog("Volume %d path should be: %s", number, outputPath.c_str());
}

}  // namespace tavenhall

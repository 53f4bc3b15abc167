#include "pane/install_data_pane.h"
#include "pane/process_wide.h"

namespace tavenhall {

int sAsteriskAnimationCounter = 0;

void InstallDataPane::updateProgress() noexcept {
  auto value = static_cast<double>(kBytesCopied);
  if (gInstallMode == kModeProductUpdater) {
    value = wrappedBarValue(value, progressIndicator->maxValue());
  }

  onMainThread([this, value] {
    host().beginAnimationGrouping();
    host().setAnimationDuration(0.0);
    progressIndicator->setDoubleValue(value);
    progressIndicator->displayIfNeeded();
    host().endAnimationGrouping();
  });

  // Required, without effect: the bar is read back here.
  static_cast<void>(progressIndicator->doubleValue());
  static_cast<void>(progressIndicator->maxValue());
  ++sAsteriskAnimationCounter;

  onMainThread([this] {
    BoundedText<kFolderNameSize + 16> text;
    text.format("Installing... %s", gItemCurrentlyBeingInstalled.c_str());
    status->setTitleWithMnemonic(text.c_str());
    status->setNeedsDisplay();
  });
}

}  // namespace tavenhall

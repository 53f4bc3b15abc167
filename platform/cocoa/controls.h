#pragma once

#include "platform/installer_host.h"

#import <AppKit/AppKit.h>

// The page's controls in the layout. Each is looked up at every call, since the page is made before its layout
// is loaded; until then nothing happens.
namespace tavenhall {

class LayoutTextField final : public TextField {
 public:
  // The outlet lives as long as this.
  explicit LayoutTextField(NSTextField* const& outlet) : outlet_(outlet) {}
  void setTitleWithMnemonic(const char* text) noexcept override;
  void setNeedsDisplay() noexcept override;

 private:
  NSTextField* const& outlet_;
};

class LayoutProgressIndicator final : public ProgressIndicator {
 public:
  explicit LayoutProgressIndicator(NSProgressIndicator* const& outlet) : outlet_(outlet) {}
  void setMinValue(double value) noexcept override;
  void setMaxValue(double value) noexcept override;
  void setDoubleValue(double value) noexcept override;
  [[nodiscard]] double maxValue() const noexcept override;
  [[nodiscard]] double doubleValue() const noexcept override;
  void displayIfNeeded() noexcept override;

 private:
  NSProgressIndicator* const& outlet_;
};

// Brackets changes of controls, with one duration for all of them. The thread that changes the controls.
void beginAnimationGroup() noexcept;
void setAnimationGroupDuration(double seconds) noexcept;
void endAnimationGroup() noexcept;

}  // namespace tavenhall

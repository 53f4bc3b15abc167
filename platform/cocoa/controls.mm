#include "platform/cocoa/controls.h"

#include "platform/cocoa/adapter.h"

namespace tavenhall {

void LayoutTextField::setTitleWithMnemonic(const char* text) noexcept {
  changeControl("a text", [=, this] { showWithMnemonic(outlet_, stringOfBytes(text)); });
}

void LayoutTextField::setNeedsDisplay() noexcept {
  changeControl("a text", [this] { [outlet_ setNeedsDisplay]; });
}

void LayoutProgressIndicator::setMinValue(double value) noexcept {
  changeControl("the bar", [=, this] { [outlet_ setMinValue:value]; });
}

void LayoutProgressIndicator::setMaxValue(double value) noexcept {
  changeControl("the bar", [=, this] { [outlet_ setMaxValue:value]; });
}

void LayoutProgressIndicator::setDoubleValue(double value) noexcept {
  changeControl("the bar", [=, this] { [outlet_ setDoubleValue:value]; });
}

double LayoutProgressIndicator::maxValue() const noexcept {
  double value = 0.0;
  changeControl("the bar", [this, &value] { value = [outlet_ maxValue]; });
  return value;
}

double LayoutProgressIndicator::doubleValue() const noexcept {
  double value = 0.0;
  changeControl("the bar", [this, &value] { value = [outlet_ doubleValue]; });
  return value;
}

void LayoutProgressIndicator::displayIfNeeded() noexcept {
  changeControl("the bar", [this] { [outlet_ displayIfNeeded]; });
}

void beginAnimationGroup() noexcept {
  adapt("an animation", [] { [NSAnimationContext beginGrouping]; });
}

void setAnimationGroupDuration(double seconds) noexcept {
  adapt("an animation", [=] { [[NSAnimationContext currentContext] setDuration:seconds]; });
}

void endAnimationGroup() noexcept {
  adapt("an animation", [] { [NSAnimationContext endGrouping]; });
}

}  // namespace tavenhall

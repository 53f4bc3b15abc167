#include "platform/cocoa/animation.h"

#include "platform/cocoa/adapter.h"

#import <AppKit/AppKit.h>

namespace tavenhall {

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

#include "tests/cocoa/window/buttons.h"

namespace tavenhall::test {

NSButton* buttonWithTitle(NSView* view, NSString* title) {
  if ([view isKindOfClass:[NSButton class]] && [[(NSButton*)view title] isEqualToString:title]) {
    return (NSButton*)view;
  }
  for (NSView* subview in [view subviews]) {
    if (NSButton* found = buttonWithTitle(subview, title)) {
      return found;
    }
  }
  return nil;
}

}  // namespace tavenhall::test

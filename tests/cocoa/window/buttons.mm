#include "tests/cocoa/window/buttons.h"

#include <initializer_list>

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

void clickOn(NSButton* button) {
  const NSRect bounds = [button bounds];
  const NSPoint place = [button convertPoint:NSMakePoint(NSMidX(bounds), NSMidY(bounds)) toView:nil];
  for (const NSEventType type : {NSLeftMouseDown, NSLeftMouseUp}) {
    [NSApp postEvent:[NSEvent mouseEventWithType:type
                                        location:place
                                   modifierFlags:0
                                       timestamp:[NSDate timeIntervalSinceReferenceDate]
                                    windowNumber:[[button window] windowNumber]
                                         context:nil
                                     eventNumber:0
                                      clickCount:1
                                        pressure:1.0]
             atStart:NO];
  }
}

NSArray* everyMode() {
  return
      [NSArray arrayWithObjects:NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode, nil];
}

}  // namespace tavenhall::test

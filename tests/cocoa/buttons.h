#pragma once

#import <AppKit/AppKit.h>
#include <initializer_list>

namespace tavenhall::test {

// The first in the view and what is in it; nil where there is none.
inline NSButton* buttonWithTitle(NSView* view, NSString* title) {
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

// As the mouse would: AppKit's loops for alerts and sheets heed events.
inline void clickOn(NSButton* button) {
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

// For what is to happen also while an alert is up or a button is pressed.
inline NSArray* everyMode() {
  return
      [NSArray arrayWithObjects:NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode, nil];
}

}  // namespace tavenhall::test

#pragma once

#import <AppKit/AppKit.h>

namespace tavenhall::test {

// The button with this title in the view or below it, which owns it; nil if there is none. Main thread.
[[nodiscard]] NSButton* buttonWithTitle(NSView* view, NSString* title);

// Sends it a click as the mouse would: AppKit's loops for alerts and sheets heed events. Main thread.
void clickOn(NSButton* button);

// The modes of the main thread's loop, for what is to happen also while an alert is up or a button is pressed.
[[nodiscard]] NSArray* everyMode();

}  // namespace tavenhall::test

#pragma once

#import <AppKit/AppKit.h>

// Where AppKit on macOS and on GNUstep want to be treated differently: macos/ and gnustep/ fill these.
// Called inside of an adapter, which ends their Objective-C exceptions; changeControl alone is around one.
namespace tavenhall {

// Runs `change(context)`, which touches a control or an installer's button, and returns when it has run. On
// macOS on the calling thread: the page is required to change some of them from its own threads. On GNUstep,
// which does not bear that, on the main thread. Any thread.
void changeControl(void (*change)(void*), void* context) noexcept;

// Shows the text, all of it, by setTitleWithMnemonic:, which takes an "&" for the mark of a key and does not
// show it. On macOS the first one of a text is doubled, and a field that then shows something else is set
// without marks. On GNUstep a text without any is not taken at all, so one goes before every text. Where
// controls are changed.
void showWithMnemonic(NSTextField* field, NSString* text);

// Sends `begin` to the sheet, which must not wait for the sheet's end. On macOS at once, since a sheet that has
// begun leaves the rest to the run loop. On GNUstep, where beginning lasts until the end, from the run loop,
// and one sheet after the other. Main thread.
void beginWithoutWaiting(id sheet, SEL begin);

}  // namespace tavenhall

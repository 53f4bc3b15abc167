#pragma once

#include "host/protocol/event_sink.h"

#import <AppKit/AppKit.h>

@class InstallerPane;

// Who is told that an alert is up and gone. Main thread.
@protocol AlertWatcher
- (void)alertIsUp:(NSAlert*)alert;
- (void)alertIsGone:(NSAlert*)alert;
@end

namespace tavenhall::test {

// Tells the sink, as events, what the page makes of real controls, alerts and sheets, and which power
// assertions it takes. Texts are told as the control has them afterwards. The page's threads tell too, so the
// sink bears several at a time. Once a process, before any thread; both live for the process.
void tellAppKitEvents(EventSink& events, id<AlertWatcher> watcher);

// Whose controls are looked at, once the layout is loaded.
void watchPane(InstallerPane* pane);

}  // namespace tavenhall::test

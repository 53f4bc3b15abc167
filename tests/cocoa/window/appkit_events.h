#pragma once

#include "host/protocol/messages.h"

#import <AppKit/AppKit.h>
#include <functional>

@class InstallerPane;

// Who is told that an alert is up and gone. Main thread.
@protocol AlertWatcher
- (void)alertIsUp:(NSAlert*)alert;
- (void)alertIsGone:(NSAlert*)alert;
@end

namespace tavenhall::test {

using Report = std::function<void(const Event& event)>;

// Reports, as events, what the page makes of real controls, alerts and sheets, and which power assertions it
// takes. Texts are reported as the control has them afterwards. The page's threads report too, so `report` must
// bear several at a time. Once a process, before any thread.
void reportAppKitEvents(Report report, id<AlertWatcher> watcher);

// Whose controls are looked at, once the layout is loaded.
void watchPane(InstallerPane* pane);

}  // namespace tavenhall::test

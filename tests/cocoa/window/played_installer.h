#pragma once

#include "tests/cocoa/window/appkit_events.h"
#include "tests/cocoa/window/request_queue.h"

#import "platform/cocoa/gnustep/installer_plugins.h"

// The installer around the page, in a window: does what the lines of standard input say and tells what happens,
// as `tavinstall run --ui json` does. Alerts and
// sheets are answered by a click on their button; while a sheet is up, commands are done all the same. Main
// thread.
@interface PlayedInstaller : NSObject <SectionInstaller, AlertWatcher> {
 @private
  tavenhall::test::RequestQueue* requests_;
  tavenhall::test::Report report_;
  InstallerSection* section_;
  InstallerPane* pane_;
  NSWindow* window_;
  NSAlert* alert_;         // the one that is up
  NSAlert* clickedAlert_;  // the same, once its button was clicked on
  int installs_;           // that run
}
- (id)initWithRequests:(tavenhall::test::RequestQueue&)requests report:(tavenhall::test::Report)report;

// Shows the bundle's page in a window; NO where it cannot be loaded.
- (BOOL)showPageOfBundle:(NSString*)path;

// Reads commands until there are none any more; then ends the process.
- (void)begin;

- (void)installHasStarted;
- (void)installHasEnded;
@end

#pragma once

#import "platform/cocoa/gnustep/installer_plugins.h"

namespace tavenhall {
class DesktopRun;
}
@class InstallerWindow;

typedef NS_ENUM(NSInteger, InstallerStage) { StageIntroduction, StageSection, StageSummary };

// The installer around the section: shows its own first and last page, does the pre-install step, enters and
// leaves the section's panes. The application's delegate. Main thread, except for calls of the panes.
@interface Installer : NSObject <NSApplicationDelegate, NSWindowDelegate, SectionInstaller> {
 @private
  tavenhall::DesktopRun* run_;
  InstallerWindow* window_;
  InstallerSection* section_;
  NSProgressIndicator* bar_;
  NSTimer* progressTimer_;
  InstallerStage stage_;
}
// The run lives as long as the process.
- (id)initWithRun:(tavenhall::DesktopRun*)run;

- (void)goBack:(id)sender;
- (void)goOn:(id)sender;
@end

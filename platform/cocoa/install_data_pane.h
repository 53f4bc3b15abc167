#pragma once

#import <InstallerPlugins/InstallerPlugins.h>

// The page as the installer and the layout see it. All that it does, the portable page inside does. The
// installer and the layout call on the main thread.
@class InstallDataPane;

// What an installer may want to know of the page's discs and copies. On the page's threads, which wait for it;
// the paths are valid only during the call.
@protocol InstallDataPaneObserver
// The page turns to a volume: `number` is from 0; `count` may be unknown before the first disc was read.
- (void)pane:(InstallDataPane*)pane didBeginDisc:(const char*)root number:(int)number of:(int)count;
// The page looks for the disc after so many seconds; then it ejects it.
- (void)pane:(InstallDataPane*)pane willLookForDiscAfter:(unsigned)seconds;
- (void)paneWillEjectDisc:(InstallDataPane*)pane;
// `volume` as below.
- (void)pane:(InstallDataPane*)pane willCopyVolume:(int)volume of:(int)count;
// A copy has ended; its volume is still mounted. `destination` is null where there is none; `volume` is from 1,
// and 0 for a folder beside the package; `isCopied` is the page's own result.
- (void)pane:(InstallDataPane*)pane
     didCopy:(const char*)source
          to:(const char*)destination
      volume:(int)volume
          ok:(BOOL)isCopied;
// The page reports a failure to the user. `source` is the file that it copies; null while it copies none.
- (void)pane:(InstallDataPane*)pane didFailAt:(const char*)source;
@end

@interface InstallDataPane : InstallerPane {
 @private
  IBOutlet NSTextField* instructions;  // the large text; its window carries the sheets
  IBOutlet NSTextField* status;        // one line under the bar
  IBOutlet NSButton* uiButton;         // nothing reads or writes it
  IBOutlet NSProgressIndicator* progressIndicator;
  struct InstallDataPaneParts* parts_;
  id<InstallDataPaneObserver> observer_;  // not retained
}
- (NSString*)title;
- (void)didEnterPane:(InstallerSectionDirection)direction;
- (BOOL)shouldExitPane:(InstallerSectionDirection)direction;

- (BOOL)_entriesAreValid;
- (void)_updateNextButtonState;

// The text for the key from the plug-in's own string table; the key where the table has none. Any thread.
- (NSString*)_localizedStringForKey:(NSString*)key;
+ (NSString*)localizedStringForKey:(NSString*)key;

- (void)controlTextDidChange:(NSNotification*)notification;
- (IBAction)updateText:(id)sender;  // does nothing

// The bytes that were written since the page was entered. When InstallerPane::snapshot() may be called.
- (long long)bytesWritten;

// Set it before the page is entered; it outlives the page.
- (void)setObserver:(id<InstallDataPaneObserver>)observer;

// For the page's host.
- (void)didBeginDisc:(const char*)root;
- (void)willLookForDiscAfter:(unsigned)seconds;
- (void)willEjectDisc;
- (void)willCopy:(const char*)source;
- (void)didCopy:(const char*)source to:(const char*)destination ok:(BOOL)isCopied;
- (void)didFailWhileCopying:(BOOL)isCopying;

// What the page's threads run.
- (void)doEntireInstall;
- (void)copySingleVolume;
@end

#pragma once

#import <InstallerPlugins/InstallerPlugins.h>

// The page as the installer and the layout see it. All that it does, the portable page inside does. The
// installer and the layout call on the main thread.
@interface InstallDataPane : InstallerPane {
 @private
  IBOutlet NSTextField* instructions;  // the large text; its window carries the sheets
  IBOutlet NSTextField* status;        // one line under the bar
  IBOutlet NSButton* uiButton;         // nothing reads or writes it
  IBOutlet NSProgressIndicator* progressIndicator;
  struct InstallDataPaneParts* parts_;
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

// What the page's threads run.
- (void)doEntireInstall;
- (void)copySingleVolume;
@end

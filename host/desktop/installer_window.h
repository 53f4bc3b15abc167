#pragma once

#import <AppKit/AppKit.h>

// The installer's window: the steps at the left, the page under its title, and the two buttons below. Main
// thread.
@class StepList;

@interface InstallerWindow : NSWindow {
 @private
  StepList* steps_;
  NSTextField* heading_;
  NSView* page_;
  NSTextField* phase_;
  NSTextField* progress_;
  NSButton* backButton_;
  NSButton* continueButton_;
}
// The buttons send goBack: and goOn: to the target, which is not retained.
- (id)initWithTitle:(NSString*)title target:(id)target;

- (void)setSteps:(NSArray*)titles current:(NSUInteger)current;
- (void)setHeading:(NSString*)heading color:(NSColor*)color;

// The frame in which a page's content is centred.
- (NSRect)pageFrame;
- (void)setPage:(NSView*)content;

// Sizes the button to fit its title.
- (void)setContinueTitle:(NSString*)title;

// The two lines below the page: what the installation does, and how far it is.
- (void)setPhase:(NSString*)text;
- (void)setProgress:(NSString*)text;

- (NSButton*)backButton;
- (NSButton*)continueButton;
@end

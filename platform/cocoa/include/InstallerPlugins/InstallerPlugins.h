#pragma once

#import <AppKit/AppKit.h>

// The public interface of the framework whose classes an installer's plug-in is made of, for systems without
// it.

@class InstallerPane;

typedef NS_ENUM(NSInteger, InstallerSectionDirection) {
  InstallerDirectionForward = 0,
  InstallerDirectionBackward,
  InstallerDirectionUndefined
};

// A step of the installer: the principal class of a plug-in, and the owner of its layout. Main thread.
@interface InstallerSection : NSObject {
 @private
  IBOutlet InstallerPane* firstPane;
  NSBundle* bundle_;
  id installer_;
  InstallerPane* activePane_;
}
- (void)willLoadMainNib;
- (void)didLoadMainNib;
- (NSBundle*)bundle;
- (BOOL)shouldLoad;
- (NSString*)title;
- (InstallerPane*)firstPane;
- (void)setFirstPane:(InstallerPane*)pane;
- (InstallerPane*)activePane;
@end

// A page. Main thread.
@interface InstallerPane : NSObject {
 @private
  IBOutlet NSView* contentView;
  IBOutlet NSView* initialKeyView;
  IBOutlet NSView* firstKeyView;
  IBOutlet NSView* lastKeyView;
  IBOutlet InstallerPane* nextPane;
  IBOutlet InstallerSection* parentSection;
  BOOL nextEnabled_;
  BOOL previousEnabled_;
}
- (id)initWithSection:(InstallerSection*)parent;
- (InstallerSection*)section;
- (NSString*)title;
- (NSView*)contentView;
- (void)setContentView:(NSView*)view;
- (NSView*)initialKeyView;
- (NSView*)firstKeyView;
- (NSView*)lastKeyView;
- (InstallerPane*)nextPane;
- (void)setNextPane:(InstallerPane*)pane;

- (void)willEnterPane:(InstallerSectionDirection)direction;
- (void)didEnterPane:(InstallerSectionDirection)direction;
- (BOOL)shouldExitPane:(InstallerSectionDirection)direction;
- (void)willExitPane:(InstallerSectionDirection)direction;
- (void)didExitPane:(InstallerSectionDirection)direction;

- (void)setNextEnabled:(BOOL)flag;
- (BOOL)nextEnabled;
- (void)setPreviousEnabled:(BOOL)flag;
- (BOOL)previousEnabled;
- (BOOL)gotoNextPane;
- (BOOL)gotoPreviousPane;
@end

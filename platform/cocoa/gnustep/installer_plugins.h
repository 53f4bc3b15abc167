#pragma once

#import <InstallerPlugins/InstallerPlugins.h>

// What a program that plays the installer needs of a section besides the public interface. Main thread.

@protocol SectionInstaller
- (void)pane:(InstallerPane*)pane setNextEnabled:(BOOL)flag;
- (void)pane:(InstallerPane*)pane setPreviousEnabled:(BOOL)flag;

// A pane asks to be left; whether it was.
- (BOOL)leavePane:(InstallerPane*)pane direction:(InstallerSectionDirection)direction;
@end

@interface InstallerSection (PlayedInstaller)
// The installer is not retained.
- (id)initWithBundle:(NSBundle*)bundle installer:(id<SectionInstaller>)installer;

// Loads the bundle's program and, owned by a new section, its layout. Nil where either cannot be had; why is
// logged.
+ (InstallerSection*)sectionOfBundle:(NSBundle*)bundle installer:(id<SectionInstaller>)installer;

- (id<SectionInstaller>)installer;
- (void)setActivePane:(InstallerPane*)pane;
@end

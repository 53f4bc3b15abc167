#import "platform/cocoa/gnustep/installer_plugins.h"

@interface InstallerPane (OfSection)
- (void)setSection:(InstallerSection*)section;
@end

@implementation InstallerSection

- (void)dealloc {
  [bundle_ release];
  [firstPane release];
  [super dealloc];
}

- (void)willLoadMainNib {
}

- (void)didLoadMainNib {
}

- (NSBundle*)bundle {
  return bundle_;
}

- (BOOL)shouldLoad {
  return YES;
}

- (NSString*)title {
  NSString* key = @"InstallerSectionTitle";
  return [bundle_ localizedStringForKey:key value:[bundle_ objectForInfoDictionaryKey:key] table:@"InfoPlist"];
}

- (InstallerPane*)firstPane {
  return firstPane;
}

- (void)setFirstPane:(InstallerPane*)pane {
  [pane retain];
  [firstPane release];
  firstPane = pane;
  [pane setSection:self];
}

- (InstallerPane*)activePane {
  return activePane_;
}

@end

@implementation InstallerSection (PlayedInstaller)

- (id)initWithBundle:(NSBundle*)bundle installer:(id<SectionInstaller>)installer {
  self = [super init];
  bundle_ = [bundle retain];
  installer_ = installer;
  return self;
}

+ (InstallerSection*)sectionOfBundle:(NSBundle*)bundle installer:(id<SectionInstaller>)installer {
  if (![bundle load]) {
    NSLog(@"%@ could not be loaded", [bundle bundlePath]);
    return nil;
  }
  const Class principalClass = [bundle principalClass];
  if (![principalClass isSubclassOfClass:[InstallerSection class]]) {
    NSLog(@"%@ has no section for its principal class", [bundle bundlePath]);
    return nil;
  }
  InstallerSection* section = [[[principalClass alloc] initWithBundle:bundle installer:installer] autorelease];

  NSString* layout = [bundle objectForInfoDictionaryKey:@"NSMainNibFile"];
  [section willLoadMainNib];
  if (![bundle loadNibFile:layout
          externalNameTable:[NSDictionary dictionaryWithObject:section forKey:NSNibOwner]
                   withZone:NULL] ||
      [section firstPane] == nil) {
    NSLog(@"%@ has no layout %@ with a first pane", [bundle bundlePath], layout);
    return nil;
  }
  [section didLoadMainNib];
  return section;
}

- (id<SectionInstaller>)installer {
  return installer_;
}

- (void)setActivePane:(InstallerPane*)pane {
  activePane_ = pane;
}

@end

@implementation InstallerPane

- (id)initWithSection:(InstallerSection*)parent {
  self = [super init];
  parentSection = parent;
  return self;
}

- (id)init {
  return [self initWithSection:nil];
}

- (void)dealloc {
  [contentView release];
  [nextPane release];
  [super dealloc];
}

- (InstallerSection*)section {
  return parentSection;
}

- (void)setSection:(InstallerSection*)section {
  parentSection = section;
  [nextPane setSection:section];
}

- (NSString*)title {
  return nil;
}

- (NSView*)contentView {
  return contentView;
}

- (void)setContentView:(NSView*)view {
  [view retain];
  [contentView release];
  contentView = view;
}

- (NSView*)initialKeyView {
  return initialKeyView;
}

- (NSView*)firstKeyView {
  return firstKeyView;
}

- (NSView*)lastKeyView {
  return lastKeyView;
}

- (InstallerPane*)nextPane {
  return nextPane;
}

- (void)setNextPane:(InstallerPane*)pane {
  [pane retain];
  [nextPane release];
  nextPane = pane;
  [pane setSection:parentSection];
}

- (void)willEnterPane:(InstallerSectionDirection)direction {
}

- (void)didEnterPane:(InstallerSectionDirection)direction {
}

- (BOOL)shouldExitPane:(InstallerSectionDirection)direction {
  return YES;
}

- (void)willExitPane:(InstallerSectionDirection)direction {
}

- (void)didExitPane:(InstallerSectionDirection)direction {
}

- (void)setNextEnabled:(BOOL)flag {
  nextEnabled_ = flag;
  [[parentSection installer] pane:self setNextEnabled:flag];
}

- (BOOL)nextEnabled {
  return nextEnabled_;
}

- (void)setPreviousEnabled:(BOOL)flag {
  previousEnabled_ = flag;
  [[parentSection installer] pane:self setPreviousEnabled:flag];
}

- (BOOL)previousEnabled {
  return previousEnabled_;
}

- (BOOL)gotoNextPane {
  return [[parentSection installer] leavePane:self direction:InstallerDirectionForward];
}

- (BOOL)gotoPreviousPane {
  return [[parentSection installer] leavePane:self direction:InstallerDirectionBackward];
}

@end

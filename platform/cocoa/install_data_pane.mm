#import "platform/cocoa/install_data_pane.h"

#include "platform/cocoa/adapter.h"
#include "platform/cocoa/pane_host.h"
#include "platform/installer_pane.h"

#include <memory>
#include <string>

// Linked into the bundle; made for every host.
extern "C" tavenhall::InstallerPane* createInstallDataPane(tavenhall::InstallerHost* host,
                                                           std::uint32_t interfaceVersion) noexcept;

struct InstallDataPaneParts {
  explicit InstallDataPaneParts(InstallDataPane* pane, const tavenhall::PaneHost::Outlets& outlets)
      : host(pane, outlets), page(createInstallDataPane(&host, tavenhall::kInstallerInterfaceVersion)) {}

  tavenhall::PaneHost host;
  std::unique_ptr<tavenhall::InstallerPane> page;
};

@implementation InstallDataPane

- (id)initWithSection:(InstallerSection*)parent {
  self = [super initWithSection:parent];
  [self makeParts];
  return self;
}

- (id)init {
  self = [super init];
  [self makeParts];
  return self;
}

// Either initialiser may be built on the other.
- (void)makeParts {
  if (self != nil && parts_ == nullptr) {
    parts_ = new InstallDataPaneParts(self, {instructions, status, progressIndicator});
  }
}

// A thread of the page keeps the pane, so none runs now.
- (void)dealloc {
  delete parts_;
  [super dealloc];
}

- (NSString*)title {
  return tavenhall::stringOfBytes(parts_->page->title().c_str());
}

- (void)didEnterPane:(InstallerSectionDirection)direction {
  parts_->page->didEnterPane(direction);
}

- (BOOL)shouldExitPane:(InstallerSectionDirection)direction {
  return parts_->page->shouldExitPane(direction);
}

- (BOOL)_entriesAreValid {
  return parts_->page->isReadyToProceed() != 0;
}

// What the page does when a text was edited is this and nothing else.
- (void)_updateNextButtonState {
  parts_->page->controlTextDidChange();
}

+ (NSString*)localizedStringForKey:(NSString*)key {
  return [[NSBundle bundleForClass:self] localizedStringForKey:key value:@"" table:nil];
}

- (NSString*)_localizedStringForKey:(NSString*)key {
  return [[self class] localizedStringForKey:key];
}

- (void)controlTextDidChange:(NSNotification*)notification {
  [self _updateNextButtonState];
}

- (IBAction)updateText:(id)sender {
  parts_->page->updateText();
}

- (long long)bytesWritten {
  return parts_->page->snapshot().bytesWritten;
}

- (void)setObserver:(id<InstallDataPaneObserver>)observer {
  observer_ = observer;
}

- (void)didBeginDisc:(const char*)root {
  const tavenhall::PaneSnapshot state = parts_->page->snapshot();
  [observer_ pane:self didBeginDisc:root number:state.currentVolumeNumber of:state.volumeCount];
}

- (void)willLookForDiscAfter:(unsigned)seconds {
  [observer_ pane:self willLookForDiscAfter:seconds];
}

- (void)willEjectDisc {
  [observer_ paneWillEjectDisc:self];
}

- (void)willCopy:(const char*)source {
  const tavenhall::PaneSnapshot state = parts_->page->snapshot();
  [observer_ pane:self willCopyVolume:tavenhall::volumeOf(source, state) of:state.volumeCount];
}

- (void)didCopy:(const char*)source to:(const char*)destination ok:(BOOL)isCopied {
  const int volume = tavenhall::volumeOf(source, parts_->page->snapshot());
  [observer_ pane:self didCopy:source to:destination volume:volume ok:isCopied];
}

- (void)didFailWhileCopying:(BOOL)isCopying {
  const std::string file = isCopying ? parts_->page->snapshot().currentFile : std::string();
  [observer_ pane:self didFailAt:isCopying ? file.c_str() : nullptr];
}

- (void)doEntireInstall {
  @autoreleasepool {
    parts_->host.runThread("doEntireInstall");
  }
}

- (void)copySingleVolume {
  @autoreleasepool {
    parts_->host.runThread("copySingleVolume");
  }
}

@end

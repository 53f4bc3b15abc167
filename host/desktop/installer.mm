#import "host/desktop/installer.h"

#include "host/base/text.h"
#include "host/desktop/desktop_run.h"
#import "host/desktop/installer_window.h"
#import "host/desktop/look.h"
#import "host/desktop/views.h"

#include <cstdio>
#include <unistd.h>

namespace {

using tavenhall::_;
using tavenhall::DesktopText;
using tavenhall::ExitStatus;

// No destructor may run while a page thread runs.
[[noreturn]] void endProcess(ExitStatus status) {
  std::fflush(nullptr);
  _exit(static_cast<int>(status));
}

NSProgressIndicator* barIn(NSView* view) {
  if ([view isKindOfClass:[NSProgressIndicator class]]) {
    return (NSProgressIndicator*)view;
  }
  for (NSView* part in [view subviews]) {
    if (NSProgressIndicator* bar = barIn(part)) {
      return bar;
    }
  }
  return nil;
}

// The first button's answer is 1000.
BOOL isFirstButton(const char* message, const std::string& text, const char* first, const char* second) {
  NSAlert* alert = [[[NSAlert alloc] init] autorelease];
  [alert setMessageText:nsString(message)];
  [alert setInformativeText:nsString(text)];
  [alert addButtonWithTitle:nsString(first)];
  if (second != nullptr) {
    [alert addButtonWithTitle:nsString(second)];
  }
  return [alert runModal] == NSAlertFirstButtonReturn;
}

}  // namespace

// The plug-in pane's methods beyond the public interface.
@protocol CopyingPane
- (long long)bytesWritten;
- (void)setObserver:(id)observer;
@end

@implementation Installer

- (id)initWithRun:(tavenhall::DesktopRun*)run {
  self = [super init];
  run_ = run;
  return self;
}

// Not sooner: during its start GNUstep's application talks to other programs, which events must not interrupt.
- (void)applicationDidFinishLaunching:(NSNotification*)notification {
  NSBundle* bundle = [NSBundle bundleWithPath:nsString(run_->bundlePath())];
  section_ = [[InstallerSection sectionOfBundle:bundle installer:self] retain];
  if (section_ == nil) {
    endProcess(ExitStatus::badUsage);  // why is logged
  }
  const std::string title = tavenhall::format(_("Install {0}"), {run_->productName()});
  window_ = [[InstallerWindow alloc] initWithTitle:nsString(title) target:self];
  [window_ setDelegate:self];
  [self showIntroduction];
  [window_ makeKeyAndOrderFront:nil];
  [NSApp activateIgnoringOtherApps:YES];
}

// ---- The pages ----

- (void)showStep:(NSUInteger)current {
  NSArray* titles = [NSArray arrayWithObjects:nsString(_("Introduction")), nsString(_("Installation")),
                                              [section_ title], nsString(_("Summary")), nil];
  [window_ setSteps:titles current:current];
}

- (void)showText:(const DesktopText&)text {
  const unsigned color = text.heading.style == tavenhall::Style::good  ? palette::kGood
                         : text.heading.style == tavenhall::Style::bad ? palette::kBad
                                                                       : palette::kText;
  [window_ setHeading:nsString(text.heading.text) color:paletteColor(color)];
  [window_ setPage:textPage(text.lines, [window_ pageFrame])];
}

- (void)showIntroduction {
  stage_ = StageIntroduction;
  [self showStep:0];
  [self showText:run_->introduction()];
  [[window_ backButton] setEnabled:NO];
  [[window_ continueButton] setEnabled:YES];
}

- (void)showSummary {
  stage_ = StageSummary;
  run_->end();
  [self showStep:3];
  [self showText:run_->summary()];
  [window_ setPhase:@""];
  [window_ setProgress:@""];
  [[window_ backButton] setEnabled:NO];
  [window_ setContinueTitle:nsString(_("Close"))];
  [[window_ continueButton] setEnabled:YES];
}

- (void)prepareAndEnter {
  const std::string problem = run_->prepare();
  if (!problem.empty()) {
    isFirstButton(_("The installation cannot start."), problem, _("OK"), nullptr);
    return;
  }
  stage_ = StageSection;
  [self showStep:2];
  [self enterPane:[section_ firstPane] direction:InstallerDirectionForward];
}

- (void)enterPane:(InstallerPane*)pane direction:(InstallerSectionDirection)direction {
  [section_ setActivePane:pane];
  [window_ setHeading:[pane title] color:paletteColor(palette::kText)];
  [window_ setPage:[pane contentView]];
  [[window_ backButton] setEnabled:YES];
  [[window_ continueButton] setEnabled:YES];
  [self watchBarIn:[pane contentView]];
  run_->begin();
  if ([pane respondsToSelector:@selector(setObserver:)]) {
    [(id)pane setObserver:self];
  }
  [pane willEnterPane:direction];
  [pane didEnterPane:direction];
}

// ---- The bar ----

- (void)watchBarIn:(NSView*)content {
  if (bar_ == nil) {
    bar_ = barIn(content);
    for (NSString *key in [NSArray arrayWithObjects:@"minValue", @"maxValue", @"doubleValue", nil]) {
      [bar_ addObserver:self forKeyPath:key options:0 context:NULL];
    }
    progressTimer_ = [NSTimer scheduledTimerWithTimeInterval:0.25
                                                      target:self
                                                    selector:@selector(showProgress:)
                                                    userInfo:nil
                                                     repeats:YES];
    [[NSRunLoop currentRunLoop] addTimer:progressTimer_ forMode:NSModalPanelRunLoopMode];
  }
}

// On the thread that changed the bar.
- (void)observeValueForKeyPath:(NSString*)key
                      ofObject:(id)bar
                        change:(NSDictionary*)change
                       context:(void*)context {
  id pane = [section_ activePane];
  const BOOL countsBytes = [pane respondsToSelector:@selector(bytesWritten)];
  run_->setProgress({[bar minValue], [bar maxValue], [bar doubleValue], countsBytes ? [pane bytesWritten] : 0});
}

- (void)showProgress:(NSTimer*)timer {
  if (stage_ == StageSection) {
    run_->setAsking([NSApp modalWindow] != nil);
    const BOOL isRunning = ![[section_ activePane] nextEnabled];
    [window_ setPhase:isRunning ? nsString(run_->phaseText()) : @""];
    [window_ setProgress:nsString(run_->progressText())];
    [[window_ contentView] displayIfNeeded];  // while an alert is up, nothing else draws this window
  }
}

// ---- What the pane reports, on its own threads ----

- (void)pane:(id)pane didBeginDisc:(const char*)root number:(int)number of:(int)count {
  run_->beginDisc(root, number, count);
}

- (void)pane:(id)pane willLookForDiscAfter:(unsigned)seconds {
  run_->awaitDisc(seconds);
}

- (void)paneWillEjectDisc:(id)pane {
  run_->beginEject();
}

- (void)pane:(id)pane willCopyVolume:(int)volume of:(int)count {
  run_->beginCopy(volume, count);
}

- (void)pane:(id)pane
     didCopy:(const char*)source
          to:(const char*)destination
      volume:(int)volume
          ok:(BOOL)isCopied {
  run_->auditCopy({source, destination != nullptr ? destination : "", volume}, isCopied);
}

- (void)pane:(id)pane didFailAt:(const char*)source {
  run_->addFailure(source != nullptr ? source : "");
}

// ---- Requests of the section ----

// The page changes its buttons from its own threads too; AppKit's are changed on the main thread alone.

- (void)pane:(InstallerPane*)pane setNextEnabled:(BOOL)flag {
  [self performSelectorOnMainThread:flag ? @selector(enableContinueFor:) : @selector(disableContinueFor:)
                         withObject:pane
                      waitUntilDone:YES];
}

- (void)pane:(InstallerPane*)pane setPreviousEnabled:(BOOL)flag {
  [self performSelectorOnMainThread:flag ? @selector(enableGoBackFor:) : @selector(disableGoBackFor:)
                         withObject:pane
                      waitUntilDone:YES];
}

- (void)enableContinueFor:(InstallerPane*)pane {
  [self enable:[window_ continueButton] to:YES for:pane];
}

- (void)disableContinueFor:(InstallerPane*)pane {
  [self enable:[window_ continueButton] to:NO for:pane];
}

- (void)enableGoBackFor:(InstallerPane*)pane {
  [self enable:[window_ backButton] to:YES for:pane];
}

- (void)disableGoBackFor:(InstallerPane*)pane {
  [self enable:[window_ backButton] to:NO for:pane];
}

- (void)enable:(NSButton*)button to:(BOOL)flag for:(InstallerPane*)pane {
  if (pane == [section_ activePane] && stage_ == StageSection) {
    [button setEnabled:flag];
  }
}

- (BOOL)leavePane:(InstallerPane*)pane direction:(InstallerSectionDirection)direction {
  if (![pane shouldExitPane:direction]) {
    return NO;
  }
  [pane willExitPane:direction];
  if (direction == InstallerDirectionBackward) {
    [self showIntroduction];
  } else if (InstallerPane* next = [pane nextPane]) {
    [self enterPane:next direction:direction];
  } else {
    [self showSummary];
  }
  [pane didExitPane:direction];
  return YES;
}

// ---- Actions of the user ----

- (void)goOn:(id)sender {
  switch (stage_) {
    case StageIntroduction: [self prepareAndEnter]; break;
    case StageSection: [self leavePane:[section_ activePane] direction:InstallerDirectionForward]; break;
    case StageSummary: endProcess(run_->exitStatus());
  }
}

- (void)goBack:(id)sender {
  [self leavePane:[section_ activePane] direction:InstallerDirectionBackward];
}

- (BOOL)windowShouldClose:(id)window {
  if (stage_ == StageSummary) {
    endProcess(run_->exitStatus());
  }
  if (stage_ == StageSection &&
      isFirstButton(
          _("Stop the installation?"),
          _("The files copied so far are kept. Run the installer again to complete the installation."),
          _("Go On"), _("Stop"))) {
    return NO;
  }
  run_->stop();
  endProcess(ExitStatus::stopped);
}

@end

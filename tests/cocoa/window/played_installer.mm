#import "tests/cocoa/window/played_installer.h"

#include "tests/cocoa/method_exchange.h"
#include "tests/cocoa/window/buttons.h"

#include <cstdlib>
#include <poll.h>
#include <unistd.h>

namespace {

using tavenhall::Command;
using tavenhall::test::buttonWithTitle;
using tavenhall::test::clickOn;
using tavenhall::test::everyMode;

PlayedInstaller* theInstaller = nil;
IMP theInstall = nullptr;

void countedInstall(id pane, SEL selector) {
  reinterpret_cast<void (*)(id, SEL)>(theInstall)(pane, selector);
  [theInstaller performSelectorOnMainThread:@selector(installHasEnded)
                                 withObject:nil
                              waitUntilDone:NO
                                      modes:everyMode()];
}

}  // namespace

@interface NSThread (CountedInstalls)
- (id)counted_initWithTarget:(id)target selector:(SEL)selector object:(id)argument;
@end

@implementation NSThread (CountedInstalls)
- (id)counted_initWithTarget:(id)target selector:(SEL)selector object:(id)argument {
  if (sel_isEqual(selector, @selector(doEntireInstall))) {
    [theInstaller installHasStarted];
  }
  return [self counted_initWithTarget:target selector:selector object:argument];
}
@end

@implementation PlayedInstaller

- (id)initWithRequests:(tavenhall::test::RequestQueue&)requests report:(tavenhall::test::Report)report {
  self = [super init];
  requests_ = &requests;
  report_ = report;
  theInstaller = self;
  tavenhall::test::exchangeMethods([NSThread class], @selector(initWithTarget:selector:object:),
                                   @selector(counted_initWithTarget:selector:object:));
  tavenhall::test::reportAppKitEvents(report, self);
  return self;
}

- (BOOL)showPageOfBundle:(NSString*)path {
  section_ = [[InstallerSection sectionOfBundle:[NSBundle bundleWithPath:path] installer:self] retain];
  pane_ = [section_ firstPane];
  if (pane_ == nil) {
    return NO;
  }
  theInstall = class_replaceMethod([pane_ class], @selector(doEntireInstall),
                                   reinterpret_cast<IMP>(countedInstall), "v@:");
  tavenhall::test::watchPane(pane_);

  NSView* page = [pane_ contentView];
  window_ = [[NSWindow alloc] initWithContentRect:[page frame]
                                        styleMask:NSTitledWindowMask
                                          backing:NSBackingStoreBuffered
                                            defer:NO];
  [[window_ contentView] addSubview:page];
  [window_ setTitle:@"Install"];
  [window_ makeKeyAndOrderFront:nil];
  return YES;
}

// ---- Input ----

- (void)begin {
  [NSThread detachNewThreadSelector:@selector(waitForInput) toTarget:self withObject:nil];
}

- (void)waitForInput {
  @autoreleasepool {
    while (!requests_->isClosed()) {
      pollfd input{STDIN_FILENO, POLLIN, 0};
      ::poll(&input, 1, -1);
      [self performSelectorOnMainThread:@selector(readInput)
                             withObject:nil
                          waitUntilDone:YES
                                  modes:everyMode()];
    }
  }
}

- (void)readInput {
  requests_->read();
  [self serveSoon];
}

// From the run loop, with nothing that waits for it: what it does may run the loop itself, and more may happen.
// By another thread, since a timer does not make AppKit look for the events that a click posts.
- (void)serveSoon {
  [NSThread detachNewThreadSelector:@selector(waitAndServe) toTarget:self withObject:nil];
}

- (void)waitAndServe {
  @autoreleasepool {
    [NSThread sleepForTimeInterval:0.02];
    [self performSelectorOnMainThread:@selector(serve) withObject:nil waitUntilDone:NO modes:everyMode()];
  }
}

- (void)end {
  fflush(nullptr);
  _exit(0);
}

// ---- Commands ----

- (void)serve {
  if (alert_ != nil || [NSApp modalWindow] != nil) {
    [self answer];
  }
  if (alert_ != nil) {
    return;
  }
  while (auto command = requests_->nextCommand()) {
    const bool needsIdlePage = *command == Command::enter || *command == Command::wait;
    if (alert_ != nil || (needsIdlePage && installs_ > 0)) {
      return;
    }
    requests_->dropCommand();
    [self perform:*command];
  }
  if (requests_->isClosed()) {
    [self end];
  }
}

- (void)perform:(Command)command {
  switch (command) {
    case Command::title: report_(tavenhall::event::Title{[[pane_ title] UTF8String]}); break;
    case Command::enter:
      [section_ setActivePane:pane_];
      [pane_ willEnterPane:InstallerDirectionForward];
      [pane_ didEnterPane:InstallerDirectionForward];
      report_(tavenhall::event::Entered{});
      break;
    case Command::wait: report_(tavenhall::event::Idle{}); break;
    case Command::forward: [self leavePane:pane_ direction:InstallerDirectionForward]; break;
    case Command::back: [self leavePane:pane_ direction:InstallerDirectionBackward]; break;
    case Command::quit:
    case Command::stop: [self end]; break;
    case Command::noAnswers: break;  // whoever plays the Installer answers
  }
}

- (void)installHasStarted {
  ++installs_;
}

- (void)installHasEnded {
  --installs_;
  [self serve];
}

// ---- What the pane asks for ----

- (void)pane:(InstallerPane*)pane setNextEnabled:(BOOL)flag {
  report_(tavenhall::event::NextEnabled{flag == YES});
}

- (void)pane:(InstallerPane*)pane setPreviousEnabled:(BOOL)flag {
  report_(tavenhall::event::PreviousEnabled{flag == YES});
}

- (BOOL)leavePane:(InstallerPane*)pane direction:(InstallerSectionDirection)direction {
  const BOOL isAllowed = [pane shouldExitPane:direction];
  report_(tavenhall::event::Exit{direction, isAllowed == YES});
  return isAllowed;
}

// ---- Alerts and sheets ----

// An answer may have come before its alert; it is looked for once the alert's run loop runs.
- (void)alertIsUp:(NSAlert*)alert {
  alert_ = alert;
  [self serveSoon];
}

- (void)alertIsGone:(NSAlert*)alert {
  alert_ = nil;
  clickedAlert_ = nil;
}

- (void)answer {
  if (alert_ != nil && alert_ == clickedAlert_) {
    return;  // the click is on its way
  }
  if (![[[NSRunLoop currentRunLoop] currentMode] isEqualToString:NSModalPanelRunLoopMode]) {
    [self serveSoon];  // it is being put up, and would not take a click yet
    return;
  }
  const auto answer = requests_->takeAnswer();
  if (!answer) {
    if (alert_ != nil && requests_->isClosed()) {
      NSLog(@"an alert waits for an answer, and none can come");
      _exit(3);
    }
    return;
  }
  // A sheet, which holds GNUstep's run loop as an alert does, has one button.
  NSString* title =
      alert_ == nil ? @"OK" : [[[alert_ buttons] objectAtIndex:*answer - NSAlertFirstButtonReturn] title];
  clickedAlert_ = alert_;
  clickOn(buttonWithTitle([[NSApp modalWindow] contentView], title));
}

@end

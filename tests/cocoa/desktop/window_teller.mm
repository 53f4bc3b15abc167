#include "tests/cocoa/window/buttons.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>

// Loaded into the built program beside its own libraries: writes on standard output what its windows show, a
// line for each thing that has come or changed, and clicks on the buttons whose titles it reads on standard
// input, one after the other, each as soon as it is there and takes clicks. "(cut)" stands behind what has no
// room.
namespace {

using tavenhall::test::buttonWithTitle;
using tavenhall::test::clickOn;
using tavenhall::test::everyMode;

std::FILE* theInput = nullptr;

// The program closes its own input, and the commands that it runs need none of this.
__attribute__((constructor)) void takeInput() {
  theInput = fdopen(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 10), "r");
  unsetenv("LD_PRELOAD");
}

BOOL hasRoom(NSControl* control) {
  const NSRect bounds = [control bounds];
  if (![[control cell] wraps]) {
    return std::ceil([[control cell] cellSize].width) <= bounds.size.width;
  }
  const NSRect below = NSMakeRect(0.0, 0.0, bounds.size.width, 10000.0);
  return std::ceil([[control cell] cellSizeForBounds:below].height) <= bounds.size.height;
}

void addLine(NSMutableArray* lines, NSString* kind, NSString* text) {
  if ([text length] > 0) {
    NSString* shown = [text stringByReplacingOccurrencesOfString:@"\t" withString:@" "];
    shown = [shown stringByReplacingOccurrencesOfString:@"\n" withString:@" "];
    [lines addObject:[NSString stringWithFormat:@"%@: %@", kind, shown]];
  }
}

void addView(NSMutableArray* lines, NSView* view) {
  if ([view isHidden]) {
    return;
  }
  if ([view isKindOfClass:[NSButton class]]) {
    NSButton* button = (NSButton*)view;
    NSString* state = [button isEnabled] ? @"" : @", off";
    addLine(lines, @"button",
            [NSString stringWithFormat:@"%@%@%@", [button title], state, hasRoom(button) ? @"" : @" (cut)"]);
  } else if ([view isKindOfClass:[NSTextField class]]) {
    NSTextField* field = (NSTextField*)view;
    NSString* mark = [[field stringValue] length] == 0 || hasRoom(field) ? @"" : @" (cut)";
    addLine(lines, @"text", [[field stringValue] stringByAppendingString:mark]);
  } else if ([view isKindOfClass:[NSTextView class]]) {
    for (NSString* line in [[(NSTextView*)view string] componentsSeparatedByString:@"\n"]) {
      addLine(lines, @"line", line);
    }
  } else if ([NSStringFromClass([view class]) isEqualToString:@"StepList"]) {
    for (NSString* title in [view valueForKey:@"titles_"]) {
      addLine(lines, @"step", title);
    }
  }
  for (NSView* part in [view subviews]) {
    addView(lines, part);
  }
}

}  // namespace

@interface WindowTeller : NSObject {
 @private
  NSArray* told_;
  int looks_;  // since the last click; none yet: below 0
  BOOL isDone_;
}
@end

@implementation WindowTeller

+ (void)load {
  @autoreleasepool {
    [[NSNotificationCenter defaultCenter] addObserver:[[self alloc] init]
                                             selector:@selector(begin:)
                                                 name:NSApplicationDidFinishLaunchingNotification
                                               object:nil];
  }
}

- (void)begin:(NSNotification*)notification {
  NSTimer* timer = [NSTimer timerWithTimeInterval:0.1
                                           target:self
                                         selector:@selector(tell:)
                                         userInfo:nil
                                          repeats:YES];
  for (NSString* mode in everyMode()) {
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:mode];
  }
  [NSThread detachNewThreadSelector:@selector(clickOnWhatIsRead) toTarget:self withObject:nil];
}

- (void)tell:(NSTimer*)timer {
  NSMutableArray* lines = [NSMutableArray array];
  for (NSWindow* window in [NSApp windows]) {
    if ([window isVisible]) {
      addLine(lines, @"window", [window title]);
      addView(lines, [window contentView]);
    }
  }
  for (NSString* line in lines) {
    if (![told_ containsObject:line]) {
      std::printf("%s\n", [line UTF8String]);
    }
  }
  std::fflush(stdout);
  [told_ release];
  told_ = [lines retain];
}

- (void)clickOnWhatIsRead {
  std::string title;
  for (int character = std::fgetc(theInput); character != EOF; character = std::fgetc(theInput)) {
    if (character != '\n') {
      title += static_cast<char>(character);
      continue;
    }
    @autoreleasepool {
      NSString* wanted = [NSString stringWithUTF8String:title.c_str()];
      looks_ = -1;
      for (isDone_ = NO; !isDone_;) {
        [NSThread sleepForTimeInterval:0.05];
        [self performSelectorOnMainThread:@selector(clickOn:)
                               withObject:wanted
                            waitUntilDone:YES
                                    modes:everyMode()];
      }
    }
    title.clear();
  }
}

// While an alert is being put up, it would not take a click yet. A click that comes while the one before is
// still being followed is lost, so it is repeated until the button is another one, or off.
- (void)clickOn:(NSString*)title {
  NSWindow* asking = [NSApp modalWindow];
  if (asking != nil && ![[[NSRunLoop currentRunLoop] currentMode] isEqualToString:NSModalPanelRunLoopMode]) {
    return;
  }
  NSButton* wanted = nil;
  for (NSWindow* window in [NSApp windows]) {
    if ([window isVisible] && (asking == nil || window == asking)) {
      NSButton* button = buttonWithTitle([window contentView], title);
      wanted = [button isEnabled] ? button : wanted;
    }
  }
  if (wanted == nil) {
    isDone_ = looks_ >= 0;
  } else if (looks_ < 0 || ++looks_ > 10) {
    clickOn(wanted);
    looks_ = 0;
  }
}

@end

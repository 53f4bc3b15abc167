#include "platform/cocoa/dialogs.h"

#include "platform/cocoa/adapter.h"

#include <algorithm>

// A sheet until it has begun.
@interface InstallDataSheet : NSObject {
 @private
  NSString* defaultButton_;
  NSString* message_;
  NSWindow* window_;
  id delegate_;
}
- (id)initWithSheet:(const tavenhall::Sheet&)sheet window:(NSWindow*)window delegate:(id)delegate;
- (void)begin;
@end

@implementation InstallDataSheet

- (id)initWithSheet:(const tavenhall::Sheet&)sheet window:(NSWindow*)window delegate:(id)delegate {
  self = [super init];
  defaultButton_ = [tavenhall::stringOfBytes(sheet.defaultButton) retain];
  message_ = [tavenhall::stringOfBytes(sheet.message) retain];
  window_ = [window retain];
  delegate_ = [delegate retain];
  return self;
}

- (void)dealloc {
  [defaultButton_ release];
  [message_ release];
  [window_ release];
  [delegate_ release];
  [super dealloc];
}

- (void)begin {
  tavenhall::adapt("a sheet", [&] {
    NSBeginInformationalAlertSheet(nil, defaultButton_, nil, nil, window_, delegate_, NULL, NULL, NULL, @"%@",
                                   message_);
  });
}

@end

namespace tavenhall {

int runModalAlert(const Alert& alert) noexcept {
  int answer = kAlertFirstButtonReturn + std::max(static_cast<int>(alert.buttons.size()), 1) - 1;
  adapt("an alert", [&] {
    NSAlert* panel = [[NSAlert alloc] init];
    for (const char* title : alert.buttons) {
      [panel addButtonWithTitle:stringOfBytes(title)];
    }
    [panel setMessageText:stringOfBytes(alert.messageText)];
    [panel setInformativeText:stringOfBytes(alert.informativeText)];
    [panel setAlertStyle:static_cast<NSAlertStyle>(alert.style)];
    answer = static_cast<int>([panel runModal]);
    [panel release];
  });
  return answer;
}

void beginInformationalSheet(const Sheet& sheet, NSWindow* window, id delegate) noexcept {
  adapt("a sheet", [&] {
    InstallDataSheet* begun = [[InstallDataSheet alloc] initWithSheet:sheet window:window delegate:delegate];
    beginWithoutWaiting(begun, @selector(begin));
    [begun release];
  });
}

}  // namespace tavenhall

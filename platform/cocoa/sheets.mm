#include "platform/cocoa/sheets.h"

#include "platform/cocoa/adapter.h"
#include "platform/cocoa/differences.h"
#include "platform/cocoa/text.h"

// One sheet, from its making to its beginning.
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

// The message is taken for a format, and its percent signs are to be seen.
- (void)begin {
  tavenhall::adapt("a sheet", [&] {
    NSString* format = [message_ stringByReplacingOccurrencesOfString:@"%" withString:@"%%"];
    NSBeginInformationalAlertSheet(nil, defaultButton_, nil, nil, window_, delegate_, NULL, NULL, NULL, format);
  });
}

@end

namespace tavenhall {

void beginInformationalSheet(const Sheet& sheet, NSWindow* window, id delegate) noexcept {
  adapt("a sheet", [&] {
    InstallDataSheet* begun = [[InstallDataSheet alloc] initWithSheet:sheet window:window delegate:delegate];
    beginWithoutWaiting(begun, @selector(begin));
    [begun release];
  });
}

}  // namespace tavenhall

#import "platform/cocoa/differences.h"

namespace tavenhall {

void changeControl(void (*change)(void*), void* context) noexcept { change(context); }

void showWithMnemonic(NSTextField* field, NSString* text) {
  const NSRange mark = [text rangeOfString:@"&"];
  [field setTitleWithMnemonic:mark.location == NSNotFound ? text
                                                          : [text stringByReplacingCharactersInRange:mark
                                                                                          withString:@"&&"]];
  // How many of a text's "&" are taken for marks is not documented.
  if (![[field stringValue] isEqualToString:text]) {
    [field setStringValue:text];
  }
}

void beginWithoutWaiting(id sheet, SEL begin) { [sheet performSelector:begin]; }

}  // namespace tavenhall

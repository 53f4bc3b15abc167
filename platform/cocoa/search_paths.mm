#include "platform/cocoa/adapter.h"
#include "platform/system.h"

#import <Foundation/Foundation.h>

namespace tavenhall {

bool firstUserSearchPath(SearchPath which, std::string& path) noexcept {
  bool isFound = false;
  adapt("a search path", [&] {
    NSArray* folders =
        NSSearchPathForDirectoriesInDomains(static_cast<NSSearchPathDirectory>(which), NSUserDomainMask, YES);
    if ([folders count] == 0) {
      return;
    }
    NSString* folder = [folders objectAtIndex:0];
    const NSUInteger room = [folder lengthOfBytesUsingEncoding:NSUTF8StringEncoding] + 1;
    std::string bytes(room, '\0');
    isFound = [folder getCString:bytes.data() maxLength:room encoding:NSUTF8StringEncoding];
    if (isFound) {
      path = bytes.c_str();
    }
  });
  return isFound;
}

}  // namespace tavenhall

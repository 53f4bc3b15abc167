#include "platform/host_system.h"

#import <Foundation/Foundation.h>

// The folders as macOS and the program for terminals have them; GNUstep's own are others. Hidden, so that it
// stands for the framework's function in this bundle alone. Any directory but the two that the page asks for
// has none.
__attribute__((visibility("hidden"))) NSArray* NSSearchPathForDirectoriesInDomains(
    NSSearchPathDirectory directory, NSSearchPathDomainMask domains, BOOL /*expandTilde*/) {
  std::string home;
  if (domains != NSUserDomainMask || !tavenhall::homeFolder(home)) {
    return [NSArray array];
  }
  NSString* library = [[NSString stringWithUTF8String:home.c_str()] stringByAppendingString:@"/Library/"];
  switch (directory) {
    case NSCachesDirectory: return [NSArray arrayWithObject:[library stringByAppendingString:@"Caches"]];
    case NSApplicationSupportDirectory:
      return [NSArray arrayWithObject:[library stringByAppendingString:@"Application Support"]];
    default: return [NSArray array];
  }
}

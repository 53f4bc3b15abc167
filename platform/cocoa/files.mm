#include "platform/cocoa/adapter.h"
#include "platform/cocoa/text.h"
#include "platform/system.h"

#import <Foundation/Foundation.h>
#include <cerrno>
#include <cstring>

namespace tavenhall {

namespace {

// The path as the system has it; nil where it is no path.
NSString* pathOfBytes(const char* path) {
  return [[NSFileManager defaultManager] stringWithFileSystemRepresentation:path length:std::strlen(path)];
}

}  // namespace

// Whether it failed is told by the error alone, not by the result.
RemovalError removeItem(const char* path) noexcept {
  RemovalError removal{true, "", ""};
  adapt("a removal", [&] {
    NSString* item = pathOfBytes(path);
    NSError* error = [NSError errorWithDomain:NSPOSIXErrorDomain code:EILSEQ userInfo:nil];
    if (item != nil) {
      error = nil;
      [[NSFileManager defaultManager] removeItemAtPath:item error:&error];
    }
    removal.failed = error != nil;
    removal.localizedDescription = bytesOfString([error localizedDescription]);
    removal.localizedFailureReason = bytesOfString([error localizedFailureReason]);
  });
  return removal;
}

// With a file manager of its own, not the shared one.
void setPosixPermissions(const char* path, std::int16_t permissions) noexcept {
  adapt("permissions", [&] {
    NSString* item = pathOfBytes(path);
    NSFileManager* manager = [[[NSFileManager alloc] init] autorelease];
    if (item == nil || manager == nil || ![manager fileExistsAtPath:item]) {
      return;
    }
    NSMutableDictionary* attributes =
        [NSMutableDictionary dictionaryWithDictionary:[manager attributesOfItemAtPath:item error:NULL]];
    [attributes setValue:[NSNumber numberWithShort:permissions] forKey:NSFilePosixPermissions];
    [manager setAttributes:attributes ofItemAtPath:item error:NULL];
  });
}

}  // namespace tavenhall

#include "tests/cocoa/stand-ins/file_manager.h"

#include "tests/cocoa/method_exchange.h"
#include "tests/cocoa/stand-ins/recorded_calls.h"

using tavenhall::test::recordCall;

namespace {

NSError* removalsError = nil;

std::string itself(NSFileManager* manager) {
  return manager == [NSFileManager defaultManager] ? "the default manager: " : "a new manager: ";
}

}  // namespace

@implementation NSFileManager (AttributesWithError)
- (BOOL)setAttributes:(NSDictionary*)attributes ofItemAtPath:(NSString*)path error:(NSError**)error {
  char octal[16];
  std::snprintf(octal, sizeof octal, "%lo", [attributes filePosixPermissions]);
  recordCall(itself(self) + "setAttributes: " + octal + ([attributes count] > 1 ? " among others" : " alone") +
             " ofItemAtPath: " + [path UTF8String] + " error: " + (error == NULL ? "NULL" : "wanted"));
  return [self changeFileAttributes:attributes atPath:path];
}
@end

@interface NSFileManager (Recorded)
- (BOOL)recorded_removeItemAtPath:(NSString*)path error:(NSError**)error;
@end

@implementation NSFileManager (Recorded)
- (BOOL)recorded_removeItemAtPath:(NSString*)path error:(NSError**)error {
  recordCall(itself(self) + "removeItemAtPath: " + [path UTF8String] + " error: " +
             (error == NULL   ? "NULL"
              : *error == nil ? "none yet"
                              : "set"));
  if (removalsError != nil) {
    *error = removalsError;
    return NO;
  }
  return [self recorded_removeItemAtPath:path error:error];
}
@end

namespace tavenhall::test {

void recordFileManager() {
  exchangeMethods([NSFileManager class], @selector(removeItemAtPath:error:),
                  @selector(recorded_removeItemAtPath:error:));
}

void failRemovals(NSError* error) {
  [error retain];
  [removalsError release];
  removalsError = error;
}

}  // namespace tavenhall::test

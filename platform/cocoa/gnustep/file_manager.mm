#import "platform/cocoa/gnustep/file_manager.h"

@implementation NSFileManager (AttributesWithError)

- (BOOL)setAttributes:(NSDictionary*)attributes ofItemAtPath:(NSString*)path error:(NSError**)error {
  if (error != NULL) {
    *error = nil;
  }
  return [self changeFileAttributes:attributes atPath:path];
}

@end

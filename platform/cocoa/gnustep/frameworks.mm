#import "platform/cocoa/gnustep/file_manager.h"

#import <CoreServices/CoreServices.h>
#import <Foundation/Foundation.h>

// What GNUstep lacks of macOS's frameworks.

@implementation NSFileManager (AttributesWithError)

- (BOOL)setAttributes:(NSDictionary*)attributes ofItemAtPath:(NSString*)path error:(NSError**)error {
  if (error != NULL) {
    *error = nil;
  }
  return [self changeFileAttributes:attributes atPath:path];
}

@end

// Only macOS has Finder's aliases: no path becomes a reference, so the page asks no further.

const CFAllocatorRef kCFAllocatorDefault = nullptr;

OSStatus FSPathMakeRef(const UInt8* /*path*/, FSRef* /*ref*/, Boolean* /*isDirectory*/) { return fnfErr; }

OSErr FSResolveAliasFile(FSRef* /*ref*/, Boolean /*chains*/, Boolean* /*isFolder*/, Boolean* /*wasAliased*/) {
  return fnfErr;
}

CFURLRef CFURLCreateFromFSRef(CFAllocatorRef /*allocator*/, const FSRef* /*ref*/) { return nullptr; }

CFStringRef CFURLCopyFileSystemPath(CFURLRef /*url*/, CFURLPathStyle /*style*/) { return nullptr; }

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size, CFStringEncoding /*encoding*/) {
  return [(NSString*)string getCString:buffer maxLength:size encoding:NSUTF8StringEncoding];
}

void CFRelease(CFTypeRef object) { [(id)object release]; }

#import <CoreServices/CoreServices.h>
#import <Foundation/Foundation.h>

// Finder's aliases are a thing of macOS alone: no path becomes a reference, so nothing asks further.

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

#pragma once

#include <MacTypes.h>
#include <limits.h>
#include <os/availability.h>
#include <stdint.h>

// As much of Core Foundation as is used. Types and releases as in Apple's CFBase.h, CFString.h and CFURL.h.
// Every function has existed since macOS 10.0 unless it says otherwise.

typedef unsigned long CFTypeID;
typedef signed long CFIndex;
typedef UInt32 CFStringEncoding;
typedef unsigned long CFOptionFlags;

typedef const void* CFTypeRef;
typedef const struct __attribute__((objc_bridge(NSString))) __CFString* CFStringRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __attribute__((objc_bridge(NSURL))) __CFURL* CFURLRef;
typedef const struct __attribute__((objc_bridge(NSData))) __CFData* CFDataRef;
typedef const struct __attribute__((objc_bridge(NSArray))) __CFArray* CFArrayRef;
typedef struct __attribute__((objc_bridge(NSError))) __CFError* CFErrorRef;

enum : CFStringEncoding { kCFStringEncodingUTF8 = 0x08000100 };  // CFString.h

typedef enum CFURLPathStyle : CFIndex { kCFURLPOSIXPathStyle = 0 } CFURLPathStyle;  // CFURL.h

// CFURL.h, 10.6
typedef enum CFURLBookmarkResolutionOptions : CFOptionFlags {
  kCFURLBookmarkResolutionWithoutUIMask = (1UL << 8),
  kCFURLBookmarkResolutionWithoutMountingMask = (1UL << 9),
} CFURLBookmarkResolutionOptions;

#ifdef __cplusplus
extern "C" {
#endif

extern const CFAllocatorRef kCFAllocatorDefault;  // CFBase.h
void CFRelease(CFTypeRef object);                 // CFBase.h

// CFString.h
CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text, CFStringEncoding encoding);
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size, CFStringEncoding encoding);

// CFURL.h
CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style);
CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* path, CFIndex length,
                                                 Boolean isDirectory);
Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase, UInt8* buffer, CFIndex size);
CFDataRef CFURLCreateBookmarkDataFromFile(CFAllocatorRef allocator, CFURLRef file, CFErrorRef* error)
    API_AVAILABLE(macos(10.6));
CFURLRef CFURLCreateByResolvingBookmarkData(CFAllocatorRef allocator, CFDataRef bookmark,
                                            CFURLBookmarkResolutionOptions options, CFURLRef relativeTo,
                                            CFArrayRef propertiesToInclude, Boolean* isStale, CFErrorRef* error)
    API_AVAILABLE(macos(10.6));

#ifdef __cplusplus
}
#endif

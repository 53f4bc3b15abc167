#pragma once

#include <stdbool.h>
#include <stdint.h>

// As much of the framework as the calls of CoreServices and IOKit need. Every object is one of Foundation's.

typedef uint8_t UInt8;
typedef uint32_t UInt32;
typedef unsigned char Boolean;
typedef int32_t OSStatus;
typedef long CFIndex;
typedef UInt32 CFStringEncoding;

typedef const void* CFTypeRef;
typedef const struct CFAllocator* CFAllocatorRef;
typedef const struct CFString* CFStringRef;
typedef const struct CFURL* CFURLRef;

enum { kCFStringEncodingUTF8 = 0x08000100 };

typedef enum { kCFURLPOSIXPathStyle = 0 } CFURLPathStyle;

#pragma GCC visibility push(default)
#ifdef __cplusplus
extern "C" {
#endif

extern const CFAllocatorRef kCFAllocatorDefault;

void CFRelease(CFTypeRef object);
CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style);
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size, CFStringEncoding encoding);

#ifdef __cplusplus
}
#endif
#pragma GCC visibility pop

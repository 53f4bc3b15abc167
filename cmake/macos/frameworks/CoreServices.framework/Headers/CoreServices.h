#pragma once

#include <CoreFoundation/CoreFoundation.h>

// The alias calls. Types and releases as in Apple's Files.h and Aliases.h (CarbonCore), and in CFURL.h.

#pragma pack(push, 2)
typedef struct FSRef {
  UInt8 hidden[80];
} FSRef;
#pragma pack(pop)

#ifdef __cplusplus
extern "C" {
#endif

OSStatus FSPathMakeRef(const UInt8* path, FSRef* ref, Boolean* isDirectory)
    API_DEPRECATED("use a URL", macos(10.0, 10.8));
OSErr FSResolveAliasFile(FSRef* ref, Boolean resolveAliasChains, Boolean* targetIsFolder, Boolean* wasAliased)
    API_DEPRECATED("use CFURLCreateByResolvingBookmarkData", macos(10.0, 10.8));
CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, const FSRef* ref)
    API_DEPRECATED("not supported", macos(10.0, 10.9));

#ifdef __cplusplus
}
#endif

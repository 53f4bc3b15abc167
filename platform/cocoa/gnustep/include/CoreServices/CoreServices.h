#pragma once

#include <CoreFoundation/CoreFoundation.h>

// The alias calls of the framework.

typedef struct FSRef {
  UInt8 hidden[80];
} FSRef;

typedef int16_t OSErr;
enum { noErr = 0, fnfErr = -43 };

#pragma GCC visibility push(default)
#ifdef __cplusplus
extern "C" {
#endif

OSStatus FSPathMakeRef(const UInt8* path, FSRef* ref, Boolean* isDirectory);
OSErr FSResolveAliasFile(FSRef* ref, Boolean resolveAliasChains, Boolean* targetIsFolder, Boolean* wasAliased);
CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, const FSRef* ref);

#ifdef __cplusplus
}
#endif
#pragma GCC visibility pop

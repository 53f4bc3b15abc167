#pragma once

#include <CoreFoundation/CoreFoundation.h>

// The power assertions. Types and releases as in Apple's IOPMLib.h and IOReturn.h.

typedef int IOReturn;
enum { kIOReturnSuccess = 0 };

typedef uint32_t IOPMAssertionID;
typedef uint32_t IOPMAssertionLevel;
enum { kIOPMAssertionLevelOff = 0, kIOPMAssertionLevelOn = 255 };

#ifdef __cplusplus
extern "C" {
#endif

IOReturn IOPMAssertionCreateWithName(CFStringRef type, IOPMAssertionLevel level, CFStringRef name,
                                     IOPMAssertionID* identifier) API_AVAILABLE(macos(10.6));
IOReturn IOPMAssertionRelease(IOPMAssertionID identifier) API_AVAILABLE(macos(10.5));

#ifdef __cplusplus
}
#endif

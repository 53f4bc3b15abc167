#pragma once

#include <CoreFoundation/CoreFoundation.h>

// The power assertions of the framework.

typedef int32_t IOReturn;
typedef UInt32 IOPMAssertionID;
typedef UInt32 IOPMAssertionLevel;
enum { kIOReturnSuccess = 0, kIOReturnError = (int)0xE00002BC };
enum { kIOPMAssertionLevelOff = 0, kIOPMAssertionLevelOn = 255 };

#pragma GCC visibility push(default)
#ifdef __cplusplus
extern "C" {
#endif

IOReturn IOPMAssertionCreateWithName(CFStringRef type, IOPMAssertionLevel level, CFStringRef name,
                                     IOPMAssertionID* identifier);
IOReturn IOPMAssertionRelease(IOPMAssertionID identifier);

#ifdef __cplusplus
}
#endif
#pragma GCC visibility pop

#include "platform/system.h"

#import <Foundation/Foundation.h>
#import <IOKit/pwr_mgt/IOPMLib.h>

// Holds of the system that this runs on.

IOReturn IOPMAssertionCreateWithName(CFStringRef type, IOPMAssertionLevel level, CFStringRef name,
                                     IOPMAssertionID* identifier) {
  tavenhall::createPowerAssertion([(NSString*)type UTF8String], level, [(NSString*)name UTF8String],
                                  *identifier);
  return *identifier != 0 ? kIOReturnSuccess : kIOReturnError;
}

IOReturn IOPMAssertionRelease(IOPMAssertionID identifier) {
  tavenhall::releasePowerAssertion(identifier);
  return kIOReturnSuccess;
}

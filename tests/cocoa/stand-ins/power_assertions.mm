#include "tests/cocoa/stand-ins/power_assertions.h"

#include "tests/cocoa/stand-ins/recorded_calls.h"

#import <Foundation/Foundation.h>
#import <IOKit/pwr_mgt/IOPMLib.h>

using tavenhall::test::recordCall;

namespace {

bool theyAreGranted = true;
IOPMAssertionID latestIdentifier = 100;

}  // namespace

IOReturn IOPMAssertionCreateWithName(CFStringRef type, IOPMAssertionLevel level, CFStringRef name,
                                     IOPMAssertionID* identifier) {
  recordCall(std::string("IOPMAssertionCreateWithName ") + [(NSString*)type UTF8String] + ", " +
             std::to_string(level) + ", " + [(NSString*)name UTF8String]);
  if (!theyAreGranted) {
    return kIOReturnError;
  }
  *identifier = ++latestIdentifier;
  return kIOReturnSuccess;
}

IOReturn IOPMAssertionRelease(IOPMAssertionID identifier) {
  recordCall("IOPMAssertionRelease " + std::to_string(identifier));
  return kIOReturnSuccess;
}

namespace tavenhall::test {

void grantPowerAssertions(bool areGranted) { theyAreGranted = areGranted; }

}  // namespace tavenhall::test

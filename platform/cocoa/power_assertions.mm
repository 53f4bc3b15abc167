#include "platform/cocoa/adapter.h"
#include "platform/cocoa/text.h"
#include "platform/system.h"

#import <IOKit/pwr_mgt/IOPMLib.h>

namespace tavenhall {

void createPowerAssertion(const char* type, std::uint32_t level, const char* name,
                          std::uint32_t& identifier) noexcept {
  identifier = 0;
  adapt("a power assertion", [&] {
    IOPMAssertionID taken = 0;
    IOPMAssertionCreateWithName((CFStringRef)stringOfBytes(type), level, (CFStringRef)stringOfBytes(name),
                                &taken);
    identifier = taken;
  });
}

// The system itself ignores what it has not granted.
void releasePowerAssertion(std::uint32_t identifier) noexcept { IOPMAssertionRelease(identifier); }

}  // namespace tavenhall

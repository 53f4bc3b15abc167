#include "pane/power_assertions.h"

#include "pane/process_wide.h"
#include "platform/installer_host.h"
#include "platform/system.h"

namespace tavenhall {

std::uint32_t assertionIDDisplay = 0;
std::uint32_t assertionIDNoIdle = 0;

namespace {

constexpr const char* kDisplayType = "NoDisplaySleepAssertion";
constexpr const char* kIdleType = "NoIdleSleepAssertion";
constexpr const char* kAssertionName = "Tavenhall installation in progress";

void take(InstallerHost& host, const char* type, std::uint32_t& identifier) {
  createPowerAssertion(type, kAssertionLevelOn, kAssertionName, identifier);
  host.assertionTaken(type, kAssertionLevelOn, kAssertionName);
}

void release(InstallerHost& host, const char* type, std::uint32_t identifier) {
  releasePowerAssertion(identifier);
  host.assertionReleased(type);
}

}  // namespace

void takePowerAssertions(InstallerHost& host) noexcept {
  take(host, kDisplayType, assertionIDDisplay);
  take(host, kIdleType, assertionIDNoIdle);
}

void releasePowerAssertions(InstallerHost& host) noexcept {
  release(host, kDisplayType, assertionIDDisplay);
  release(host, kIdleType, assertionIDNoIdle);
}

}  // namespace tavenhall

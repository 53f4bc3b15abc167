#include "platform/system.h"

#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/pwr_mgt/IOPMLib.h>
#include <array>
#include <climits>
#include <cstring>
#include <memory>
#include <type_traits>
#include <utility>

// What macOS has a framework for, for the page without AppKit. The plug-in of the Installer has its own
// (cocoa/system.mm).
namespace tavenhall {

namespace {

struct Release {
  void operator()(CFTypeRef object) const { CFRelease(object); }
};
template <typename Reference>
using Held = std::unique_ptr<const std::remove_pointer_t<Reference>, Release>;

Held<CFStringRef> stringOf(const char* text) {
  return Held<CFStringRef>(CFStringCreateWithCString(kCFAllocatorDefault, text, kCFStringEncodingUTF8));
}

// What the alias at `path` leads to, without asking the user and without mounting a volume; empty if it is
// none.
std::string followAlias(const char* path) {
  const Held<CFURLRef> file(
      CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(path),
                                              static_cast<CFIndex>(std::strlen(path)), false));
  if (!file) {
    return {};
  }
  const Held<CFDataRef> bookmark(CFURLCreateBookmarkDataFromFile(kCFAllocatorDefault, file.get(), nullptr));
  if (!bookmark) {
    return {};
  }
  constexpr auto kQuietly = static_cast<CFURLBookmarkResolutionOptions>(
      kCFURLBookmarkResolutionWithoutUIMask | kCFURLBookmarkResolutionWithoutMountingMask);
  Boolean isStale = false;
  const Held<CFURLRef> found(CFURLCreateByResolvingBookmarkData(kCFAllocatorDefault, bookmark.get(), kQuietly,
                                                                nullptr, nullptr, &isStale, nullptr));
  std::array<UInt8, PATH_MAX> bytes{};
  if (!found || !CFURLGetFileSystemRepresentation(found.get(), true, bytes.data(), bytes.size())) {
    return {};
  }
  return reinterpret_cast<const char*>(bytes.data());
}

}  // namespace

// An alias may lead to another, and two may lead to each other.
bool resolveAlias(const char* path, std::string& target) noexcept {
  constexpr int kLongestChain = 32;
  std::string at = path;
  for (int followed = 0; followed <= kLongestChain; ++followed) {
    std::string next = followAlias(at.c_str());
    if (next.empty()) {
      if (followed > 0) {
        target = at;
      }
      return followed > 0;
    }
    at = std::move(next);
  }
  return false;
}

void createPowerAssertion(const char* type, std::uint32_t level, const char* name,
                          std::uint32_t& identifier) noexcept {
  identifier = 0;
  const Held<CFStringRef> heldType = stringOf(type);
  const Held<CFStringRef> heldName = stringOf(name);
  IOPMAssertionID taken = 0;
  if (heldType && heldName &&
      IOPMAssertionCreateWithName(heldType.get(), level, heldName.get(), &taken) == kIOReturnSuccess) {
    identifier = taken;
  }
}

// The system ignores an identifier that it has not granted.
void releasePowerAssertion(std::uint32_t identifier) noexcept {
  if (identifier != 0) {
    IOPMAssertionRelease(identifier);
  }
}

}  // namespace tavenhall

#include "platform/system.h"

#import <CoreServices/CoreServices.h>
#include <array>

namespace tavenhall {

namespace {

constexpr std::size_t kAliasPathSize = 1024;

bool pathOfReference(const FSRef& reference, std::string& path) {
  CFURLRef url = CFURLCreateFromFSRef(kCFAllocatorDefault, &reference);
  if (url == nullptr) {
    return false;
  }
  CFStringRef text = CFURLCopyFileSystemPath(url, kCFURLPOSIXPathStyle);
  std::array<char, kAliasPathSize> buffer{};
  const bool isWhole =
      text != nullptr && CFStringGetCString(text, buffer.data(), buffer.size(), kCFStringEncodingUTF8);
  CFRelease(url);
  if (text != nullptr) {
    CFRelease(text);
  }
  if (isWhole) {
    path = buffer.data();
  }
  return isWhole;
}

}  // namespace

bool resolveAlias(const char* path, std::string& target) noexcept {
  FSRef reference;
  if (FSPathMakeRef(reinterpret_cast<const UInt8*>(path), &reference, nullptr) != noErr) {
    return false;
  }
  Boolean targetIsFolder = false;
  Boolean wasAliased = false;
  if (FSResolveAliasFile(&reference, true, &targetIsFolder, &wasAliased) != noErr || !wasAliased) {
    return false;
  }
  return pathOfReference(reference, target);
}

}  // namespace tavenhall

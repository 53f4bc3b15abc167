#include "platform/system.h"

#include "platform/cocoa/adapter.h"
#import "platform/cocoa/install_data_pane.h"

#import <CoreServices/CoreServices.h>
#import <Foundation/Foundation.h>
#import <IOKit/pwr_mgt/IOPMLib.h>
#include <array>
#include <cerrno>
#include <cstring>

// The functions of platform/system.h for which macOS has a framework.
namespace tavenhall {

namespace {

// Returns nil when the bytes are not a path.
NSString* pathOfBytes(const char* path) {
  return [[NSFileManager defaultManager] stringWithFileSystemRepresentation:path length:std::strlen(path)];
}

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

// The error alone says whether it failed, not the result.
RemovalError removeItem(const char* path) noexcept {
  RemovalError removal{true, "", ""};
  adapt("a removal", [&] {
    NSString* item = pathOfBytes(path);
    NSError* error = [NSError errorWithDomain:NSPOSIXErrorDomain code:EILSEQ userInfo:nil];
    if (item != nil) {
      error = nil;
      [[NSFileManager defaultManager] removeItemAtPath:item error:&error];
    }
    removal.failed = error != nil;
    removal.localizedDescription = bytesOfString([error localizedDescription]);
    removal.localizedFailureReason = bytesOfString([error localizedFailureReason]);
  });
  return removal;
}

// Required: a file manager of its own, not the shared one.
void setPosixPermissions(const char* path, std::int16_t permissions) noexcept {
  adapt("permissions", [&] {
    NSString* item = pathOfBytes(path);
    NSFileManager* manager = [[[NSFileManager alloc] init] autorelease];
    if (item == nil || manager == nil || ![manager fileExistsAtPath:item]) {
      return;
    }
    NSMutableDictionary* attributes =
        [NSMutableDictionary dictionaryWithDictionary:[manager attributesOfItemAtPath:item error:NULL]];
    [attributes setValue:[NSNumber numberWithShort:permissions] forKey:NSFilePosixPermissions];
    [manager setAttributes:attributes ofItemAtPath:item error:NULL];
  });
}

bool firstUserSearchPath(SearchPath which, std::string& path) noexcept {
  bool isFound = false;
  adapt("a search path", [&] {
    NSArray* folders =
        NSSearchPathForDirectoriesInDomains(static_cast<NSSearchPathDirectory>(which), NSUserDomainMask, YES);
    if ([folders count] == 0) {
      return;
    }
    NSString* folder = [folders objectAtIndex:0];
    const NSUInteger room = [folder lengthOfBytesUsingEncoding:NSUTF8StringEncoding] + 1;
    std::string bytes(room, '\0');
    isFound = [folder getCString:bytes.data() maxLength:room encoding:NSUTF8StringEncoding];
    if (isFound) {
      path = bytes.c_str();
    }
  });
  return isFound;
}

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

std::string localizedString(const char* key) noexcept {
  std::string text = key;
  adapt("a localised text",
        [&] { text = bytesOfString([InstallDataPane localizedStringForKey:stringOfBytes(key)]); });
  return text;
}

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

// The system ignores an identifier that it has not granted.
void releasePowerAssertion(std::uint32_t identifier) noexcept { IOPMAssertionRelease(identifier); }

}  // namespace tavenhall

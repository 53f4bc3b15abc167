#include "tests/cocoa/stand-ins/aliases.h"

#include "tests/cocoa/stand-ins/recorded_calls.h"

#import <CoreServices/CoreServices.h>
#import <Foundation/Foundation.h>
#include <cstring>
#include <deque>
#include <map>
#include <sys/stat.h>

// The alias calls of CoreServices over a table of aliases. A reference holds the place of its path in a list.

using tavenhall::test::recordCall;

namespace {

std::map<std::string, std::string> aliases;
std::deque<std::string> referredPaths;

void refer(FSRef& reference, const std::string& path) {
  referredPaths.push_back(path);
  const std::size_t place = referredPaths.size() - 1;
  std::memcpy(reference.hidden, &place, sizeof place);
}

const std::string& pathOf(const FSRef& reference) {
  std::size_t place = 0;
  std::memcpy(&place, reference.hidden, sizeof place);
  return referredPaths.at(place);
}

}  // namespace

const CFAllocatorRef kCFAllocatorDefault = nullptr;

OSStatus FSPathMakeRef(const UInt8* path, FSRef* ref, Boolean* isDirectory) {
  const std::string text = reinterpret_cast<const char*>(path);
  recordCall("FSPathMakeRef " + text + (isDirectory == nullptr ? "" : ", and whether it is a folder"));
  struct stat found {};
  if (lstat(text.c_str(), &found) != 0) {
    return fnfErr;
  }
  refer(*ref, text);
  return noErr;
}

// With chains, up to what is no alias.
OSErr FSResolveAliasFile(FSRef* ref, Boolean resolveAliasChains, Boolean* targetIsFolder, Boolean* wasAliased) {
  std::string path = pathOf(*ref);
  recordCall("FSResolveAliasFile " + path + (resolveAliasChains ? ", with chains" : ""));
  *targetIsFolder = false;
  *wasAliased = aliases.contains(path);
  while (aliases.contains(path)) {
    path = aliases.at(path);
    if (path.empty()) {
      return fnfErr;
    }
    if (!resolveAliasChains) {
      break;
    }
  }
  refer(*ref, path);
  return noErr;
}

CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, const FSRef* ref) {
  recordCall(std::string("CFURLCreateFromFSRef ") + (allocator == kCFAllocatorDefault ? "default" : "other") +
             ", " + pathOf(*ref));
  return (CFURLRef)[[NSString alloc] initWithUTF8String:pathOf(*ref).c_str()];
}

CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style) {
  recordCall("CFURLCopyFileSystemPath style " + std::to_string(style));
  return (CFStringRef)[[NSString alloc] initWithString:(NSString*)url];
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size, CFStringEncoding encoding) {
  recordCall("CFStringGetCString " + std::to_string(size) +
             (encoding == kCFStringEncodingUTF8 ? ", UTF-8" : ", other"));
  return [(NSString*)string getCString:buffer maxLength:size encoding:NSUTF8StringEncoding];
}

void CFRelease(CFTypeRef object) {
  recordCall(std::string("CFRelease ") + [(id)object UTF8String]);
  [(id)object release];
}

namespace tavenhall::test {

void layAlias(const std::string& path, const std::string& target) { aliases[path] = target; }

}  // namespace tavenhall::test

#include "platform/cocoa/adapter.h"

#include "platform/strings_text.h"

namespace tavenhall {

NSString* stringOfBytes(const char* bytes) {
  return [NSString stringWithUTF8String:validUtf8(bytes != nullptr ? bytes : "").c_str()];
}

std::string bytesOfString(NSString* string) {
  const char* bytes = [string UTF8String];
  return bytes != nullptr ? bytes : "";
}

}  // namespace tavenhall

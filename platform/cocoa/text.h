#pragma once

#import <Foundation/Foundation.h>
#include <string>

namespace tavenhall {

// The page's bytes as a string that the caller's pool owns; never nil. What is no UTF-8 becomes U+FFFD, and a
// null pointer the empty string. Any thread.
[[nodiscard]] NSString* stringOfBytes(const char* bytes);

// A string as UTF-8; nil as the empty text. Any thread.
[[nodiscard]] std::string bytesOfString(NSString* string);

}  // namespace tavenhall

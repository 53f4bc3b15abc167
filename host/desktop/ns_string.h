#pragma once

#import <Foundation/Foundation.h>
#include <string>

// Converts a text for AppKit; empty if it is not UTF-8. Autoreleased. Any thread.
inline NSString* nsString(const std::string& text) {
  NSString* made = [NSString stringWithUTF8String:text.c_str()];
  return made != nil ? made : @"";
}

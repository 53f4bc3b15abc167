#pragma once

#import <AppKit/AppKit.h>
#include <string>

// The window's system-specific functions beyond AppKit; gnustep/ and macos/ implement them. Main thread.

// Sets the user's languages. Call it before the application exists.
void setUpLanguages();

// Sets the fonts for a language, which is named like its folder in a bundle. Call it before the application
// exists.
void setUpFonts(const std::string& language);

// Sets the application's appearance and menu. Returns false if it cannot show anything, and prints the reason
// on standard error.
[[nodiscard]] bool setUpLook();

// Converts a text for AppKit; empty if it is not UTF-8. Autoreleased. Any thread.
inline NSString* nsString(const std::string& text) {
  NSString* made = [NSString stringWithUTF8String:text.c_str()];
  return made != nil ? made : @"";
}

// The colours of the window, and its lengths in points. Main thread.

inline NSColor* paletteColor(unsigned rgb) {
  return [NSColor colorWithCalibratedRed:((rgb >> 16U) & 0xFFU) / 255.0
                                   green:((rgb >> 8U) & 0xFFU) / 255.0
                                    blue:(rgb & 0xFFU) / 255.0
                                   alpha:1.0];
}

namespace palette {

inline constexpr unsigned kWindow = 0xF4F5F7;
inline constexpr unsigned kSidebar = 0xE9EBEF;
inline constexpr unsigned kPage = 0xFFFFFF;
inline constexpr unsigned kHairline = 0xD3D6DC;
inline constexpr unsigned kText = 0x1F2329;
inline constexpr unsigned kQuietText = 0x6B727D;
inline constexpr unsigned kFaintText = 0xA2A8B2;
inline constexpr unsigned kAccent = 0x1F6FB5;
inline constexpr unsigned kAccentTint = 0xDFECF8;
inline constexpr unsigned kTrack = 0xE3E6EB;
inline constexpr unsigned kGood = 0x2E7D4F;
inline constexpr unsigned kBad = 0xB3382C;

}  // namespace palette

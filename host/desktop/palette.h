#pragma once

#import <AppKit/AppKit.h>

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

#import "host/desktop/gnustep/page_theme.h"

#import "host/desktop/look.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr CGFloat kButtonRadius = 5.0;
constexpr CGFloat kBarHeight = 8.0;
constexpr CGFloat kTitleBarHeight = 30.0;
constexpr CGFloat kTitleButtonSize = 16.0;
constexpr CGFloat kTitleButtonMargin = 8.0;

NSBezierPath* roundedPath(NSRect rect, CGFloat radius) {
  return [NSBezierPath bezierPathWithRoundedRect:rect xRadius:radius yRadius:radius];
}

// Lines of one point are sharp where they run through the middle of points.
NSRect outlineOf(NSRect rect) { return NSInsetRect(NSIntegralRect(rect), 0.5, 0.5); }

BOOL isDefaultButton(NSCell* cell) {
  return [cell isKindOfClass:[NSButtonCell class]] &&
         [[(NSButtonCell*)cell keyEquivalent] isEqualToString:@"\r"] && [cell isEnabled];
}

void drawCentredTitle(NSString* title, NSRect rect, NSColor* color) {
  NSMutableParagraphStyle* style = [[[NSMutableParagraphStyle alloc] init] autorelease];
  [style setAlignment:NSCenterTextAlignment];
  [style setLineBreakMode:NSLineBreakByTruncatingTail];
  NSDictionary* attributes = [NSDictionary
      dictionaryWithObjectsAndKeys:[NSFont boldSystemFontOfSize:13.0], NSFontAttributeName, color,
                                   NSForegroundColorAttributeName, style, NSParagraphStyleAttributeName, nil];
  const NSSize size = [title sizeWithAttributes:attributes];
  rect.origin.y += std::floor((rect.size.height - size.height) / 2.0);
  rect.size.height = size.height;
  [title drawInRect:rect withAttributes:attributes];
}

}  // namespace

@implementation PageTheme

// Named system colours that differ from the library's own greys.
- (NSColorList*)colors {
  static const struct {
    NSString* name;
    unsigned rgb;
  } kColors[] = {
      {@"windowBackgroundColor", palette::kWindow},
      {@"controlBackgroundColor", palette::kPage},
      {@"controlColor", palette::kWindow},
      {@"controlTextColor", palette::kText},
      {@"textColor", palette::kText},
      {@"textBackgroundColor", palette::kPage},
      {@"disabledControlTextColor", palette::kFaintText},
      {@"windowFrameTextColor", palette::kText},
      {@"selectedTextBackgroundColor", 0xC9DFF2},
      {@"selectedTextColor", palette::kText},
      {@"selectedControlColor", palette::kTrack},
      {@"controlShadowColor", palette::kHairline},
      {@"controlHighlightColor", palette::kWindow},
      {@"controlLightHighlightColor", palette::kPage},
      {@"controlDarkShadowColor", palette::kHairline},
  };
  if (colors_ == nil) {
    colors_ = [[NSColorList alloc] initWithName:@"System" fromFile:nil];
    for (const auto& row : kColors) {
      [colors_ setColor:paletteColor(row.rgb) forKey:row.name];
    }
  }
  return colors_;
}

- (void)dealloc {
  [colors_ release];
  [super dealloc];
}

// ---- Buttons ----

- (void)drawButton:(NSRect)frame
                in:(NSCell*)cell
              view:(NSView*)view
             style:(int)style
             state:(GSThemeControlState)state {
  const BOOL isPressed = state == GSThemeHighlightedState || state == GSThemeHighlightedFirstResponderState;
  const BOOL isDefault = isDefaultButton(cell);
  NSBezierPath* outline = roundedPath(outlineOf(NSInsetRect(frame, 1.0, 1.0)), kButtonRadius);
  [paletteColor(isPressed ? palette::kTrack : isDefault ? palette::kAccentTint : palette::kPage) set];
  [outline fill];
  [paletteColor(isDefault ? palette::kAccent : palette::kHairline) set];
  [outline stroke];
}

- (GSThemeMargins)buttonMarginsForCell:(NSCell*)cell style:(int)style state:(GSThemeControlState)state {
  return {14, 14, 5, 5};
}

// A default button is known by its colour; the return sign beside its title says it once too often.
- (void)setKeyEquivalent:(NSString*)key forButtonCell:(NSButtonCell*)cell {
}

- (void)didSetDefaultButtonCell:(NSButtonCell*)cell {
}

- (void)drawFocusFrame:(NSRect)frame view:(NSView*)view {
}

// ---- The bar ----

- (void)drawProgressIndicator:(NSProgressIndicator*)progress
                   withBounds:(NSRect)bounds
                     withClip:(NSRect)rect
                      atCount:(int)count
                     forValue:(double)value {
  NSRect track =
      NSMakeRect(bounds.origin.x, std::floor(NSMidY(bounds) - kBarHeight / 2.0), bounds.size.width, kBarHeight);
  [paletteColor(palette::kTrack) set];
  [roundedPath(track, kBarHeight / 2.0) fill];
  // `value` is the part of the whole; less than the bar's own height cannot be drawn round.
  const double part = value < 0.0 ? 0.0 : value > 1.0 ? 1.0 : value;
  if (part > 0.0) {
    track.size.width = std::max(kBarHeight, std::floor(track.size.width * part));
    [paletteColor(palette::kAccent) set];
    [roundedPath(track, kBarHeight / 2.0) fill];
  }
}

// ---- The window's frame ----

- (float)titlebarHeight {
  return kTitleBarHeight;
}

- (float)resizebarHeight {
  return 1.0F;
}

- (float)titlebarButtonSize {
  return kTitleButtonSize;
}

- (float)titlebarPaddingTop {
  return (kTitleBarHeight - kTitleButtonSize) / 2.0;
}

- (float)titlebarPaddingLeft {
  return kTitleButtonMargin;
}

- (float)titlebarPaddingRight {
  return kTitleButtonMargin;
}

- (void)drawWindowBorder:(NSRect)rect
               withFrame:(NSRect)frame
            forStyleMask:(unsigned int)styleMask
                   state:(int)inputState
                andTitle:(NSString*)title {
  const NSRect all = NSMakeRect(0.0, 0.0, frame.size.width, frame.size.height);
  [paletteColor(palette::kHairline) set];
  NSFrameRect(all);
  if ((styleMask & NSTitledWindowMask) != 0) {
    // An alert's own title is the library's word for its kind. Its strip has the name of the window that it
    // belongs to.
    const BOOL isAlert = (styleMask & NSClosableWindowMask) == 0;
    NSRect bar =
        NSMakeRect(1.0, frame.size.height - kTitleBarHeight, frame.size.width - 2.0, kTitleBarHeight - 1.0);
    [paletteColor(palette::kSidebar) set];
    NSRectFill(bar);
    [paletteColor(palette::kHairline) set];
    NSRectFill(NSMakeRect(0.0, bar.origin.y, frame.size.width, 1.0));
    constexpr CGFloat kBesides = kTitleButtonSize + 2.0 * kTitleButtonMargin;
    drawCentredTitle(isAlert ? [[NSApp mainWindow] title] : title, NSInsetRect(bar, kBesides, 0.0),
                     paletteColor(inputState == 0 ? palette::kText : palette::kQuietText));
  }
}

@end

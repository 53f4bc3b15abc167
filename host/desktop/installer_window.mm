#import "host/desktop/installer_window.h"

#include "host/base/text.h"
#import "host/desktop/look.h"
#import "host/desktop/views.h"

#include <algorithm>
#include <cmath>

namespace {

// A page of the installer is 418 by 330 points; the rest follows from it.
constexpr CGFloat kPageWidth = 418.0;
constexpr CGFloat kPageHeight = 330.0;
constexpr CGFloat kMargin = 20.0;
constexpr CGFloat kSideWidth = 178.0;
constexpr CGFloat kSmallestButtonWidth = 96.0;
constexpr CGFloat kButtonHeight = 28.0;
constexpr CGFloat kButtonGap = 10.0;
constexpr CGFloat kTextHeight = 17.0;  // of a line between the page and the buttons
constexpr CGFloat kHeadingHeight = 20.0;
constexpr CGFloat kHeadingGap = 12.0;

constexpr CGFloat kLeft = kSideWidth + kMargin;
constexpr CGFloat kWidth = kLeft + kPageWidth + 2.0 + kMargin;
constexpr CGFloat kProgressBottom = kMargin + kButtonHeight + kButtonGap;
constexpr CGFloat kPhaseBottom = kProgressBottom + kTextHeight;
constexpr CGFloat kPageBottom = kPhaseBottom + kTextHeight + kButtonGap;
constexpr CGFloat kHeadingBottom = kPageBottom + kPageHeight + 2.0 + kHeadingGap;
constexpr CGFloat kHeight = kHeadingBottom + kHeadingHeight + kMargin;

NSTextField* label(NSRect frame, NSFont* font) {
  NSTextField* field = [[[NSTextField alloc] initWithFrame:frame] autorelease];
  [field setEditable:NO];
  [field setSelectable:NO];
  [field setBordered:NO];
  [field setBezeled:NO];
  [field setDrawsBackground:NO];
  [field setFont:font];
  [[field cell] setLineBreakMode:NSLineBreakByTruncatingTail];
  return field;
}

// Its place is still to be found.
NSButton* button(const char* title, id target, SEL action) {
  NSButton* made = [[[NSButton alloc] initWithFrame:NSZeroRect] autorelease];
  [made setTitle:nsString(title)];
  [made setBezelStyle:NSRoundedBezelStyle];
  [made setTarget:target];
  [made setAction:action];
  return made;
}

}  // namespace

// The white sheet that a page lies on.
@interface PageSheet : NSView
@end

@implementation PageSheet
- (void)drawRect:(NSRect)dirtyRect {
  [paletteColor(palette::kPage) set];
  NSRectFill([self bounds]);
  [paletteColor(palette::kHairline) set];
  NSFrameRect([self bounds]);
}
@end

@implementation InstallerWindow

- (id)initWithTitle:(NSString*)title target:(id)target {
  self = [super initWithContentRect:NSMakeRect(0.0, 0.0, kWidth, kHeight)
                          styleMask:NSTitledWindowMask | NSClosableWindowMask | NSMiniaturizableWindowMask
                            backing:NSBackingStoreBuffered
                              defer:NO];
  [self setTitle:title];
  [self setReleasedWhenClosed:NO];
  [self setBackgroundColor:paletteColor(palette::kWindow)];

  NSView* content = [self contentView];
  steps_ = [[StepList alloc] initWithFrame:NSMakeRect(0.0, 0.0, kSideWidth, kHeight)];
  heading_ = [label(NSMakeRect(kLeft, kHeadingBottom, kPageWidth + 4.0, kHeadingHeight),
                    [NSFont boldSystemFontOfSize:15.0]) retain];
  page_ = [[PageSheet alloc] initWithFrame:NSMakeRect(kLeft, kPageBottom, kPageWidth + 2.0, kPageHeight + 2.0)];
  continueButton_ = [button(tavenhall::_("Continue"), target, @selector(goOn:)) retain];
  [continueButton_ setKeyEquivalent:@"\r"];
  backButton_ = [button(tavenhall::_("Go Back"), target, @selector(goBack:)) retain];
  phase_ = [label(NSMakeRect(kLeft, kPhaseBottom, kPageWidth + 2.0, kTextHeight),
                  [NSFont systemFontOfSize:12.0]) retain];
  [phase_ setTextColor:paletteColor(palette::kText)];
  progress_ = [label(NSMakeRect(kLeft, kProgressBottom, kPageWidth + 2.0, kTextHeight),
                     [NSFont systemFontOfSize:12.0]) retain];
  [progress_ setTextColor:paletteColor(palette::kQuietText)];
  [self layOutLowestRow];
  for (NSView *view in [NSArray
           arrayWithObjects:steps_, heading_, page_, phase_, progress_, backButton_, continueButton_, nil]) {
    [content addSubview:view];
  }
  [self center];
  return self;
}

- (void)dealloc {
  [steps_ release];
  [heading_ release];
  [page_ release];
  [phase_ release];
  [progress_ release];
  [backButton_ release];
  [continueButton_ release];
  [super dealloc];
}

// The buttons from the right, each as wide as its title needs.
- (void)layOutLowestRow {
  CGFloat right = kWidth - kMargin;
  for (NSButton *button in [NSArray arrayWithObjects:continueButton_, backButton_, nil]) {
    const CGFloat width = std::max(kSmallestButtonWidth, std::ceil([[button cell] cellSize].width));
    [button setFrame:NSMakeRect(right - width, kMargin, width, kButtonHeight)];
    right -= width + kButtonGap;
  }
}

- (void)setSteps:(NSArray*)titles current:(NSUInteger)current {
  [steps_ setTitles:titles current:current];
}

- (void)setHeading:(NSString*)heading color:(NSColor*)color {
  [heading_ setStringValue:heading];
  [heading_ setTextColor:color];
}

- (NSRect)pageFrame {
  return NSMakeRect(1.0, 1.0, kPageWidth, kPageHeight);
}

- (void)setPage:(NSView*)content {
  for (NSView* view in [page_ subviews]) {
    [view removeFromSuperview];
  }
  const NSRect frame = [content frame];
  [content setFrameOrigin:NSMakePoint(1.0 + (kPageWidth - frame.size.width) / 2.0,
                                      1.0 + (kPageHeight - frame.size.height) / 2.0)];
  [page_ addSubview:content];
}

- (void)setContinueTitle:(NSString*)title {
  [continueButton_ setTitle:title];
  [self layOutLowestRow];
}

- (void)setPhase:(NSString*)text {
  [phase_ setStringValue:text];
}

- (void)setProgress:(NSString*)text {
  [progress_ setStringValue:text];
}

- (NSButton*)backButton {
  return backButton_;
}

- (NSButton*)continueButton {
  return continueButton_;
}

@end

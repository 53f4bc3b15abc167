#import "host/desktop/step_list.h"

#import "host/desktop/palette.h"

namespace {

constexpr CGFloat kTop = 22.0;
constexpr CGFloat kLeft = 18.0;
constexpr CGFloat kRight = 8.0;
constexpr CGFloat kDot = 9.0;
constexpr CGFloat kDotGap = 10.0;
constexpr CGFloat kStepGap = 12.0;

void drawDot(NSPoint origin, NSUInteger step, NSUInteger current) {
  NSBezierPath* dot = [NSBezierPath
      bezierPathWithOvalInRect:NSMakeRect(origin.x + 0.5, origin.y + 0.5, kDot - 1.0, kDot - 1.0)];
  if (step > current) {
    [paletteColor(palette::kPage) set];
    [dot fill];
    [paletteColor(palette::kFaintText) set];
    [dot stroke];
  } else {
    [paletteColor(step == current ? palette::kAccent : palette::kQuietText) set];
    [dot fill];
  }
}

}  // namespace

@implementation StepList

- (void)dealloc {
  [titles_ release];
  [super dealloc];
}

- (void)setTitles:(NSArray*)titles current:(NSUInteger)current {
  NSArray* copy = [titles copy];
  [titles_ release];
  titles_ = copy;
  current_ = current;
  [self setNeedsDisplay:YES];
}

- (BOOL)isFlipped {
  return YES;
}

- (void)drawRect:(NSRect)dirtyRect {
  const NSRect bounds = [self bounds];
  [paletteColor(palette::kSidebar) set];
  NSRectFill(bounds);
  [paletteColor(palette::kHairline) set];
  NSRectFill(NSMakeRect(NSMaxX(bounds) - 1.0, 0.0, 1.0, bounds.size.height));

  constexpr CGFloat kTextLeft = kLeft + kDot + kDotGap;
  CGFloat top = kTop;
  for (NSUInteger step = 0; step < [titles_ count]; ++step) {
    NSString* title = [titles_ objectAtIndex:step];
    NSFont* font = step == current_ ? [NSFont boldSystemFontOfSize:13.0] : [NSFont systemFontOfSize:13.0];
    NSColor* color = paletteColor(step == current_  ? palette::kText
                                  : step < current_ ? palette::kQuietText
                                                    : palette::kFaintText);
    NSDictionary* attributes = [NSDictionary
        dictionaryWithObjectsAndKeys:font, NSFontAttributeName, color, NSForegroundColorAttributeName, nil];
    const CGFloat width = bounds.size.width - kTextLeft - kRight;
    const NSRect needed = [title boundingRectWithSize:NSMakeSize(width, 1000.0)
                                              options:NSStringDrawingUsesLineFragmentOrigin
                                           attributes:attributes];
    const CGFloat lineHeight = [@"X" sizeWithAttributes:attributes].height;
    drawDot(NSMakePoint(kLeft, top + (lineHeight - kDot) / 2.0), step, current_);
    [title drawInRect:NSMakeRect(kTextLeft, top, width, needed.size.height) withAttributes:attributes];
    top += needed.size.height + kStepGap;
  }
}

@end

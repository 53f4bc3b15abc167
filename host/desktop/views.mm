#import "host/desktop/views.h"

#import "host/desktop/look.h"

#include <algorithm>
#include <cmath>

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

namespace {

using tavenhall::Line;
using tavenhall::Span;

NSString* const kSoftBreak = @"TavenhallSoftBreak";  // a line break that is not the text's
constexpr CGFloat kSmallestLabelColumn = 68.0;
constexpr CGFloat kLabelGap = 12.0;
constexpr CGFloat kInset = 14.0;

unsigned colorOf(tavenhall::Style style) {
  switch (style) {
    case tavenhall::Style::dim: return palette::kQuietText;
    case tavenhall::Style::good: return palette::kGood;
    case tavenhall::Style::warning:
    case tavenhall::Style::bad: return palette::kBad;
    default: return palette::kText;
  }
}

// `labelColumn` is 0 where there are no labels.
NSDictionary* attributesOf(tavenhall::Style style, CGFloat labelColumn) {
  NSMutableParagraphStyle* paragraph = [[[NSMutableParagraphStyle alloc] init] autorelease];
  [paragraph setParagraphSpacing:3.0];
  if (labelColumn > 0.0) {
    NSTextTab* tab = [[[NSTextTab alloc] initWithType:NSLeftTabStopType location:labelColumn] autorelease];
    [paragraph setTabStops:[NSArray arrayWithObject:tab]];
    [paragraph setHeadIndent:labelColumn];
    [paragraph setLineBreakMode:NSLineBreakByCharWrapping];  // beside a label stands a path
  }
  NSFont* font =
      style == tavenhall::Style::strong ? [NSFont boldSystemFontOfSize:13.0] : [NSFont systemFontOfSize:13.0];
  return [NSDictionary dictionaryWithObjectsAndKeys:font, NSFontAttributeName, paletteColor(colorOf(style)),
                                                    NSForegroundColorAttributeName, paragraph,
                                                    NSParagraphStyleAttributeName, nil];
}

// A line of two spans begins with its label, filled up with blanks.
BOOL isLabelled(const Line& line) { return line.size() == 2; }

NSString* labelOf(const Line& line) {
  return [nsString(line.front().text) stringByTrimmingCharactersInSet:[NSCharacterSet whitespaceCharacterSet]];
}

// Wide enough for each of the labels.
CGFloat labelColumnOf(const std::vector<Line>& lines) {
  CGFloat column = kSmallestLabelColumn;
  for (const Line& line : lines) {
    if (isLabelled(line)) {
      const NSSize size = [labelOf(line) sizeWithAttributes:attributesOf(line.front().style, 0.0)];
      column = std::max(column, std::ceil(size.width) + kLabelGap);
    }
  }
  return column;
}

void append(NSMutableAttributedString* all, NSString* text, NSDictionary* attributes) {
  [all appendAttributedString:[[[NSAttributedString alloc] initWithString:text
                                                               attributes:attributes] autorelease]];
}

CGFloat widthOf(NSString* text, NSDictionary* attributes) { return [text sizeWithAttributes:attributes].width; }

// Where a text may be broken so that its first part fits the width: behind a blank or a separator of a path, or
// anywhere if there is neither.
NSUInteger breakIn(NSString* text, NSDictionary* attributes, CGFloat width) {
  static NSCharacterSet* const places = [[NSCharacterSet characterSetWithCharactersInString:@" /"] retain];
  NSUInteger best = 0;
  for (NSUInteger end = 1; end <= [text length]; ++end) {
    if (widthOf([text substringToIndex:end], attributes) > width) {
      return best > 0 ? best : std::max<NSUInteger>(end - 1, 1);
    }
    if ([places characterIsMember:[text characterAtIndex:end - 1]]) {
      best = end;
    }
  }
  return [text length];
}

// AppKit breaks lines at blanks alone, so a text with a path is broken here. The line breaks are marked: they
// are none of the text's.
void appendBroken(NSMutableAttributedString* all, NSString* text, NSDictionary* attributes, CGFloat width) {
  if ([text rangeOfString:@"/"].location == NSNotFound) {
    append(all, text, attributes);
    return;
  }
  NSMutableDictionary* broken = [[attributes mutableCopy] autorelease];
  NSMutableParagraphStyle* rest =
      [[[attributes objectForKey:NSParagraphStyleAttributeName] mutableCopy] autorelease];
  [rest setFirstLineHeadIndent:[rest headIndent]];
  NSMutableDictionary* following = [[attributes mutableCopy] autorelease];
  [following setObject:rest forKey:NSParagraphStyleAttributeName];
  [broken setObject:[NSNumber numberWithBool:YES] forKey:kSoftBreak];
  NSDictionary* now = attributes;
  while (widthOf(text, attributes) > width) {
    const NSUInteger end = breakIn(text, attributes, width);
    append(all, [text substringToIndex:end], now);
    append(all, @"\n", broken);
    text = [text substringFromIndex:end];
    now = following;
    [broken setObject:rest forKey:NSParagraphStyleAttributeName];
  }
  append(all, text, now);
}

}  // namespace

// Copies its text without the line breaks that were put in for its width.
@interface PathTextView : NSTextView
@end

@implementation PathTextView
- (BOOL)writeSelectionToPasteboard:(NSPasteboard*)pasteboard type:(NSString*)type {
  NSAttributedString* selected = [[self textStorage] attributedSubstringFromRange:[self selectedRange]];
  NSMutableString* text = [NSMutableString string];
  for (NSUInteger i = 0; i < [selected length]; ++i) {
    if ([selected attribute:kSoftBreak atIndex:i effectiveRange:NULL] == nil) {
      [text appendString:[[selected string] substringWithRange:NSMakeRange(i, 1)]];
    }
  }
  return [pasteboard setString:text forType:NSPasteboardTypeString];
}

- (NSArray*)writablePasteboardTypes {
  return [NSArray arrayWithObject:NSPasteboardTypeString];
}
@end

// Puts labels into a column at the left.
static NSAttributedString* attributedText(const std::vector<Line>& lines, CGFloat width) {
  NSMutableAttributedString* all = [[[NSMutableAttributedString alloc] init] autorelease];
  const CGFloat labelColumn = labelColumnOf(lines);
  for (const Line& line : lines) {
    for (const Span& span : line) {
      const CGFloat column = isLabelled(line) ? labelColumn : 0.0;
      NSDictionary* attributes = attributesOf(span.style, column);
      if (isLabelled(line) && &span == &line.front()) {
        append(all, [labelOf(line) stringByAppendingString:@"\t"], attributes);
      } else {
        appendBroken(all, nsString(span.text), attributes, width - column);
      }
    }
    append(all, @"\n", attributesOf(tavenhall::Style::text, 0.0));
  }
  return all;
}

// The text's own height is asked for first: a scroll view that hides its scroller by itself lays itself out
// without end on GNUstep when the scroller's width is what makes the difference.
NSView* textPage(const std::vector<Line>& lines, NSRect frame) {
  const CGFloat width = frame.size.width - 2.0 * kInset - [NSScroller scrollerWidth];
  NSTextView* view = [[[PathTextView alloc] initWithFrame:frame] autorelease];
  [view setEditable:NO];
  [view setDrawsBackground:NO];
  [view setTextContainerInset:NSMakeSize(kInset, kInset)];
  [[view textContainer] setWidthTracksTextView:NO];
  [[view textContainer] setContainerSize:NSMakeSize(width, 1.0e6)];
  const CGFloat padding = 2.0 * [[view textContainer] lineFragmentPadding];
  [[view textStorage] setAttributedString:attributedText(lines, width - padding)];
  [[view layoutManager] glyphRangeForTextContainer:[view textContainer]];  // lays it out
  const CGFloat height =
      [[view layoutManager] usedRectForTextContainer:[view textContainer]].size.height + 2.0 * kInset;
  if (height <= frame.size.height) {
    return view;
  }
  NSScrollView* scroller = [[[NSScrollView alloc] initWithFrame:frame] autorelease];
  [scroller setBorderType:NSNoBorder];
  [scroller setHasVerticalScroller:YES];
  [scroller setDrawsBackground:NO];
  [view setFrameSize:NSMakeSize(frame.size.width - [NSScroller scrollerWidth], height)];
  [scroller setDocumentView:view];
  return scroller;
}

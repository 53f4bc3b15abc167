#import "host/desktop/text_page.h"

#import "host/desktop/ns_string.h"
#import "host/desktop/palette.h"

#include <algorithm>
#include <cmath>

namespace {

using tavenhall::Line;
using tavenhall::Span;
using tavenhall::Style;

constexpr CGFloat kSmallestLabelColumn = 68.0;
constexpr CGFloat kLabelGap = 12.0;
constexpr CGFloat kInset = 14.0;

unsigned colorOf(Style style) {
  switch (style) {
    case Style::dim: return palette::kQuietText;
    case Style::good: return palette::kGood;
    case Style::warning:
    case Style::bad: return palette::kBad;
    default: return palette::kText;
  }
}

// `labelColumn` is 0 where there are no labels.
NSDictionary* attributesOf(Style style, CGFloat labelColumn) {
  NSMutableParagraphStyle* paragraph = [[[NSMutableParagraphStyle alloc] init] autorelease];
  [paragraph setParagraphSpacing:3.0];
  if (labelColumn > 0.0) {
    NSTextTab* tab = [[[NSTextTab alloc] initWithType:NSLeftTabStopType location:labelColumn] autorelease];
    [paragraph setTabStops:[NSArray arrayWithObject:tab]];
    [paragraph setHeadIndent:labelColumn];
    [paragraph setLineBreakMode:NSLineBreakByCharWrapping];  // beside a label stands a path
  }
  NSFont* font = style == Style::strong ? [NSFont boldSystemFontOfSize:13.0] : [NSFont systemFontOfSize:13.0];
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

}  // namespace

NSAttributedString* attributedText(const std::vector<Line>& lines) {
  NSMutableAttributedString* all = [[[NSMutableAttributedString alloc] init] autorelease];
  const CGFloat labelColumn = labelColumnOf(lines);
  for (const Line& line : lines) {
    for (const Span& span : line) {
      const BOOL isLabel = isLabelled(line) && &span == &line.front();
      append(all, isLabel ? [labelOf(line) stringByAppendingString:@"\t"] : nsString(span.text),
             attributesOf(span.style, isLabelled(line) ? labelColumn : 0.0));
    }
    append(all, @"\n", attributesOf(Style::text, 0.0));
  }
  return all;
}

// The text's own height is asked for first: a scroll view that hides its scroller by itself lays itself out
// without end on GNUstep when the scroller's width is what makes the difference.
NSView* textPage(NSAttributedString* text, NSRect frame) {
  NSTextView* view = [[[NSTextView alloc] initWithFrame:frame] autorelease];
  [view setEditable:NO];
  [view setDrawsBackground:NO];
  [view setTextContainerInset:NSMakeSize(kInset, kInset)];
  [[view textContainer] setWidthTracksTextView:NO];
  [[view textContainer]
      setContainerSize:NSMakeSize(frame.size.width - 2.0 * kInset - [NSScroller scrollerWidth], 1.0e6)];
  [[view textStorage] setAttributedString:text];
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

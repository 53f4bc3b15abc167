#import "host/desktop/text_page.h"

#import "host/desktop/palette.h"

namespace {

using tavenhall::Line;
using tavenhall::Span;
using tavenhall::Style;

constexpr CGFloat kLabelColumn = 68.0;
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

NSString* textOf(const Span& span) {
  NSString* text = [NSString stringWithUTF8String:span.text.c_str()];
  return text != nil ? text : @"";
}

NSDictionary* attributesOf(Style style, BOOL isLabelled) {
  NSMutableParagraphStyle* paragraph = [[[NSMutableParagraphStyle alloc] init] autorelease];
  [paragraph setParagraphSpacing:3.0];
  if (isLabelled) {
    NSTextTab* tab = [[[NSTextTab alloc] initWithType:NSLeftTabStopType location:kLabelColumn] autorelease];
    [paragraph setTabStops:[NSArray arrayWithObject:tab]];
    [paragraph setHeadIndent:kLabelColumn];
    [paragraph setLineBreakMode:NSLineBreakByCharWrapping];  // beside a label stands a path
  }
  NSFont* font = style == Style::strong ? [NSFont boldSystemFontOfSize:13.0] : [NSFont systemFontOfSize:13.0];
  return [NSDictionary dictionaryWithObjectsAndKeys:font, NSFontAttributeName, paletteColor(colorOf(style)),
                                                    NSForegroundColorAttributeName, paragraph,
                                                    NSParagraphStyleAttributeName, nil];
}

void append(NSMutableAttributedString* all, NSString* text, NSDictionary* attributes) {
  [all appendAttributedString:[[[NSAttributedString alloc] initWithString:text
                                                               attributes:attributes] autorelease]];
}

}  // namespace

NSAttributedString* attributedText(const std::vector<Line>& lines) {
  NSMutableAttributedString* all = [[[NSMutableAttributedString alloc] init] autorelease];
  for (const Line& line : lines) {
    // A line of two spans begins with its label, filled up with blanks.
    const BOOL isLabelled = line.size() == 2;
    NSCharacterSet* blanks = [NSCharacterSet whitespaceCharacterSet];
    for (const Span& span : line) {
      NSString* text = textOf(span);
      if (isLabelled && &span == &line.front()) {
        text = [[text stringByTrimmingCharactersInSet:blanks] stringByAppendingString:@"\t"];
      }
      append(all, text, attributesOf(span.style, isLabelled));
    }
    append(all, @"\n", attributesOf(Style::text, NO));
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

#pragma once

#include "host/ui/styled_text.h"

#import <AppKit/AppKit.h>

// A page of text that scrolls if it is too long. Main thread.

// Puts labels into a column at the left.
NSAttributedString* attributedText(const std::vector<tavenhall::Line>& lines);

// Autoreleased.
NSView* textPage(NSAttributedString* text, NSRect frame);

#pragma once

#include "host/ui/styled_text.h"

#import <AppKit/AppKit.h>

// A page of text that scrolls where it is longer than the page. Main thread.

// Labels stand at the left, in a column of their own.
NSAttributedString* attributedText(const std::vector<tavenhall::Line>& lines);

// Owned by the caller's pool.
NSView* textPage(NSAttributedString* text, NSRect frame);

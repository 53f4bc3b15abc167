#pragma once

#include "host/terminal/page_layout.h"
#include "host/terminal/styled_text.h"

#include <string>
#include <vector>

namespace tavenhall::test {

// The texts of lines, without their styles.
[[nodiscard]] std::vector<std::string> textOf(const std::vector<Line>& lines);

// The layers as a terminal of that size would show them, a text a row without the blanks at its end. A text
// that goes beyond its layer, or over another of that layer, fails the test.
[[nodiscard]] std::vector<std::string> rendered(const std::vector<Layer>& layers, Size size);

// The whole of it as one text, a newline after each row.
[[nodiscard]] std::string renderedText(const std::vector<Layer>& layers, Size size);

}  // namespace tavenhall::test

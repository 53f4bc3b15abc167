#pragma once

#include "host/terminal/page_layout.h"
#include "host/ui/styled_text.h"
#include "tests/terminal/page_driver.h"

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

inline constexpr Size kUsual{24, 80};

// What a terminal of that size shows of the page, a text a row without the blanks at its end.
[[nodiscard]] std::vector<std::string> rowsOf(PageDriver& driver, Size size = kUsual,
                                              const Signs& signs = unicodeSigns());

}  // namespace tavenhall::test

#pragma once

#include <initializer_list>
#include <string>
#include <vector>

// The page's text without colours and positions.
namespace tavenhall {

enum class Style {
  text,
  dim,  // labels, hints
  strong,
  heading,
  current,  // the current step
  rule,     // lines and frames
  good,
  warning,
  bad,
  barDone,
  barAhead,
  field,  // the user's input
  button,
  buttonFocused,  // the button that Enter presses
  buttonOff,
};

struct Span {
  std::string text;
  Style style = Style::text;
};

// Spans in one line.
using Line = std::vector<Span>;

// The text wrapped to `width`, every line in that style.
[[nodiscard]] std::vector<Line> wrappedLines(const std::string& text, int width, Style style = Style::text);

// The column of the texts beside these labels: two cells after the widest.
[[nodiscard]] int labelColumns(std::initializer_list<const char*> labels);

// A label with its text beside it: the label once, the text wrapped, each line `indent` cells from the left.
[[nodiscard]] std::vector<Line> labelledLines(const std::string& label, const std::string& text, int indent,
                                              int width, Style style = Style::text);

// Appends lines to lines.
void append(std::vector<Line>& lines, std::vector<Line> more);

}  // namespace tavenhall

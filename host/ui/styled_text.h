#pragma once

#include <initializer_list>
#include <string>
#include <vector>

// What the page shows, before anything is said about colours or about where on the screen it goes.
namespace tavenhall {

enum class Style {
  text,
  dim,  // what matters less: labels, hints
  strong,
  heading,
  current,  // where the user is
  rule,     // lines and frames
  good,
  warning,
  bad,
  barDone,
  barAhead,
  field,  // what the user types
  button,
  buttonFocused,  // what Enter presses
  buttonOff,
};

struct Span {
  std::string text;
  Style style = Style::text;
};

// Spans one after the other, in one line.
using Line = std::vector<Span>;

// The text wrapped to `width`, every line in that style.
[[nodiscard]] std::vector<Line> wrappedLines(const std::string& text, int width, Style style = Style::text);

// Where the texts beside these labels begin: two cells behind the widest.
[[nodiscard]] int labelColumns(std::initializer_list<const char*> labels);

// A label with its text beside it: the label once, the text wrapped, each line `indent` cells from the left.
[[nodiscard]] std::vector<Line> labelledLines(const std::string& label, const std::string& text, int indent,
                                              int width, Style style = Style::text);

// Appends the one to the other.
void append(std::vector<Line>& lines, std::vector<Line> more);

}  // namespace tavenhall

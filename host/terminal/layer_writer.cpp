#include "host/base/display_text.h"
#include "host/terminal/page_layout.h"

#include <algorithm>

namespace tavenhall {

namespace {

std::string repeated(const char* sign, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    text += sign;
  }
  return text;
}

// Marks the default button not only by colour, which not every terminal shows.
std::string buttonText(const PageButton& button) {
  return button.isEnabled ? "[ " + button.label + " ]" : "  " + button.label + "  ";
}

}  // namespace

const Signs& unicodeSigns() {
  static constexpr Signs kSigns{"─", "│", "╭", "╮", "╰", "╯", "━", "─", "┃", "○", "●", "✓", "✗", "↑↓"};
  return kSigns;
}

const Signs& plainSigns() {
  static constexpr Signs kSigns{"-", "|", "+", "+", "+", "+", "#", "-", "#", "o", "*", "+", "x", "Up/Down"};
  return kSigns;
}

ScrolledText scrolled(std::vector<Line> lines, int scroll, int rows) {
  ScrolledText text;
  const auto count = static_cast<int>(lines.size());
  text.extent = {std::max(rows, 1), std::max(count - rows, 0)};
  text.first = std::clamp(scroll, 0, text.extent.maximum);
  text.lines = std::move(lines);
  return text;
}

void LayerWriter::put(int row, int column, std::string text, Style style) {
  if (!text.empty() && row >= 0 && row < layer_.place.rows) {
    layer_.runs.push_back({row, column, std::move(text), style});
  }
}

void LayerWriter::putLine(int row, int column, const Line& line) {
  for (const Span& span : line) {
    put(row, column, span.text, span.style);
    column += displayWidth(span.text);
  }
}

void LayerWriter::putRule(int row, int column, int columns) {
  put(row, column, repeated(signs_.horizontal, columns), Style::rule);
}

void LayerWriter::putFrame() {
  const int rows = layer_.place.rows;
  const int columns = layer_.place.columns;
  const std::string middle = repeated(signs_.horizontal, columns - 2);
  put(0, 0, signs_.topLeft + middle + signs_.topRight, Style::rule);
  for (int row = 1; row < rows - 1; ++row) {
    put(row, 0, signs_.vertical, Style::rule);
    put(row, columns - 1, signs_.vertical, Style::rule);
  }
  put(rows - 1, 0, signs_.bottomLeft + middle + signs_.bottomRight, Style::rule);
}

void LayerWriter::putScrolled(const ScrolledText& text, int row, int column, int rows, int barColumn) {
  const auto count = static_cast<int>(text.lines.size());
  for (int i = 0; i < rows && text.first + i < count; ++i) {
    const int line = text.first + i;
    putLine(row + i, column, text.lines[static_cast<std::size_t>(line)]);
  }
  layer_.extent = text.extent;
  if (text.extent.maximum == 0 || rows < 2) {
    return;
  }
  const int thumb = std::clamp(rows * rows / count, 1, rows - 1);
  const int thumbStart = (rows - thumb) * text.first / text.extent.maximum;
  for (int i = 0; i < rows; ++i) {
    const bool isThumb = i >= thumbStart && i < thumbStart + thumb;
    put(row + i, barColumn, isThumb ? signs_.thumb : signs_.vertical, isThumb ? Style::dim : Style::rule);
  }
}

// Draws the hot key over its letter of the label.
void LayerWriter::putHotKey(const PageButton& button, int row, int column, Style style) {
  for (std::size_t i = 0; i < button.label.size(); ++i) {
    const char character = button.label[i];
    const char key =
        character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    if (key == button.hotKey) {
      const int before = displayWidth(std::string_view(button.label).substr(0, i));
      layer_.runs.push_back({row, column + before, std::string(1, character), style, true});
      return;
    }
  }
}

void LayerWriter::putButtons(const std::vector<PageButton>& buttons, std::optional<std::size_t> focus, int row,
                             int end) {
  int column = end;
  for (std::size_t i = buttons.size(); i-- > 0;) {
    const std::string text = buttonText(buttons[i]);
    column -= displayWidth(text);
    const Style style = !buttons[i].isEnabled ? Style::buttonOff
                        : focus == i          ? Style::buttonFocused
                                              : Style::button;
    put(row, column, displayText(text), style);
    if (buttons[i].isEnabled) {
      putHotKey(buttons[i], row, column + 2, style);
      layer_.buttons.push_back(
          {{layer_.place.row + row, layer_.place.column + column, 1, displayWidth(text)}, i});
    }
    column -= 2;
  }
}

}  // namespace tavenhall

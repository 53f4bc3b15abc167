#include "host/ui/styled_text.h"

#include "host/base/display_text.h"

#include <algorithm>
#include <iterator>

namespace tavenhall {

std::vector<Line> wrappedLines(const std::string& text, int width, Style style) {
  std::vector<Line> lines;
  for (std::string& line : wrapText(text, width)) {
    lines.push_back({{std::move(line), style}});
  }
  return lines;
}

int labelColumns(std::initializer_list<const char*> labels) {
  int widest = 0;
  for (const char* label : labels) {
    widest = std::max(widest, displayWidth(label));
  }
  return widest + 2;
}

std::vector<Line> labelledLines(const std::string& label, const std::string& text, int indent, int width,
                                Style style) {
  std::vector<Line> lines;
  std::string left = label;
  for (std::string& line : wrapText(text, width - indent)) {
    const int gap = std::max(indent - displayWidth(left), left.empty() ? 0 : 1);
    lines.push_back(
        {{left + std::string(static_cast<std::size_t>(gap), ' '), Style::dim}, {std::move(line), style}});
    left.clear();
  }
  return lines;
}

void append(std::vector<Line>& lines, std::vector<Line> more) {
  std::move(more.begin(), more.end(), std::back_inserter(lines));
}

}  // namespace tavenhall

#include "tests/terminal/rendered.h"

#include "host/base/display_text.h"
#include "host/base/unicode.h"

#include <gtest/gtest.h>
#include <set>
#include <utility>
#include <wchar.h>

namespace tavenhall::test {

namespace {

using Cells = std::vector<std::vector<std::string>>;  // the second cell of a wide character is empty
using Places = std::set<std::pair<int, int>>;         // rows and columns

// `taken`: where texts of the layer are. A hot key is written over its own label.
void drawRun(Cells& cells, const Layer& layer, const Run& run, Places& taken) {
  const int row = layer.place.row + run.row;
  int column = layer.place.column + run.column;
  EXPECT_GE(run.column, 0) << run.text;
  EXPECT_LE(run.column + displayWidth(run.text), layer.place.columns) << run.text;
  for (const char32_t character : decodeUtf8(run.text)) {
    const int width = wcwidth(static_cast<wchar_t>(character));
    if (column >= static_cast<int>(cells[row].size()) || column < 0) {
      return;
    }
    if (width == 0) {
      cells[row][column - 1] += encodeUtf8({&character, 1});
      continue;
    }
    cells[row][column] = encodeUtf8({&character, 1});
    if (width == 2 && column + 1 < static_cast<int>(cells[row].size())) {
      cells[row][column + 1].clear();
    }
    const bool isFree = taken.emplace(row, column).second;
    EXPECT_TRUE(isFree || run.isUnderlined) << run.text << " is written over something";
    column += width;
  }
}

}  // namespace

std::vector<std::string> textOf(const std::vector<Line>& lines) {
  std::vector<std::string> texts;
  for (const Line& line : lines) {
    std::string& text = texts.emplace_back();
    for (const Span& span : line) {
      text += span.text;
    }
  }
  return texts;
}

std::vector<std::string> rendered(const std::vector<Layer>& layers, Size size) {
  Cells cells(size.rows, std::vector<std::string>(size.columns, " "));
  for (const Layer& layer : layers) {
    const Rect& place = layer.place;
    const bool isInside = place.row >= 0 && place.column >= 0 && place.row + place.rows <= size.rows &&
                          place.column + place.columns <= size.columns;
    EXPECT_TRUE(isInside) << "a layer goes beyond the screen";
    if (!isInside) {
      continue;
    }
    for (int row = 0; row < place.rows; ++row) {
      for (int column = 0; column < place.columns; ++column) {
        cells[place.row + row][place.column + column] = " ";
      }
    }
    Places taken;
    for (const Run& run : layer.runs) {
      drawRun(cells, layer, run, taken);
    }
  }
  std::vector<std::string> rows;
  for (const auto& row : cells) {
    std::string text;
    for (const std::string& cell : row) {
      text += cell;
    }
    text.erase(text.find_last_not_of(' ') + 1);
    rows.push_back(text);
  }
  return rows;
}

std::string renderedText(const std::vector<Layer>& layers, Size size) {
  std::string text;
  for (const std::string& row : rendered(layers, size)) {
    text += row + "\n";
  }
  return text;
}

std::vector<std::string> rowsOf(PageDriver& driver, Size size, const Signs& signs) {
  return rendered(layOut(driver.page, driver.now(), size, signs), size);
}

}  // namespace tavenhall::test

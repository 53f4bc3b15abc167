#pragma once

#include "host/terminal/page_model.h"
#include "host/ui/styled_text.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

// Computes the layout: texts at positions, from the page's state and a size. Independent of curses. One thread.
namespace tavenhall {

struct Size {
  int rows = 0;
  int columns = 0;

  bool operator==(const Size&) const = default;
};

// The smallest size in which the page is readable.
inline constexpr Size kSmallestPage{20, 60};

struct Rect {
  int row = 0;
  int column = 0;
  int rows = 0;
  int columns = 0;

  [[nodiscard]] bool contains(int atRow, int atColumn) const {
    return atRow >= row && atRow < row + rows && atColumn >= column && atColumn < column + columns;
  }
  bool operator==(const Rect&) const = default;
};

struct Run {
  int row = 0;  // within its sheet of the layout
  int column = 0;
  std::string text;
  Style style = Style::text;
  bool isUnderlined = false;  // a hot key
};

struct PlacedButton {
  Rect place;  // on the screen
  std::size_t index = 0;
};

// A rectangle of the screen and its texts; the rest of it is blank.
struct Layer {
  Rect place;
  std::vector<Run> runs;
  std::vector<PlacedButton> buttons;
  ScrollExtent extent;  // of the text that scrolls in it
};

// The characters for frames and marks.
struct Signs {
  const char* horizontal;
  const char* vertical;
  const char* topLeft;
  const char* topRight;
  const char* bottomLeft;
  const char* bottomRight;
  const char* barDone;
  const char* barAhead;
  const char* thumb;  // of a scroll bar
  const char* ahead;  // of a step
  const char* current;
  const char* done;
  const char* failed;
  const char* arrows;  // the keys that scroll
};
[[nodiscard]] const Signs& unicodeSigns();
[[nodiscard]] const Signs& plainSigns();  // ASCII alone

// The page's layer, then its windows, the front one last. If the terminal is too small, a single layer with one
// line.
[[nodiscard]] std::vector<Layer> layOut(PageModel& model, PageModel::Time now, Size size, const Signs& signs);

// The front layer's button at a position of the screen.
[[nodiscard]] std::optional<std::size_t> buttonAt(const std::vector<Layer>& layers, int row, int column);

// The part of its text that a window or the page can show, from line `scroll` on.
struct ScrolledText {
  std::vector<Line> lines;
  int first = 0;
  ScrollExtent extent;
};
[[nodiscard]] ScrolledText scrolled(std::vector<Line> lines, int scroll, int rows);

// Writes into a layer.
class LayerWriter {
 public:
  LayerWriter(Rect place, const Signs& signs) : signs_(signs) { layer_.place = place; }

  void put(int row, int column, std::string text, Style style);
  void putLine(int row, int column, const Line& line);
  void putRule(int row, int column, int columns);
  void putFrame();

  // The visible lines, with a scroll bar in `barColumn` if there are more.
  void putScrolled(const ScrolledText& text, int row, int column, int rows, int barColumn);

  // A row of buttons that ends before column `end`.
  void putButtons(const std::vector<PageButton>& buttons, std::optional<std::size_t> focus, int row, int end);

  [[nodiscard]] const Signs& signs() const { return signs_; }
  [[nodiscard]] Layer take() { return std::move(layer_); }

 private:
  void putHotKey(const PageButton& button, int row, int column, Style style);

  const Signs& signs_;
  Layer layer_;
};

}  // namespace tavenhall

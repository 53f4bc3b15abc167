#include "host/terminal/palette.h"

#include <array>
#include <cstdlib>
#include <string_view>

namespace tavenhall {

namespace {

enum Pair : short { kDefault, kAccent, kFaint, kGood, kWarning, kBad, kFocus, kPairs };

struct Colour {
  short foreground;
  short background;
};

constexpr short kOwn = -1;  // the terminal's own

// In the order of the pairs. Of medium brightness, so that they are readable on black and on white.
constexpr std::array<Colour, kPairs> kManyColours{
    {{kOwn, kOwn}, {32, kOwn}, {244, kOwn}, {71, kOwn}, {172, kOwn}, {167, kOwn}, {231, 25}}};
constexpr std::array<Colour, kPairs> kFewColours{{{kOwn, kOwn},
                                                  {COLOR_CYAN, kOwn},
                                                  {kOwn, kOwn},
                                                  {COLOR_GREEN, kOwn},
                                                  {COLOR_YELLOW, kOwn},
                                                  {COLOR_RED, kOwn},
                                                  {COLOR_WHITE, COLOR_BLUE}}};

bool coloursAreUnwanted() {
  const char* noColor = std::getenv("NO_COLOR");
  return noColor != nullptr && *noColor != '\0';
}

}  // namespace

Palette::Palette() {
  if (coloursAreUnwanted() || !has_colors() || start_color() == ERR || use_default_colors() == ERR) {
    return;
  }
  depth_ = COLORS >= 256 ? Depth::many : COLORS >= 8 ? Depth::few : Depth::none;
  if (depth_ == Depth::none) {
    return;
  }
  const auto& colours = depth_ == Depth::many ? kManyColours : kFewColours;
  for (short pair = 1; pair < kPairs; ++pair) {
    init_pair(pair, colours[pair].foreground, colours[pair].background);
  }
}

Palette::Look Palette::look(Style style) const {
  const bool isColoured = depth_ != Depth::none;
  const auto in = [isColoured](short pair, attr_t otherwise) {
    return isColoured ? Look{A_NORMAL, pair} : Look{otherwise, 0};
  };
  const auto boldIn = [isColoured](short pair) { return Look{A_BOLD, isColoured ? pair : short{0}}; };
  // With few colours there is no grey, so use dim.
  const Look faint = depth_ == Depth::many ? Look{A_NORMAL, kFaint} : Look{A_DIM, 0};
  switch (style) {
    case Style::text:
    case Style::button: return {};
    case Style::dim:
    case Style::rule:
    case Style::barAhead:
    case Style::buttonOff: return faint;
    case Style::strong:
    case Style::heading: return {A_BOLD, 0};
    case Style::current:
    case Style::field: return boldIn(kAccent);
    case Style::good: return boldIn(kGood);
    case Style::warning: return boldIn(kWarning);
    case Style::bad: return boldIn(kBad);
    case Style::barDone: return in(kAccent, A_BOLD);
    case Style::buttonFocused: return isColoured ? Look{A_BOLD, kFocus} : Look{A_REVERSE, 0};
  }
  return {};
}

}  // namespace tavenhall

#pragma once

#include "host/ui/styled_text.h"

// Curses without its macros, because they have common names: clear, move, timeout.
#define NCURSES_NOMACROS 1
#ifndef NCURSES_WIDECHAR
#define NCURSES_WIDECHAR 1
#endif
#include <curses.h>
#include <panel.h>

namespace tavenhall {

// The attributes of each style, in 256, 16 or 8 colours, or in none, also if NO_COLOR is set. Keeps the
// terminal's own background. Construct it after curses has started.
class Palette {
 public:
  Palette();

  struct Look {
    attr_t attributes = A_NORMAL;
    short pair = 0;
  };
  [[nodiscard]] Look look(Style style) const;

 private:
  enum class Depth { none, few, many };
  Depth depth_ = Depth::none;
};

}  // namespace tavenhall

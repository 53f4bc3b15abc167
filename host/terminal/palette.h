#pragma once

#include "host/terminal/curses_includes.h"
#include "host/ui/styled_text.h"

namespace tavenhall {

// How each style looks, in as many colours as there are: 256, 16 or 8, or none at all, which is also what a
// user gets who sets NO_COLOR. The terminal's own background stays, dark or light. After curses has started.
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

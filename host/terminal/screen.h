#pragma once

#include "host/terminal/page_layout.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tavenhall {

// A key or a mouse event.
struct Input {
  enum class Kind { character, key, click, wheelUp, wheelDown };
  Kind kind;
  std::int32_t code = 0;  // a character, or the number of a curses key
  int row = 0;            // of the mouse
  int column = 0;
};

// The terminal in full-screen mode, until destruction or the end of the process. One instance at a time; one
// thread.
//
// Curses writes into a buffer, which is written to the terminal without blocking: a terminal that does not
// read, such as a hanging connection, must not delay the reading of events.
class Screen {
 public:
  // `atEnd` is written to the terminal at the end, also at a crash. Throws std::runtime_error if curses cannot
  // use this terminal.
  explicit Screen(const std::string& atEnd = "");
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;
  ~Screen();

  [[nodiscard]] Size size() const;
  [[nodiscard]] static const Signs& signs();

  // Draws the layers, the last one in front. Call it only while nothing is backlogged.
  void draw(const std::vector<Layer>& layers);

  // Writes escape sequences that change nothing of what is drawn.
  void send(const std::string& sequences);

  // Call it after the terminal's size has changed.
  void takeNewSize();

  // The next drawing draws everything, because the terminal's content is unknown. The second also sets the
  // terminal's modes again; call it after the process was suspended.
  static void drawAllAnew();
  void comeBack();

  // The input since the last call. Call it when the descriptor is readable.
  [[nodiscard]] std::vector<Input> read();
  [[nodiscard]] int inputDescriptor() const;

  // Writes the backlog. Call it when the descriptor is writable.
  void writeBacklog();
  [[nodiscard]] bool isBacklogged() const;
  [[nodiscard]] int outputDescriptor() const;

  // Whether writing has failed for good because the terminal is gone.
  [[nodiscard]] bool isGone() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace tavenhall

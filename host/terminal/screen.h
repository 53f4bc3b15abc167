#pragma once

#include "host/terminal/page_layout.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tavenhall {

// A key or a mouse event, as the terminal gave it.
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
  // Throws std::runtime_error if curses cannot use this terminal.
  Screen();
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;
  ~Screen();

  [[nodiscard]] Size size() const;
  [[nodiscard]] static const Signs& signs();

  // Draws the layers, the last one in front. Call it only while nothing is backlogged.
  void draw(const std::vector<Layer>& layers);

  // The terminal has another size now.
  void takeNewSize();

  // The terminal may hold anything: the next drawing draws everything. The second also sets its modes again,
  // for when the process was stopped.
  static void drawAllAnew();
  void comeBack();

  // What was typed since the last call. Call it when the descriptor can be read.
  [[nodiscard]] std::vector<Input> read();
  [[nodiscard]] int inputDescriptor() const;

  // Writes what the terminal did not take yet. Call it when the descriptor can be written.
  void writeBacklog();
  [[nodiscard]] bool isBacklogged() const;
  [[nodiscard]] int outputDescriptor() const;

  // Writing has failed for good: the terminal has gone away.
  [[nodiscard]] bool isGone() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace tavenhall

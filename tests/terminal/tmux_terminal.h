#pragma once

#include "tests/support/waiting.h"

#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

namespace tavenhall::test {

// The built program in a terminal of its own: a tmux server that belongs to the test alone, whose socket lies
// in the test's private /tmp. The server goes when its object does, with what runs in it.
class TmuxTerminal {
 public:
  using Environment = std::map<std::string, std::string>;

  // Runs the command in a terminal of that size, in a UTF-8 locale unless the environment says otherwise.
  // When it ends, "[ended with N]" appears, and the terminal stays.
  TmuxTerminal(int columns, int rows, const std::vector<std::string>& command,
               const Environment& environment = {});
  TmuxTerminal(const TmuxTerminal&) = delete;
  TmuxTerminal& operator=(const TmuxTerminal&) = delete;
  ~TmuxTerminal();

  // Keys by tmux's names: "Enter", "Tab", "C-c", "c".
  void press(std::initializer_list<const char*> keys);

  // A cell of the screen; from 0.
  struct Place {
    int column = 0;
    int row = 0;
  };

  // The left button of the mouse, pressed and then let go there.
  void click(int column, int row);

  // The same at each of the places, all of it in one piece, as over a slow connection.
  void clickAtOnce(const std::vector<Place>& places);

  // The mouse's wheel, by one notch.
  void turnWheel(bool down, int column, int row);

  void resize(int columns, int rows);

  // The terminal goes away, as when its window is closed.
  void close();

  // What shows: a text a row.
  [[nodiscard]] std::string screen();

  // Waits until what shows is as it should be, and gives it; at the latest after a minute, whatever it is then.
  std::string waitUntil(const std::function<bool(const std::string& shown)>& isRight);

  // What shows once the text is on it. Fails the test, with what shows, when it does not come.
  std::string waitFor(const std::string& text);

  // The same with the escape sequences for its colours.
  std::string waitForColoured(const std::string& text);

  // Waits until the text is gone.
  void waitUntilGone(const std::string& text);

  // Where the text begins on the screen. Fails the test when it is not there.
  [[nodiscard]] Place find(const std::string& text);

  // What tmux knows of the terminal, as "#{alternate_on}".
  [[nodiscard]] std::string ask(const std::string& format);

  // The program's process, which shows the page; its engine is a child of that.
  [[nodiscard]] pid_t program();

 private:
  std::string tmux(std::vector<std::string> arguments) const;

  const std::string server_;  // a name of its own: one that is about to end still takes a caller
};

// What a process has had of the processors, all its threads together.
struct ProcessorUse {
  long ticks = 0;     // of the clock: time
  long switches = 0;  // how often it was given one; a process that only waits is given none

  bool operator==(const ProcessorUse&) const = default;
};
[[nodiscard]] ProcessorUse processorUseOf(pid_t process);

// Until both processes have used no processor for so many seconds on end. Fails the test when that never comes.
void waitForIdle(pid_t one, pid_t other, int seconds);

// Until it is stopped. Fails the test after a minute.
void waitUntilStopped(pid_t process);

}  // namespace tavenhall::test

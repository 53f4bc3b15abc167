#pragma once

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

  // The left button of the mouse, pressed and let go there; from 0.
  void click(int column, int row);

  void resize(int columns, int rows);

  // The terminal goes away, as when its window is closed.
  void close();

  // What shows: a text a row. `coloured` has the escape sequences for its colours, too.
  [[nodiscard]] std::string screen();
  [[nodiscard]] std::string colouredScreen();

  // What shows once the text is on it. Fails the test, with what shows, when it does not come within half a
  // minute.
  std::string waitFor(const std::string& text);

  // Waits until the text is gone.
  void waitUntilGone(const std::string& text);

  // Where the text begins on the screen; from 0. Fails the test when it is not there.
  struct Place {
    int column = 0;
    int row = 0;
  };
  [[nodiscard]] Place find(const std::string& text);

  // What tmux knows of the terminal, as "#{alternate_on}".
  [[nodiscard]] std::string ask(const std::string& format);

  // The program's process, which shows the page; its engine is a child of that.
  [[nodiscard]] pid_t program();

 private:
  static std::string tmux(std::vector<std::string> arguments);
};

// The processes that a process has started and that still run.
[[nodiscard]] std::vector<pid_t> childrenOf(pid_t process);

// The processor time that a process has used, in clock ticks.
[[nodiscard]] long ticksOf(pid_t process);

// Until it has ended; fails the test after half a minute.
void waitForEndOf(pid_t process);

}  // namespace tavenhall::test

#pragma once

#include "host/base/line_reader.h"

#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace tavenhall {

enum class Command { title, enter, forward, back, quit, wait };

// What one line of the input says: a command, an alert's answer, or what is wrong with the line.
struct BadLine {
  std::string message;
};
using ParsedLine = std::variant<Command, int, BadLine>;

[[nodiscard]] ParsedLine parseCommandLine(std::string_view line);

// What the engine is told to do: commands and answers, each in a queue of its own. Main thread only.
class CommandSource {
 public:
  // Reads JSON lines from the descriptor, which stays the caller's.
  explicit CommandSource(int descriptor) : lines_(descriptor) {}

  // A source without input: these commands, and `answer` for every alert.
  CommandSource(std::deque<Command> commands, int answer)
      : lines_(-1), commands_(std::move(commands)), everyAnswer_(answer) {}

  // What to poll for input; -1 once the input is closed, and where there is none.
  [[nodiscard]] int descriptor() const { return lines_.descriptor(); }

  // Takes what is there to read, without waiting. Call it when the descriptor is readable.
  void read();

  [[nodiscard]] bool isClosed() const { return !lines_.isOpen(); }

  // Adds a command at the end of the queue.
  void add(Command command) { commands_.push_back(command); }

  // The next command, which stays in the queue until it is dropped.
  [[nodiscard]] std::optional<Command> next() const;
  void drop();

  // Takes the next answer.
  [[nodiscard]] std::optional<int> takeAnswer();

  // Takes what is wrong with the next line that was neither a command nor an answer.
  [[nodiscard]] std::optional<std::string> takeBadLine();

 private:
  void take(std::string_view line);

  LineReader lines_;
  std::deque<Command> commands_;
  std::deque<int> answers_;
  std::deque<std::string> badLines_;
  std::optional<int> everyAnswer_;
};

}  // namespace tavenhall

#pragma once

#include "host/base/files.h"
#include "host/protocol/json_form.h"

#include <deque>
#include <optional>

namespace tavenhall::test {

// The requests that come as lines on a descriptor: commands and answers, each in a queue of its own. One
// thread.
class RequestQueue {
 public:
  explicit RequestQueue(int descriptor) : lines_(descriptor) {}

  // Reads what is there. Call it when the descriptor is readable.
  void read() {
    lines_.read([this](const std::string& line) {
      const auto request = decodeRequest(line);
      if (const auto* good = std::get_if<Request>(&request)) {
        if (const auto* command = std::get_if<Command>(good)) {
          commands_.push_back(*command);
        } else {
          answers_.push_back(std::get<Answer>(*good).button);
        }
      }
    });
  }

  [[nodiscard]] bool isClosed() const { return !lines_.isOpen(); }
  [[nodiscard]] std::optional<Command> nextCommand() const {
    return commands_.empty() ? std::nullopt : std::optional(commands_.front());
  }
  void dropCommand() { commands_.pop_front(); }
  [[nodiscard]] std::optional<int> takeAnswer() {
    if (answers_.empty()) {
      return std::nullopt;
    }
    const int answer = answers_.front();
    answers_.pop_front();
    return answer;
  }

 private:
  LineReader lines_;
  std::deque<Command> commands_;
  std::deque<int> answers_;
};

}  // namespace tavenhall::test

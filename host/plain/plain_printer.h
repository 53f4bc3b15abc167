#pragma once

#include "host/protocol/messages.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavenhall {

// Turns events into lines of text. Progress is printed at most once a second.
class PlainPrinter {
 public:
  using Clock = std::chrono::steady_clock;

  // `print` gets each line without its newline. `hasAnswers`: the user answers prompts, so their buttons are
  // shown.
  explicit PlainPrinter(std::function<void(std::string_view line)> print, bool hasAnswers = true)
      : print_(std::move(print)), hasAnswers_(hasAnswers) {}

  void show(const Event& event, Clock::time_point now);

  // Prints the pending progress line, if there is one. Call it before a prompt and at the end.
  void flush();

 private:
  void showInstructions(const std::string& text);
  void showPhase(const event::Phase& phase, Clock::time_point now);
  void showAlert(const event::Alert& alert);
  void showText(std::string_view text);
  void showProgress(Clock::time_point now);

  std::function<void(std::string_view)> print_;
  bool hasAnswers_;
  std::string instructions_;
  std::string status_;
  double minimum_ = 0.0;
  double maximum_ = 100.0;
  std::optional<int> percent_;  // none before the first value
  std::string shownProgress_;
  std::string heldProgress_;  // empty: nothing is held back
  std::optional<Clock::time_point> lastProgress_;
};

}  // namespace tavenhall

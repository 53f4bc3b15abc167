#pragma once

#include "platform/installer_host.h"
#include "platform/installer_pane.h"

#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace tavenhall {

// What happened in one run, kept for its summary and for the program's last word. Any thread.
class RunRecord {
 public:
  void alertShown(const Alert& alert);
  void alertAnswered(int answer);
  void sheetShown(const Sheet& sheet);
  void copyStarted();
  void copyEnded(std::int32_t result);  // of the copy that started last

  // Main thread, from here on.
  void leftForward() { isLeft_ = true; }
  [[nodiscard]] bool isLeft() const { return isLeft_; }

  // Did the page let itself be left forwards, with every copy successful and no sheet of failure?
  [[nodiscard]] bool isSuccess() const;

  // One JSON object and a newline.
  [[nodiscard]] std::string summary(const PaneSnapshot& pane) const;

 private:
  using Clock = std::chrono::steady_clock;

  struct ShownAlert {
    std::string message;
    std::string informative;
    std::vector<std::string> buttons;
    std::optional<int> answer;
  };
  struct ShownSheet {
    std::string button;
    std::string message;
  };
  struct Copy {
    Clock::time_point start;
    std::optional<Clock::time_point> end;
  };

  const Clock::time_point start_ = Clock::now();
  bool isLeft_ = false;
  mutable std::mutex mutex_;  // guards what follows
  std::vector<ShownAlert> alerts_;
  std::vector<ShownSheet> sheets_;
  std::vector<Copy> copies_;
  bool aCopyFailed_ = false;
};

}  // namespace tavenhall

#pragma once

#include "host/protocol/messages.h"
#include "host/ui/introduction.h"
#include "host/ui/progress_meter.h"
#include "host/ui/terminal_notices.h"

#include <string>

namespace tavenhall {

// Follows a run for the notices of its terminal. The functions return what is to be written to the terminal,
// which may be nothing. One thread.
class PlainNotices {
 public:
  explicit PlainNotices(const RunDescription& description);

  [[nodiscard]] std::string begin() const { return notices_.begin(); }
  [[nodiscard]] std::string handle(const Event& event);

  // A command asks for a password, or does not any more.
  [[nodiscard]] std::string setPasswordIsNeeded(bool isNeeded);

  [[nodiscard]] std::string end(bool isSuccess);
  [[nodiscard]] std::string leave() const { return notices_.end(); }

 private:
  TerminalNotices notices_;
  TerminalNotice notice_;
  ProgressMeter meter_;
  bool hasPrompts_;  // that a person answers here
  bool isPresent_;   // the past is over
};

}  // namespace tavenhall

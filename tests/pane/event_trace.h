#pragma once

#include "tests/support/files.h"
#include "tests/support/recording_host.h"
#include "tests/support/recording_platform.h"

#include <algorithm>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace tavenhall::test {

// What the page did, in the one order in which it happened: the log's messages ("log <message>"), the
// host's lines, and the platform's calls, as their own records have them.
//
// Left out is what comes at no certain place: the one-second sleeps of the poll, the ends of threads, and
// the platform's calls for permissions and aliases, which no hook tells of.
//
// It takes the host's onLine and the platform's shell and onSleep; a test sets its own here instead, before
// the page is called. A test's own removal and fileSystem must call takeRecords().
class EventTrace {
 public:
  explicit EventTrace(RecordingHost& host) {
    takeNewRecords();
    events_.clear();  // what was before it is not its own
    host.onLine = [this](const std::string& line) { add(line); };
    platform().shell = [this](const std::string& command) {
      takeRecords();
      return shell ? shell(command) : 0;
    };
    platform().onSleep = [this](unsigned seconds) {
      if (seconds != 1) {
        takeRecords();
      }
      if (onSleep) {
        onSleep(seconds);
      }
    };
  }
  EventTrace(const EventTrace&) = delete;
  EventTrace& operator=(const EventTrace&) = delete;
  ~EventTrace() {
    platform().shell = nullptr;
    platform().onSleep = nullptr;
  }

  std::function<void(const std::string& line)> onLine;
  std::function<int(const std::string& command)> shell;
  std::function<void(unsigned seconds)> onSleep;

  // Takes over what the log and the platform have recorded since the last time.
  void takeRecords() {
    const std::lock_guard lock(mutex_);
    takeNewRecords();
  }

  [[nodiscard]] std::vector<std::string> events() {
    const std::lock_guard lock(mutex_);
    takeNewRecords();
    return events_;
  }

  // Without the lines of updateProgress.
  [[nodiscard]] std::vector<std::string> eventsButProgress() {
    std::vector<std::string> chosen = events();
    std::erase_if(chosen, [](std::string_view line) {
      return line.starts_with("main: animation.") || line.starts_with("main: progress.") ||
             line.starts_with("main: status");
    });
    return chosen;
  }

 private:
  void add(const std::string& line) {
    if (!line.starts_with("thread.ended ")) {
      const std::lock_guard lock(mutex_);
      takeNewRecords();
      if (!line.starts_with("thread.started ")) {  // the platform's call says it
        events_.push_back(line);
      }
    }
    if (onLine) {
      onLine(line);
    }
  }

  void takeNewRecords() {
    if (exists(kLog)) {
      const auto messages = logMessages();
      for (; logged_ < messages.size(); ++logged_) {
        events_.push_back("log " + messages[logged_]);
      }
    }
    const auto calls = platform().calls();
    for (; called_ < calls.size(); ++called_) {
      const std::string& call = calls[called_];
      if (call != "sleep 1" && !call.starts_with("permissions ") && !call.starts_with("alias ")) {
        events_.push_back(call);
      }
    }
  }

  std::mutex mutex_;
  std::vector<std::string> events_;
  std::size_t logged_ = 0;
  std::size_t called_ = 0;
};

// Those of `lines` that begin with `start`, in order.
[[nodiscard]] inline std::vector<std::string> thoseThatBegin(std::vector<std::string> lines,
                                                             std::string_view start) {
  std::erase_if(lines, [start](std::string_view line) { return !line.starts_with(start); });
  return lines;
}

// The message that was logged last; empty when there is none.
[[nodiscard]] inline std::string lastLogMessage() {
  const auto messages = logMessages();
  return messages.empty() ? "" : messages.back();
}

}  // namespace tavenhall::test

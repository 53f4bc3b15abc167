#pragma once

#include "platform/thread_start.h"

#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>

@class InstallDataPane;

namespace tavenhall {

// The threads of one page. Each begins in the method of the pane that bears the thread's name, with no
// argument; what it is to run waits here.
class PageThreads {
 public:
  // Detaches a thread that sends `name` to the pane. False, with nothing told to the host, when none can be
  // had.
  [[nodiscard]] bool detach(::InstallDataPane* pane, InstallerHost& host, const char* name, void (*body)(void*),
                            void* target) noexcept;

  // That method, on the thread: runs what was to run under this name and has not begun yet; nothing when there
  // is nothing.
  void run(const char* name) noexcept;

 private:
  std::mutex mutex_;
  std::map<std::string, std::deque<std::shared_ptr<ThreadStart>>, std::less<>> waiting_;  // guarded by mutex_
};

}  // namespace tavenhall

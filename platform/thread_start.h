#pragma once

#include "platform/installer_host.h"

#include <cstddef>
#include <semaphore>

namespace tavenhall {

// A walk down a folder tree recurses. The default of some systems' threads is too small for the deepest: 512 kB
// on macOS, which is some 170 folders.
inline constexpr std::size_t kPageThreadStack = 8388608;  // bytes

// A page's thread, between the one that starts it and itself. It ensures the order of the notifications:
// of the start before the body runs, of the end after it. Both hold it until they are done with it.
class ThreadStart {
 public:
  // `name` is a literal.
  ThreadStart(InstallerHost& host, const char* name, void (*body)(void*), void* target) noexcept
      : host_(host), name_(name), body_(body), target_(target) {}

  // The starter, once there is a thread: notifies the host and lets the body run.
  void release() noexcept {
    host_.pageThreadStarted(name_);
    hostKnows_.release();
  }

  // The thread, as all that it does.
  void run() noexcept {
    hostKnows_.acquire();
    body_(target_);
    host_.pageThreadEnded(name_);
  }

 private:
  InstallerHost& host_;
  const char* name_;
  void (*body_)(void*);
  void* target_;
  std::binary_semaphore hostKnows_{0};
};

}  // namespace tavenhall

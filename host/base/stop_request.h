#pragma once

#include "platform/host_system.h"

#include <atomic>
#include <exception>
#include <vector>

namespace tavenhall {

// The user has stopped the command. Thrown so that destructors remove everything that it has created.
class Stopped : public std::exception {
 public:
  [[nodiscard]] const char* what() const noexcept override { return "stopped"; }
};

// Handles SIGINT, SIGTERM and SIGHUP, whose default action would leave mounts and folders behind. Those that
// the process ignores stay so, as nohup wants it. One instance per process; a forked child creates its own. One
// thread, but for hasCome().
class StopRequest {
 public:
  StopRequest();
  StopRequest(const StopRequest&) = delete;
  StopRequest& operator=(const StopRequest&) = delete;
  ~StopRequest();

  // Any thread.
  [[nodiscard]] bool hasCome() const { return hasCome_; }
  void throwIfCome() const;

  // Installs the handlers again after another component has replaced them.
  void takeSignals();

  // A descriptor that is readable after a stop request.
  [[nodiscard]] int descriptor() const { return wakeUp_.descriptor(); }

 private:
  static void note(int signal);

  static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets it");
  std::atomic<bool> hasCome_ = false;
  std::vector<int> signals_;
  WakeUp wakeUp_;
};

}  // namespace tavenhall

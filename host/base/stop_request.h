#pragma once

#include "platform/host_system.h"

#include <csignal>
#include <exception>

namespace tavenhall {

// The user has stopped the command. Thrown so that destructors remove everything that it has created.
class Stopped : public std::exception {
 public:
  [[nodiscard]] const char* what() const noexcept override { return "stopped"; }
};

// Handles SIGINT, SIGTERM and SIGHUP, whose default action would leave mounts and folders behind. One instance
// per process; a forked child creates its own. One thread.
class StopRequest {
 public:
  StopRequest();
  StopRequest(const StopRequest&) = delete;
  StopRequest& operator=(const StopRequest&) = delete;
  ~StopRequest();

  // Installs the handlers again after another component has replaced them.
  void takeSignals();

  [[nodiscard]] bool hasCome() const { return hasCome_ != 0; }
  void throwIfCome() const;

  // A descriptor that is readable after a stop request.
  [[nodiscard]] int descriptor() const { return wakeUp_.descriptor(); }

 private:
  static void note(int signal);

  volatile std::sig_atomic_t hasCome_ = 0;
  WakeUp wakeUp_;
};

}  // namespace tavenhall

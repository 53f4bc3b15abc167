#pragma once

#include "platform/host_system.h"

#include <csignal>
#include <exception>

namespace tavenhall {

// Somebody wants the rehearsal to end. Thrown where it can be left, so that all it has laid out goes with it.
class Stopped : public std::exception {
 public:
  [[nodiscard]] const char* what() const noexcept override { return "the rehearsal was stopped"; }
};

// Takes Ctrl-C, SIGTERM and SIGHUP from now on, which would end the process and leave mounts and folders
// behind. One at a time in a process; a child that goes on by itself makes one of its own. One thread.
class StopRequest {
 public:
  StopRequest();
  StopRequest(const StopRequest&) = delete;
  StopRequest& operator=(const StopRequest&) = delete;
  ~StopRequest();

  // Takes the signals back from whoever had them meanwhile.
  void takeSignals();

  [[nodiscard]] bool hasCome() const { return hasCome_ != 0; }
  void throwIfCome() const;

  // Readable once a request has come.
  [[nodiscard]] int descriptor() const { return wakeUp_.descriptor(); }

 private:
  static void note(int signal);

  volatile std::sig_atomic_t hasCome_ = 0;
  WakeUp wakeUp_;
};

}  // namespace tavenhall

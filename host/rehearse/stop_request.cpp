#include "host/rehearse/stop_request.h"

#include <array>
#include <csignal>

namespace tavenhall {

namespace {

constexpr std::array<int, 3> kSignals{SIGINT, SIGTERM, SIGHUP};
volatile std::sig_atomic_t requestHasCome = 0;
WakeUp* toWake = nullptr;

void noteRequest(int /*signal*/) {
  requestHasCome = 1;
  toWake->signal();
}

}  // namespace

StopRequest::StopRequest() {
  requestHasCome = 0;
  toWake = &wakeUp_;
  takeSignals();
}

StopRequest::~StopRequest() {
  for (const int signal : kSignals) {
    std::signal(signal, SIG_DFL);
  }
}

void StopRequest::takeSignals() {
  struct sigaction action {};
  action.sa_handler = noteRequest;
  action.sa_flags = SA_RESTART;
  for (const int signal : kSignals) {
    sigaction(signal, &action, nullptr);
  }
}

bool StopRequest::hasCome() const { return requestHasCome != 0; }

void StopRequest::throwIfCome() const {
  if (hasCome()) {
    throw Stopped();
  }
}

}  // namespace tavenhall

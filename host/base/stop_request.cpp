#include "host/base/stop_request.h"

#include <array>
#include <csignal>

namespace tavenhall {

namespace {

constexpr std::array<int, 3> kSignals{SIGINT, SIGTERM, SIGHUP};
StopRequest* current = nullptr;  // who has the signals

}  // namespace

StopRequest::StopRequest() { takeSignals(); }

StopRequest::~StopRequest() {
  for (const int signal : kSignals) {
    std::signal(signal, SIG_DFL);
  }
}

void StopRequest::takeSignals() {
  current = this;
  struct sigaction action {};
  action.sa_handler = note;
  action.sa_flags = SA_RESTART;
  for (const int signal : kSignals) {
    sigaction(signal, &action, nullptr);
  }
}

void StopRequest::note(int /*signal*/) {
  current->hasCome_ = 1;
  current->wakeUp_.signal();
}

void StopRequest::throwIfCome() const {
  if (hasCome()) {
    throw Stopped();
  }
}

}  // namespace tavenhall

#include "host/base/stop_request.h"

#include <csignal>

namespace tavenhall {

namespace {

StopRequest* current = nullptr;  // who has the signals

}  // namespace

StopRequest::StopRequest() {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction before {};
    if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) {
      signals_.push_back(signal);
    }
  }
  takeSignals();
}

StopRequest::~StopRequest() {
  for (const int signal : signals_) {
    std::signal(signal, SIG_DFL);
  }
}

void StopRequest::takeSignals() {
  current = this;
  struct sigaction action {};
  action.sa_handler = note;
  action.sa_flags = SA_RESTART;
  for (const int signal : signals_) {
    sigaction(signal, &action, nullptr);
  }
}

void StopRequest::note(int /*signal*/) {
  current->hasCome_ = true;
  current->wakeUp_.signal();
}

void StopRequest::throwIfCome() const {
  if (hasCome()) {
    throw Stopped();
  }
}

}  // namespace tavenhall

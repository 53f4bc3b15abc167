#pragma once

#include "host/base/mutex.h"
#include "host/engine/engine.h"
#include "host/protocol/event_hub.h"
#include "host/protocol/run_socket.h"

#include <chrono>
#include <list>
#include <thread>

namespace tavenhall {

// Lets other programs of this user follow and control a run over its socket: they get every event, the past
// ones first, and send requests.
class FrontendServer {
 public:
  // `attached` describes the run to them; its time is filled in. The caller owns the hub and the engine, which
  // must live until the end of the process: the thread runs as long. Where the install cannot be reached,
  // nothing is started.
  FrontendServer(EventHub& hub, Engine& engine, const event::Attached& attached);
  FrontendServer(const FrontendServer&) = delete;
  FrontendServer& operator=(const FrontendServer&) = delete;

  [[nodiscard]] bool isListening() const { return socket_.descriptor >= 0; }

  // Removes the socket, and blocks until everything that was reported is with the frontends, at most so long.
  // Any thread.
  void finish(std::chrono::milliseconds patience) EXCLUDES(mutex_);

 private:
  struct Frontend;

  void run();
  void add(int descriptor) EXCLUDES(mutex_);
  // Reads its requests; false once it has gone.
  [[nodiscard]] bool read(Frontend& frontend);
  void remove(std::list<Frontend>::iterator frontend) EXCLUDES(mutex_);

  EventHub& hub_;
  Engine& engine_;
  const event::Attached attached_;
  RunSocket socket_;
  Mutex mutex_;                    // guards changes of the list, which only the thread makes
  std::list<Frontend> frontends_;  // a frontend stays where it is
};

}  // namespace tavenhall

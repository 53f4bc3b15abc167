#include "host/engine/frontend_server.h"

#include "host/base/files.h"
#include "host/engine/pre_install.h"

#include <algorithm>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace tavenhall {

namespace {

constexpr std::size_t kMostFrontends = 8;
constexpr int kPauseMilliseconds = 50;

}  // namespace

struct FrontendServer::Frontend {
  explicit Frontend(int connection) : descriptor(connection), requests(connection), events(connection) {}

  int descriptor;
  LineReader requests;
  EventWriter events;
};

FrontendServer::FrontendServer(EventHub& hub, Engine& engine, const event::Attached& attached)
    : hub_(hub), engine_(engine), attached_(attached), socket_(listenForFrontends(installLockFolder())) {
  if (isListening()) {
    std::thread([this] { run(); }).detach();
  }
}

void FrontendServer::run() {
  while (true) {
    std::vector<pollfd> inputs{{socket_.descriptor, POLLIN, 0}};
    for (const Frontend& frontend : frontends_) {
      inputs.push_back({frontend.descriptor, POLLIN, 0});
    }
    if (poll(inputs.data(), static_cast<nfds_t>(inputs.size()), -1) <= 0) {
      continue;
    }
    std::size_t i = 1;
    for (auto frontend = frontends_.begin(); frontend != frontends_.end();) {
      const auto next = std::next(frontend);
      if (inputs[i++].revents != 0 && !read(*frontend)) {
        remove(frontend);
      }
      frontend = next;
    }
    if (inputs[0].revents != 0) {
      add(acceptFrontend(socket_.descriptor));
    }
  }
}

void FrontendServer::add(int descriptor) {
  if (descriptor < 0) {
    // Where the process has no descriptor left, it would be tried again at once.
    poll(nullptr, 0, kPauseMilliseconds);
    return;
  }
  if (frontends_.size() >= kMostFrontends) {
    close(descriptor);
    return;
  }
  event::Attached attached = attached_;
  attached.seconds = engine_.secondsSinceEntry();
  engine_.addFrontend(attached_.takesAnswers);
  const Lock lock(mutex_);
  hub_.attach(frontends_.emplace_back(descriptor).events, attached);
}

bool FrontendServer::read(Frontend& frontend) {
  frontend.requests.read(
      [this](const std::string& line) { engine_.acceptFromFrontend(line, attached_.takesAnswers); });
  return frontend.requests.isOpen();
}

void FrontendServer::remove(std::list<Frontend>::iterator frontend) {
  hub_.detach(frontend->events);
  engine_.removeFrontend(attached_.takesAnswers);
  const int descriptor = frontend->descriptor;
  shutdown(descriptor, SHUT_RDWR);  // so that its writer waits for nobody
  {
    const Lock lock(mutex_);
    frontends_.erase(frontend);
  }
  close(descriptor);
}

void FrontendServer::finish(std::chrono::milliseconds patience) {
  if (!isListening()) {
    return;
  }
  unlink(socket_.path.c_str());
  const auto end = std::chrono::steady_clock::now() + patience;
  const Lock lock(mutex_);
  for (Frontend& frontend : frontends_) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    frontend.events.drain(std::max(left, std::chrono::milliseconds(0)));
  }
}

}  // namespace tavenhall

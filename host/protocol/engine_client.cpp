#include "host/protocol/engine_client.h"

#include "host/base/child_process.h"
#include "host/protocol/json_form.h"

#include <cerrno>
#include <csignal>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace tavenhall {

EngineClient::EngineClient(const EngineConnection& connection) : connection_(connection) {
  std::signal(SIGPIPE, SIG_IGN);
}

void EngineClient::send(const Request& request) {
  if (connection_.requests >= 0) {
    writeAll(connection_.requests, encode(request));
  }
}

void EngineClient::closeRequests() {
  if (connection_.requests >= 0) {
    close(std::exchange(connection_.requests, -1));
  }
}

void EngineClient::readEvents(const std::function<void(const Event& event)>& handle) {
  events_.read([&handle](const std::string& line) {
    if (const auto event = decodeEvent(line)) {
      handle(*event);
    }
  });
}

ExitStatus EngineClient::wait(const std::function<void(const std::string& line)>& handleError) {
  int status = 0;
  while (waitpid(connection_.process, &status, 0) < 0) {
    if (errno != EINTR) {
      return ExitStatus::failure;  // success cannot be known
    }
  }
  // Commands that outlive the engine may keep this open, so only what is there by now is read.
  pollfd source{errors_.descriptor(), POLLIN, 0};
  while (handleError && errors_.isOpen() && poll(&source, 1, 0) > 0) {
    errors_.read(handleError);
  }
  return WIFEXITED(status) ? static_cast<ExitStatus>(WEXITSTATUS(status)) : ExitStatus::failure;
}

void EngineClient::stop() {
  // It leads a process group of its own, except in its very first moments.
  if (kill(-connection_.process, SIGTERM) != 0) {
    kill(connection_.process, SIGTERM);
  }
}

}  // namespace tavenhall

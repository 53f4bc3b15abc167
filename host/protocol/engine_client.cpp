#include "host/protocol/engine_client.h"

#include "host/base/child_process.h"
#include "host/protocol/json_events.h"

#include <array>
#include <csignal>
#include <poll.h>
#include <unistd.h>

namespace tavenhall {

using nlohmann::ordered_json;

EngineClient::EngineClient(const EngineProcess& engine) : engine_(engine) { std::signal(SIGPIPE, SIG_IGN); }

void EngineClient::send(const ordered_json& line) const { writeAll(engine_.lines.commands, jsonLine(line)); }

void EngineClient::sendDo(const char* command) { send({{"do", command}}); }

void EngineClient::sendAnswer(int answer) { send({{"answer", answer}}); }

void EngineClient::readEvents(const std::function<void(const ordered_json& event)>& hear) {
  events_.read([&hear](const std::string& line) {
    if (const ordered_json event = ordered_json::parse(line, nullptr, false); event.is_object()) {
      hear(event);
    }
  });
}

void EngineClient::readMessages(const std::function<void(const std::string& line)>& hear) {
  messages_.read(hear);
}

RunOutcome EngineClient::finish(const std::function<void(const std::string& line)>& hear) {
  RunOutcome outcome;
  std::string text;
  std::array<char, 4096> buffer{};
  ssize_t count = 0;
  while ((count = ::read(engine_.lines.summary, buffer.data(), buffer.size())) > 0) {
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
  outcome.status = waitForEngineProcess(engine_);
  const ordered_json summary = ordered_json::parse(text, nullptr, false);
  if (summary.is_object()) {
    outcome.isTold = true;
    outcome.bytesCopied = summary.value("kBytesCopied", 0.0) * 1024.0;
  }
  // Commands that outlive it may keep this open, so only what is there by now is read.
  pollfd source{messages_.descriptor(), POLLIN, 0};
  while (messages_.isOpen() && poll(&source, 1, 0) > 0) {
    messages_.read(hear);
  }
  return outcome;
}

void EngineClient::stop() {
  stopEngineProcess(engine_);
  static_cast<void>(waitForEngineProcess(engine_));
}

}  // namespace tavenhall

#pragma once

#include "host/base/exit_status.h"
#include "host/base/line_reader.h"
#include "host/engine/engine_process.h"
#include "host/ui/run_outcome.h"

#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace tavenhall {

// An engine in another process, and the lines that go to it and come from it. One thread.
class EngineClient {
 public:
  // From now on a broken pipe is no signal: an engine that has gone is noticed at its events.
  explicit EngineClient(const EngineProcess& engine);

  void sendDo(const char* command);
  void sendAnswer(int answer);

  // What to poll for input; -1 when it is closed.
  [[nodiscard]] int events() const { return events_.descriptor(); }
  [[nodiscard]] int messages() const { return messages_.descriptor(); }

  // Reads once what is there, when the descriptor is readable.
  void readEvents(const std::function<void(const nlohmann::ordered_json& event)>& hear);
  void readMessages(const std::function<void(const std::string& line)>& hear);

  // Has the engine closed its events, as it does at its end?
  [[nodiscard]] bool hasEnded() const { return !events_.isOpen(); }

  // Waits for the end that has begun, with the rest of the messages, and says how the install went. Once.
  [[nodiscard]] RunOutcome finish(const std::function<void(const std::string& line)>& hear);

  // Ends the engine, and the command that it may be running.
  void stop();

 private:
  void send(const nlohmann::ordered_json& line) const;

  EngineProcess engine_;
  LineReader events_{engine_.lines.events};
  LineReader messages_{engine_.lines.errors};
};

}  // namespace tavenhall

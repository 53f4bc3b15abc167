#pragma once

#include "host/base/exit_status.h"
#include "host/base/stop_request.h"
#include "host/protocol/engine_client.h"
#include "host/protocol/event_writer.h"
#include "host/rehearse/disc_tray.h"
#include "host/rehearse/rehearsal_record.h"
#include "host/rehearse/sandbox.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace tavenhall {

// Drives the engine of a rehearsal: inserts the discs that the page asks for, records the events, and relays
// requests and events between the engine and a frontend. Without a frontend it sends the requests itself.
class RehearsalDriver {
 public:
  // `command` starts an engine with JSON lines on its standard streams. `frontend` has the engine's ends of the
  // pipes to a frontend; without a descriptor for requests there is no frontend.
  RehearsalDriver(SandboxCommand command, DiscTray& tray, const EngineEnds& frontend, const StopRequest& stop);

  // Blocks until the engine has ended. Throws std::system_error if it cannot be started, and Stopped.
  [[nodiscard]] ExitStatus run();

  [[nodiscard]] const RehearsalRecord& record() const { return record_; }

 private:
  [[nodiscard]] bool hasFrontend() const { return frontend_.requests >= 0; }
  [[nodiscard]] EngineConnection start() const;
  void handle(const Event& event);
  void handleAlert(const event::Alert& alert);
  void handleRequest(const std::string& line);
  void answer(Answer answer);
  [[nodiscard]] int answerFor(const std::string& volume, bool isOptional);
  void giveUpOn(const std::string& volume, bool wasIn);

  SandboxCommand command_;
  DiscTray& tray_;
  EngineEnds frontend_;
  const StopRequest& stop_;
  std::optional<EngineClient> engine_;
  std::optional<EventWriter> frontendEvents_;
  RehearsalRecord record_;
  std::chrono::steady_clock::time_point startedAt_ = std::chrono::steady_clock::now();
  bool nextIsEnabled_ = false;
};

}  // namespace tavenhall

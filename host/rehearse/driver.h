#pragma once

#include "host/base/exit_status.h"
#include "host/engine/engine_process.h"
#include "host/rehearse/disc_tray.h"
#include "host/rehearse/rehearsal_record.h"
#include "host/rehearse/stop_request.h"

#include <filesystem>
#include <string>
#include <sys/types.h>
#include <vector>

namespace tavenhall {

// Stands between a face and the engine of a rehearsal: hands the lines of each to the other, puts discs into
// the tray when the page asks, and keeps a record. Without a face it sees the run through itself.
class Conductor {
 public:
  // `command` starts the engine, which speaks the JSON lines on its standard streams and leaves its summary
  // in `summaryFile`. `face` are the engine's ends of a face's lines; without commands there is no face.
  Conductor(std::vector<std::string> command, std::filesystem::path summaryFile, DiscTray& tray,
            const EngineLines& face, const StopRequest& stop);

  // Blocks until the engine has ended. Throws std::system_error when it cannot be started, and Stopped.
  [[nodiscard]] ExitStatus run();

  [[nodiscard]] const RehearsalRecord& record() const { return record_; }

 private:
  void start();
  void hearEngine(const std::string& line);
  void hearFace(const std::string& line);
  [[nodiscard]] int answerFor(const std::string& volume, bool isOptional);
  void giveUpOn(const std::string& volume, bool wasIn);
  void takeAlert(const std::string& message, const std::string& informative);
  void tellEngine(const std::string& line);
  void closeCommands();
  void takeSummary();

  std::vector<std::string> command_;
  std::filesystem::path summaryFile_;
  DiscTray& tray_;
  EngineLines face_;
  const StopRequest& stop_;
  EngineProcess engine_;
  RehearsalRecord record_;
  bool nextIsEnabled_ = false;
};

}  // namespace tavenhall

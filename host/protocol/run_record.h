#pragma once

#include "host/protocol/messages.h"

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <optional>
#include <string>

// What the host notes of the last run beside the installation log, whose lines the page alone writes: that a
// run has begun, and how it ended. So it can be told later whether it was stopped, or came to no end at all.
namespace tavenhall {

struct RunRecord {
  std::string started;  // ISO 8601, UTC
  std::string package;
  std::string product;
  std::string version;  // of this program

  // How it ended; none while it runs, and where it was killed.
  struct End {
    std::string time;
    int status = 0;      // ExitStatus
    std::string reason;  // why it is not 0
    bool isInstalled = false;
    std::int64_t files = 0;  // that the audits found installed
    std::int64_t failures = 0;
    std::optional<std::int64_t> freeBytes;  // on the log's disk
  };
  std::optional<End> end;
};

inline constexpr const char* kRunRecordName = "lastRun.json";  // beside the log

// Its file; empty where the log lies in a folder that others can write into.
[[nodiscard]] std::filesystem::path runRecordFile(const std::filesystem::path& log);

// Writes the record of a run. One thread at a time. What cannot be written is left out; then there is no
// record.
class RunRecorder {
 public:
  // A run begins. The room for its end is taken now, since the disk may be full by then.
  void begin(const event::RunFacts& facts);

  // It has ended with this summary, whose facts are those of its beginning.
  void end(const event::Summary& summary) const;

 private:
  std::filesystem::path file_;  // empty: none is written
};

// The record of the last run; none if there is none that can be read. Any thread.
[[nodiscard]] std::optional<RunRecord> readRunRecord(const std::filesystem::path& log);

// The time now, as the record and the summary have it.
[[nodiscard]] std::string isoTimeNow();

// The seconds since 1970 of such a time; -1 if it is none.
[[nodiscard]] std::time_t secondsOfIsoTime(const std::string& time);

}  // namespace tavenhall

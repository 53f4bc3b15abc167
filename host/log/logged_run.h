#pragma once

#include "host/log/log_records.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// One run as the installation log records it: from entering the page to the next entry or to the log's end.
namespace tavenhall {

enum class RunEnd {
  complete,      // the page said so; see the failures for what is missing
  noDataFolder,  // the central data folder was not there, so nothing was begun
  never,         // the log breaks off
};

struct RunFailure {
  std::string time;
  std::string kind;    // "source", "target", "size", "folder", "command", "not-found", "no-destination"
  std::string file;    // what failed, as it lies at the source; empty where the record does not say
  std::string target;  // "target" and "size": where it was to go
  std::string reason;  // "target": the system's words
  std::string detail;  // the record's own words
};

struct RunPrompt {
  std::string time;    // of the first one
  std::string volume;  // the name asked for
  bool isOptional = false;
  int times = 0;
  bool isSkipped = false;
  std::string found;  // when the disc was there; empty: never
};

struct RunVolume {
  std::int64_t number = 0;  // from 0
  std::string folder;       // copied from; empty: nothing was
  std::string begin;
  std::string end;  // empty: it never ended
  int copies = 0;   // more than one where libraries are copied one by one
  int folders = 0;
  int timesEmpty = 0;           // how often it was looked into and nothing was there
  int hundredsOfMegabytes = 0;  // at least so much was copied, in units of 100000000 bytes
};

struct LoggedRun {
  std::string begin;  // times as they stand in the log
  std::string end;    // of the last record
  std::string host;
  std::string pageVersion;
  std::string lastMessage;
  RunEnd outcome = RunEnd::never;
  std::optional<int> mode;
  std::string attributesFile;  // empty: none was found
  std::string title;
  std::string edition;                        // of the choice file: "Lite" or "Full"
  std::vector<std::string> destinations;      // the data folders
  std::vector<std::string> detectedEditions;  // "Tessaphon: Lite"
  std::vector<RunPrompt> prompts;
  std::vector<RunVolume> volumes;
  std::vector<std::string> placed;   // plug-ins and applications that were replaced
  std::vector<RunFailure> failures;  // the first kMostFailures
  std::int64_t failureCount = 0;
  int refusals = 0;  // how often the user wanted to go on before the copy had succeeded

  static constexpr std::size_t kMostFailures = 1000;
};

// Groups records into runs. One thread. Memory: one run, with a limit.
class LoggedRuns {
 public:
  // Calls `report` with each run that has ended.
  explicit LoggedRuns(std::function<void(const LoggedRun&)> report) : report_(std::move(report)) {}

  void add(const LogRecord& record);

  // Call it at the end of the log.
  void finish();

 private:
  void takeSetting(std::string_view message);
  void takeVolume(const LogRecord& record);
  void takePrompt(const LogRecord& record);
  void takeFailure(const LogRecord& record);
  void fail(const LogRecord& record, const char* kind, std::string_view file, std::string_view target = {},
            std::string_view reason = {});
  [[nodiscard]] bool isWaitingFor(std::string_view volumeName) const;
  RunVolume& volume();

  std::function<void(const LoggedRun&)> report_;
  std::optional<LoggedRun> run_;
  std::string titleBefore_;  // the title is asked for before the page is entered
  std::string attributesBefore_;
};

}  // namespace tavenhall

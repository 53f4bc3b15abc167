#include "host/log/log_records.h"
#include "host/log/log_report.h"
#include "host/log/logged_run.h"
#include "tests/fuzz/fuzzing.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <vector>

// The input is an installation log, or what somebody takes for one. Its records must not depend on the pieces
// it is read in and must account for every byte; what is told of it has to be valid JSON, and harmless on a
// terminal.
namespace tavenhall::fuzz {

namespace {

struct Record {
  std::string time;
  std::string host;
  std::string message;

  bool operator==(const Record&) const = default;
};

struct Reading {
  std::vector<Record> records;
  std::size_t foreignBytes = 0;

  bool operator==(const Reading&) const = default;
};

Reading readingOf(std::string_view log, std::size_t pieceSize) {
  Reading reading;
  LogRecords records([&reading](const LogRecord& record) {
    reading.records.push_back(
        {std::string(record.time), std::string(record.host), std::string(record.message)});
  });
  while (!log.empty()) {
    const std::string_view piece = log.substr(0, pieceSize);
    records.add(piece);
    log.remove_prefix(piece.size());
  }
  records.finish();
  reading.foreignBytes = records.foreignBytes();
  return reading;
}

// A second way to say where records begin: the form of a time, and a host's name behind it.
bool beginsRecord(std::string_view line) {
  constexpr std::string_view kForm = " ?? ???? ??:??:?? ";
  const std::size_t month = line.find(' ');
  static const std::string_view kMonths =
      " January February March April May June July August September October November December ";
  if (month == std::string_view::npos || month == 0 ||
      kMonths.find(" " + std::string(line.substr(0, month)) + " ") == std::string_view::npos ||
      line.size() < month + kForm.size()) {
    return false;
  }
  for (std::size_t i = 0; i < kForm.size(); ++i) {
    const char is = line[month + i];
    if (kForm[i] == '?' ? is < '0' || is > '9' : is != kForm[i]) {
      return false;
    }
  }
  return line.find(": ", month + kForm.size()) != std::string_view::npos;
}

std::size_t countRecords(std::string_view log) {
  std::size_t count = 0;
  while (!log.empty()) {
    const std::size_t end = std::min(log.find('\n'), log.size() - 1);
    count += beginsRecord(log.substr(0, end + 1)) ? 1 : 0;
    log.remove_prefix(end + 1);
  }
  return count;
}

std::string writtenAnew(const Reading& reading) {
  std::string log;
  for (const Record& record : reading.records) {
    log += record.time + " " + record.host + ": " + record.message + "\n";
  }
  return log;
}

void checkReading(std::string_view log) {
  const Reading reading = readingOf(log, log.size());
  require(readingOf(log, 1) == reading, "read byte by byte, the log is another");
  require(readingOf(log, log.size() % 61 + 2) == reading, "read in pieces, the log is another");
  require(reading.records.size() == countRecords(log), "the number of records");

  const std::string anew = writtenAnew(reading);
  // A log that ends within a line gets the newline it lacks.
  const std::size_t added = reading.records.empty() || log.ends_with('\n') ? 0 : 1;
  require(anew.size() + reading.foreignBytes == log.size() + added ||
              anew.size() + reading.foreignBytes == log.size(),
          "the records do not account for every byte");
  const Reading again = readingOf(anew, anew.size() + 1);
  require(again.records == reading.records && again.foreignBytes == 0, "the records, written anew, are others");
}

// No control characters, in either form, but the lines' ends.
bool isHarmless(std::string_view text) {
  const bool noBytes = std::none_of(text.begin(), text.end(), [](char character) {
    const auto byte = static_cast<unsigned char>(character);
    return (byte < 0x20 && character != '\n') || byte == 0x7F;
  });
  return noBytes && text.find("\xC2\x9B") == std::string_view::npos;
}

void checkRun(const LoggedRun& run, int number) {
  const bool areFailuresCounted =
      run.failures.size() <= LoggedRun::kMostFailures &&
      run.failures.size() ==
          std::min<std::size_t>(static_cast<std::size_t>(run.failureCount), LoggedRun::kMostFailures);
  require(areFailuresCounted, "the failures' number");
  const std::string text = reportText(run, number);
  require(isHarmless(text), "a report could steer the terminal");
  require(text.ends_with('\n'), "a report does not end its line");
  const std::string line =
      reportJson(run, number).dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
  require(isValidUtf8(line), "a report is not UTF-8");
  const auto report = nlohmann::ordered_json::parse(line);
  require(report["run"] == number, "a report's number");
  require(report["failures"].size() == run.failures.size(), "a report's failures");
}

void checkRuns(std::string_view log) {
  int count = 0;
  LoggedRuns runs([&count](const LoggedRun& run) { checkRun(run, ++count); });
  std::size_t entries = 0;
  LogRecords records([&](const LogRecord& record) {
    runs.add(record);
    entries += record.message.starts_with("\n\n*") &&
                       record.message.find("  Install Data Pane Enter: ") != std::string_view::npos
                   ? 1
                   : 0;
  });
  records.add(log);
  records.finish();
  runs.finish();
  require(static_cast<std::size_t>(count) == entries, "not every entry of the page is a run");
}

}  // namespace

}  // namespace tavenhall::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view log = tavenhall::fuzz::asText(data, size);
  if (!log.empty()) {
    tavenhall::fuzz::checkReading(log);
  }
  tavenhall::fuzz::checkRuns(log);
  return 0;
}

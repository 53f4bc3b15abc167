#pragma once

#include <cstddef>
#include <ctime>
#include <functional>
#include <string>
#include <string_view>

// An installation log as the page writes it: records of the form "<local time> <host>: <message>\n", whose
// messages may hold line breaks of their own.
namespace tavenhall {

struct LogRecord {
  std::string_view time;  // "November 21 2026 05:14:47"
  std::string_view host;
  std::string_view message;  // without the record's last newline
};

// Where the page writes the installation log of this process's user, whether or not there is one.
[[nodiscard]] std::string usersInstallationLog();

// Splits a log into records. One thread. Memory: the longest record.
class LogRecords {
 public:
  // Calls `take` with each complete record, whose texts are valid only during the call.
  explicit LogRecords(std::function<void(const LogRecord&)> take) : take_(std::move(take)) {}

  // The next piece of the log, of any size.
  void add(std::string_view bytes);

  // Call it at the end of the log: the rest is the last record.
  void finish();

  // Bytes before the first record, and of records longer than kLongestRecord beyond that: not of this page.
  [[nodiscard]] std::size_t foreignBytes() const { return foreignBytes_; }

  static constexpr std::size_t kLongestRecord = 65536;  // bytes; the page's own end at about 4500

 private:
  void takeLine(std::string_view line);
  void takeRecord();

  std::function<void(const LogRecord&)> take_;
  std::string partialLine_;
  std::string record_;  // the lines of the record that is being read
  std::size_t foreignBytes_ = 0;
};

// The seconds since 1970 of a record's time, read as local time of this machine; -1 if it is not a time.
[[nodiscard]] std::time_t timeOfRecord(std::string_view time);

}  // namespace tavenhall

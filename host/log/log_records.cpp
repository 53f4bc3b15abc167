#include "host/log/log_records.h"

#include "platform/system.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <utility>

namespace tavenhall {

namespace {

constexpr std::array<std::string_view, 12> kMonths{"January",   "February", "March",    "April",
                                                   "May",       "June",     "July",     "August",
                                                   "September", "October",  "November", "December"};

struct Heading {
  std::size_t timeLength;
  std::size_t hostStart;
  std::size_t hostLength;
  std::size_t messageStart;
};

bool isDigit(char character) { return character >= '0' && character <= '9'; }

// Whether `text` has the form, in which '0' stands for any digit.
bool hasForm(std::string_view text, std::string_view form) {
  return text.size() == form.size() &&
         std::equal(text.begin(), text.end(), form.begin(),
                    [](char is, char wanted) { return wanted == '0' ? isDigit(is) : is == wanted; });
}

// The positions of the parts of a record's first line; nothing if the line begins no record.
std::optional<Heading> headingOf(std::string_view line) {
  const std::size_t monthEnd = line.find(' ');
  if (monthEnd == std::string_view::npos ||
      std::find(kMonths.begin(), kMonths.end(), line.substr(0, monthEnd)) == kMonths.end()) {
    return std::nullopt;
  }
  constexpr std::string_view kRestOfTime = " 00 0000 00:00:00 ";
  if (!hasForm(line.substr(monthEnd, kRestOfTime.size()), kRestOfTime)) {
    return std::nullopt;
  }
  const std::size_t hostStart = monthEnd + kRestOfTime.size();
  const std::size_t hostEnd = line.find(": ", hostStart);
  if (hostEnd == std::string_view::npos) {
    return std::nullopt;
  }
  return Heading{hostStart - 1, hostStart, hostEnd - hostStart, hostEnd + 2};
}

}  // namespace

std::string usersInstallationLog() {
  std::string caches;
  return firstUserSearchPath(SearchPath::caches, caches) ? caches + "/Tavenhall/installationLog.txt"
                                                         : "/tmp/installationLog.txt";
}

void LogRecords::add(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t end = bytes.find('\n');
    const bool endsLine = end != std::string_view::npos;
    const std::string_view piece = bytes.substr(0, endsLine ? end + 1 : bytes.size());
    bytes.remove_prefix(piece.size());
    if (endsLine && partialLine_.empty() && piece.size() <= kLongestRecord) {
      takeLine(piece);
      continue;
    }
    const std::size_t kept = std::min(kLongestRecord - partialLine_.size(), piece.size());
    partialLine_ += piece.substr(0, kept);
    foreignBytes_ += piece.size() - kept;
    if (endsLine) {
      takeLine(partialLine_);
      partialLine_.clear();
    }
  }
}

void LogRecords::finish() {
  if (!partialLine_.empty()) {
    takeLine(std::exchange(partialLine_, {}));
  }
  takeRecord();
}

void LogRecords::takeLine(std::string_view line) {
  if (headingOf(line)) {
    takeRecord();
    record_ = line;
  } else if (record_.empty() || record_.size() + line.size() > kLongestRecord) {
    foreignBytes_ += line.size();
  } else {
    record_ += line;
  }
}

void LogRecords::takeRecord() {
  const std::optional<Heading> heading = headingOf(record_);
  if (!heading) {
    return;
  }
  std::string_view text = record_;
  if (text.ends_with('\n')) {
    text.remove_suffix(1);
  }
  take_({text.substr(0, heading->timeLength), text.substr(heading->hostStart, heading->hostLength),
         text.substr(heading->messageStart)});
  record_.clear();
}

std::time_t timeOfRecord(std::string_view time) {
  const std::size_t monthEnd = std::min(time.find(' '), time.size());
  const auto month = std::find(kMonths.begin(), kMonths.end(), time.substr(0, monthEnd));
  const std::string_view rest = time.substr(monthEnd);
  if (month == kMonths.end() || !hasForm(rest, " 00 0000 00:00:00")) {
    return -1;
  }
  const auto number = [rest](std::size_t at, std::size_t length) {
    int value = 0;
    std::from_chars(rest.data() + at, rest.data() + at + length, value);
    return value;
  };
  std::tm local{};
  local.tm_mon = static_cast<int>(month - kMonths.begin());
  local.tm_mday = number(1, 2);
  local.tm_year = number(4, 4) - 1900;
  local.tm_hour = number(9, 2);
  local.tm_min = number(12, 2);
  local.tm_sec = number(15, 2);
  local.tm_isdst = -1;
  return std::mktime(&local);
}

}  // namespace tavenhall

#include "host/protocol/run_record.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

using nlohmann::ordered_json;

constexpr std::size_t kFileSize = 8192;  // blanks at the end
constexpr std::size_t kLongestText = 1000;

std::string text(const ordered_json& object, const char* key) {
  const auto field = object.find(key);
  return field != object.end() && field->is_string() ? field->get<std::string>() : std::string();
}

std::int64_t number(const ordered_json& object, const char* key) {
  const auto field = object.find(key);
  return field != object.end() && field->is_number_integer() ? field->get<std::int64_t>() : 0;
}

ordered_json recordOf(const event::RunFacts& facts) {
  return {{"started", facts.started},
          {"package", facts.package.substr(0, kLongestText)},
          {"product", facts.product.substr(0, kLongestText)},
          {"version", facts.version}};
}

// Gives up where it is interrupted again and again: the end of a run must not wait for its record.
bool writeWhole(int descriptor, std::string_view text) {
  constexpr int kMostInterruptions = 100;
  for (int interruptions = 0; !text.empty();) {
    const ssize_t count = write(descriptor, text.data(), text.size());
    if (count > 0) {
      text.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR || ++interruptions > kMostInterruptions) {
      return false;
    }
  }
  return true;
}

bool writeRecord(const fs::path& file, int flags, const ordered_json& record) {
  std::string line = record.dump(-1, ' ', false, ordered_json::error_handler_t::replace) + "\n";
  line.resize(std::max(line.size(), kFileSize), ' ');
  const int descriptor = open(file.c_str(), O_WRONLY | O_CLOEXEC | O_NOFOLLOW | flags, 0600);
  const bool isWritten = descriptor >= 0 && writeWhole(descriptor, line);
  return descriptor >= 0 && close(descriptor) == 0 && isWritten;
}

}  // namespace

std::string isoTimeNow() {
  const std::time_t now = std::time(nullptr);
  std::tm utc{};
  gmtime_r(&now, &utc);
  std::array<char, 32> written{};
  std::strftime(written.data(), written.size(), "%Y-%m-%dT%H:%M:%SZ", &utc);
  return written.data();
}

std::time_t secondsOfIsoTime(const std::string& time) {
  std::tm utc{};
  return strptime(time.c_str(), "%Y-%m-%dT%H:%M:%SZ", &utc) != nullptr ? timegm(&utc) : -1;
}

fs::path runRecordFile(const fs::path& log) {
  const fs::path folder = log.parent_path();
  struct stat found {};
  const bool isOwn = lstat(folder.c_str(), &found) == 0 && S_ISDIR(found.st_mode) &&
                     found.st_uid == geteuid() && (found.st_mode & (S_IWGRP | S_IWOTH)) == 0;
  return isOwn ? folder / kRunRecordName : fs::path();
}

void RunRecorder::begin(const event::RunFacts& facts) {
  mkdir(fs::path(facts.log).parent_path().c_str(), 0700);  // as the page does for its log
  file_ = runRecordFile(facts.log);
  if (file_.empty()) {
    return;
  }
  unlink(file_.c_str());  // another file, or a link
  if (!writeRecord(file_, O_CREAT | O_EXCL, recordOf(facts))) {
    unlink(file_.c_str());
    file_.clear();
  }
}

void RunRecorder::end(const event::Summary& summary) const {
  if (file_.empty()) {
    return;
  }
  ordered_json record = recordOf(summary.facts);
  record["ended"] = isoTimeNow();
  record["status"] = summary.status;
  record["reason"] = summary.reason.substr(0, kLongestText);
  record["installed"] = summary.isInstalled;
  record["files"] = summary.audit.files;
  record["failures"] = summary.audit.failures;
  std::error_code error;
  const auto space = fs::space(file_.parent_path(), error);
  if (!error) {
    record["freeBytes"] = space.available;
  }
  if (!writeRecord(file_, 0, record)) {
    unlink(file_.c_str());  // it would say that the run was killed
  }
}

std::optional<RunRecord> readRunRecord(const fs::path& log) {
  const fs::path file = runRecordFile(log);
  struct stat found {};
  if (file.empty() || lstat(file.c_str(), &found) != 0 || !S_ISREG(found.st_mode)) {
    return std::nullopt;
  }
  std::ifstream stream(file);
  const ordered_json object = ordered_json::parse(stream, nullptr, false);
  if (!object.is_object() || text(object, "started").empty()) {
    return std::nullopt;
  }
  RunRecord record{text(object, "started"), text(object, "package"), text(object, "product"),
                   text(object, "version"), std::nullopt};
  if (object.contains("ended")) {
    RunRecord::End end;
    end.time = text(object, "ended");
    end.status = static_cast<int>(number(object, "status"));
    end.reason = text(object, "reason");
    const auto installed = object.find("installed");
    end.isInstalled = installed != object.end() && installed->is_boolean() && installed->get<bool>();
    end.files = number(object, "files");
    end.failures = number(object, "failures");
    if (object.contains("freeBytes")) {
      end.freeBytes = number(object, "freeBytes");
    }
    record.end = end;
  }
  return record;
}

}  // namespace tavenhall

#include "host/command_line.h"
#include "host/json_events.h"
#include "host/log/log_report.h"
#include "host/log/users_log.h"
#include "host/usage_error.h"

#include <CLI/CLI.hpp>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

namespace tavenhall {

namespace {

struct LogArguments {
  std::string file;
  std::string format = "text";
};

void print(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stdout); }

// Tells the runs one by one, as they are read, so that a long log needs no more memory than a short one.
class Teller {
 public:
  explicit Teller(bool asJson) : asJson_(asJson) {}

  void tell(const RunStory& story) {
    ++runs_;
    if (asJson_) {
      print(runs_ == 1 ? "[\n" : ",\n");
      std::string object = jsonLine(reportJson(story, runs_));
      object.pop_back();
      print(object);
    } else {
      print((runs_ == 1 ? "" : "\n") + reportText(story, runs_));
    }
  }

  void finish(const std::string& file) const {
    if (asJson_) {
      print(runs_ == 0 ? "[]\n" : "\n]\n");
    } else if (runs_ == 0) {
      print("No run of the page is in " + file + ".\n");
    }
  }

 private:
  bool asJson_;
  int runs_ = 0;
};

ExitStatus tellLog(const LogArguments& arguments) {
  const std::string path = arguments.file.empty() ? usersInstallationLog() : arguments.file;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rbe"), std::fclose);
  struct stat found {};
  if (!file || fstat(fileno(file.get()), &found) != 0) {
    throw UsageError("cannot read the log " + path + ": " + std::strerror(errno));
  }
  if (S_ISDIR(found.st_mode)) {
    throw UsageError("cannot read the log " + path + ": it is a folder");
  }
  Teller teller(arguments.format == "json");
  RunStories stories([&teller](const RunStory& story) { teller.tell(story); });
  LogRecords records([&stories](const LogRecord& record) { stories.add(record); });
  std::array<char, 262144> buffer;
  while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), file.get())) {
    records.add({buffer.data(), count});
  }
  records.finish();
  stories.finish();
  teller.finish(path);
  return ExitStatus::success;
}

}  // namespace

void addLogCommand(CommandLine& commandLine) {
  const auto arguments = std::make_shared<LogArguments>();
  CLI::App* log = commandLine.program.add_subcommand("log", "Say what an installation log tells, run by run");
  log->add_option("FILE", arguments->file, "The log; the user's own when none is given");
  log->add_option("--format", arguments->format, "How it is said")
      ->check(CLI::IsMember({"text", "json"}).description(""))
      ->type_name("text|json")
      ->capture_default_str();
  log->callback(
      [&commandLine, arguments] { commandLine.chosen = [arguments] { return tellLog(*arguments); }; });
}

}  // namespace tavenhall

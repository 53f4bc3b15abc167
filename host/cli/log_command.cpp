#include "host/base/errors.h"
#include "host/base/text.h"
#include "host/cli/command_line.h"
#include "host/log/log_records.h"
#include "host/log/log_report.h"

#include <CLI/CLI.hpp>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <memory>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

namespace tavenhall {

namespace {

struct LogArguments {
  std::string file;
  std::string format = "text";
  bool lastOnly = false;
};

// A page that waits for a disc writes a record every ten seconds, and one that copies at every 100 MB.
constexpr double kLongestPause = 900;  // seconds

void print(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stdout); }

bool isRecent(const std::string& time) {
  const double age = std::difftime(std::time(nullptr), timeOfRecord(time));
  return age >= 0 && age < kLongestPause;
}

// Tells the runs one by one, as they are read, so that a long log needs no more memory than a short one.
class Teller {
 public:
  explicit Teller(const LogArguments& arguments)
      : asJson_(arguments.format == "json"), lastOnly_(arguments.lastOnly) {}

  // The run before is then known not to be the last.
  void tell(const RunStory& story) {
    if (!lastOnly_) {
      print(latest_);
    }
    ++runs_;
    const bool isEndless = story.outcome == RunEnd::never;
    ++(isEndless                               ? endless_
       : story.outcome == RunEnd::noDataFolder ? notBegun_
       : story.failureCount > 0                ? failed_
                                               : good_);
    latest_ = formed(story, false);
    latestIfRunning_ = isEndless && isRecent(story.end) ? formed(story, true) : std::string();
  }

  void finish(const std::string& file) const {
    if (runs_ == 0) {
      print(asJson_ ? "[]\n" : format(_("No run of the page is in {0}."), {printableText(file)}) + "\n");
      return;
    }
    print(latestIfRunning_.empty() ? latest_ : latestIfRunning_);
    if (asJson_) {
      print("\n]\n");
    } else if (runs_ > 1) {
      print("\n" + summary() + "\n");
    }
  }

 private:
  [[nodiscard]] std::string formed(const RunStory& story, bool mayStillRun) const {
    const bool isFirst = runs_ == 1 || lastOnly_;
    if (!asJson_) {
      return (isFirst ? "" : "\n") + reportText(story, runs_, mayStillRun);
    }
    std::string object = reportJson(story, runs_, mayStillRun)
                             .dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
    return (isFirst ? "[\n" : ",\n") + object;
  }

  [[nodiscard]] std::string summary() const {
    std::string text = plural("{0} run in the log", "{0} runs in the log", runs_);
    const auto add = [&text](int number, const char* pattern) {
      text += number > 0 ? "; " + format(pattern, {std::to_string(number)}) : std::string();
    };
    add(good_, _("{0} ended, nothing failed"));
    add(failed_, _("{0} ended with failures"));
    add(notBegun_, _("{0} not begun"));
    add(endless_, _("{0} never ended"));
    return text + ".";
  }

  const bool asJson_;
  const bool lastOnly_;
  int runs_ = 0;
  int good_ = 0;
  int failed_ = 0;
  int notBegun_ = 0;
  int endless_ = 0;
  std::string latest_;
  std::string latestIfRunning_;  // the same, should the log end with it; empty: it makes no difference
};

ExitStatus tellLog(const LogArguments& arguments) {
  if (arguments.format == "json") {
    speakEnglish();
  }
  const std::string path = arguments.file.empty() ? usersInstallationLog() : arguments.file;
  // A pipe that nobody writes to is an empty log, not one to wait for.
  const int descriptor = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  struct stat found {};
  if (descriptor < 0 || fstat(descriptor, &found) != 0) {
    throw UsageError(
        errno == ENOENT && arguments.file.empty()
            ? format(_("there is no installation log at {0} yet; the first install writes it"), {path})
            : format(_("cannot read the log {0}: {1}"), {path, std::strerror(errno)}));
  }
  if (S_ISDIR(found.st_mode)) {
    throw UsageError(format(_("cannot read the log {0}: it is a folder"), {path}));
  }
  fcntl(descriptor, F_SETFL, O_RDONLY);
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(fdopen(descriptor, "rb"), std::fclose);
  Teller teller(arguments);
  RunStories stories([&teller](const RunStory& story) { teller.tell(story); });
  std::int64_t recordCount = 0;
  LogRecords records([&](const LogRecord& record) {
    ++recordCount;
    stories.add(record);
  });
  std::array<char, 262144> buffer;
  while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), file.get())) {
    records.add({buffer.data(), count});
  }
  if (std::ferror(file.get()) != 0) {
    throw UsageError(format(_("cannot read the log {0}: {1}"), {path, std::strerror(errno)}));
  }
  records.finish();
  stories.finish();
  if (recordCount == 0 && records.foreignBytes() > 0) {
    throw UsageError(format(_("{0} is no installation log: the page wrote no line of it"), {path}));
  }
  teller.finish(path);
  return ExitStatus::success;
}

}  // namespace

void addLogCommand(CommandLine& commandLine) {
  const auto arguments = std::make_shared<LogArguments>();
  CLI::App* log =
      commandLine.program.add_subcommand("log", _("Say what an installation log tells, run by run"));
  log->add_option("FILE", arguments->file, _("The log; the user's own when none is given"));
  log->add_flag("--last", arguments->lastOnly, _("Only the last run"));
  log->add_option("--format", arguments->format, _("How it is said"))
      ->check(oneOf({"text", "json"}))
      ->type_name("text|json")
      ->capture_default_str();
  log->callback(
      [&commandLine, arguments] { commandLine.chosen = [arguments] { return tellLog(*arguments); }; });
}

}  // namespace tavenhall

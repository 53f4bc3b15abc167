#include "host/base/build_facts.h"
#include "host/base/display_text.h"
#include "host/base/exit_status.h"
#include "host/base/text.h"
#include "host/cli/command_line.h"
#include "host/engine/pre_install.h"
#include "host/log/log_headline.h"
#include "host/log/log_records.h"
#include "host/log/log_report.h"
#include "host/log/support_bundle.h"
#include "host/protocol/run_record.h"
#include "platform/host_system.h"

#include <CLI/CLI.hpp>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <system_error>
#include <vector>

namespace tavenhall {

namespace {

struct LogArguments {
  std::string file;
  std::string format = "text";
  std::string bundle;
  bool lastOnly = false;
  bool checks = false;
};

// The page writes a record every 10 s while it waits for a disc, and every 100 MB while it copies.
constexpr double kLongestPause = 900;  // seconds

constexpr int kHeadlineColumns = 79;

void print(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stdout); }

bool isRecent(const std::string& time) {
  const double age = std::difftime(std::time(nullptr), timeOfRecord(time));
  return age >= 0 && age < kLongestPause;
}

// What the host has noted of this run, if its record is of this run.
RunNote noteOf(const LoggedRun& run, const std::optional<RunRecord>& record, std::optional<bool> isRunning) {
  constexpr std::time_t kClocksDiffer = 2;  // seconds; the log's are whole
  RunNote note;
  const std::time_t begin = timeOfRecord(run.begin);
  if (!record || begin < secondsOfIsoTime(record->started) - kClocksDiffer) {
    return note;  // the record is of a later run that has not come to the page's first line
  }
  if (!record->end) {
    note.ending = !isRunning ? RunEnding::unknown : *isRunning ? RunEnding::ended : RunEnding::killed;
    return note;
  }
  if (begin > secondsOfIsoTime(record->end->time) + kClocksDiffer) {
    return note;  // of an earlier one, and another installer has shown the page since
  }
  constexpr std::int64_t kFull =
      1000000;  // bytes; the log's lines are shorter, but so are the system's reserves
  const RunRecord::End& end = *record->end;
  note.ending = end.status == static_cast<int>(ExitStatus::stopped) ? RunEnding::stopped
                : end.freeBytes && *end.freeBytes < kFull           ? RunEnding::diskFull
                                                                    : RunEnding::ended;
  note.isInstalled = end.isInstalled;
  note.files = end.files;
  note.reason = end.reason;
  return note;
}

// Prints the runs. As JSON each as soon as it has been read, so that a long log needs no more memory than a
// short one; as text after the headline, which is of the last one.
class RunPrinter {
 public:
  // `isRunning`: an install of the user whose log it is runs; none where that is not known.
  RunPrinter(const LogArguments& arguments, std::optional<bool> isRunning, std::optional<RunRecord> record)
      : asJson_(arguments.format == "json"),
        lastOnly_(arguments.lastOnly),
        isRunning_(isRunning),
        record_(std::move(record)) {}

  // Then the previous run is not the last.
  void add(const LoggedRun& run) {
    if (!lastOnly_) {
      show(latest_);
    }
    ++runs_;
    const bool isEndless = run.outcome == RunEnd::never;
    ++(isEndless                             ? endless_
       : run.outcome == RunEnd::noDataFolder ? notBegun_
       : run.failureCount > 0                ? failed_
                                             : good_);
    const bool mayStillRun = isEndless && isRunning_.value_or(isRecent(run.end));
    latest_ = formed(run, false);
    latestIfLast_ = mayStillRun ? formed(run, true) : latest_;
    const RunNote note = noteOf(run, record_, isRunning_);
    state_ = stateOf(run, mayStillRun, note);
    headline_ = asJson_ ? "" : headlineText(run, state_, note);
  }

  // Of the last run; call it where there is one.
  [[nodiscard]] RunState state() const { return state_; }

  // Returns the state of the last run; none if there is no run.
  std::optional<RunState> finish(const std::string& file) {
    if (runs_ == 0) {
      print(asJson_ ? "[]\n" : format(_("{0} contains no run of the page."), {printableText(file)}) + "\n");
      return std::nullopt;
    }
    show(latestIfLast_);
    if (asJson_) {
      print("\n]\n");
      return state_;
    }
    for (const std::string& line : wrapText(printableText(headline_), kHeadlineColumns)) {
      print(line + "\n");
    }
    print("\n" + runsText_);
    if (runs_ > 1) {
      print("\n" + summary() + "\n");
    }
    return state_;
  }

 private:
  [[nodiscard]] std::string formed(const LoggedRun& run, bool mayStillRun) const {
    const bool isFirst = runs_ == 1 || lastOnly_;
    if (!asJson_) {
      return (isFirst ? "" : "\n") + reportText(run, runs_, mayStillRun);
    }
    std::string object = reportJson(run, runs_, mayStillRun)
                             .dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
    return (isFirst ? "[\n" : ",\n") + object;
  }

  void show(const std::string& run) {
    if (asJson_) {
      print(run);
    } else {
      runsText_ += run;
    }
  }

  [[nodiscard]] std::string summary() const {
    std::string text = plural("{0} run in the log", "{0} runs in the log", runs_);
    const auto add = [&text](int number, const char* pattern) {
      text += number > 0 ? "; " + format(pattern, {std::to_string(number)}) : std::string();
    };
    add(good_, _("{0} ended, nothing failed"));
    add(failed_, _("{0} ended with failures"));
    add(notBegun_, _("{0} not started"));
    add(endless_, _("{0} did not end"));
    return text + ".";
  }

  const bool asJson_;
  const bool lastOnly_;
  int runs_ = 0;
  int good_ = 0;
  int failed_ = 0;
  int notBegun_ = 0;
  int endless_ = 0;
  const std::optional<bool> isRunning_;
  const std::optional<RunRecord> record_;
  std::string latest_;
  std::string latestIfLast_;
  std::string headline_;
  std::string runsText_;
  RunState state_ = RunState::good;
};

// Only the user's own log tells of installs whose lock can be looked at.
std::optional<bool> isRunning(const LogArguments& arguments) {
  if (!arguments.file.empty()) {
    return std::nullopt;
  }
  const bool isLocked = installRuns();
  return isLocked || !hasInstaller() ? std::optional(isLocked) : std::nullopt;
}

ExitStatus statusOf(std::optional<RunState> lastRun) {
  if (lastRun == RunState::good) {
    return ExitStatus::success;
  }
  return lastRun == RunState::stillRunning ? ExitStatus::warnings : ExitStatus::failure;
}

// What the log does not tell of the machine, in English.
std::string systemText(const std::string& log, const LoggedRun& run) {
  const InEnglish english;
  utsname system{};
  uname(&system);
  std::string text = std::string("tavinstall ") + kVersion + "\n";
  text += "page: " + run.pageVersion + "\n";
  text += std::string("system: ") + system.sysname + " " + system.release + " " + system.machine + "\n";
  std::vector<std::string> places{std::filesystem::path(log).parent_path().string()};
  places.insert(places.end(), run.destinations.begin(), run.destinations.end());
  for (const std::string& place : places) {
    std::error_code error;
    const auto space = std::filesystem::space(place, error);
    text += "free at " + place + ": " +
            (error ? error.message()
                   : std::to_string(space.available) + " of " + std::to_string(space.capacity) + " bytes") +
            "\n";
  }
  return text;
}

// The log, with "host" for the names of the computers, which stand in each of its records.
std::string withoutHosts(const std::string& log, const std::set<std::string>& hosts) {
  std::ifstream stream(log, std::ios::binary);
  std::string text;
  for (std::string line; std::getline(stream, line);) {
    for (const std::string& host : hosts) {
      if (const std::size_t at = line.find(" " + host + ": "); at != std::string::npos) {
        line.replace(at + 1, host.size(), "host");
        break;
      }
    }
    text += line + (stream.eof() ? "" : "\n");
  }
  return text;
}

// Prints what it puts into the bundle before it does. There is nothing personal in it beyond paths.
void makeBundle(const LogArguments& arguments, const std::string& log, const LoggedRun& run,
                const std::set<std::string>& hosts) {
  std::vector<BundleFile> files{{"installationLog.txt", withoutHosts(log, hosts), {}},
                                {"system.txt", systemText(log, run), {}}};
  // A log from elsewhere must not choose which of this machine's files go to support.
  const bool isAttributes =
      std::filesystem::path(run.attributesFile).filename() == ".InstallationAttributes.dat";
  if (arguments.file.empty() && isAttributes) {
    files.push_back({"InstallationAttributes.dat", "", run.attributesFile});
  }
  if (arguments.file.empty()) {
    files.push_back({"lastRun.json", "", runRecordFile(log)});
  }
  print(format(_("{0} gets:"), {printableText(arguments.bundle)}) + "\n");
  std::vector<BundleFile> readable;
  for (const BundleFile& file : files) {
    const std::int64_t size = sizeOf(file);
    print("  " + file.name + ", " + (size < 0 ? _("cannot be read: left out") : sizeText(size)) + "\n");
    if (size >= 0) {
      readable.push_back(file);
    }
  }
  std::fflush(stdout);
  writeBundle(arguments.bundle, readable);
}

ExitStatus printLog(const LogArguments& arguments) {
  if (arguments.format == "json") {
    speakEnglish();
  }
  const std::string path = arguments.file.empty() ? usersInstallationLog() : arguments.file;
  // A pipe without a writer is an empty log; do not wait for one.
  const int descriptor = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  struct stat found {};
  if (descriptor < 0 || fstat(descriptor, &found) != 0) {
    throw UsageError(
        errno == ENOENT && arguments.file.empty()
            ? format(_("no installation log at {0} yet; the first installation creates it"), {path})
            : format(_("cannot read the log {0}: {1}"), {path, std::strerror(errno)}));
  }
  if (S_ISDIR(found.st_mode)) {
    throw UsageError(format(_("cannot read the log {0}: it is a folder"), {path}));
  }
  fcntl(descriptor, F_SETFL, O_RDONLY);
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(fdopen(descriptor, "rb"), std::fclose);
  RunPrinter printer(arguments, isRunning(arguments),
                     arguments.file.empty() ? readRunRecord(path) : std::nullopt);
  std::optional<LoggedRun> last;
  std::set<std::string> hosts;
  LoggedRuns runs([&](const LoggedRun& run) {
    printer.add(run);
    if (!run.host.empty()) {
      hosts.insert(run.host);
    }
    last = run;
  });
  std::int64_t recordCount = 0;
  LogRecords records([&](const LogRecord& record) {
    ++recordCount;
    runs.add(record);
  });
  std::array<char, 262144> buffer;
  while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), file.get())) {
    records.add({buffer.data(), count});
  }
  if (std::ferror(file.get()) != 0) {
    throw UsageError(format(_("cannot read the log {0}: {1}"), {path, std::strerror(errno)}));
  }
  records.finish();
  runs.finish();
  if (recordCount == 0 && records.foreignBytes() > 0) {
    throw UsageError(format(_("{0} is not an installation log: no line in it is the page's"), {path}));
  }
  if (!arguments.bundle.empty()) {
    makeBundle(arguments, path, last.value_or(LoggedRun()), hosts);
    return arguments.checks ? statusOf(last ? std::optional(printer.state()) : std::nullopt)
                            : ExitStatus::success;
  }
  const std::optional<RunState> lastRun = printer.finish(path);
  return arguments.checks ? statusOf(lastRun) : ExitStatus::success;
}

}  // namespace

void addLogCommand(CommandLine& commandLine) {
  const auto arguments = std::make_shared<LogArguments>();
  CLI::App* log =
      commandLine.program.add_subcommand("log", _("Show what an installation log records, run by run"));
  log->add_option("FILE", arguments->file, _("Log file; by default the user's own"));
  log->add_flag("--last", arguments->lastOnly, _("Show only the last run"));
  log->add_flag("--check", arguments->checks, _("Tell by the exit status how the last run ended"));
  CLI::Option* bundle =
      log->add_option("--bundle", arguments->bundle, _("Put what support needs into this new ZIP file"))
          ->type_name("FILE");
  log->add_option("--format", arguments->format, _("Output format"))
      ->check(oneOf({"text", "json"}))
      ->type_name("text|json")
      ->excludes(bundle)
      ->capture_default_str();
  log->callback(
      [&commandLine, arguments] { commandLine.chosen = [arguments] { return printLog(*arguments); }; });
}

}  // namespace tavenhall

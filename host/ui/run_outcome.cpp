#include "host/ui/run_outcome.h"

#include "host/base/display_text.h"
#include "host/base/text.h"
#include "host/base/units.h"
#include "host/log/log_records.h"

#include <array>
#include <cstdio>
#include <memory>
#include <sys/stat.h>

namespace tavenhall {

namespace {

constexpr std::size_t kMostMessagesShown = 20;

struct FailureKind {
  std::string_view kind;
  const char* text;
};

// The kinds that the log's reader knows, in the order in which they are told.
constexpr std::array<FailureKind, 6> kFailureKinds{{
    {"no-destination", N_("Had nowhere to go")},
    {"not-found", N_("Not found on the disc or beside the package")},
    {"folder", N_("Folders that could not be made")},
    {"source", N_("Files that could not be read")},
    {"target", N_("Files that could not be written")},
    {"size", N_("Files that were not copied whole")},
}};

std::string amountText(const RunOutcome& outcome) {
  const std::string time = durationText(outcome.time.count());
  return outcome.bytesCopied ? format(_("{0} in {1}"), {sizeText(*outcome.bytesCopied), time})
                             : format(_("in {0}"), {time});
}

// The files of one kind below their heading, each in a line that ends with its name.
void appendKind(std::vector<Line>& lines, const RunOutcome& outcome, const FailureKind& kind, int width) {
  std::vector<Line> files;
  for (const RunFailure& failure : outcome.failures) {
    if (failure.kind == kind.kind) {
      const std::string& name = failure.file.empty() ? failure.detail : failure.file;
      files.push_back({{"  " + truncatePath(name, width - 2), Style::text}});
    }
  }
  if (!files.empty()) {
    lines.emplace_back();
    append(lines, wrappedLines(_(kind.text), width, Style::strong));
    append(lines, std::move(files));
  }
}

void appendFailures(std::vector<Line>& lines, const RunOutcome& outcome, int width) {
  for (const FailureKind& kind : kFailureKinds) {
    appendKind(lines, outcome, kind, width);
  }
  const std::int64_t more = outcome.failureCount - static_cast<std::int64_t>(outcome.failures.size());
  if (more > 0) {
    lines.emplace_back();
    append(lines, wrappedLines(plural("and {0} more failure: the log has them all.",
                                      "and {0} more failures: the log has them all.", more),
                               width));
  }
}

void appendMessages(std::vector<Line>& lines, const RunOutcome& outcome, int width) {
  if (outcome.messages.empty()) {
    return;
  }
  lines.emplace_back();
  append(lines, wrappedLines(_("Commands that ran on the way said"), width, Style::strong));
  const std::size_t first = outcome.messages.size() - std::min(outcome.messages.size(), kMostMessagesShown);
  for (std::size_t i = first; i < outcome.messages.size(); ++i) {
    append(lines, labelledLines("", outcome.messages[i], 2, width, Style::dim));
  }
}

}  // namespace

ExitStatus RunOutcome::exitStatus() const {
  return status == ExitStatus::success && failureCount > 0 ? ExitStatus::failure : status;
}

std::int64_t logSize(const std::string& logPath) {
  struct stat found {};
  return stat(logPath.c_str(), &found) == 0 ? found.st_size : 0;
}

void readFailures(const std::string& logPath, std::int64_t start, RunOutcome& outcome) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> log(std::fopen(logPath.c_str(), "re"), std::fclose);
  if (log == nullptr) {
    return;
  }
  if (start <= logSize(logPath)) {
    std::fseek(log.get(), static_cast<long>(start), SEEK_SET);
  }
  RunStories stories([&outcome](const RunStory& story) {
    outcome.failures.insert(outcome.failures.end(), story.failures.begin(), story.failures.end());
    outcome.failureCount += story.failureCount;
  });
  LogRecords records([&stories](const LogRecord& record) { stories.add(record); });
  std::array<char, 65536> piece{};
  while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), log.get())) {
    records.add({piece.data(), count});
  }
  records.finish();
  stories.finish();
}

Span outcomeHeading(const RunOutcome& outcome) {
  if (outcome.isSuccess()) {
    return {_("The installation was successful."), Style::good};
  }
  if (!outcome.isTold) {
    return {_("The installation ended before its time."), Style::bad};
  }
  return {outcome.bytesCopied != 0.0 ? _("The installation is not complete.") : _("The installation failed."),
          Style::bad};
}

std::vector<Line> outcomeLines(const RunOutcome& outcome, int width) {
  const char* installed = _("Installed");
  const char* in = _("In");
  const char* copied = _("Copied");
  const char* into = _("Into");
  const char* log = _("Log");
  const int indent = labelColumns({installed, in, copied, into, log});

  std::vector<Line> lines;
  if (outcome.isSuccess()) {
    append(lines, labelledLines(installed, amountText(outcome), indent, width));
    append(lines, labelledLines(in, outcome.destination, indent, width));
  } else {
    const std::string whatToDo =
        outcome.failureCount > 0
            ? plural("{0} failure. Put right what is named below, then run the installer again.",
                     "{0} failures. Put right what is named below, then run the installer again.",
                     outcome.failureCount)
            : _("Nothing in the log names a file. Run the installer again to complete it.");
    append(lines, wrappedLines(whatToDo, width));
    lines.emplace_back();
    append(lines, labelledLines(copied, amountText(outcome), indent, width));
    append(lines, labelledLines(into, outcome.destination, indent, width));
  }
  if (!outcome.logPath.empty()) {
    append(lines, labelledLines(log, outcome.logPath, indent, width));
  }
  appendFailures(lines, outcome, width);
  appendMessages(lines, outcome, width);
  return lines;
}

std::string logLine(const std::string& logPath) {
  return logPath.empty() ? std::string() : format(_("The log is {0}."), {logPath}) + "\n";
}

std::string lastWord(const RunOutcome& outcome) {
  const std::string amount = amountText(outcome);
  const std::string word = outcome.isSuccess()
                               ? format(_("Installed {0}."), {amount})
                               : join(outcomeHeading(outcome).text, format(_("Copied {0}."), {amount}));
  return word + "\n" + logLine(outcome.logPath);
}

}  // namespace tavenhall

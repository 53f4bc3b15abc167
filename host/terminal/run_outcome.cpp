#include "host/terminal/run_outcome.h"

#include "host/log/log_records.h"
#include "host/plain_printer.h"
#include "host/terminal/shown_text.h"

#include <array>
#include <cstdio>
#include <memory>
#include <sys/stat.h>

namespace tavenhall {

namespace {

constexpr int kIndent = 11;
constexpr std::size_t kMostMessagesShown = 20;

struct FailureKind {
  std::string_view kind;
  const char* text;
};

// The kinds that the log's reader knows, in the order in which they are told.
constexpr std::array<FailureKind, 6> kFailureKinds{{
    {"no-destination", "Had nowhere to go"},
    {"not-found", "Not found on the disc or beside the package"},
    {"folder", "Folders that could not be made"},
    {"source", "Files that could not be read"},
    {"target", "Files that could not be written"},
    {"size", "Files that were not copied whole"},
}};

std::string countText(std::int64_t count, const char* one, const char* many) {
  return std::to_string(count) + (count == 1 ? one : many);
}

std::string amountText(const RunOutcome& outcome) {
  const std::string amount = outcome.bytesCopied ? sizeText(*outcome.bytesCopied) + " " : "";
  return amount + "in " + durationText(outcome.time.count());
}

// The files of one kind below their heading, each in a line that ends with its name.
void appendKind(std::vector<Line>& lines, const RunOutcome& outcome, const FailureKind& kind, int width) {
  std::vector<Line> files;
  for (const RunFailure& failure : outcome.failures) {
    if (failure.kind == kind.kind) {
      const std::string& name = failure.file.empty() ? failure.detail : failure.file;
      files.push_back({{"  " + shortPath(name, width - 2), Style::text}});
    }
  }
  if (!files.empty()) {
    lines.emplace_back();
    append(lines, wrappedLines(kind.text, width, Style::strong));
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
    append(lines,
           wrappedLines("and " + countText(more, " more failure", " more failures") + ": the log has them all.",
                        width));
  }
}

void appendMessages(std::vector<Line>& lines, const RunOutcome& outcome, int width) {
  if (outcome.messages.empty()) {
    return;
  }
  lines.emplace_back();
  append(lines, wrappedLines("Commands that ran on the way said", width, Style::strong));
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
    return {"The installation was successful.", Style::good};
  }
  if (!outcome.isTold) {
    return {"The installation ended before its time.", Style::bad};
  }
  return {outcome.bytesCopied != 0.0 ? "The installation is not complete." : "The installation failed.",
          Style::bad};
}

std::vector<Line> outcomeLines(const RunOutcome& outcome, int width) {
  std::vector<Line> lines;
  if (outcome.isSuccess()) {
    append(lines, labelledLines("Installed", amountText(outcome), kIndent, width));
    append(lines, labelledLines("In", outcome.destination, kIndent, width));
  } else {
    if (outcome.failureCount > 0) {
      append(lines, wrappedLines(countText(outcome.failureCount, " failure", " failures") +
                                     ". Put right what is named below, then run the installer again.",
                                 width));
    } else {
      append(lines,
             wrappedLines("Nothing in the log names a file. Run the installer again to complete it.", width));
    }
    lines.emplace_back();
    append(lines, labelledLines("Copied", amountText(outcome), kIndent, width));
    append(lines, labelledLines("Into", outcome.destination, kIndent, width));
  }
  if (!outcome.logPath.empty()) {
    append(lines, labelledLines("Log", outcome.logPath, kIndent, width));
  }
  appendFailures(lines, outcome, width);
  appendMessages(lines, outcome, width);
  return lines;
}

std::string lastWord(const RunOutcome& outcome) {
  std::string word;
  if (outcome.isSuccess()) {
    word = "Installed " + amountText(outcome) + ".\n";
  } else {
    word = outcomeHeading(outcome).text + " Copied " + amountText(outcome) + ".\n";
  }
  return outcome.logPath.empty() ? word : word + "The log is " + outcome.logPath + ".\n";
}

}  // namespace tavenhall

#include "host/ui/run_result.h"

#include "host/base/display_text.h"
#include "host/base/text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tavenhall {

namespace {

constexpr std::size_t kMostMessagesShown = 20;

struct ProblemText {
  std::string_view problem;
  const char* text;
};

// In the order in which they are listed. "not-found", "source", "folder", "target" and "command" are a log's
// names.
constexpr std::array<ProblemText, 19> kProblemTexts{{
    {"no-destination", N_("No destination")},
    {"no-files", N_("No file to install")},
    {"not-copied", N_("Not copied")},
    {"same-source", N_("Copied again instead of the next disc")},
    {"not-found", N_("Not found on the disc or beside the package")},
    {"not-listed", N_("Cannot be listed")},
    {"not-readable", N_("Cannot be read")},
    {"source", N_("Cannot be read")},
    {"folder-as-file", N_("Link to a folder")},
    {"skipped", N_("Skipped because of its path")},
    {"folder", N_("Cannot be created")},
    {"missing", N_("Missing")},
    {"refused", N_("Cannot be written")},
    {"target", N_("Cannot be written")},
    {"type", N_("File and folder in conflict")},
    {"size", N_("Not copied completely")},
    {"shared", N_("Linked to another installed file")},
    {"link-to-source", N_("Linked to its source")},
    {"command", N_("Command failed")},
}};

std::string installedAmountText(const RunResult& result) {
  const std::string time = durationText(result.time.count());
  return result.bytes ? format(_("{0} in {1}"), {sizeText(*result.bytes), time}) : format(_("in {0}"), {time});
}

// The entries with one problem below their heading, each on a line that ends with its name.
void appendProblem(std::vector<Line>& lines, const RunResult& result, const ProblemText& problem, int width) {
  std::vector<Line> files;
  bool isFound = false;
  for (const FailedEntry& failure : result.failures.first) {
    if (failure.problem == problem.problem) {
      isFound = true;
      if (!failure.name.empty()) {
        files.push_back({{"  " + truncatePath(failure.name, width - 2), Style::text}});
      }
    }
  }
  if (isFound) {
    lines.emplace_back();
    append(lines, wrappedLines(_(problem.text), width, Style::strong));
    append(lines, std::move(files));
  }
}

void appendFailures(std::vector<Line>& lines, const RunResult& result, int width) {
  for (const ProblemText& problem : kProblemTexts) {
    appendProblem(lines, result, problem, width);
  }
  const std::int64_t more = result.failures.count - static_cast<std::int64_t>(result.failures.first.size());
  if (more > 0) {
    lines.emplace_back();
    append(lines, wrappedLines(plural("and {0} more failure", "and {0} more failures", more), width));
  }
}

void appendMessages(std::vector<Line>& lines, const RunResult& result, int width) {
  if (result.messages.empty()) {
    return;
  }
  lines.emplace_back();
  append(lines, wrappedLines(_("Output of commands"), width, Style::strong));
  const std::size_t first = result.messages.size() - std::min(result.messages.size(), kMostMessagesShown);
  for (std::size_t i = first; i < result.messages.size(); ++i) {
    append(lines, labelledLines("", result.messages[i], 2, width, Style::dim));
  }
}

}  // namespace

void Failures::add(FailedEntry failure) {
  ++count;
  if (first.size() < kMostKept) {
    first.push_back(std::move(failure));
  }
}

std::string failureText(const FailedEntry& failure) {
  const auto* row =
      std::find_if(kProblemTexts.begin(), kProblemTexts.end(),
                   [&failure](const ProblemText& text) { return text.problem == failure.problem; });
  std::string name = failure.detail.empty() ? failure.name : failure.name + " (" + failure.detail + ")";
  if (row == kProblemTexts.end()) {
    return name;
  }
  return name.empty() ? _(row->text) : format("{0}: {1}", {_(row->text), name});
}

ExitStatus RunResult::exitStatus() const {
  return status == ExitStatus::success && failures.count > 0 ? ExitStatus::failure : status;
}

Span resultHeading(const RunResult& result) {
  if (result.isSuccess()) {
    return {_("The installation was successful."), Style::good};
  }
  if (!result.hasSummary) {
    return {_("The installation ended unexpectedly."), Style::bad};
  }
  if (result.status == ExitStatus::stopped) {
    return {_("The installation was stopped."), Style::bad};
  }
  return {result.bytes != 0.0 ? _("The installation is not complete.") : _("The installation failed."),
          Style::bad};
}

std::vector<Line> resultLines(const RunResult& result, int width) {
  const char* installed = _("Installed");
  const char* in = _("In");
  const char* copied = _("Copied");
  const char* into = _("Into");
  const char* time = _("Time");
  const char* log = _("Log");
  const int indent = labelColumns({installed, in, copied, into, time, log});

  std::vector<Line> lines;
  if (result.isSuccess()) {
    append(lines, labelledLines(installed, installedAmountText(result), indent, width));
    append(lines, labelledLines(in, result.destination, indent, width));
  } else {
    const std::string whatToDo =
        result.status == ExitStatus::stopped
            ? (result.hasCopied ? _("The files copied so far are kept. Run the installer again to complete the "
                                    "installation.")
                                : _("Nothing was installed."))
        : result.failures.count > 0
            ? plural("{0} failure. Fix the problem below, then run the installer again.",
                     "{0} failures. Fix the problems below, then run the installer again.",
                     result.failures.count)
            : _("It is not known which file is missing. Run the installer again to complete the installation.");
    append(lines, wrappedLines(whatToDo, width));
    lines.emplace_back();
    append(lines, labelledLines(copied, installedAmountText(result), indent, width));
    append(lines, labelledLines(into, result.destination, indent, width));
  }
  if (const std::string split =
          timeSplitText(result.copyingSeconds, result.waitingSeconds, result.time.count());
      !split.empty()) {
    append(lines, labelledLines(time, split, indent, width));
  }
  for (const std::string& text : result.remaining) {
    append(lines, wrappedLines(text, width));
  }
  if (!result.log.empty()) {
    append(lines, labelledLines(log, result.log, indent, width));
  }
  appendFailures(lines, result, width);
  appendMessages(lines, result, width);
  return lines;
}

std::string timeSplitText(double copyingSeconds, double waitingSeconds, double seconds) {
  return waitingSeconds < 0.5
             ? std::string()
             : format(_("{0} copying, {1} waiting for discs, {2} in all"),
                      {durationText(copyingSeconds), durationText(waitingSeconds), durationText(seconds)});
}

std::string stoppedText(const event::Summary& summary, const std::string& afterStop) {
  return join(_("Stopped."), summary.filesDone > 0 ? afterStop : std::string(_("Nothing was installed.")));
}

std::vector<std::string> remainingTexts(const std::vector<event::Remaining>& remaining) {
  std::vector<std::string> texts;
  texts.reserve(remaining.size());
  for (const event::Remaining& copy : remaining) {
    texts.push_back(format(_("Still to install: {0}"), {copy.source}));
  }
  return texts;
}

std::string logLine(const std::string& logPath) {
  return logPath.empty() ? std::string() : format(_("The log is {0}."), {logPath}) + "\n";
}

std::string closingText(const RunResult& result) {
  const std::string amount = installedAmountText(result);
  const std::string text = result.isSuccess()
                               ? format(_("Installed {0}."), {amount})
                               : join(resultHeading(result).text, format(_("Copied {0}."), {amount}));
  return text + "\n" + logLine(result.log);
}

}  // namespace tavenhall

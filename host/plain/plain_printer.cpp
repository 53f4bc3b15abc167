#include "host/plain/plain_printer.h"

#include "host/base/text.h"
#include "host/ui/phase_line.h"
#include "host/ui/run_result.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

namespace tavenhall {

namespace {

constexpr auto kPauseBetweenProgressLines = std::chrono::seconds(1);

}  // namespace

void PlainPrinter::show(const Event& event, Clock::time_point now) {
  std::visit(EventVisitor{
                 [&](const event::Title& title) { print_(printableText(title.text)); },
                 [&](const event::Instructions& instructions) { showInstructions(instructions.text); },
                 [&](const event::Status& status) {
                   status_ = status.text == " " ? "" : status.text;  // a blank clears the line
                   showProgress(now);
                 },
                 [&](const event::ProgressMinimum& minimum) { minimum_ = minimum.value; },
                 [&](const event::ProgressMaximum& maximum) { maximum_ = maximum.value; },
                 [&](const event::ProgressValue& progress) {
                   const double range = maximum_ - minimum_;
                   const double part = range > 0 ? (progress.value - minimum_) / range : 0.0;
                   percent_ = static_cast<int>(std::floor(std::clamp(part, 0.0, 1.0) * 100.0));
                   showProgress(now);
                 },
                 [&](const event::Phase& phase) { showPhase(phase, now); },
                 [&](const event::Alert& alert) { showAlert(alert); },
                 [&](const event::Sheet& sheet) {
                   flush();
                   const std::string message = printableText(sheet.message);
                   print_("! " + (sheet.file.empty() ? message : printableLine(sheet.file) + ": " + message));
                 },
                 [&](const event::AuditFailure& failure) {
                   flush();
                   print_("! " + printableLine(failureText({failure.problem, failure.source, failure.detail})));
                 },
                 [&](const event::Error& error) { print_("! " + printableText(error.message)); },
                 [](const auto& /*other*/) {}},
             event);
}

void PlainPrinter::showInstructions(const std::string& text) {
  if (text != instructions_) {
    flush();
    instructions_ = text;
    showText(text);
  }
}

// Only of discs: elsewhere there is nothing to wait for.
void PlainPrinter::showPhase(const event::Phase& phase, Clock::time_point now) {
  if (!phase.disc.empty()) {
    flush();
    PhaseLine line;
    line.set(phase, now);
    print_("- " + line.texts(now).front());
  }
}

void PlainPrinter::showAlert(const event::Alert& alert) {
  flush();
  print_("? " + printableText(alert.message));
  showText(alert.informative);
  if (!hasAnswers_) {
    return;
  }
  int number = 0;
  for (const std::string& button : alert.buttons) {
    print_("  " + std::to_string(++number) + ") " + printableText(button));
  }
}

void PlainPrinter::flush() {
  if (!heldProgress_.empty()) {
    shownProgress_ = std::exchange(heldProgress_, {});
    print_(shownProgress_);
  }
}

// Indents long texts, so that the reader sees where they end.
void PlainPrinter::showText(std::string_view text) {
  const std::string clean = printableText(text);
  std::string_view rest = clean;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    const std::string line = "  " + std::string(rest.substr(0, end));
    print_(line.substr(
        0, line.find_last_not_of(' ') + 1));  // texts from the attributes file have blanks before line breaks
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
}

void PlainPrinter::showProgress(Clock::time_point now) {
  if (!percent_) {
    return;
  }
  std::array<char, 16> percent{};
  std::snprintf(percent.data(), percent.size(), "%3d %%", *percent_);
  const std::string line = percent.data() + (status_.empty() ? "" : "  " + printableText(status_));
  if (line == shownProgress_) {
    heldProgress_.clear();
    return;
  }
  heldProgress_ = line;
  if (!lastProgress_ || now - *lastProgress_ >= kPauseBetweenProgressLines) {
    lastProgress_ = now;
    flush();
  }
}

}  // namespace tavenhall

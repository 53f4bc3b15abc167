#include "host/plain/plain_printer.h"

#include "host/base/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace tavenhall {

namespace {

constexpr auto kPauseBetweenProgressLines = std::chrono::seconds(1);

std::string textOf(const nlohmann::ordered_json& event, const char* key) {
  return event.value(key, std::string());
}

}  // namespace

void PlainPrinter::show(const nlohmann::ordered_json& event, Clock::time_point now) {
  const std::string name = textOf(event, "event");
  if (name == "title") {
    print_(printableText(textOf(event, "text")));
  } else if (name == "instructions") {
    if (const std::string text = textOf(event, "text"); text != instructions_) {
      flush();
      instructions_ = text;
      showText(text);
    }
  } else if (name == "status") {
    status_ = textOf(event, "text");
    if (status_ == " ") {
      status_.clear();  // the page's way to clear the line
    }
    showProgress(now);
  } else if (name == "progress.min") {
    minimum_ = event.value("value", 0.0);
  } else if (name == "progress.max") {
    maximum_ = event.value("value", 0.0);
  } else if (name == "progress.value") {
    const double range = maximum_ - minimum_;
    const double part = range > 0 ? (event.value("value", 0.0) - minimum_) / range : 0.0;
    percent_ = static_cast<int>(std::floor(std::clamp(part, 0.0, 1.0) * 100.0));
    showProgress(now);
  } else if (name == "alert") {
    flush();
    print_("? " + printableText(textOf(event, "message")));
    showText(textOf(event, "informative"));
    int number = 0;
    for (const auto& button : event.value("buttons", std::vector<std::string>())) {
      print_("  " + std::to_string(++number) + ") " + printableText(button));
    }
  } else if (name == "sheet") {
    flush();
    print_("! " + printableText(textOf(event, "message")));
  } else if (name == "error") {
    print_("! " + printableText(textOf(event, "message")));
  }
}

void PlainPrinter::flush() {
  if (!heldProgress_.empty()) {
    shownProgress_ = std::exchange(heldProgress_, {});
    print_(shownProgress_);
  }
}

// The lines of a long text are set in, so that the reader sees where it ends.
void PlainPrinter::showText(std::string_view text) {
  const std::string clean = printableText(text);
  std::string_view rest = clean;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    const std::string line = "  " + std::string(rest.substr(0, end));
    print_(line.substr(0, line.find_last_not_of(' ') + 1));  // texts from a file have blanks before line breaks
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

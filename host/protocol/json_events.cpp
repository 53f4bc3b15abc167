#include "host/protocol/json_events.h"

#include "host/base/child_process.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <nlohmann/json.hpp>
#include <string>
#include <unistd.h>
#include <vector>

namespace tavenhall {

using nlohmann::ordered_json;

namespace {

std::string jsonText(const ordered_json& value) {
  return value.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

// These two come twice a file, so they are written without building an object first.
constexpr std::string_view kBarValue = "progress.value";
constexpr std::string_view kStatus = "status";

void appendString(std::string& line, std::string_view text) {
  const bool isPlain =
      std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; });
  if (isPlain) {
    line.append(1, '"').append(text).append(1, '"');
  } else {
    line += jsonText(ordered_json(text));
  }
}

void appendNumber(std::string& line, double value) {
  constexpr double kWholeAndShort = 1e15;
  if (value >= 0.0 && value < kWholeAndShort && value == std::floor(value)) {
    line += std::to_string(static_cast<std::int64_t>(value)) + ".0";
  } else {
    line += jsonText(value);
  }
}

}  // namespace

void JsonEvents::plain(const char* event) { write({{"event", event}}); }

void JsonEvents::text(const char* event, std::string_view text) {
  if (event != kStatus) {
    write({{"event", event}, {"text", text}});
    return;
  }
  held_ += R"({"event":"status","text":)";
  appendString(held_, text);
  held_ += "}\n";
  hold();
}

void JsonEvents::number(const char* event, double value) {
  if (event != kBarValue) {
    write({{"event", event}, {"value", value}});
    return;
  }
  held_ += R"({"event":"progress.value","value":)";
  appendNumber(held_, value);
  held_ += "}\n";
  hold();
}

void JsonEvents::enabled(const char* event, bool enabled) { write({{"event", event}, {"enabled", enabled}}); }

void JsonEvents::exit(std::int64_t direction, bool allowed) {
  write({{"event", "exit"}, {"direction", direction}, {"allowed", allowed}});
}

void JsonEvents::alert(const Alert& alert) {
  write({{"event", "alert"},
         {"message", alert.messageText},
         {"informative", alert.informativeText},
         {"buttons", std::vector<std::string>(alert.buttons.begin(), alert.buttons.end())},
         {"style", alert.style}});
}

void JsonEvents::sheet(const Sheet& sheet) {
  write({{"event", "sheet"}, {"button", sheet.defaultButton}, {"message", sheet.message}});
}

void JsonEvents::assertion(const char* type, std::uint32_t level, const char* name) {
  write({{"event", "assertion"}, {"type", type}, {"level", level}, {"name", name}});
}

void JsonEvents::assertionReleased(const char* type) {
  write({{"event", "assertion.release"}, {"type", type}});
}

void JsonEvents::error(std::string_view message) { write({{"event", "error"}, {"message", message}}); }

void JsonEvents::write(const ordered_json& event) {
  held_ += jsonLine(event);
  flush();
}

void JsonEvents::hold() {
  if (std::chrono::steady_clock::now() - latestWriting_ >= kLongestHold) {
    flush();
  }
}

void JsonEvents::flush() {
  writeAll(descriptor_, held_);
  held_.clear();
  latestWriting_ = std::chrono::steady_clock::now();
}

std::string jsonLine(const ordered_json& object) { return jsonText(object) + "\n"; }

}  // namespace tavenhall

#pragma once

#include "host/protocol/event_sink.h"

#include <chrono>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace tavenhall {

// Writes each event as one JSON object on a line of its own. Those that follow the copy ("progress.value",
// "status") may be held back, kLongestHold after the latest writing at most when others come, else until they
// are flushed; all others are written at once, after what was held back. Text that is not valid UTF-8 is
// written with replacement characters. When nobody reads any more, events are dropped.
class JsonEvents final : public EventSink {
 public:
  // The descriptor stays the caller's.
  explicit JsonEvents(int descriptor) : descriptor_(descriptor) {}

  void plain(const char* event) override;
  void text(const char* event, std::string_view text) override;
  void number(const char* event, double value) override;
  void enabled(const char* event, bool enabled) override;
  void exit(std::int64_t direction, bool allowed) override;
  void alert(const Alert& alert) override;
  void sheet(const Sheet& sheet) override;
  void assertion(const char* type, std::uint32_t level, const char* name) override;
  void assertionReleased(const char* type) override;
  void error(std::string_view message) override;
  [[nodiscard]] bool isHolding() const override { return !held_.empty(); }
  void flush() override;

  static constexpr std::chrono::milliseconds kLongestHold{16};

 private:
  void write(const nlohmann::ordered_json& event);
  void hold();

  int descriptor_;
  std::string held_;  // whole lines
  std::chrono::steady_clock::time_point latestWriting_;
};

// One JSON object as a line, newline included.
[[nodiscard]] std::string jsonLine(const nlohmann::ordered_json& object);

}  // namespace tavenhall

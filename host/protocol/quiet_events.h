#pragma once

#include "host/protocol/event_sink.h"

namespace tavenhall {

// Says nothing.
class QuietEvents final : public EventSink {
 public:
  void plain(const char* /*event*/) override {}
  void text(const char* /*event*/, std::string_view /*text*/) override {}
  void number(const char* /*event*/, double /*value*/) override {}
  void enabled(const char* /*event*/, bool /*enabled*/) override {}
  void exit(std::int64_t /*direction*/, bool /*allowed*/) override {}
  void alert(const Alert& /*alert*/) override {}
  void sheet(const Sheet& /*sheet*/) override {}
  void assertion(const char* /*type*/, std::uint32_t /*level*/, const char* /*name*/) override {}
  void assertionReleased(const char* /*type*/) override {}
  void error(std::string_view /*message*/) override {}
  [[nodiscard]] bool isHolding() const override { return false; }
  void flush() override {}
};

}  // namespace tavenhall

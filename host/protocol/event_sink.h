#pragma once

#include "platform/installer_host.h"

#include <cstdint>
#include <string_view>

namespace tavenhall {

// Where the engine says what happens. Called by one thread at a time, in the order in which things happen;
// texts are valid only during the call, and are as the page gave them.
class EventSink {
 public:
  virtual ~EventSink() = default;

  virtual void plain(const char* event) = 0;                        // "entered", "idle"
  virtual void text(const char* event, std::string_view text) = 0;  // "title", "instructions", "status"
  virtual void number(const char* event, double value) = 0;         // "progress.min", and so on
  virtual void enabled(const char* event, bool enabled) = 0;        // "previous", "next"
  virtual void exit(std::int64_t direction, bool allowed) = 0;
  virtual void alert(const Alert& alert) = 0;
  virtual void sheet(const Sheet& sheet) = 0;
  virtual void assertion(const char* type, std::uint32_t level, const char* name) = 0;
  virtual void assertionReleased(const char* type) = 0;
  virtual void error(std::string_view message) = 0;

  // What follows the copy may be held back for a moment, so that many small pieces go out as one. Is anything?
  [[nodiscard]] virtual bool isHolding() const = 0;
  virtual void flush() = 0;
};

}  // namespace tavenhall

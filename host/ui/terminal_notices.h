#pragma once

#include <functional>
#include <optional>
#include <string>

// What a user notices of an install while the terminal's window is behind others: a bell, the window's title, a
// notification of the desktop, and progress in the window's icon. Pure but for the environment.
namespace tavenhall {

// What a terminal is known to do. Sequences that a terminal does not know may be shown as garbage.
struct NoticeAbilities {
  bool bell = false;
  bool title = false;         // OSC 2; the title before is saved and restored
  bool notification = false;  // OSC 9
  bool progress = false;      // OSC 9;4

  bool operator==(const NoticeAbilities&) const = default;
};

// Of the terminal that the environment describes; `variable` returns the value of one, or null.
[[nodiscard]] NoticeAbilities noticeAbilities(const std::function<const char*(const char* name)>& variable);

// What is to be noticed now.
struct TerminalNotice {
  enum class End { none, success, failure };

  std::string product;
  std::optional<int> percent;  // none: unknown, or not begun
  std::string need;            // what a person is needed for; empty: nothing
  End end = End::none;
};

// Turns notices into escape sequences for the terminal. One thread.
class TerminalNotices {
 public:
  explicit TerminalNotices(NoticeAbilities abilities) : abilities_(abilities) {}

  // Before the first notice, and after the last. The second is the same at any time, also for the handler of a
  // crash.
  [[nodiscard]] std::string begin() const;
  [[nodiscard]] std::string end() const;

  // The sequences for what has changed; empty where nothing has.
  [[nodiscard]] std::string update(const TerminalNotice& notice);

 private:
  NoticeAbilities abilities_;
  std::string title_;
  std::string progress_;
  std::string call_;  // what the user was called for last
};

}  // namespace tavenhall

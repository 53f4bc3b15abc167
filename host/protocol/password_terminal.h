#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tavenhall {

// Overwrites memory that held a secret; the compiler does not remove the writes. Any thread.
void wipe(void* memory, std::size_t bytes) noexcept;

// A password while it is typed, in one buffer that the destructor overwrites. One thread.
class Secret {
 public:
  Secret() = default;
  Secret(const Secret&) = delete;
  Secret& operator=(const Secret&) = delete;
  ~Secret() { clear(); }

  // Adds UTF-8 text, or nothing if not all of it fits.
  void append(std::string_view text) noexcept;
  void dropLastCharacter() noexcept;
  void clear() noexcept;

  [[nodiscard]] std::string_view text() const { return {bytes_.data(), size_}; }
  [[nodiscard]] std::size_t characters() const;

  static constexpr std::size_t kLongest = 1023;  // bytes; what asks for passwords takes no more

 private:
  std::array<char, kLongest> bytes_{};
  std::size_t size_ = 0;
};

// A pseudo-terminal for the commands that a page runs: sudo and the like ask for a password there, and a
// frontend passes the prompt on to its user. Only programs with root's rights, as sudo has them, can open it:
// what another command leaves behind in the background would otherwise read the password.
struct PseudoTerminal {
  int frontend = -1;  // the master side, for PasswordTerminal
  int commands = -1;  // the terminal itself
};

// Opens one, with close-on-exec set on both sides; the caller closes them. Both are -1 if the system cannot
// open one: commands that ask then fail.
[[nodiscard]] PseudoTerminal openPseudoTerminal() noexcept;

// Makes it the controlling terminal of this process and its children. Call it after setsid().
void setControllingTerminal(int commands) noexcept;

// Leaves this process's controlling terminal, so that no command that it runs can ask there.
void leaveControllingTerminal() noexcept;

// The frontend's side. It sends the user's answer to the command alone; no event and no request contains it.
// One thread.
class PasswordTerminal {
 public:
  // The caller owns the descriptor. -1: there is no such terminal, and there is never a prompt.
  explicit PasswordTerminal(int descriptor) : descriptor_(descriptor) {}

  // Poll it for input; -1 once it is closed.
  [[nodiscard]] int descriptor() const { return descriptor_; }

  // Reads without blocking, and passes each complete line that a command has printed to `handle`.
  void read(const std::function<void(const std::string& line)>& handle);

  // The prompt of a command that waits for a password: a line without an end while the terminal does not echo.
  // None without a prompt.
  [[nodiscard]] const std::optional<std::string>& prompt() const { return prompt_; }

  // Answers the prompt, or makes it fail with an end of input. Does nothing once the prompt is over.
  void answer(const Secret& secret);
  void refuse();

 private:
  void send(std::string_view text, char end);

  int descriptor_;
  std::string partialLine_;
  std::optional<std::string> prompt_;
};

}  // namespace tavenhall

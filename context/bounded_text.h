#pragma once

#include <array>
#include <cstdarg>
#include <cstddef>
#include <cstring>
#include <string_view>

// Text in fixed buffers. Overflow aborts the process: a truncated path or command could write data to a wrong
// place.
namespace tavenhall {

// Writes one line on standard error that names the limit (bytes, terminator included) and aborts.
// Any thread.
[[noreturn]] void stopForWantOfRoom(std::size_t limit) noexcept;

// Formats into `out` (`room` bytes, terminator included). Aborts on overflow.
void formatBounded(char* out, std::size_t room, const char* format, std::va_list arguments) noexcept;

// Formats into `out` (`room` bytes, terminator included); truncates at any byte.
void formatCut(char* out, std::size_t room, const char* format, std::va_list arguments) noexcept;

// Copies `text` into `out` (`room` bytes, at least 1, terminator included); truncates
// at the boundary of a UTF-8 character. Bytes that are not UTF-8 are truncated anywhere.
void copyCut(char* out, std::size_t room, std::string_view text) noexcept;

// A byte string of at most `Size - 1` bytes, always terminated. Starts empty. The owner synchronises threads.
template <std::size_t Size>
class BoundedText {
 public:
  [[nodiscard]] const char* c_str() const noexcept { return bytes_.data(); }
  [[nodiscard]] std::string_view view() const noexcept { return bytes_.data(); }
  [[nodiscard]] std::size_t length() const noexcept { return std::strlen(bytes_.data()); }
  [[nodiscard]] bool empty() const noexcept { return bytes_[0] == '\0'; }

  // The buffer, for functions that fill one; they must keep it terminated.
  [[nodiscard]] char* data() noexcept { return bytes_.data(); }
  [[nodiscard]] static constexpr std::size_t capacity() noexcept { return Size; }

  void clear() noexcept { bytes_[0] = '\0'; }

  // `text` must not lie in this buffer.
  void assign(std::string_view text) noexcept {
    clear();
    append(text);
  }

  void append(std::string_view text) noexcept {
    const std::size_t used = length();
    if (text.size() >= Size - used) {
      stopForWantOfRoom(Size);
    }
    std::memcpy(bytes_.data() + used, text.data(), text.size());
    bytes_[used + text.size()] = '\0';
  }

  // The arguments must not lie in this buffer.
  __attribute__((format(printf, 2, 3))) void format(const char* format, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, format);
    formatBounded(bytes_.data(), Size, format, arguments);
    va_end(arguments);
  }

  // Truncates. Every other function of this class aborts on overflow.
  void assignCut(std::string_view text) noexcept { copyCut(bytes_.data(), Size, text); }

 private:
  std::array<char, Size> bytes_{};
};

}  // namespace tavenhall

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// The grammar of the InstallationAttributes file, one line at a time: a key, a separator word that is
// ignored, and a value that runs to the end of the line. Pure: no file, no log, no state. Any thread.
namespace tavenhall {

// The longest line in bytes, terminator included; a longer one counts as several lines.
inline constexpr std::size_t kAttributesLineSize = 2048;

// The number of lines that are searched.
inline constexpr int kAttributesLineCount = 999;

// A buffer of this many bytes holds every value and every default text.
inline constexpr std::size_t kAttributesValueSize = 2048;

// The parts of one line, as views of it. A part that the line does not have is empty.
struct AttributesLine {
  std::string_view key;
  std::string_view separator;
  std::string_view value;
};

// `line` with or without its newline; it ends at the first NUL byte, if there is one. The value keeps its
// trailing blanks and a carriage return.
[[nodiscard]] AttributesLine parseAttributesLine(std::string_view line) noexcept;

// String keys are compared ignoring case, number keys exactly. Required: installers in the field rely on
// a string key in any case, and a number key in another case counts as missing.
[[nodiscard]] bool isStringKey(std::string_view key, std::string_view wanted) noexcept;
[[nodiscard]] bool isNumberKey(std::string_view key, std::string_view wanted) noexcept;

// Stores the decimal number at the start of `value`. Returns false, with `number` unchanged, if there is none.
// A number beyond 64 bits becomes the nearest one that fits.
bool readAttributesNumber(std::string_view value, std::int64_t& number) noexcept;

// Ends `value` at its first carriage return, and replaces each "\n" and "\r" escape by a blank and a newline,
// which keeps the length.
void finishAttributesValue(char* value) noexcept;

// A search for one key. The caller passes the file's lines in order, at most kAttributesLineCount of them,
// until show() returns true: that line has the key.
//
// Required: every line passed stores its value, if it has one, whether or not its key matches. Installers in
// the field rely on what a missing key leaves in the buffer.
class TextSearch {
 public:
  // Stores values in the caller's buffer of `size` bytes, truncated at a character boundary.
  TextSearch(std::string_view key, char* value, std::size_t size) noexcept
      : key_(key), value_(value), size_(size) {}
  bool show(const AttributesLine& line) noexcept;

  // Whether the last line passed stored a value.
  [[nodiscard]] bool tookValue() const noexcept { return tookValue_; }

 private:
  std::string_view key_;
  char* value_;
  std::size_t size_;
  bool tookValue_ = false;
};

class NumberSearch {
 public:
  explicit NumberSearch(std::string_view key) noexcept : key_(key) {}
  bool show(const AttributesLine& line) noexcept;
  [[nodiscard]] bool tookValue() const noexcept { return tookValue_; }

  // The number in the matching line, or if it has none, in the last line before it that has one. 0 unless
  // show() has returned true.
  [[nodiscard]] std::int64_t number() const noexcept { return isFound_ ? number_ : 0; }

 private:
  std::string_view key_;
  std::int64_t number_ = 0;
  bool tookValue_ = false;
  bool isFound_ = false;
};

}  // namespace tavenhall

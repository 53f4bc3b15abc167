#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// The grammar of the InstallationAttributes file, one line at a time: a key, a separator word that is
// ignored, and a value that runs to the end of the line. Pure: no file, no log, no state. Any thread.
namespace tavenhall {

// A line is read with this limit (bytes, terminator included); a longer one counts as several.
inline constexpr std::size_t kAttributesLineSize = 2048;

// Only so many lines are searched.
inline constexpr int kAttributesLineCount = 999;

// A buffer of this many bytes holds every value and every default text.
inline constexpr std::size_t kAttributesValueSize = 2048;

// The parts of one line; they point into it. A part that the line does not have is empty.
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

// The decimal number at the start of `value`, and whether there is one; `number` stays as it is where there is
// none. A number beyond 64 bits becomes the nearest one that fits.
bool readAttributesNumber(std::string_view value, std::int64_t& number) noexcept;

// Ends `value` at its first carriage return, and makes of each backslash with "n" or "r" a blank and a
// newline (the length stays).
void finishAttributesValue(char* value) noexcept;

// A search for one key. It is shown the file's lines in order, the first kAttributesLineCount at most, until it
// returns true: that line has the key. Then it is not shown another.
//
// Required: every line shown leaves its value, if it has one, whether it is the wanted line or not. Installers
// in the field rely on what a missing key leaves in the buffer.
class TextSearch {
 public:
  // The value goes into the caller's buffer of `size` bytes, cut at a character's edge.
  TextSearch(std::string_view key, char* value, std::size_t size) noexcept
      : key_(key), value_(value), size_(size) {}
  bool show(const AttributesLine& line) noexcept;

  // Did the line shown last leave a value?
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

  // The number of the wanted line, or where that has none, of the last line before it that has one; 0 unless
  // show() has returned true.
  [[nodiscard]] std::int64_t number() const noexcept { return isFound_ ? number_ : 0; }

 private:
  std::string_view key_;
  std::int64_t number_ = 0;
  bool tookValue_ = false;
  bool isFound_ = false;
};

}  // namespace tavenhall

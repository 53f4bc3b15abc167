#pragma once

#include <functional>
#include <string>

namespace tavenhall {

// Reads lines from a descriptor, which the caller owns. One thread.
class LineReader {
 public:
  explicit LineReader(int descriptor) : descriptor_(descriptor) {}

  // False after the end of the input or an error.
  [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }

  // The descriptor to poll; -1 once it is closed.
  [[nodiscard]] int descriptor() const { return descriptor_; }

  // Reads once and passes each complete line, without its newline, to `take`; at the end of the input also an
  // unterminated last line. A longer line is truncated to kLongestLine + 1 bytes.
  void read(const std::function<void(const std::string& line)>& take);

  static constexpr std::size_t kLongestLine = 1048576;  // bytes

 private:
  int descriptor_;
  std::string partialLine_;
};

}  // namespace tavenhall

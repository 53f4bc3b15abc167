#pragma once

#include <functional>
#include <string>

namespace tavenhall {

// Cuts what a descriptor gives into lines. The descriptor stays the caller's. One thread.
class LineReader {
 public:
  explicit LineReader(int descriptor) : descriptor_(descriptor) {}

  // Until the end of the input was read, or an error.
  [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }

  // What to poll for input; -1 once it is closed.
  [[nodiscard]] int descriptor() const { return descriptor_; }

  // Reads once and gives each line that is whole, without its newline; at the end of the input also a last
  // one that has none. Of a line of more than kLongestLine bytes only so many are kept, and one more.
  void read(const std::function<void(const std::string& line)>& take);

  static constexpr std::size_t kLongestLine = 1048576;  // bytes

 private:
  int descriptor_;
  std::string partialLine_;
};

}  // namespace tavenhall

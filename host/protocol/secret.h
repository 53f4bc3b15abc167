#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace tavenhall {

// Overwrites memory that has held something secret, whether or not anybody looks at it again. Any thread.
void wipe(void* memory, std::size_t bytes) noexcept;

// A password while it is typed: in one place, which is overwritten when it goes. One thread.
class Secret {
 public:
  Secret() = default;
  Secret(const Secret&) = delete;
  Secret& operator=(const Secret&) = delete;
  ~Secret() { clear(); }

  // Adds UTF-8 text; none of it where not all of it fits.
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

}  // namespace tavenhall

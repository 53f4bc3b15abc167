#include "host/protocol/secret.h"

#include <algorithm>

namespace tavenhall {

namespace {

bool beginsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80; }

}  // namespace

void wipe(void* memory, std::size_t bytes) noexcept {
  // Volatile, so that the compiler does not remove the writes.
  volatile char* byte = static_cast<char*>(memory);
  while (bytes-- > 0) {
    *byte++ = 0;
  }
}

void Secret::append(std::string_view text) noexcept {
  if (text.size() <= kLongest - size_) {
    std::copy(text.begin(), text.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(size_));
    size_ += text.size();
  }
}

void Secret::dropLastCharacter() noexcept {
  while (size_ > 0 && !beginsCharacter(bytes_[--size_])) {
  }
}

void Secret::clear() noexcept {
  wipe(bytes_.data(), bytes_.size());
  size_ = 0;
}

std::size_t Secret::characters() const {
  return static_cast<std::size_t>(std::ranges::count_if(text(), beginsCharacter));
}

}  // namespace tavenhall

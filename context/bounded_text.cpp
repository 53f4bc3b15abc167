#include "context/bounded_text.h"

#include <cstdio>
#include <cstdlib>

namespace tavenhall {

void stopForWantOfRoom(std::size_t limit) noexcept {
  std::fprintf(stderr, "InstallDataPane: a text does not fit its buffer of %zu bytes; stopping\n", limit);
  std::abort();
}

void formatBounded(char* out, std::size_t room, const char* format, std::va_list arguments) noexcept {
  const int length = std::vsnprintf(out, room, format, arguments);
  if (length < 0 || static_cast<std::size_t>(length) >= room) {
    stopForWantOfRoom(room);
  }
}

void formatCut(char* out, std::size_t room, const char* format, std::va_list arguments) noexcept {
  if (std::vsnprintf(out, room, format, arguments) < 0) {
    out[0] = '\0';
  }
}

void copyCut(char* out, std::size_t room, std::string_view text) noexcept {
  std::size_t length = text.size();
  if (length >= room) {
    length = room - 1;
    // Step back over the continuation bytes of a character that would be split, at most three of them.
    std::size_t edge = length;
    while (edge > 0 && length - edge < 3 && (static_cast<unsigned char>(text[edge]) & 0xC0U) == 0x80U) {
      --edge;
    }
    const bool characterStartsAtEdge = (static_cast<unsigned char>(text[edge]) & 0xC0U) != 0x80U;
    if (characterStartsAtEdge) {
      length = edge;
    }
  }
  std::memcpy(out, text.data(), length);
  out[length] = '\0';
}

}  // namespace tavenhall

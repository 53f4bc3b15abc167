#include "platform/copy_hints.h"

#include <algorithm>
#include <fcntl.h>

// No thread reads small files ahead here: what it costs where they are cached already was never measured on a
// Mac, and there is no call that tells whether they are. The empty ReadAhead is in posix/no_read_ahead.cpp.
namespace tavenhall {

namespace {

constexpr std::int64_t kSmallestHintedFile = 16384;  // bytes; as on Linux
constexpr std::int64_t kMostReadAhead = 16777216;    // bytes; the system reads the rest ahead by itself

}  // namespace

void hintSequentialRead(int descriptor, std::int64_t size) noexcept {
  if (size > kSmallestHintedFile) {
    radvisory start{.ra_offset = 0, .ra_count = static_cast<int>(std::min(size, kMostReadAhead))};
    fcntl(descriptor, F_RDADVISE, &start);
  }
}

// Allocates the blocks in one piece if it can, or else in several. The file's size stays what was written.
void hintSequentialWrite(int descriptor, std::int64_t size) noexcept {
  if (size <= kSmallestHintedFile) {
    return;
  }
  fstore_t blocks{
      .fst_flags = F_ALLOCATECONTIG | F_ALLOCATEALL, .fst_posmode = F_PEOFPOSMODE, .fst_length = size};
  if (fcntl(descriptor, F_PREALLOCATE, &blocks) != 0) {
    blocks.fst_flags = F_ALLOCATEALL;
    fcntl(descriptor, F_PREALLOCATE, &blocks);
  }
}

}  // namespace tavenhall

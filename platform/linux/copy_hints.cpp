#include "platform/copy_hints.h"

#include <fcntl.h>

namespace tavenhall {

namespace {

constexpr std::int64_t kSmallestHintedFile = 16384;  // bytes; for smaller files a hint costs more than it saves

}  // namespace

void hintSequentialRead(int descriptor, std::int64_t size) noexcept {
  if (size > kSmallestHintedFile) {
    posix_fadvise(descriptor, 0, 0, POSIX_FADV_SEQUENTIAL);
  }
}

// Allocates the blocks in one piece. Also, ext4 does not flush a file that is overwritten at once when it is
// closed. The file's size stays what was written.
void hintSequentialWrite(int descriptor, std::int64_t size) noexcept {
  if (size > kSmallestHintedFile) {
    fallocate(descriptor, FALLOC_FL_KEEP_SIZE, 0, size);
  }
}

}  // namespace tavenhall

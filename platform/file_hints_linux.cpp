#include "platform/file_hints.h"

#include <fcntl.h>

namespace tavenhall {

namespace {

// For smaller files a hint takes longer than what it saves.
constexpr std::int64_t kWorthAHint = 16384;  // bytes

}  // namespace

void hintSequentialRead(int descriptor, std::int64_t size) noexcept {
  if (size > kWorthAHint) {
    posix_fadvise(descriptor, 0, 0, POSIX_FADV_SEQUENTIAL);
  }
}

// The room is taken in one piece, and the writes find it there. A file that is written over is also not sent to
// the disk at once when it is closed. The file's size stays what was written.
void hintSequentialWrite(int descriptor, std::int64_t size) noexcept {
  if (size > kWorthAHint) {
    fallocate(descriptor, FALLOC_FL_KEEP_SIZE, 0, size);
  }
}

}  // namespace tavenhall

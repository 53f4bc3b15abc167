#include "platform/file_hints.h"

#include <fcntl.h>

namespace tavenhall {

void hintSequentialRead(int descriptor) noexcept { posix_fadvise(descriptor, 0, 0, POSIX_FADV_SEQUENTIAL); }

}  // namespace tavenhall

#include "platform/memory_file.h"

#include <sys/mman.h>

namespace tavenhall {

int openMemoryFile() noexcept { return memfd_create("tavinstall", MFD_CLOEXEC); }

}  // namespace tavenhall

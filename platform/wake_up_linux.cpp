#include "platform/wake_up.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sys/eventfd.h>
#include <unistd.h>

namespace tavenhall {

WakeUp::WakeUp() noexcept : readEnd_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), writeEnd_(readEnd_) {
  if (readEnd_ < 0) {
    std::perror("tavinstall: eventfd");
    std::abort();
  }
}

WakeUp::~WakeUp() { close(readEnd_); }

void WakeUp::signal() noexcept {
  const int error = errno;
  const std::uint64_t one = 1;
  static_cast<void>(!write(writeEnd_, &one, sizeof one));  // a full counter is signalled already
  errno = error;
}

void WakeUp::clear() noexcept {
  std::uint64_t count = 0;
  static_cast<void>(!read(readEnd_, &count, sizeof count));  // nothing to read: nothing to clear
}

}  // namespace tavenhall

#include "host/standard_streams.h"

#include "host/text.h"
#include "host/usage_error.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace tavenhall {

void fillStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) < 0) {
      // The lowest free number is given, and those below are taken.
      static_cast<void>(open("/dev/null", stream == STDERR_FILENO ? O_WRONLY : O_RDONLY));
    }
  }
}

void requireOutputWritten() {
  const bool hadFailed = std::ferror(stdout) != 0;
  if (std::fflush(stdout) != 0 || hadFailed) {
    throw UsageError(filled(_("cannot write to standard output: {0}"), {std::strerror(errno)}));
  }
}

}  // namespace tavenhall

#include "host/base/line_reader.h"

#include <array>
#include <cerrno>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace tavenhall {

void LineReader::read(const std::function<void(const std::string&)>& take) {
  std::array<char, 16384> buffer;
  const ssize_t count = ::read(descriptor_, buffer.data(), buffer.size());
  if (count < 0 && (errno == EINTR || errno == EAGAIN)) {
    return;
  }
  if (count <= 0) {
    descriptor_ = -1;
    if (!partialLine_.empty()) {
      take(std::exchange(partialLine_, {}));
    }
    return;
  }
  std::string_view rest(buffer.data(), static_cast<std::size_t>(count));
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    const std::size_t room = kLongestLine + 1 - partialLine_.size();
    partialLine_ += rest.substr(0, std::min(end, room));
    if (end == rest.size()) {
      return;
    }
    rest.remove_prefix(end + 1);
    take(std::exchange(partialLine_, {}));
  }
}

}  // namespace tavenhall

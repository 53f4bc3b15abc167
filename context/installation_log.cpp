#include "context/installation_log.h"

#include "context/bounded_text.h"
#include "platform/system.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace tavenhall {

namespace {

constexpr std::size_t kLogPathSize = 2048;
constexpr std::size_t kMessageSize = 4096;
constexpr std::size_t kTimeSize = 50;
constexpr std::size_t kHostNameSize = 256;
constexpr mode_t kLogFolderMode = 0700;

void findLogFolder(BoundedText<kLogPathSize>& path) {
  std::string caches;
  if (firstUserSearchPath(SearchPath::caches, caches)) {
    path.assign(caches);
    path.append("/Tavenhall");
    mkdir(path.c_str(), kLogFolderMode);  // usually there already; the open below decides
  } else {
    path.assign("/tmp");
  }
}

}  // namespace

void addEventToInstallationLog(const char* format, ...) noexcept {
  BoundedText<kLogPathSize> path;
  findLogFolder(path);
  path.append("/installationLog.txt");
  std::FILE* log = std::fopen(path.c_str(), "a+");
  if (format == nullptr || log == nullptr) {
    return;  // required: a null format leaves the stream as it is, with the file created and nothing in it
  }

  std::array<char, kMessageSize> message{};
  std::va_list arguments;
  va_start(arguments, format);
  formatCut(message.data(), message.size(), format, arguments);
  va_end(arguments);

  std::array<char, kTimeSize> time{};
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  if (localtime_r(&now, &local) == nullptr ||
      std::strftime(time.data(), time.size(), "%B %d %Y %T", &local) == 0) {
    time[0] = '\0';
  }

  std::array<char, kHostNameSize> host{};
  gethostname(host.data(), host.size() - 1);

  std::fprintf(log, "%s %s: %s\n", time.data(), host.data(), message.data());
  std::fflush(log);
  std::fclose(log);
}

}  // namespace tavenhall

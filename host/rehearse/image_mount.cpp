#include "host/rehearse/image_mount.h"

#include "host/base/errors.h"
#include "host/base/text.h"

#include <chrono>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <utility>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr auto kBetweenLooks = std::chrono::milliseconds(5);

bool isIso(const fs::path& image) { return image.extension() == ".iso"; }

const char* toolFor(const fs::path& image) { return isIso(image) ? "fuseiso" : "squashfuse"; }

std::vector<std::string> serverCommand(const fs::path& image, const fs::path& folder) {
  if (isIso(image)) {
    // It would keep a list of its mounts in the user's home otherwise.
    return {"fuseiso", "-n", "-c", "UTF-8", image.string(), folder.string(), "-f"};
  }
  return {"squashfuse", "-f", image.string(), folder.string()};
}

dev_t diskOf(const fs::path& folder) {
  fs::create_directories(folder);
  struct stat found {};
  stat(folder.c_str(), &found);
  return found.st_dev;
}

std::string failureText(const fs::path& image, int status, const std::string& lastWords) {
  const char* pattern = _("cannot open the disc image {0}: {1}");
  if (status == kCannotRun) {
    pattern = _("cannot open the disc image {0}: {2} is missing; install the package {2}");
  } else if (lastWords.empty()) {
    pattern = _("cannot open the disc image {0}: {2} failed");
  }
  return format(pattern, {image.string(), lastWords, toolFor(image)});
}

}  // namespace

ImageMount::ImageMount(const fs::path& image, fs::path folder, const StopRequest& stop)
    : folder_(std::move(folder)), diskBefore_(diskOf(folder_)), server_(serverCommand(image, folder_)) {
  while (!isServed()) {
    stop.throwIfCome();
    if (server_.hasEnded()) {
      throw UsageError(failureText(image, server_.wait(), server_.lastLine()));
    }
    std::this_thread::sleep_for(kBetweenLooks);
  }
}

ImageMount::~ImageMount() {
  server_.end();
  struct stat found {};
  const bool isLeft = stat(folder_.c_str(), &found) != 0 || found.st_dev != diskBefore_;
  if (isLeft) {  // a server that was killed leaves its mount behind
    ToolProcess({"fusermount3", "-u", "-z", folder_.string()}).wait();
  }
}

bool ImageMount::isServed() const {
  struct stat found {};
  return stat(folder_.c_str(), &found) == 0 && found.st_dev != diskBefore_;
}

}  // namespace tavenhall

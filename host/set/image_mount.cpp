#include "host/set/image_mount.h"

#include "host/base/exit_status.h"
#include "host/base/text.h"
#include "host/set/disc_image.h"

#include <chrono>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <utility>
#include <vector>

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

fs::path created(fs::path folder) {
  fs::create_directories(folder);
  return folder;
}

// Whether something is mounted there and answers.
bool isServed(const fs::path& folder) {
  struct stat found {};
  struct stat above {};
  return stat(folder.parent_path().c_str(), &above) == 0 && stat(folder.c_str(), &found) == 0 &&
         found.st_dev != above.st_dev;
}

std::string mountFailureText(const fs::path& image, int status, const std::string& lastWords) {
  const char* pattern = _("cannot open the disc image {0}: {1}");
  if (status == kCannotRun) {
    pattern = _("cannot open the disc image {0}: {2} is missing; install the package {2}");
  } else if (lastWords.empty()) {
    pattern = _("cannot open the disc image {0}: {2} failed");
  }
  return format(pattern, {image.string(), lastWords, toolFor(image)});
}

// fuseiso shows a file of 4 GiB or more twice, with a wrong size.
void requireRightContent(const fs::path& image, const fs::path& folder) {
  const std::optional<SourceTree> listed = treeOfImage(image);
  const auto different = listed ? differenceBetween(*listed, SourceTree::ofFolder(folder)) : std::nullopt;
  if (different) {
    throw UsageError(format(_("{0} does not show {2} in the disc image {1} as it is; use an image of SquashFS"),
                            {toolFor(image), image.string(), *different}));
  }
}

}  // namespace

ImageMount::ImageMount(const fs::path& image, fs::path folder, const StopRequest& stop)
    : folder_(created(std::move(folder))),
      server_(serverCommand(image, folder_), ToolProcess::Keep::outputAndErrors, -1,
              Guard{{"fusermount3", "-q", "-u", "-z", folder_.string()}}) {
  while (!isServed(folder_)) {
    stop.throwIfCome();
    if (server_.hasEnded()) {
      throw UsageError(mountFailureText(image, server_.wait(), server_.lastLine()));
    }
    std::this_thread::sleep_for(kBetweenLooks);
  }
  if (isIso(image)) {
    requireRightContent(image, folder_);
  }
}

DiscMounts::DiscMounts(InstallerSet& set, const StopRequest& stop) {
  for (Disc& disc : set.discs) {
    if (disc.isImage) {
      if (!folder_) {
        folder_.emplace();
      }
      mounts_.push_back(
          std::make_unique<ImageMount>(disc.path, folder_->path() / std::to_string(disc.number), stop));
      disc.path = mounts_.back()->folder();
      disc.isImage = false;
      disc.isMounted = true;
    }
  }
}

}  // namespace tavenhall

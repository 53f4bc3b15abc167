#include "host/rehearse/image_mount.h"

#include "host/rehearse/run_tool.h"
#include "host/usage_error.h"

#include <system_error>
#include <utility>

namespace tavenhall {

namespace fs = std::filesystem;

ImageMount::ImageMount(const fs::path& image, fs::path folder) : folder_(std::move(folder)) {
  std::error_code error;
  fs::create_directories(folder_, error);
  const char* tool = image.extension() == ".iso" ? "fuseiso" : "squashfuse";
  if (runTool({tool, image.string(), folder_.string()}) != 0) {
    throw UsageError("cannot open the disc image " + image.string() + "; " + tool +
                     " must be installed and FUSE allowed");
  }
}

ImageMount::~ImageMount() {
  for (const char* tool : {"fusermount3", "fusermount"}) {
    if (runTool({tool, "-u", folder_.string()}) == 0) {
      return;
    }
  }
  static_cast<void>(runTool({"umount", folder_.string()}));
}

}  // namespace tavenhall

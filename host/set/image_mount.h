#pragma once

#include "host/base/child_process.h"
#include "host/base/stop_request.h"

#include <filesystem>
#include <sys/types.h>

namespace tavenhall {

// A mounted disc image: SquashFS with squashfuse, ISO with fuseiso. The destructor unmounts it; the FUSE server
// is a child process and ends with this process.
class ImageMount {
 public:
  // Creates `folder` and mounts the image there. Throws UsageError with the reason and the remedy, and Stopped.
  ImageMount(const std::filesystem::path& image, std::filesystem::path folder, const StopRequest& stop);
  ImageMount(const ImageMount&) = delete;
  ImageMount& operator=(const ImageMount&) = delete;
  ~ImageMount();

  [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }

 private:
  [[nodiscard]] bool isServed() const;

  std::filesystem::path folder_;
  dev_t diskBefore_;
  ToolProcess server_;
};

}  // namespace tavenhall

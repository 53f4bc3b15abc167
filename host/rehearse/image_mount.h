#pragma once

#include "host/base/child_process.h"
#include "host/rehearse/stop_request.h"

#include <filesystem>

namespace tavenhall {

// A disc's image, readable as a folder while this lives: SquashFS through squashfuse, ISO through fuseiso. Its
// server is a child of this process and ends with it.
class ImageMount {
 public:
  // `folder` is made. Throws UsageError where the image cannot be mounted, saying why and what to do, and
  // Stopped.
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

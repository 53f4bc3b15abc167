#pragma once

#include "host/base/child_process.h"
#include "host/base/stop_request.h"
#include "host/base/temporary_folder.h"
#include "host/set/installer_set.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

namespace tavenhall {

// A mounted disc image: SquashFS with squashfuse, ISO with fuseiso. The FUSE server is a child process; the
// destructor ends and unmounts it, and so does, on Linux, the end of this process, whatever has ended it.
class ImageMount {
 public:
  // Creates `folder` and mounts the image there. Throws UsageError with the reason and the remedy, and Stopped.
  ImageMount(const std::filesystem::path& image, std::filesystem::path folder, const StopRequest& stop);
  ImageMount(const ImageMount&) = delete;
  ImageMount& operator=(const ImageMount&) = delete;
  ~ImageMount() = default;

  [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }

 private:
  std::filesystem::path folder_;
  ToolProcess server_;  // its guard unmounts: a server does not always get as far
};

// The images among a set's discs, mounted below a folder for temporary files.
class DiscMounts {
 public:
  // Puts the mounts in the place of the images. Throws as ImageMount does.
  DiscMounts(InstallerSet& set, const StopRequest& stop);

 private:
  std::optional<TemporaryFolder> folder_;
  std::vector<std::unique_ptr<ImageMount>> mounts_;
};

}  // namespace tavenhall

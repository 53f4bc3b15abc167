#pragma once

#include <filesystem>

namespace tavenhall {

// A disc's image, readable as a folder while this lives: SquashFS through squashfuse, ISO through fuseiso.
class ImageMount {
 public:
  // `folder` is made. Throws UsageError where the image cannot be mounted, naming the tool that is wanted.
  ImageMount(const std::filesystem::path& image, std::filesystem::path folder);
  ImageMount(const ImageMount&) = delete;
  ImageMount& operator=(const ImageMount&) = delete;
  ~ImageMount();

  [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }

 private:
  std::filesystem::path folder_;
};

}  // namespace tavenhall

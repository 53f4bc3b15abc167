#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>

namespace tavenhall {

enum class ImageKind {
  iso,       // ISO 9660 with Rock Ridge, Joliet and HFS+, by xorriso: to be burnt
  squashfs,  // by mksquashfs: for rehearsals
};

// Makes an image of a disc's folder in its place, with the folder's name and an extension. The image's listing
// is compared with the folder before that is removed. `progress` gets the bytes that the image has grown by.
// Throws UsageError if a tool is missing or fails, if the image is not the folder, or larger than `capacity`
// bytes; the folder then stays. Returns the image.
[[nodiscard]] std::filesystem::path makeDiscImage(const std::filesystem::path& disc, ImageKind kind,
                                                  std::int64_t capacity,
                                                  const std::function<void(std::int64_t)>& progress);

}  // namespace tavenhall

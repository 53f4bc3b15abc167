#include "host/author/set_images.h"

#include "host/base/child_process.h"
#include "host/base/exit_status.h"
#include "host/base/text.h"
#include "host/set/disc_image.h"
#include "host/set/installer_set.h"
#include "host/set/source_tree.h"

#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

std::vector<std::string> imageCommand(ImageKind kind, const fs::path& disc, const std::string& volumeName,
                                      const fs::path& image) {
  if (kind == ImageKind::squashfs) {
    // Not compressed, so that its size can be compared with that of a disc.
    return {"mksquashfs", disc.string(), image.string(), "-quiet", "-no-progress", "-noappend",
            "-all-root",  "-noI",        "-noD",         "-noF",   "-noX"};
  }
  return {"xorriso", "-as", "mkisofs",      "-quiet",   "-V", volumeName,     "-iso-level", "3",
          "-r",      "-J",  "-joliet-long", "-hfsplus", "-o", image.string(), disc.string()};
}

// Removes the unfinished image unless it is kept.
class ImageDraft {
 public:
  explicit ImageDraft(fs::path path) : path_(std::move(path)) { remove(); }
  ImageDraft(const ImageDraft&) = delete;
  ImageDraft& operator=(const ImageDraft&) = delete;
  ~ImageDraft() { remove(); }

  [[nodiscard]] const fs::path& path() const { return path_; }
  [[nodiscard]] std::int64_t size() const {
    std::error_code error;
    const auto size = fs::file_size(path_, error);
    return error ? 0 : static_cast<std::int64_t>(size);
  }

 private:
  void remove() const {
    std::error_code ignored;
    fs::remove(path_, ignored);
  }

  const fs::path path_;
};

void runImageTool(const std::vector<std::string>& command, const ImageDraft& draft,
                  const std::function<void(std::int64_t)>& progress) {
  constexpr auto kPause = std::chrono::milliseconds(100);
  ToolProcess tool(command);
  std::int64_t known = 0;
  while (!tool.hasEnded()) {
    std::this_thread::sleep_for(kPause);
    const std::int64_t size = draft.size();
    progress(size - known);
    known = size;
  }
  const int status = tool.wait();
  if (status == kCannotRun) {
    throw UsageError(format(_("{0} is missing; install the package {1}"),
                            {command.front(), command.front() == "xorriso" ? "xorriso" : "squashfs-tools"}),
                     ExitStatus::failure);
  }
  if (status != 0) {
    throw UsageError(format(_("{0} failed: {1}"), {command.front(), tool.lastLine()}), ExitStatus::failure);
  }
}

}  // namespace

fs::path makeDiscImage(const fs::path& disc, ImageKind kind, std::int64_t capacity,
                       const std::function<void(std::int64_t)>& progress) {
  const char* const extension = kind == ImageKind::iso ? ".iso" : ".squashfs";
  const std::optional<Disc> named = discFromName(disc, true);
  fs::path image = disc.string() + extension;
  const ImageDraft draft(disc.parent_path() / ("." + image.filename().string()));
  runImageTool(imageCommand(kind, disc, named ? named->volumeName : disc.filename().string(), draft.path()),
               draft, progress);
  if (draft.size() > capacity) {
    throw UsageError(format(_("the image of {0} would have {1}, but a disc has {2}; give --reserve"),
                            {disc.string(), sizeText(draft.size()), sizeText(capacity)}),
                     ExitStatus::failure);
  }
  // The draft's extension tells how to list it.
  const std::optional<SourceTree> listed = treeOfImage(draft.path());
  const SourceTree folder = SourceTree::ofFolder(disc);
  const std::optional<std::string> different =
      listed ? differenceBetween(folder, *listed) : std::optional<std::string>(disc.filename().string());
  if (different) {
    throw UsageError(format(_("the image of {0} is not right: {1} is not in it as on the disc"),
                            {disc.string(), *different}),
                     ExitStatus::failure);
  }
  std::error_code error;
  fs::rename(draft.path(), image, error);
  if (!error) {
    fs::remove_all(disc, error);
  }
  if (error) {
    throw UsageError(format(_("cannot write {0}: {1}"), {image.string(), error.message()}),
                     ExitStatus::failure);
  }
  return image;
}

}  // namespace tavenhall

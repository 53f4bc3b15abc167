#pragma once

#include "host/rehearse/disc_tray.h"
#include "host/rehearse/sandbox.h"
#include "host/set/image_mount.h"
#include "host/set/install_plan.h"
#include "host/set/installer_set.h"
#include "host/set/source_tree.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tavenhall {

// A set in a sandbox: the package's folder in the user's Downloads, the discs outside the drive, and the user's
// installed files in the home.
class Stage {
 public:
  // `root` becomes the sandbox. Copies the files in `installed`; if it is empty, the user has empty data
  // folders. Throws UsageError and Stopped.
  Stage(const InstallerSet& set, const Product& product, const std::filesystem::path& root,
        const std::filesystem::path& installed, const StopRequest& stop);

  // Returns the command of an engine with JSON lines on its standard streams; `installType` may be empty.
  [[nodiscard]] SandboxCommand engineCommand(const std::string& installType) const;

  // Returns the real path of the page's `path`. `insertedDiscs` is the order in which the discs were inserted,
  // and `copy` counts the copies from volumes of the same name.
  [[nodiscard]] std::filesystem::path outside(const std::string& path,
                                              const std::vector<std::size_t>& insertedDiscs, int copy) const;

  [[nodiscard]] const std::filesystem::path& root() const { return sandbox_.root(); }
  [[nodiscard]] std::filesystem::path volumes() const { return sandbox_.root() / "Volumes"; }
  [[nodiscard]] std::filesystem::path home() const { return sandbox_.root() / "Users" / "rehearsal"; }
  [[nodiscard]] std::filesystem::path log() const;
  [[nodiscard]] const std::vector<DiscTray::Disc>& discs() const { return discs_; }

  // The content of the sandbox before the page ran.
  [[nodiscard]] const SourceTree& before() const { return before_; }

  // The set with its discs as folders, images too.
  [[nodiscard]] const InstallerSet& set() const { return set_; }

  // The path of one of those discs, a folder or an image, relative to the set's folder.
  [[nodiscard]] std::filesystem::path nameInSet(const Disc& disc) const;

 private:
  void layDiscs(const StopRequest& stop);
  void layInstalled(const std::filesystem::path& installed, const StopRequest& stop);

  InstallerSet set_;
  Sandbox sandbox_;
  Product product_;
  std::string packageInside_;
  std::vector<DiscTray::Disc> discs_;
  std::map<int, std::filesystem::path> namesInSet_;  // by the disc's number
  std::optional<DiscMounts> mounts_;
  SourceTree before_;
};

}  // namespace tavenhall

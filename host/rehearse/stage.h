#pragma once

#include "host/rehearse/disc_tray.h"
#include "host/rehearse/image_mount.h"
#include "host/rehearse/sandbox.h"
#include "host/set/install_plan.h"
#include "host/set/installer_set.h"

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tavenhall {

// A set laid out in a sandbox: the package and what lies beside it where a user would have downloaded it, the
// discs outside their drive, and at home what the user has already.
class Stage {
 public:
  // `root` becomes the sandbox; `workFolder` is for what the rehearsal itself needs, outside of it. What lies
  // in `installed` is copied; empty: the user has empty data folders. Throws UsageError where something cannot
  // be laid out or nothing can be run there, and Stopped.
  Stage(const InstallerSet& set, const Product& product, const std::filesystem::path& root,
        const std::filesystem::path& workFolder, const std::filesystem::path& installed,
        const StopRequest& stop);

  // The command line of an engine that speaks the JSON lines; `installType` may be empty.
  [[nodiscard]] std::vector<std::string> engineCommand(const std::string& installType) const;

  // What the page calls `path`, as it really lies; `insertedDiscs` is the order in which the discs went in,
  // and `copy` counts the copies from volumes that bear the same name.
  [[nodiscard]] std::filesystem::path outside(const std::string& path,
                                              const std::vector<std::size_t>& insertedDiscs, int copy) const;

  [[nodiscard]] const std::filesystem::path& root() const { return sandbox_.root(); }
  [[nodiscard]] std::filesystem::path volumes() const { return sandbox_.root() / "Volumes"; }
  [[nodiscard]] std::filesystem::path home() const { return sandbox_.root() / "Users" / "rehearsal"; }
  [[nodiscard]] std::filesystem::path log() const;
  [[nodiscard]] const std::vector<DiscTray::Disc>& discs() const { return discs_; }

  // The set with its discs as folders, images too.
  [[nodiscard]] const InstallerSet& set() const { return set_; }

  // Where one of those discs lies, below the set's folder: a folder, or an image.
  [[nodiscard]] std::filesystem::path nameInSet(const Disc& disc) const;

 private:
  void layDiscs(const std::filesystem::path& workFolder, const StopRequest& stop);
  void layInstalled(const std::filesystem::path& installed, const StopRequest& stop);

  InstallerSet set_;
  Sandbox sandbox_;
  Product product_;
  std::string packageInside_;
  std::vector<DiscTray::Disc> discs_;
  std::map<int, std::filesystem::path> namesInSet_;  // by the disc's number
  std::vector<std::unique_ptr<ImageMount>> images_;
};

}  // namespace tavenhall

#pragma once

#include "host/rehearse/disc_tray.h"
#include "host/rehearse/image_mount.h"
#include "host/rehearse/sandbox.h"
#include "host/set/install_plan.h"
#include "host/set/installer_set.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace tavenhall {

// A set laid out in a sandbox: the package and what lies beside it where a user would have downloaded it, the
// discs outside their drive, and at home what the user has already.
class Stage {
 public:
  // `installed` is empty, a home, or a folder of data folders; it is copied. `workFolder` is for what the
  // rehearsal itself needs, outside the sandbox. Throws UsageError where something cannot be laid out.
  Stage(const InstallerSet& set, const Product& product, const std::filesystem::path& root,
        const std::filesystem::path& workFolder, const std::filesystem::path& installed);

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
  [[nodiscard]] std::filesystem::path summary() const;
  [[nodiscard]] const std::vector<DiscTray::Disc>& discs() const { return discs_; }

 private:
  void layDiscs(const std::vector<Disc>& discs, const std::filesystem::path& workFolder);
  void layHome(const std::filesystem::path& installed);

  Sandbox sandbox_;
  Product product_;
  std::string packageInside_;
  std::vector<DiscTray::Disc> discs_;
  std::vector<std::filesystem::path> discsOutside_;
  std::vector<std::unique_ptr<ImageMount>> images_;
};

}  // namespace tavenhall

#include "host/rehearse/stage.h"

#include "host/base/exit_status.h"
#include "host/base/files.h"
#include "host/base/text.h"
#include "platform/host_system.h"

#include <system_error>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr const char* kDiscs = "/rehearsal/discs";
constexpr const char* kVolumes = "/Volumes/";
constexpr const char* kDataFolders = "Library/Application Support/Tavenhall";

// Copies what lies in `from` into `to`, which is made. A link right in it, as people make them to data that
// they keep elsewhere, becomes what it leads to: nothing outside may be changed.
void copyFolder(const fs::path& from, const fs::path& to, const StopRequest& stop) {
  std::error_code error;
  fs::create_directories(to, error);
  for (fs::recursive_directory_iterator entry(from, error), end; !error && entry != end;
       entry.increment(error)) {
    stop.throwIfCome();
    const fs::path place = to / entry->path().lexically_relative(from);
    if (entry->is_symlink() && entry.depth() == 0 && entry->is_directory()) {
      copyFolder(entry->path(), place, stop);
    } else if (entry->is_symlink()) {
      fs::copy_symlink(entry->path(), place, error);
    } else if (entry->is_directory()) {
      fs::create_directory(place, error);
    } else {
      fs::copy_file(entry->path(), place, fs::copy_options::overwrite_existing, error);
    }
    if (error) {
      throw UsageError(
          format(_("cannot copy what is installed, {0}: {1}"), {entry->path().string(), error.message()}));
    }
  }
  if (error) {
    throw UsageError(format(_("cannot read what is installed in {0}: {1}"), {from.string(), error.message()}));
  }
}

}  // namespace

Stage::Stage(const InstallerSet& set, const Product& product, const fs::path& root, const fs::path& installed,
             const StopRequest& stop)
    : set_(set), sandbox_(root), product_(product) {
  // In a folder of its own, as a download lies: the set's may be called as one in a home is.
  const std::string setInside = std::string(Sandbox::kHome) + "/Downloads/" + set.folder.filename().string();
  packageInside_ =
      (fs::path(setInside) / set.package.lexically_relative(set.folder)).lexically_normal().string();
  sandbox_.bind({set.folder, setInside});
  sandbox_.bind({programPath().parent_path().parent_path(), Sandbox::kProgram});
  sandbox_.bind({findStandIns() / "rehearsal", Sandbox::kTools});
  layDiscs(stop);
  sandbox_.probe();
  layInstalled(installed, stop);
  before_ = SourceTree::ofFolder(sandbox_.root());
}

void Stage::layDiscs(const StopRequest& stop) {
  for (const Disc& disc : set_.discs) {
    namesInSet_[disc.number] = disc.path.lexically_relative(set_.folder);
  }
  mounts_.emplace(set_, stop);
  for (const Disc& disc : set_.discs) {
    discs_.push_back({disc.volumeName, std::string(kDiscs) + "/" + std::to_string(disc.number)});
    sandbox_.bind({disc.path, discs_.back().inside});
  }
}

// The central data folders come with a package's own small files, so a user has them before the page is
// shown. With --installed, nothing is added to what the user has.
void Stage::layInstalled(const fs::path& installed, const StopRequest& stop) {
  for (const char* folder : {"Components", "VST", "VST3"}) {
    fs::create_directories(root() / "Library/Audio/Plug-Ins" / folder);  // every system has them
  }
  const fs::path dataFolders = home() / kDataFolders;
  if (installed.empty()) {
    fs::create_directories(dataFolders / "TANVO");
    fs::create_directories(dataFolders / "DOVA");
    return;
  }
  copyFolder(dataRootIn(installed), dataFolders, stop);
  if (fs::is_directory(installed / fs::path(Sandbox::kHome).relative_path())) {  // a rehearsal was kept there
    copyFolder(installed / "Library", root() / "Library", stop);
    copyFolder(installed / "Applications", root() / "Applications", stop);
  }
}

SandboxCommand Stage::engineCommand(const std::string& installType) const {
  std::vector<std::string> command{std::string(Sandbox::kProgram) + "/bin/" + programPath().filename().string(),
                                   "run",
                                   "--ui",
                                   "json",
                                   "--package",
                                   packageInside_,
                                   "--product",
                                   product_.pluginName};
  if (!installType.empty()) {
    command.insert(command.end(), {"--install-type", installType});
  }
  return sandbox_.commandFor(command);
}

fs::path Stage::outside(const std::string& path, const std::vector<std::size_t>& insertedDiscs,
                        int copy) const {
  if (!path.starts_with(kVolumes)) {
    return sandbox_.outside(path);
  }
  const fs::path belowVolumes = fs::path(path).lexically_relative(kVolumes);
  const std::string volumeName = *belowVolumes.begin();
  for (const std::size_t disc : insertedDiscs) {
    if (discs_[disc].volumeName == volumeName && copy-- == 0) {
      return set_.discs[disc].path / belowVolumes.lexically_relative(volumeName);
    }
  }
  return {};
}

fs::path Stage::nameInSet(const Disc& disc) const { return namesInSet_.at(disc.number); }

fs::path Stage::log() const { return home() / "Library/Caches/Tavenhall/installationLog.txt"; }

}  // namespace tavenhall

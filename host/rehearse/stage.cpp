#include "host/rehearse/stage.h"

#include "host/bundle_loader.h"
#include "host/usage_error.h"
#include "platform/program_path.h"

#include <system_error>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr const char* kSummary = "/tmp/rehearsal-summary.json";
constexpr const char* kDiscs = "/rehearsal/discs";
constexpr const char* kVolumes = "/Volumes/";
constexpr const char* kDataFolders = "Library/Application Support/Tavenhall";

}  // namespace

Stage::Stage(const InstallerSet& set, const Product& product, const fs::path& root, const fs::path& workFolder,
             const fs::path& installed)
    : sandbox_(root), product_(product) {
  const std::string setInside = std::string(Sandbox::kHome) + "/" + set.folder.filename().string();
  packageInside_ =
      (fs::path(setInside) / set.package.lexically_relative(set.folder)).lexically_normal().string();
  sandbox_.bind({set.folder, setInside});
  sandbox_.bind({programPath().parent_path().parent_path(), Sandbox::kProgram});
  sandbox_.bind({findStandIns() / "rehearsal", Sandbox::kTools});
  layDiscs(set.discs, workFolder);
  layHome(installed);
}

void Stage::layDiscs(const std::vector<Disc>& discs, const fs::path& workFolder) {
  for (const Disc& disc : discs) {
    const std::string number = std::to_string(disc.number);
    fs::path folder = disc.path;
    if (disc.isImage) {
      images_.push_back(std::make_unique<ImageMount>(disc.path, workFolder / "images" / number));
      folder = images_.back()->folder();
    }
    discs_.push_back({disc.volumeName, std::string(kDiscs) + "/" + number});
    discsOutside_.push_back(folder);
    sandbox_.bind({folder, discs_.back().inside});
  }
}

// The central data folders come with a package's own small files, so a user has them before the page is
// shown; where it is told what the user has, nothing is added to it.
void Stage::layHome(const fs::path& installed) {
  for (const char* folder : {"Components", "VST", "VST3"}) {
    fs::create_directories(root() / "Library/Audio/Plug-Ins" / folder);  // every system has them
  }
  const fs::path dataFolders = home() / kDataFolders;
  if (installed.empty()) {
    fs::create_directories(dataFolders / "TANVO");
    fs::create_directories(dataFolders / "DOVA");
    return;
  }
  const bool isHome = fs::is_directory(installed / kDataFolders);
  const fs::path destination = isHome ? home() : dataFolders;
  fs::create_directories(destination);
  std::error_code error;
  fs::copy(installed, destination,
           fs::copy_options::recursive | fs::copy_options::copy_symlinks | fs::copy_options::overwrite_existing,
           error);
  if (error) {
    throw UsageError("cannot copy what is installed from " + installed.string() + ": " + error.message());
  }
}

std::vector<std::string> Stage::engineCommand(const std::string& installType) const {
  std::vector<std::string> command{std::string(Sandbox::kProgram) + "/bin/" + programPath().filename().string(),
                                   "run",
                                   "--ui",
                                   "json",
                                   "--package",
                                   packageInside_,
                                   "--product",
                                   product_.pluginName,
                                   "--summary",
                                   kSummary};
  if (!installType.empty()) {
    command.insert(command.end(), {"--install-type", installType});
  }
  return sandbox_.commandLine(command);
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
      return discsOutside_[disc] / belowVolumes.lexically_relative(volumeName);
    }
  }
  return {};
}

fs::path Stage::log() const { return home() / "Library/Caches/Tavenhall/installationLog.txt"; }

fs::path Stage::summary() const { return sandbox_.outside(kSummary); }

}  // namespace tavenhall

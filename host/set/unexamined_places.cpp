#include "host/set/unexamined_places.h"

#include "context/install_decisions.h"
#include "context/installed_editions.h"

#include <cerrno>
#include <filesystem>
#include <sys/stat.h>
#include <utility>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

class Places {
 public:
  void examine(const std::string& path) {
    struct stat found {};
    if (stat(path.c_str(), &found) != 0 && errno != ENOENT && errno != ENOTDIR) {
      unexamined_.push_back({path, {errno, std::generic_category()}});
    }
  }

  // Its names. There are none where it is missing.
  void list(const std::string& folder) {
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    while (!error && entry != fs::directory_iterator()) {
      entry.increment(error);
    }
    if (error && error != std::errc::no_such_file_or_directory && error != std::errc::not_a_directory) {
      unexamined_.push_back({folder, error});
    }
  }

  // As the observer of installedEditionIsLite().
  void examines(const char* path) { examine(path); }
  void searches(const char* path) {
    list(path);
    for (const std::string& name : listNames(path)) {
      list(std::string(path) + "/" + name);
    }
  }
  void foundDatabase(const char* path, std::int32_t /*size*/) { examine(path); }

  std::vector<UnexaminedPlace> take() { return std::move(unexamined_); }

 private:
  std::vector<UnexaminedPlace> unexamined_;
};

}  // namespace

std::vector<UnexaminedPlace> unexaminedPlaces(const InstallPlan& plan) {
  Places places;
  for (const PlannedPass& pass : plan.passes) {
    for (const PlannedVolume& volume : pass.volumes) {
      if (!volume.isMounted) {
        places.examine(volume.primary);
        places.examine(volume.alternate);
      }
    }
  }
  if (plan.mode != kModeProductUpdater) {
    return places.take();
  }
  for (const char* folder : kSystemFolders) {
    places.examine(plan.packageFolder + folder);
  }
  if (const FoundText path = plan.attributes.findText("RelativePath2")) {
    const std::string folder = plan.packageFolder + "/" + path.value + "/TANVO";
    places.list(folder);
    places.list(folder + "/" + kMirelPacks);
  }
  for (const PlannedLibrary& library : plan.editions.libraries) {
    static_cast<void>(
        installedEditionIsLite<std::string>(plan.passes.front().destination, library.folderName, places));
  }
  return places.take();
}

}  // namespace tavenhall

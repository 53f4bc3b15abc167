#include "host/set/unexamined_places.h"

#include "context/install_decisions.h"
#include "context/installed_editions.h"
#include "platform/host_system.h"

#include <cerrno>
#include <dirent.h>
#include <sys/stat.h>
#include <utility>

namespace tavenhall {

namespace {

class Places {
 public:
  void examine(const std::string& path) {
    struct stat found {};
    addUnlessMissing(path, stat(path.c_str(), &found) == 0 ? 0 : errno);
  }

  // Its names. There are none where it is missing.
  void list(const std::string& folder) {
    DIR* listing = opendir(folder.c_str());
    if (listing == nullptr) {
      addUnlessMissing(folder, errno);
      return;
    }
    bool isListed = false;
    do {
      errno = 0;
    } while (readdir(listing) != nullptr && (isListed = true));
    if (errno != 0) {
      add(folder, errno);
    } else if (!isListed && listsDots(dirfd(listing))) {
      add(folder, ENOENT);  // which readdir() takes for the end
    }
    closedir(listing);
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
  void add(const std::string& path, int error) {
    unexamined_.push_back({path, {error, std::generic_category()}});
  }
  void addUnlessMissing(const std::string& path, int error) {
    if (error != 0 && error != ENOENT && error != ENOTDIR) {
      add(path, error);
    }
  }

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

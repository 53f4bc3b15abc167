#include "host/cli/preflight.h"

#include "host/base/files.h"
#include "host/base/text.h"

#include <algorithm>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

// The bytes that the files of a plan need beyond those of the files that they replace, on one disk.
struct NeededSpace {
  std::string folder;  // the first destination on that disk
  std::int64_t needed = 0;
  std::int64_t free = 0;
};

bool exists(const std::string& path) {
  struct stat found {};
  return stat(path.c_str(), &found) == 0;
}

// The folder that a volume is copied from; empty while its disc is not there.
std::string sourceOf(const PlannedVolume& volume) {
  const bool isThere = exists(volume.root);
  return isThere && exists(volume.primary)     ? volume.primary
         : isThere && exists(volume.alternate) ? volume.alternate
                                               : std::string();
}

std::int64_t sizeAt(const std::string& path) {
  struct stat found {};
  return stat(path.c_str(), &found) == 0 && S_ISREG(found.st_mode) ? static_cast<std::int64_t>(found.st_size)
                                                                   : 0;
}

// Calls `visit` with the path of each file below a folder. What cannot be read is left out.
template <typename Visit>
void eachFile(const std::string& folder, const Visit& visit) {
  std::error_code error;
  constexpr auto kOptions = fs::directory_options::skip_permission_denied;
  for (fs::recursive_directory_iterator it(folder, kOptions, error), end; !error && it != end;
       it.increment(error)) {
    if (it->is_regular_file(error)) {
      visit(it->path().native());
    }
  }
}

// The bytes by which the files of `source` are larger than those that they replace.
std::int64_t growthBy(const std::string& source, const std::string& destination) {
  std::int64_t growth = 0;
  std::string target;
  eachFile(source, [&](const std::string& file) {
    target.assign(destination).append("/").append(file, source.size(), std::string::npos);
    growth += std::max<std::int64_t>(sizeAt(file) - sizeAt(target), 0);
  });
  return growth;
}

std::int64_t sizeOfTree(const std::string& folder) {
  std::int64_t size = 0;
  eachFile(folder, [&](const std::string& file) { size += sizeAt(file); });
  return size;
}

// The disk of a folder that may not exist yet, by its number; 0: unknown.
dev_t diskOf(const std::string& folder) {
  for (fs::path path(folder);; path = path.parent_path()) {
    struct stat found {};
    if (stat(path.c_str(), &found) == 0) {
      return found.st_dev;
    }
    if (path == path.parent_path()) {
      return 0;
    }
  }
}

bool isMissing(const PlannedVolume& volume, const UnattendedAnswers& answers) {
  const bool isWaitedFor = volume.isMounted && !(volume.isOptional && answers.skipsOptionalDiscs);
  return isWaitedFor && answers.discTimeout.count() == 0 && sourceOf(volume).empty();
}

// The page makes the central folder writable if it can: if the user owns it.
bool isWritable(const std::string& folder) {
  struct stat found {};
  return stat(folder.c_str(), &found) == 0 && (found.st_uid == geteuid() || access(folder.c_str(), W_OK) == 0);
}

void addTo(std::vector<NeededSpace>& spaces, std::vector<dev_t>& disks, const std::string& destination,
           std::int64_t bytes) {
  const dev_t disk = diskOf(destination);
  const auto known = std::find(disks.begin(), disks.end(), disk);
  if (known != disks.end()) {
    spaces[static_cast<std::size_t>(known - disks.begin())].needed += bytes;
  } else if (const auto free = freeBytesAt(destination)) {
    disks.push_back(disk);
    spaces.push_back({destination, bytes, *free});
  }
}

// For each disk; none for one of which the free space is unknown.
std::vector<NeededSpace> spaceFor(const InstallPlan& plan) {
  std::vector<NeededSpace> spaces;
  std::vector<dev_t> disks;
  for (const PlannedFolder& folder : plan.systemFolders) {
    addTo(spaces, disks, folder.destination, growthBy(folder.source, folder.destination));
  }
  for (const PlannedPass& pass : plan.passes) {
    std::int64_t growth = 0;
    bool isComplete = true;
    for (const PlannedVolume& volume : pass.volumes) {
      const std::string source = sourceOf(volume);
      isComplete = isComplete && (!source.empty() || volume.isOptional || !volume.isMounted);
      if (source.empty()) {
        continue;
      }
      if (!volume.librariesOnly) {
        growth += growthBy(source, pass.destination);
        continue;
      }
      for (const PlannedLibrary& library : plan.editions.libraries) {
        if (!library.isLite) {
          const std::string below = "/" + library.folderName;
          growth += growthBy(source + below, pass.destination + below);
        }
      }
    }
    if (!isComplete && plan.announced.isKnown) {
      growth = std::max(growth, plan.announced.bytes - sizeOfTree(pass.destination));
    }
    addTo(spaces, disks, pass.destination, growth);
  }
  return spaces;
}

}  // namespace

std::vector<Shortfall> spaceShortfalls(const InstallPlan& plan) {
  std::vector<Shortfall> shortfalls;
  for (const NeededSpace& space : spaceFor(plan)) {
    if (space.needed > space.free) {
      shortfalls.push_back(
          {ExitStatus::noSpace, format(_("the data needs {0} more at {1}, and {2} are free there"),
                                       {sizeText(space.needed), space.folder, sizeText(space.free)})});
    }
  }
  return shortfalls;
}

std::vector<Shortfall> shortfallsOf(const InstallPlan& plan, const UnattendedAnswers& answers) {
  std::vector<Shortfall> shortfalls;
  for (const PlannedPass& pass : plan.passes) {
    for (const PlannedVolume& volume : pass.volumes) {
      if (isMissing(volume, answers)) {
        const std::string disc = fs::path(volume.root).filename().string();
        shortfalls.push_back({ExitStatus::discMissing, format(_("disc {0} was not found"), {disc})});
      }
    }
  }
  for (const PlannedPass& pass : plan.passes) {
    if (!exists(pass.destination)) {
      if (pass.folderName == plan.product.folderName) {
        shortfalls.push_back({ExitStatus::noDestination,
                              format(_("the folder to install into is missing: {0}"), {pass.destination})});
      }
    } else if (!isWritable(pass.destination)) {
      shortfalls.push_back(
          {ExitStatus::noDestination,
           format(_("the folder to install into cannot be written: {0}"), {pass.destination})});
    }
  }
  const std::vector<Shortfall> spaces = spaceShortfalls(plan);
  shortfalls.insert(shortfalls.end(), spaces.begin(), spaces.end());
  return shortfalls;
}

}  // namespace tavenhall

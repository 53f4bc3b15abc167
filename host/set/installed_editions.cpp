#include "host/set/installed_editions.h"

#include "context/installed_editions.h"

#include <optional>

namespace tavenhall {

namespace {

// Collects the libraries that are found, up to a limit.
struct LibraryList {
  std::size_t limit;
  std::vector<PlannedLibrary> libraries;

  [[nodiscard]] bool isFull() const { return libraries.size() >= limit; }
  void foundLibrary(const char* name) { libraries.push_back({name}); }
  static void foundPacks(const char* /*path*/) {}
  void foundPack(const char* name) { libraries.push_back({std::string(kMirelPacks) + "/" + name}); }
};

struct NoObserver {
  static void searches(const char* /*path*/) {}
  static void foundDatabase(const char* /*path*/, std::int32_t /*size*/) {}
};

}  // namespace

std::vector<std::string> listNames(const std::string& folder) {
  std::vector<std::string> names;
  FolderListing listing(folder.c_str());
  while (const dirent* entry = listing.next()) {
    names.emplace_back(entry->d_name);
  }
  return names;
}

std::vector<PlannedLibrary> listLibraries(const std::string& dataFolder, std::size_t limit) {
  LibraryList list{limit, {}};
  listUpdateLibraries(dataFolder, list);
  return std::move(list.libraries);
}

void detectInstalledEditions(const std::string& centralFolder, std::vector<PlannedLibrary>& libraries) {
  if (centralFolder.empty()) {
    return;
  }
  for (PlannedLibrary& library : libraries) {
    NoObserver observer;
    const std::optional<bool> isLite =
        installedEditionIsLite<std::string>(centralFolder, library.folderName, observer);
    library.isDetected = isLite.has_value();
    library.isLite = isLite.value_or(false);
  }
}

}  // namespace tavenhall

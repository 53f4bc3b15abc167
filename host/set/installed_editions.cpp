#include "host/set/installed_editions.h"

#include <dirent.h>
#include <memory>
#include <sys/stat.h>

namespace tavenhall {

namespace {

constexpr const char* kMirelPacks = "Mirel Packs";

struct Entry {
  std::string name;
  unsigned char type;
};

std::vector<Entry> listEntries(const std::string& path) {
  std::vector<Entry> entries;
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(path.c_str()), &closedir);
  while (const dirent* entry = folder != nullptr ? readdir(folder.get()) : nullptr) {
    if (!isHiddenName(entry->d_name)) {
      entries.push_back({entry->d_name, entry->d_type});
    }
  }
  return entries;
}

void detectMirelPack(const std::string& centralFolder, PlannedLibrary& library) {
  const std::string name(mirelPackLibrary(library.folderName));
  std::string path = centralFolder + "/Mirel Packs/" + name + "/Soundsources/Factory/" + name + " Library";
  for (const Entry& subfolder : listEntries(path)) {
    if (subfolder.type != DT_DIR) {
      continue;
    }
    path += "/" + subfolder.name;  // required of the page: the path only grows
    for (const Entry& entry : listEntries(path)) {
      if (entry.type == DT_REG && isDatabaseName(entry.name)) {
        struct stat found {};
        stat((path + "/" + entry.name).c_str(), &found);
        library.isLite = databaseSizeIsLite(static_cast<std::int32_t>(found.st_size));
        library.isDetected = true;
        return;
      }
    }
  }
}

void detectTessaphon(const std::string& centralFolder, PlannedLibrary& library) {
  struct stat found {};
  const std::string path =
      centralFolder + "/Tessaphon/Soundsources/Factory/Tessaphon Library/Keyboards/Glassophone.db";
  library.isLite = stat(path.c_str(), &found) != 0;
  library.isDetected = true;
}

}  // namespace

std::vector<std::string> listNames(const std::string& folder) {
  std::vector<std::string> names;
  for (Entry& entry : listEntries(folder)) {
    names.push_back(std::move(entry.name));
  }
  return names;
}

std::vector<PlannedLibrary> listLibraries(const std::string& dataFolder, std::size_t limit) {
  std::vector<PlannedLibrary> libraries;
  const auto add = [&libraries, limit](std::string name) {
    if (libraries.size() < limit) {
      libraries.push_back({std::move(name)});
    }
  };
  for (const std::string& name : listNames(dataFolder)) {
    if (name == kMirelPacks) {
      for (const std::string& pack : listNames(dataFolder + "/" + name)) {
        add(name + "/" + pack);
      }
    } else {
      add(name);
    }
  }
  return libraries;
}

void detectInstalledEditions(const std::string& centralFolder, std::vector<PlannedLibrary>& libraries) {
  if (centralFolder.empty()) {
    return;
  }
  for (PlannedLibrary& library : libraries) {
    if (isMirelPack(library.folderName)) {
      detectMirelPack(centralFolder, library);
    } else if (library.folderName == "Tessaphon") {
      detectTessaphon(centralFolder, library);
    }
  }
}

}  // namespace tavenhall

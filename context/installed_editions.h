#pragma once

#include "context/folder_listing.h"
#include "context/install_rules.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <sys/stat.h>

// Finds the libraries in an update, and the editions that a user has, in the order in which the system lists
// them. Only reads. `Path` is the type of the paths: a BoundedText, which aborts on overflow, or a std::string.
// Each step is reported to `Observer`, which may log it. Any thread.
namespace tavenhall {

inline constexpr const char* kMirelPacks = "Mirel Packs";

// Passes each library in an update's data folder to the observer, until isFull(). The observer has
//   bool isFull()
//   void foundLibrary(const char* name)
//   void foundPacks(const char* path)      the folder that holds the Mirel Packs
//   void foundPack(const char* name)       its name below that folder
template <typename Path, typename Observer>
void listUpdateLibraries(const Path& folder, Observer& observer) {
  FolderListing listing(folder.c_str());
  while (!observer.isFull()) {
    const dirent* entry = listing.next();
    if (entry == nullptr) {
      return;
    }
    if (std::string_view(entry->d_name) != kMirelPacks) {
      observer.foundLibrary(entry->d_name);
      continue;
    }
    Path packs = folder;
    packs.append("/");
    packs.append(kMirelPacks);
    observer.foundPacks(packs.c_str());
    FolderListing packListing(packs.c_str());
    while (!observer.isFull()) {
      const dirent* pack = packListing.next();
      if (pack == nullptr) {
        break;
      }
      observer.foundPack(pack->d_name);
    }
  }
}

// Appends the name of the folder's first database file to the path. Returns false if there is none.
template <typename Path>
[[nodiscard]] bool appendDatabaseName(Path& path) {
  FolderListing listing(path.c_str());
  while (const dirent* entry = listing.next()) {
    if (entry->d_type == DT_REG && isDatabaseName(entry->d_name)) {
      path.append("/");
      path.append(entry->d_name);
      return true;
    }
  }
  return false;
}

// Whether the user with this central folder has the Lite edition of the library; none if unknown, which counts
// as Full. The observer has
//   void examines(const char* path)        the file that the Lite edition of Tessaphon lacks
//   void searches(const char* path)        the folder of a Mirel Pack
//   void foundDatabase(const char* path, std::int32_t size)    bytes, as a 32-bit number
template <typename Path, typename Observer>
[[nodiscard]] std::optional<bool> installedEditionIsLite(std::string_view centralFolder,
                                                         std::string_view library, Observer& observer) {
  Path path;
  path.append(centralFolder);
  if (library == "Tessaphon") {
    // The one instrument that a Lite edition lacks.
    path.append("/Tessaphon/Soundsources/Factory/Tessaphon Library/Keyboards/Glassophone.db");
    observer.examines(path.c_str());
    struct stat found {};
    return stat(path.c_str(), &found) != 0;
  }
  if (!isMirelPack(library)) {
    return std::nullopt;
  }
  const std::string_view name = mirelPackLibrary(library);
  for (const std::string_view part :
       {std::string_view("/Mirel Packs/"), name, std::string_view("/Soundsources/Factory/"), name,
        std::string_view(" Library")}) {
    path.append(part);
  }
  observer.searches(path.c_str());

  FolderListing listing(path.c_str());
  while (const dirent* entry = listing.next()) {
    if (entry->d_type != DT_DIR) {
      continue;
    }
    // Required: the path only grows. A subfolder without a database stays in it, so in effect the first
    // subfolder listed decides.
    path.append("/");
    path.append(entry->d_name);
    if (!appendDatabaseName(path)) {
      continue;
    }
    struct stat found {};
    stat(path.c_str(), &found);  // required: a failure counts as a size of 0
    const auto size = static_cast<std::int32_t>(found.st_size);
    observer.foundDatabase(path.c_str(), size);
    return databaseSizeIsLite(size);
  }
  return std::nullopt;
}

}  // namespace tavenhall

#pragma once

#include "context/install_rules.h"

#include <dirent.h>

namespace tavenhall {

// Lists the entries of a folder in the system's order, without names that begin with a full stop. One thread.
// The destructor closes the folder.
class FolderListing {
 public:
  explicit FolderListing(const char* path) noexcept : folder_(opendir(path)) {}
  FolderListing(const FolderListing&) = delete;
  FolderListing& operator=(const FolderListing&) = delete;
  ~FolderListing() {
    if (folder_ != nullptr) {
      closedir(folder_);
    }
  }

  [[nodiscard]] bool isOpen() const noexcept { return folder_ != nullptr; }

  // The descriptor of the folder, which must be open; valid as long as this object.
  [[nodiscard]] int descriptor() const noexcept { return dirfd(folder_); }

  // Returns the next entry, valid until the next call; null at the end, or if the folder could not be opened.
  [[nodiscard]] const dirent* next() noexcept {
    while (folder_ != nullptr) {
      const dirent* entry = readdir(folder_);
      if (entry == nullptr || !isHiddenName(entry->d_name)) {
        return entry;
      }
    }
    return nullptr;
  }

 private:
  DIR* folder_;
};

}  // namespace tavenhall

#pragma once

#include "context/install_rules.h"

#include <dirent.h>

namespace tavenhall {

// The entries of a folder in the order in which the system lists them, without those whose names begin with
// a full stop. One thread; closes the folder when it goes.
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

  // Of the folder, which must be open; valid as long as this object.
  [[nodiscard]] int descriptor() const noexcept { return dirfd(folder_); }

  // The next entry, valid until the next call; null at the end, and where the folder could not be opened.
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

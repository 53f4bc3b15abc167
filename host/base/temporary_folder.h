#pragma once

#include <filesystem>

namespace tavenhall {

// A new temporary folder. The destructor removes it with its contents.
class TemporaryFolder {
 public:
  // Throws UsageError if it cannot be created.
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// The folder of --keep. Unless keep() is called, the destructor removes what was created.
class KeptFolder {
 public:
  // Creates the folder and its parents. Throws UsageError if that fails or the folder is not empty.
  explicit KeptFolder(const std::filesystem::path& path);
  KeptFolder(const KeptFolder&) = delete;
  KeptFolder& operator=(const KeptFolder&) = delete;
  ~KeptFolder();

  void keep() { isKept_ = true; }

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;     // absolute
  std::filesystem::path highest_;  // the topmost folder that was created; empty: none
  bool isKept_ = false;
};

}  // namespace tavenhall

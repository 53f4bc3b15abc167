#pragma once

#include <filesystem>

namespace tavenhall {

// A new folder in the system's folder for temporary files; goes with all it holds.
class TemporaryFolder {
 public:
  // Throws UsageError where there can be none.
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// A folder that the user names for something to be kept in. Until keep() is called, what is made of it and in
// it goes again with its object.
class KeptFolder {
 public:
  // Makes the folder, and those above it. Throws UsageError where it cannot, or where something lies in it.
  explicit KeptFolder(const std::filesystem::path& path);
  KeptFolder(const KeptFolder&) = delete;
  KeptFolder& operator=(const KeptFolder&) = delete;
  ~KeptFolder();

  void keep() { isKept_ = true; }

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;     // absolute
  std::filesystem::path highest_;  // the highest folder that was made; empty: none
  bool isKept_ = false;
};

}  // namespace tavenhall

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

}  // namespace tavenhall

#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <sys/stat.h>

// Files that are read without ever blocking, and written so that a reader sees the old or the new one. One
// thread.
namespace tavenhall {

// Owns a descriptor; -1 for none.
class OwnedDescriptor {
 public:
  explicit OwnedDescriptor(int descriptor) : descriptor_(descriptor) {}
  OwnedDescriptor(const OwnedDescriptor&) = delete;
  OwnedDescriptor& operator=(const OwnedDescriptor&) = delete;
  ~OwnedDescriptor();

  [[nodiscard]] int get() const { return descriptor_; }

 private:
  const int descriptor_;
};

// A regular file, open to be read: a pipe or a device, on which that would block, counts as invalid.
class RegularFile {
 public:
  explicit RegularFile(const std::filesystem::path& path);

  // The next bytes, in `piece`, which is not empty; none at the end and after an error.
  [[nodiscard]] std::string_view read(std::span<char> piece);

  [[nodiscard]] int error() const { return error_; }  // errno of what failed; 0: nothing has
  [[nodiscard]] const struct stat& facts() const { return facts_; }

 private:
  const OwnedDescriptor file_;
  struct stat facts_ {};
  int error_ = 0;
};

// A file beside its place, under a hidden name. Removed unless it is put there.
class Draft {
 public:
  explicit Draft(const std::filesystem::path& place);
  Draft(const Draft&) = delete;
  Draft& operator=(const Draft&) = delete;
  ~Draft();

  [[nodiscard]] int descriptor() const { return file_.get(); }  // -1, with errno, if it could not be made

  // Puts it there, with the mode of the file that it replaces, or that of a new file. False with errno.
  [[nodiscard]] bool place();

 private:
  const std::filesystem::path place_;
  std::string path_;
  const OwnedDescriptor file_;
  bool isPlaced_ = false;
};

// Writes a file in place of an older one. Throws UsageError.
void replaceFile(const std::filesystem::path& file, std::string_view bytes);

}  // namespace tavenhall

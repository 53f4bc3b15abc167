#include "host/log/support_bundle.h"

#include "host/base/exit_status.h"
#include "host/base/regular_file.h"
#include "host/base/text.h"

#include <algorithm>
#include <archive.h>
#include <archive_entry.h>
#include <array>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <unistd.h>

namespace tavenhall {

namespace {

UsageError cannotWriteBundle(const std::filesystem::path& path, const char* reason) {
  return UsageError(
      format(_("cannot write {0}: {1}"), {path.string(), reason != nullptr ? reason : _("unknown error")}));
}

class ZipWriter {
 public:
  explicit ZipWriter(const std::filesystem::path& path)
      : path_(path), descriptor_(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600)) {
    if (descriptor_ < 0) {
      throw cannotWriteBundle(path, std::strerror(errno));
    }
    archive_write_set_format_zip(zip_.get());
    check(archive_write_open_fd(zip_.get(), descriptor_));
  }
  ZipWriter(const ZipWriter&) = delete;
  ZipWriter& operator=(const ZipWriter&) = delete;
  ~ZipWriter() {
    close(descriptor_);
    if (!isComplete_) {
      unlink(path_.c_str());
    }
  }

  void add(const BundleFile& file) {
    if (file.source.empty()) {
      beginEntry(file.name, static_cast<std::int64_t>(file.text.size()));
      write(file.text.data(), file.text.size());
      return;
    }
    RegularFile source(file.source);
    if (source.error() != 0) {
      throw UsageError(
          format(_("cannot read {0}: {1}"), {file.source.string(), std::strerror(source.error())}));
    }
    beginEntry(file.name, source.facts().st_size);
    std::int64_t left = source.facts().st_size;
    std::array<char, 65536> buffer;
    while (left > 0) {  // what a running install adds meanwhile is left out
      const auto wanted = static_cast<std::size_t>(std::min<std::int64_t>(left, buffer.size()));
      const std::string_view bytes = source.read({buffer.data(), wanted});
      if (bytes.empty() && source.error() == 0) {
        throw UsageError(format(_("{0} has changed while it was read"), {file.source.string()}));
      }
      if (bytes.empty()) {
        throw UsageError(
            format(_("cannot read {0}: {1}"), {file.source.string(), std::strerror(source.error())}));
      }
      write(bytes.data(), bytes.size());
      left -= static_cast<std::int64_t>(bytes.size());
    }
  }

  void finish() {
    check(archive_write_close(zip_.get()));
    if (fsync(descriptor_) != 0) {
      throw cannotWriteBundle(path_, std::strerror(errno));
    }
    isComplete_ = true;
  }

 private:
  void beginEntry(const std::string& name, std::int64_t size) {
    const std::unique_ptr<archive_entry, void (*)(archive_entry*)> entry(archive_entry_new(),
                                                                         archive_entry_free);
    archive_entry_set_pathname(entry.get(), name.c_str());
    archive_entry_set_filetype(entry.get(), AE_IFREG);
    archive_entry_set_perm(entry.get(), 0644);
    archive_entry_set_size(entry.get(), size);
    archive_entry_set_mtime(entry.get(), std::time(nullptr), 0);
    check(archive_write_header(zip_.get(), entry.get()));
  }

  void write(const char* bytes, std::size_t size) {
    if (archive_write_data(zip_.get(), bytes, size) != static_cast<la_ssize_t>(size)) {
      throw cannotWriteBundle(path_, archive_error_string(zip_.get()));
    }
  }

  void check(int status) {
    if (status != ARCHIVE_OK) {
      throw cannotWriteBundle(path_, archive_error_string(zip_.get()));
    }
  }

  const std::filesystem::path path_;
  int descriptor_;
  bool isComplete_ = false;
  const std::unique_ptr<archive, int (*)(archive*)> zip_{archive_write_new(), archive_write_free};
};

}  // namespace

std::int64_t sizeOf(const BundleFile& file) {
  if (file.source.empty()) {
    return static_cast<std::int64_t>(file.text.size());
  }
  const RegularFile source(file.source);
  return source.error() == 0 ? source.facts().st_size : -1;
}

void writeBundle(const std::filesystem::path& archive, const std::vector<BundleFile>& files) {
  ZipWriter zip(archive);
  for (const BundleFile& file : files) {
    zip.add(file);
  }
  zip.finish();
}

}  // namespace tavenhall

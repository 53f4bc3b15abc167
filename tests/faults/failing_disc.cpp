#define FUSE_USE_VERSION 31

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <fuse.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

// A disc that goes bad: shows a folder, read-only, until one of its files is read at a certain byte.
//   failing_disc FOLDER MOUNTPOINT NAME BYTE error   what is read there, and behind it, cannot be read
//   failing_disc FOLDER MOUNTPOINT NAME BYTE end     it is pulled out: from then on nothing can be read
// Stays in the foreground until it is unmounted.

namespace {

struct Disc {
  std::string folder;
  std::string badName;
  off_t badByte;
  bool isPulledOut;
};

const Disc& disc() { return *static_cast<const Disc*>(fuse_get_context()->private_data); }

std::string realPath(const char* path) { return disc().folder + path; }

int answer(int result) { return result < 0 ? -errno : 0; }

int getAttributes(const char* path, struct stat* found, fuse_file_info* /*file*/) {
  return answer(lstat(realPath(path).c_str(), found));
}

int listFolder(const char* path, void* list, fuse_fill_dir_t add, off_t /*offset*/, fuse_file_info* /*file*/,
               fuse_readdir_flags /*flags*/) {
  DIR* folder = opendir(realPath(path).c_str());
  if (folder == nullptr) {
    return -errno;
  }
  while (const dirent* entry = readdir(folder)) {
    struct stat found {};
    found.st_mode = DTTOIF(entry->d_type);
    add(list, entry->d_name, &found, 0, fuse_fill_dir_flags{});
  }
  closedir(folder);
  return 0;
}

int openFile(const char* path, fuse_file_info* file) {
  const int descriptor = open(realPath(path).c_str(), O_RDONLY);
  if (descriptor < 0) {
    return -errno;
  }
  file->fh = static_cast<std::uint64_t>(descriptor);
  file->direct_io = 1;  // so that each read comes here, and none is answered from memory
  return 0;
}

int readFile(const char* path, char* bytes, std::size_t count, off_t offset, fuse_file_info* file) {
  if (std::string(path).ends_with("/" + disc().badName)) {
    if (offset >= disc().badByte) {
      if (disc().isPulledOut) {
        _exit(0);
      }
      return -EIO;
    }
    count = std::min(count, static_cast<std::size_t>(disc().badByte - offset));
  }
  const ssize_t read = pread(static_cast<int>(file->fh), bytes, count, offset);
  return read < 0 ? -errno : static_cast<int>(read);
}

int closeFile(const char* /*path*/, fuse_file_info* file) { return answer(close(static_cast<int>(file->fh))); }

}  // namespace

int main(int count, char** arguments) {
  if (count != 6) {
    std::fprintf(stderr, "usage: failing_disc FOLDER MOUNTPOINT NAME BYTE error|end\n");
    return 2;
  }
  Disc failing{arguments[1], arguments[3], std::atoll(arguments[4]), std::strcmp(arguments[5], "end") == 0};
  fuse_operations operations{};
  operations.getattr = getAttributes;
  operations.readdir = listFolder;
  operations.open = openFile;
  operations.read = readFile;
  operations.release = closeFile;
  char program[] = "failing_disc";
  char foreground[] = "-f";
  char oneThread[] = "-s";
  char* fuseArguments[] = {program, foreground, oneThread, arguments[2], nullptr};
  return fuse_main(4, fuseArguments, &operations, &failing);
}

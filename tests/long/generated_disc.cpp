#define FUSE_USE_VERSION 31

#include "tests/long/generated_bytes.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fuse.h>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <vector>

// A disc of any size that takes no room and gives so many bytes a second:
//   generated_disc MOUNTPOINT RATE FIRST SIZE...
// It holds a folder TANVO with a file for each SIZE: part-<FIRST>.db, part-<FIRST + 1>.db and so on, whose
// bytes are those that generateBytes makes of that number. RATE is in bytes a second; 0 is as fast as can be.
// Stays in the foreground until it is unmounted.

namespace {

using Clock = std::chrono::steady_clock;

struct Disc {
  std::uint64_t rate = 0;
  std::uint64_t first = 0;
  std::vector<off_t> sizes;

  Clock::time_point due = Clock::now();  // when the next byte may be given

  // Waits until so many bytes more may be given. Time in which nobody read is not saved up.
  void wait(std::size_t bytes) {
    if (rate > 0) {
      const auto duration =
          std::chrono::duration<double>(static_cast<double>(bytes) / static_cast<double>(rate));
      due = std::max(due, Clock::now()) + std::chrono::duration_cast<Clock::duration>(duration);
      std::this_thread::sleep_until(due);
    }
  }
};

Disc& disc() { return *static_cast<Disc*>(fuse_get_context()->private_data); }

std::string nameOf(std::size_t file) { return "part-" + std::to_string(disc().first + file) + ".db"; }

// Which of the files lies at a path, or -1.
int fileAt(const std::string& path) {
  for (std::size_t i = 0; i < disc().sizes.size(); ++i) {
    if (path == "/TANVO/" + nameOf(i)) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

int getAttributes(const char* path, struct stat* found, fuse_file_info* /*file*/) {
  const int file = fileAt(path);
  *found = {};
  if (file >= 0) {
    found->st_mode = S_IFREG | 0444;
    found->st_nlink = 1;
    found->st_size = disc().sizes[static_cast<std::size_t>(file)];
  } else if (std::strcmp(path, "/") == 0 || std::strcmp(path, "/TANVO") == 0) {
    found->st_mode = S_IFDIR | 0555;
    found->st_nlink = 2;
  } else {
    return -ENOENT;
  }
  return 0;
}

int listFolder(const char* path, void* list, fuse_fill_dir_t add, off_t /*offset*/, fuse_file_info* /*file*/,
               fuse_readdir_flags /*flags*/) {
  struct stat entry {};
  if (std::strcmp(path, "/") == 0) {
    entry.st_mode = S_IFDIR;
    add(list, "TANVO", &entry, 0, fuse_fill_dir_flags{});
    return 0;
  }
  entry.st_mode = S_IFREG;
  for (std::size_t i = 0; i < disc().sizes.size(); ++i) {
    add(list, nameOf(i).c_str(), &entry, 0, fuse_fill_dir_flags{});
  }
  return 0;
}

int openFile(const char* path, fuse_file_info* file) {
  const int number = fileAt(path);
  file->fh = static_cast<std::uint64_t>(number);
  return number < 0 ? -ENOENT : 0;
}

int readFile(const char* /*path*/, char* bytes, std::size_t count, off_t offset, fuse_file_info* file) {
  const off_t size = disc().sizes[file->fh];
  const std::size_t given = offset >= size ? 0 : std::min(count, static_cast<std::size_t>(size - offset));
  tavenhall::test::generateBytes(disc().first + file->fh, static_cast<std::uint64_t>(offset), bytes, given);
  disc().wait(given);
  return static_cast<int>(given);
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 5) {
    std::fprintf(stderr, "usage: generated_disc MOUNTPOINT RATE FIRST SIZE...\n");
    return 2;
  }
  Disc generated;
  generated.rate = std::strtoull(arguments[2], nullptr, 10);
  generated.first = std::strtoull(arguments[3], nullptr, 10);
  for (int i = 4; i < count; ++i) {
    generated.sizes.push_back(std::atoll(arguments[i]));
  }
  fuse_operations operations{};
  operations.getattr = getAttributes;
  operations.readdir = listFolder;
  operations.open = openFile;
  operations.read = readFile;
  char program[] = "generated_disc";
  char foreground[] = "-f";
  char oneThread[] = "-s";
  char readOnly[] = "-oro";
  char* fuseArguments[] = {program, foreground, oneThread, readOnly, arguments[1], nullptr};
  return fuse_main(5, fuseArguments, &operations, &generated);
}

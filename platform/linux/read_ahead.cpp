#include "platform/copy_hints.h"

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <dirent.h>
#include <fcntl.h>
#include <optional>
#include <semaphore>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tavenhall {

namespace {

// The kernel reads ahead within larger files; and reading a disc at two distant places is slow.
constexpr std::int64_t kLargestFile = 262144;  // bytes
constexpr int kBatch = ReadAhead::kFilesAhead / 2;
constexpr int kFilesTried = 2;        // when these are in memory already, so is their batch
constexpr std::size_t kDeepest = 32;  // folders open at a time; the page needs descriptors too

// The files of a tree, one by one, in the order of the page's walk.
class Walk {
 public:
  explicit Walk(const char* folder) { enter(folder); }
  Walk(const Walk&) = delete;
  Walk& operator=(const Walk&) = delete;
  ~Walk() {
    while (!levels_.empty()) {
      leave();
    }
  }

  struct File {
    std::string path;
    bool isRegular;
  };

  // Nothing at the end, and where it goes too deep.
  std::optional<File> next() {
    while (!levels_.empty()) {
      const dirent* entry = readdir(levels_.back().listing);
      if (entry == nullptr) {
        leave();
      } else if (entry->d_name[0] != '.') {
        std::string path = levels_.back().path + "/" + entry->d_name;
        if (entry->d_type != DT_DIR) {
          return File{std::move(path), entry->d_type == DT_REG};
        }
        if (levels_.size() == kDeepest) {
          break;
        }
        enter(std::move(path));
      }
    }
    return std::nullopt;
  }

 private:
  struct Level {
    std::string path;
    DIR* listing;
  };

  void enter(std::string path) {
    if (DIR* listing = opendir(path.c_str()); listing != nullptr) {
      levels_.push_back({std::move(path), listing});
    }
  }

  void leave() {
    closedir(levels_.back().listing);
    levels_.pop_back();
  }

  std::vector<Level> levels_;
};

// cachestat(2), of Linux 6.5; newer than the C libraries that this is built with.
constexpr long kCachestat = 451;  // on every processor that this runs on
struct CacheRange {
  std::uint64_t offset;
  std::uint64_t length;  // 0: up to the end
};
struct CacheFigures {
  std::uint64_t cached;  // pages
  std::uint64_t others[4];
};

// False also if the system does not say, or not to this user: reading what is in memory costs little.
bool isInMemory(int descriptor) {
  CacheRange whole{0, 0};
  CacheFigures figures{};
  return syscall(kCachestat, descriptor, &whole, &figures, 0) == 0 && figures.cached > 0;
}

// Begins to read the file, if it is a small one; whether anything had to be read.
bool hadToRead(const char* path) {
  int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_NOATIME | O_CLOEXEC);
  if (descriptor < 0 && errno == EPERM) {
    descriptor = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);  // somebody else's file
  }
  if (descriptor < 0) {
    return false;
  }
  struct stat found {};
  const bool isWanted = fstat(descriptor, &found) == 0 && S_ISREG(found.st_mode) &&
                        found.st_size <= kLargestFile && !isInMemory(descriptor);
  if (isWanted) {
    readahead(descriptor, 0, static_cast<std::size_t>(found.st_size));
  }
  close(descriptor);
  return isWanted;
}

}  // namespace

// The copy and the reader count the tree's files alike. The reader may begin a batch when the copy has come
// through the last but one before it.
class ReadAhead::Reader {
 public:
  explicit Reader(const char* folder) : folder_(folder), thread_([this] { run(); }) {}
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  ~Reader() {
    isStopping_ = true;
    batches_.release();
    thread_.join();
  }

  void cameToFile() {
    if (++filesCome_ % kBatch == 0) {
      batches_.release();
    }
  }

 private:
  void run() {
    Walk walk(folder_.c_str());
    bool isCold = false;
    for (std::int64_t number = 0; !isStopping_; ++number) {
      const auto file = walk.next();
      if (!file) {
        return;
      }
      const int place = static_cast<int>(number % kBatch);
      if (place == 0) {
        batches_.acquire();
        isCold = false;
      }
      if (file->isRegular && number >= filesCome_ && (isCold || place < kFilesTried)) {
        isCold = hadToRead(file->path.c_str()) || isCold;
      }
    }
  }

  const std::string folder_;
  std::atomic<bool> isStopping_ = false;
  std::atomic<std::int64_t> filesCome_ = 0;
  std::counting_semaphore<> batches_{kFilesAhead / kBatch};
  std::thread thread_;  // last: it uses all the others
};

ReadAhead::ReadAhead(const char* folder) noexcept {
  try {
    reader_ = std::make_unique<Reader>(folder);
  } catch (const std::system_error&) {
    return;  // no thread can be had
  }
  current_ = reader_.get();
}

ReadAhead::~ReadAhead() { current_ = nullptr; }

void ReadAhead::cameToFile() noexcept {
  if (current_ != nullptr) {
    current_->cameToFile();
  }
}

}  // namespace tavenhall

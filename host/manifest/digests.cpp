#include "host/manifest/digests.h"

#include "host/base/mutex.h"
#include "host/base/regular_file.h"
#include "host/manifest/sha256.h"

#include <algorithm>
#include <atomic>
#include <string_view>
#include <thread>

namespace tavenhall {

namespace {

constexpr std::size_t kPiece = 1048576;      // bytes of a read
constexpr std::int64_t kReported = 8388608;  // bytes between two reports of progress
constexpr unsigned kMostThreads = 8;

// What the threads share.
class DigestWork {
 public:
  DigestWork(const std::vector<std::filesystem::path>& files,
             const std::function<void(std::size_t, const FileDigest&)>& done,
             const std::function<void(std::int64_t)>& progress, const StopRequest* stop)
      : files_(files), done_(done), progress_(progress), stop_(stop) {}

  void run() {
    Sha256 hasher;
    std::vector<char> piece(kPiece);
    for (std::size_t i = next_++; i < files_.size(); i = next_++) {
      const FileDigest digest = digestOf(files_[i], hasher, piece);
      if (hasToStop()) {
        return;
      }
      const Lock lock(mutex_);
      done_(i, digest);
    }
  }

 private:
  FileDigest digestOf(const std::filesystem::path& file, Sha256& hasher, std::vector<char>& piece) {
    FileDigest result;
    RegularFile opened(file);
    hasher.begin();
    std::int64_t reported = 0;
    for (std::string_view bytes = opened.read(piece); !bytes.empty() && !hasToStop();
         bytes = opened.read(piece)) {
      hasher.add(bytes.data(), bytes.size());
      result.size += static_cast<std::int64_t>(bytes.size());
      if (result.size - reported >= kReported) {
        report(result.size - reported);
        reported = result.size;
      }
    }
    report(result.size - reported);
    result.error = opened.error();
    result.digest = result.error == 0 ? hasher.end() : std::string();
    return result;
  }

  [[nodiscard]] bool hasToStop() const { return stop_ != nullptr && stop_->hasCome(); }

  void report(std::int64_t bytes) {
    const Lock lock(mutex_);
    progress_(bytes);
  }

  const std::vector<std::filesystem::path>& files_;
  const std::function<void(std::size_t, const FileDigest&)>& done_;
  const std::function<void(std::int64_t)>& progress_;
  const StopRequest* stop_;
  std::atomic<std::size_t> next_ = 0;
  Mutex mutex_;  // held for the calls of the two functions
};

}  // namespace

void digestFiles(const std::vector<std::filesystem::path>& files,
                 const std::function<void(std::size_t index, const FileDigest& digest)>& done,
                 const std::function<void(std::int64_t bytes)>& progress, const StopRequest* stop) {
  DigestWork work(files, done, progress, stop);
  const unsigned count = std::clamp(std::thread::hardware_concurrency(), 1U, kMostThreads);
  std::vector<std::thread> threads;
  for (unsigned i = 1; i < count; ++i) {
    threads.emplace_back([&work] { work.run(); });
  }
  work.run();
  for (std::thread& thread : threads) {
    thread.join();
  }
}

}  // namespace tavenhall

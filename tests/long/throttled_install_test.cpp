#include "tests/install/case_files.h"
#include "tests/long/generated_bytes.h"
#include "tests/long/process_figures.h"
#include "tests/support/files.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

// A real install of many gigabytes: the built program, five discs that give so many bytes a second, and a
// destination on the machine's own disk. scripts/long makes it 20 GB; in the ordinary suite it is a small one.
//   TAVINSTALL_LONG_MEGABYTES   in all, in millions of bytes; 60 when it is not set
//   TAVINSTALL_LONG_RATE        of a disc, in millions of bytes a second; 300 when it is not set
namespace tavenhall::test {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr const char* kGeneratedDisc = TAVINSTALL_BINARY_DIR "/bin/generated_disc";
constexpr std::array<const char*, 5> kDiscs{"Tavenhall Tessaphon A", "Tessaphon B", "Tessaphon C",
                                            "Tessaphon D", "Tessaphon E"};
constexpr std::size_t kSmallFiles = 15;      // a disc's, besides a big one that holds half of its bytes
constexpr std::int64_t kMostMemory = 20000;  // kB
constexpr std::int64_t kMostGrowth = 1024;   // kB, from the first tenth of an install to its end

std::uint64_t fromEnvironment(const char* name, std::uint64_t otherwise) {
  const char* const value = std::getenv(name);
  return value != nullptr ? std::strtoull(value, nullptr, 10) : otherwise;
}

// A folder on the machine's disk, which goes away with everything in it.
class DiskFolder {
 public:
  DiskFolder() : path_(TAVINSTALL_BINARY_DIR "/long." + std::to_string(getpid())) { makeFolder(path_); }
  DiskFolder(const DiskFolder&) = delete;
  DiskFolder& operator=(const DiskFolder&) = delete;
  ~DiskFolder() { fs::remove_all(path_); }

  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_;
};

std::vector<std::uint64_t> sizesOf(std::uint64_t discBytes) {
  std::vector<std::uint64_t> sizes{discBytes / 2};
  sizes.resize(1 + kSmallFiles, discBytes / 2 / kSmallFiles);
  return sizes;
}

// Numbers the generated files through, over all discs.
std::uint64_t firstNumber(std::size_t disc) { return disc * (kSmallFiles + 1); }

// The discs, each a file system served by a process of its own.
class Discs {
 public:
  Discs(const std::vector<std::uint64_t>& sizes, std::uint64_t rate) {
    for (std::size_t disc = 0; disc < kDiscs.size(); ++disc) {
      const std::string place = std::string("/Volumes/") + kDiscs[disc];
      makeFolder(place);
      std::vector<std::string> commandLine{kGeneratedDisc, place, std::to_string(rate),
                                           std::to_string(firstNumber(disc))};
      for (const std::uint64_t size : sizes) {
        commandLine.push_back(std::to_string(size));
      }
      servers_.emplace_back(commandLine);
      await(place + "/TANVO");
    }
  }

 private:
  static void await(const std::string& path) {
    const auto deadline = Clock::now() + std::chrono::seconds(60);
    while (!exists(path)) {
      ASSERT_LT(Clock::now(), deadline) << path << " does not come";
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
  }

  std::deque<ChildProgram> servers_;
};

// Watches the installer from beside it.
class Watch {
 public:
  explicit Watch(pid_t process, std::chrono::milliseconds pause)
      : process_(process), watcher_([this, pause] {
          while (!isDone_) {
            look();
            std::this_thread::sleep_for(pause);
          }
        }) {}
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;
  ~Watch() { finish(); }

  // The figures up to now, the last of them of this moment.
  const std::vector<Figures>& finish() {
    if (watcher_.joinable()) {
      isDone_ = true;
      watcher_.join();
      look();
    }
    return figures_;
  }

 private:
  void look() {
    figures_.push_back(figuresOf(process_));
    figures_.back().seconds = std::chrono::duration<double>(Clock::now() - start_).count();
  }

  pid_t process_;
  Clock::time_point start_ = Clock::now();
  std::vector<Figures> figures_;
  std::atomic<bool> isDone_ = false;
  std::thread watcher_;
};

void expectGenerated(const std::string& path, std::uint64_t number, std::uint64_t size) {
  ASSERT_EQ(fs::file_size(path), size) << path;
  std::vector<char> is(1U << 20U);
  std::vector<char> expected(is.size());
  std::FILE* const file = std::fopen(path.c_str(), "rb");
  ASSERT_NE(file, nullptr) << path;
  for (std::uint64_t at = 0; at < size; at += is.size()) {
    const std::size_t length = std::min<std::uint64_t>(is.size(), size - at);
    generateBytes(number, at, expected.data(), length);
    if (std::fread(is.data(), 1, length, file) != length ||
        !std::equal(is.begin(), is.begin() + length, expected.begin())) {
      ADD_FAILURE() << path << " differs behind byte " << at;
      break;
    }
  }
  std::fclose(file);
}

bool hasFuse() { return access("/dev/fuse", R_OK | W_OK) == 0; }

TEST(LongInstall, AThrottledSourceOfAnySizeIsInstalledInTheSameMemory) {
  if (!hasFuse()) {
    GTEST_SKIP() << "the discs need /dev/fuse";
  }
  const std::uint64_t megabytes = fromEnvironment("TAVINSTALL_LONG_MEGABYTES", 60);
  const std::uint64_t rate = fromEnvironment("TAVINSTALL_LONG_RATE", 300) * 1000000;
  const std::vector<std::uint64_t> sizes = sizesOf(megabytes * 1000000 / kDiscs.size());
  layPackage("Mode = InstallFromVolumes\nNumberOfVolumes = 5\nTotalSizeMillionsBytes = " +
                 std::to_string(megabytes) + "\n",
             {});
  const DiskFolder destination;
  makeFolder(kMakersFolder);
  fs::create_directory_symlink(destination.path(), kTanvo);
  const Discs discs(sizes, rate);

  JsonInstaller installer({"--package", kPackage});
  installer.send(kTitle);
  installer.await("title");
  const Figures before = figuresOf(installer.program().pid());
  Watch watch(installer.program().pid(), std::chrono::milliseconds(megabytes > 1000 ? 1000 : 20));
  installer.send({kEnter, kWait});
  installer.await("idle");
  const std::vector<Figures>& figures = watch.finish();
  installer.send(kForward);
  EXPECT_EQ(installer.finish(), 0) << installer.program().standardError();
  std::int64_t mostMemory = 0;  // the system's own maximum may lag behind what it shows at a moment
  for (const Figures& at : figures) {
    mostMemory = std::max({mostMemory, at.resident, at.peakMemory});
  }
  std::printf("%s%llu MB in %.1f s; most memory ever resident: %lld kB\n", tableOf(figures, 16).c_str(),
              static_cast<unsigned long long>(megabytes), figures.back().seconds,
              static_cast<long long>(mostMemory));

  for (std::size_t disc = 0; disc < kDiscs.size(); ++disc) {
    EXPECT_FALSE(exists(std::string("/Volumes/") + kDiscs[disc] + "/TANVO")) << "a disc was not taken out";
    for (std::size_t file = 0; file < sizes.size(); ++file) {
      const std::uint64_t number = firstNumber(disc) + file;
      const std::string path = destination.path() + "/part-" + std::to_string(number) + ".db";
      expectGenerated(path, number, sizes[file]);
      fs::remove(path);
    }
  }
  EXPECT_EQ(figures.back().descriptors, before.descriptors);
  EXPECT_EQ(figures.back().threads, before.threads);
  if (kMemoryTells) {
    EXPECT_LE(mostMemory, kMostMemory);
    EXPECT_LE(figures.back().ownMemory - figures[figures.size() / 10].ownMemory, kMostGrowth);
  }
}

}  // namespace

}  // namespace tavenhall::test

#include "platform/copy_hints.h"

#include "tests/support/files.h"
#include "tests/support/waiting.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <sys/inotify.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tavenhall::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kCannotForget = "the build folder's file system keeps its files in memory";

// Asked in a way that brings nothing into memory itself.
bool isInMemory(const fs::path& path) {
  const int file = open(path.c_str(), O_RDONLY | O_NOATIME | O_CLOEXEC);
  void* mapped = mmap(nullptr, 1, PROT_READ, MAP_SHARED, file, 0);
  close(file);
  unsigned char state = 0;
  const bool isKnown = mapped != MAP_FAILED && mincore(mapped, 1, &state) == 0;
  munmap(mapped, 1);
  EXPECT_TRUE(isKnown) << path;
  return (state & 1) != 0;
}

void forget(const fs::path& path) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  fdatasync(file);
  posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
  close(file);
}

// The private folders of the tests are in memory always, so the files lie in the build folder.
class ReadingAhead : public testing::Test {
 protected:
  ReadingAhead()
      : folder(fs::path(TAVINSTALL_BINARY_DIR) /
               ("read-ahead." + std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()))) {}
  ~ReadingAhead() override { fs::remove_all(folder); }

  void layFiles(const std::string& below, int count) const {
    for (int i = 0; i < count; ++i) {
      writeFile(folder / below / (std::to_string(i) + ".db"), someBytes(5000));
    }
  }

  // Files beside `other`, until one of them is listed after it: when all have come into memory, `other` has
  // been met. Gives how many.
  [[nodiscard]] int layFilesUntilOneFollows(const fs::path& other, std::size_t size) const {
    const auto latest = [this] {
      fs::path path;
      for (const auto& entry : fs::directory_iterator(folder)) {
        path = entry.path();
      }
      return path;
    };
    int count = 0;
    do {
      writeFile(folder / (std::to_string(count++) + ".db"), someBytes(size));
    } while (latest() == other && count < ReadAhead::kFilesAhead);
    return count;
  }

  // Every regular file, as the system lists them.
  [[nodiscard]] std::vector<fs::path> files() const {
    std::vector<fs::path> found;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
      if (entry.is_regular_file()) {
        found.push_back(entry.path());
      }
    }
    return found;
  }

  void forgetAll() const {
    for (const fs::path& file : files()) {
      forget(file);
    }
  }

  [[nodiscard]] std::ptrdiff_t inMemory() const { return std::ranges::count_if(files(), isInMemory); }

  [[nodiscard]] bool canForget() const { return inMemory() == 0; }

  const fs::path folder;
};

TEST_F(ReadingAhead, TheFirstFilesComeIntoMemoryBeforeTheCopyComesToThem) {
  layFiles("a", 10);
  layFiles("b/c", 10);
  forgetAll();
  if (!canForget()) {
    GTEST_SKIP() << kCannotForget;
  }
  const ReadAhead readAhead(folder.c_str());
  EXPECT_TRUE(comesTrue([&] { return inMemory() == 20; })) << inMemory();
}

TEST_F(ReadingAhead, GoesOnlySoFarAheadOfTheCopy) {
  layFiles("a", ReadAhead::kFilesAhead * 3);
  forgetAll();
  if (!canForget()) {
    GTEST_SKIP() << kCannotForget;
  }
  const ReadAhead readAhead(folder.c_str());
  EXPECT_TRUE(comesTrue([&] { return inMemory() == ReadAhead::kFilesAhead; })) << inMemory();

  // Within the half that the copy has come through, nothing more is begun.
  for (int i = 1; i < ReadAhead::kFilesAhead / 2; ++i) {
    ReadAhead::cameToFile();
  }
  EXPECT_EQ(inMemory(), ReadAhead::kFilesAhead);
  ReadAhead::cameToFile();
  EXPECT_TRUE(comesTrue([&] { return inMemory() == ReadAhead::kFilesAhead * 3 / 2; })) << inMemory();
}

TEST_F(ReadingAhead, EndsWithNothingOpenWhereverItIs) {
  layFiles("a/b/c", ReadAhead::kFilesAhead * 3);
  forgetAll();
  const std::ptrdiff_t before = openDescriptors();
  { const ReadAhead readAhead(folder.c_str()); }
  EXPECT_EQ(openDescriptors(), before);
}

TEST_F(ReadingAhead, EndsWhenTheCopyIsFaster) {
  layFiles("a", ReadAhead::kFilesAhead * 3);
  const ReadAhead readAhead(folder.c_str());
  for (int i = 0; i < ReadAhead::kFilesAhead * 3; ++i) {
    ReadAhead::cameToFile();
  }
}

TEST_F(ReadingAhead, LargeFilesAreLeftToTheSystem) {
  constexpr std::size_t kLargest = 262144;  // bytes
  const fs::path large = folder / "large.db";
  writeFile(large, someBytes(kLargest + 1));
  const int count = layFilesUntilOneFollows(large, kLargest);
  forgetAll();
  if (!canForget()) {
    GTEST_SKIP() << kCannotForget;
  }
  const ReadAhead readAhead(folder.c_str());
  EXPECT_TRUE(comesTrue([&] { return inMemory() == count; })) << inMemory();
  EXPECT_FALSE(isInMemory(large));
}

TEST_F(ReadingAhead, HiddenNamesAreNotRead) {
  layFiles(".hidden", 3);
  writeFile(folder / ".file", someBytes(5000));
  layFiles("shown", 3);
  forgetAll();
  if (!canForget()) {
    GTEST_SKIP() << kCannotForget;
  }
  const ReadAhead readAhead(folder.c_str());
  EXPECT_TRUE(comesTrue([&] { return isInMemory(folder / "shown" / "2.db"); }));
  EXPECT_TRUE(comesTrue([&] { return inMemory() == 3; })) << inMemory();
}

TEST_F(ReadingAhead, TimesOfAccessStayAsTheyAre) {
  layFiles("a", 1);
  const fs::path file = folder / "a" / "0.db";
  const timespec times[2] = {{1000, 0}, {2000, 0}};  // read long before it was written: a read would show
  ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
  forgetAll();
  if (!canForget()) {
    GTEST_SKIP() << kCannotForget;
  }
  const ReadAhead readAhead(folder.c_str());
  ASSERT_TRUE(comesTrue([&] { return inMemory() == 1; }));
  struct stat found {};
  ASSERT_EQ(stat(file.c_str(), &found), 0);
  EXPECT_EQ(found.st_atime, 1000);
}

TEST_F(ReadingAhead, PipesAreNotOpened) {
  fs::create_directories(folder);
  const fs::path pipe = folder / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const int count = layFilesUntilOneFollows(pipe, 5000);
  forgetAll();
  if (!canForget()) {
    GTEST_SKIP() << kCannotForget;
  }
  const int notices = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  ASSERT_GE(inotify_add_watch(notices, pipe.c_str(), IN_OPEN), 0);

  const ReadAhead readAhead(folder.c_str());
  EXPECT_TRUE(comesTrue([&] { return inMemory() == count; }));
  std::array<char, 4096> opened;
  EXPECT_EQ(read(notices, opened.data(), opened.size()), -1);
  EXPECT_EQ(errno, EAGAIN);
  close(notices);
}

TEST_F(ReadingAhead, AFolderThatIsNotThereIsNothingToRead) {
  const ReadAhead readAhead((folder / "none").c_str());
  ReadAhead::cameToFile();
}

TEST_F(ReadingAhead, WithoutAnyReaderTheCopyGoesOn) { ReadAhead::cameToFile(); }

}  // namespace
}  // namespace tavenhall::test

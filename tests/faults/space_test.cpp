#include "tests/faults/gated_install.h"
#include "tests/install/case_files.h"
#include "tests/support/files.h"

#include <cerrno>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>

// Destinations without enough room. The file systems are in memory: they give room by the page of 4096 bytes.
namespace tavenhall::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr int kPageSize = 4096;
constexpr int kFiles = 20;
constexpr int kPagesPerFile = 5;

class Space : public testing::Test {
 protected:
  Space() {
    for (int i = 0; i < kFiles; ++i) {
      data_.push_back(
          file("TANVO/" + std::string(1, static_cast<char>('a' + i)) + ".db", kPagesPerFile * kPageSize));
    }
  }

  void lay() {
    std::vector<Entry> entries = data_;
    entries.push_back(textFile(".InstallationAttributes.dat",
                               "Mode = DataUpdater\nRelativePath = .\nTotalSizeMillionsBytes = 1\n"));
    entries.push_back(textFile("Installer.pkg", ""));
    layTree(kSet, entries);
    makeFolder(kTanvo);
  }

  static void giveRoom(const std::string& room) {
    ASSERT_EQ(mount("tmpfs", kTanvo, "tmpfs", 0, (room + ",mode=755").c_str()), 0) << std::strerror(errno);
  }

  static std::string pages(int count) { return "size=" + std::to_string(count * kPageSize); }

  // The disk is full at some file: it and those after it that do not fit are named, and a run with more room
  // completes them.
  void expectThatEachMissingFileIsNamed(const GatedRun& run, std::size_t atLeast) {
    EXPECT_EQ(run.status, 1) << run.output;
    EXPECT_THAT(lastWord(run), StartsWith("! Not installed completely"));
    const std::vector<std::string> missing = missingFiles(data_, "TANVO", kTanvo);
    EXPECT_GE(missing.size(), atLeast);
    EXPECT_EQ(countIn(run.output, ": Failed to "), static_cast<int>(missing.size()));
    for (const std::string& tail : missing) {
      EXPECT_TRUE(isNamedInLog(std::string(kTanvo) + "/" + tail)) << tail;
    }
    ASSERT_EQ(mount("tmpfs", kTanvo, "tmpfs", MS_REMOUNT, "size=10m,nr_inodes=1000"), 0)
        << std::strerror(errno);
    const GatedRun again = install();
    EXPECT_EQ(again.status, 0) << again.output;
    EXPECT_THAT(missingFiles(data_, "TANVO", kTanvo), IsEmpty());
  }

  std::vector<Entry> data_;
};

class FullAt : public Space, public testing::WithParamInterface<int> {};

TEST_P(FullAt, PerCentEachMissingFileIsNamedAndASecondRunCompletesThem) {
  lay();
  giveRoom(pages(kFiles * kPagesPerFile * GetParam() / 100));
  const GatedRun run = install();
  const int left = 100 - GetParam();
  expectThatEachMissingFileIsNamed(run, static_cast<std::size_t>((kFiles * left + 99) / 100));
}

INSTANTIATE_TEST_SUITE_P(Space, FullAt, testing::Values(1, 50, 99));

TEST_F(Space, ExactlyEnoughIsEnough) {
  lay();
  giveRoom(pages(kFiles * kPagesPerFile));
  const GatedRun run = install();
  EXPECT_EQ(run.status, 0) << run.output;
  EXPECT_THAT(missingFiles(data_, "TANVO", kTanvo), IsEmpty());
}

// The last file is a byte longer than the room that is left for it.
TEST_F(Space, OneByteShortCostsTheLastFileAlone) {
  data_.back() = file("TANVO/z.db", kPagesPerFile * kPageSize + 1);
  lay();
  giveRoom(pages(kFiles * kPagesPerFile));
  const GatedRun run = install();
  EXPECT_THAT(missingFiles(data_, "TANVO", kTanvo), ElementsAre("z.db"));
  EXPECT_EQ(countIn(readFile(kLog),
                    "/TANVO/z.db (size is 20481) " + std::string(kTanvo) + "/z.db  (size is 20480)  "),
            1);
  expectThatEachMissingFileIsNamed(run, 1);
}

TEST_F(Space, WithoutARoomForNamesEachMissingFileIsNamed) {
  lay();
  giveRoom("nr_inodes=11");  // the folder itself and ten files
  const GatedRun run = install();
  EXPECT_EQ(countIn(run.output, ": Failed to open output file."), 10);
  expectThatEachMissingFileIsNamed(run, 10);
}

}  // namespace
}  // namespace tavenhall::test

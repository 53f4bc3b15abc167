#include "tests/faults/gated_install.h"
#include "tests/install/case_files.h"
#include "tests/support/files.h"
#include "tests/support/private_root.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <sys/mount.h>
#include <thread>
#include <unistd.h>

// Discs that are not what they should be, or stop being it.
namespace tavenhall::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kNotWholly = "! Not installed completely: see the lines that begin with \"!\". Copied ";

void layPackageForVolumes(int count) {
  layPackage("Mode = InstallFromVolumes\nTotalSizeMillionsBytes = 1\nNumberOfVolumes = " +
             std::to_string(count) + "\n");
}

// The folder where the page expects a disc, from 0.
std::string discFolder(int number) {
  return number == 0 ? kDiscA : std::string("/Volumes/Tessaphon ") + static_cast<char>('A' + number);
}

bool isDisc(const std::string& path) { return fs::path(path).parent_path() == "/Volumes"; }

// Before the page looks for a disc that is not there for the `round`th time, does something. In each round it
// looks at the disc's folder twice.
class AtRound {
 public:
  AtRound(int round, std::function<void()> action) : round_(round), action_(std::move(action)) {}

  Verdict operator()(const FileCall& call) {
    if (call.kind == CallKind::stat && isDisc(call.path) && !exists(call.path) && ++looks_ == 2 * round_ - 1) {
      action_();
    }
    return kPass;
  }

 private:
  int round_;
  std::function<void()> action_;
  int looks_ = 0;
};

TEST(Discs, AWrongOneOrTheSameAgainIsNotTakenForTheNext) {
  layPackageForVolumes(2);
  const std::vector<Entry> first{file("TANVO/a.db", 1000)};
  const std::vector<Entry> second{file("TANVO/b.db", 2000)};
  layTree(kDiscA, first);
  layTree("/Volumes/Lumaweave B", {file("TANVO/wrong.db", 10)});

  const GatedRun run = installWith(AtRound(3, [&] { layTree(kDiscB, second); }));

  EXPECT_EQ(run.status, 0) << run.output;
  expectInstalled(first, "TANVO", kTanvo);
  expectInstalled(second, "TANVO", kTanvo);
  EXPECT_FALSE(exists(std::string(kTanvo) + "/wrong.db"));
  EXPECT_EQ(countIn(run.output, "Please insert Tessaphon B"), 2);
  EXPECT_EQ(countIn(readFile(kLog), "Disc not ready: 0 0 0"), 2);
}

TEST(Discs, AnEmptyOneIsNotReadyAndIsAskedForAgain) {
  layPackageForVolumes(1);
  const std::vector<Entry> entries{file("Mac OSX/TANVO/a.db", 1000)};
  makeFolder(kDiscA);

  int looks = 0;
  const GatedRun run = installWith([&](const FileCall& call) {
    if (call.kind == CallKind::stat && call.path == std::string(kDiscA) && ++looks == 5) {
      layTree(kDiscA, entries);
    }
    return kPass;
  });

  EXPECT_EQ(run.status, 0) << run.output;
  expectInstalled(entries, "Mac OSX/TANVO", kTanvo);
  EXPECT_EQ(countIn(readFile(kLog), "Disc not ready: 1 0 0"), 2);
}

TEST(Discs, OneThatBecomesReadableLateIsWaitedFor) {
  layPackageForVolumes(1);
  const std::vector<Entry> entries{file("TANVO/a.db", 1000)};
  layTree(kDiscA, entries);

  int tries = 0;
  const GatedRun run = installWith([&](const FileCall& call) {
    const bool isFolder = call.kind == CallKind::open && call.path == std::string(kDiscA) + "/TANVO";
    return isFolder && ++tries <= 2 ? failWith(EIO) : kPass;
  });

  EXPECT_EQ(run.status, 0) << run.output;
  EXPECT_EQ(tries, 6);  // the third finds it, one reads ahead, one copies it, one audits it
  expectInstalled(entries, "TANVO", kTanvo);
  EXPECT_EQ(countIn(readFile(kLog), "copySingleVolume: cannot open top level folder. Attempt "), 2);
}

// The page has three attempts of five seconds, and then copies what there is: nothing, which it counts as
// copied.
TEST(Discs, AnUnreadableOneIsAFailureAlthoughThePageCountsItAsCopied) {
  layPackageForVolumes(1);
  layTree(kDiscA, {file("TANVO/a.db", 1000)});

  const GatedRun run = installWith([](const FileCall& call) {
    return call.kind == CallKind::open && call.path == std::string(kDiscA) + "/TANVO" ? failWith(EIO) : kPass;
  });

  EXPECT_EQ(run.status, 1) << run.output;
  EXPECT_THAT(run.output,
              HasSubstr("\n! Cannot be listed: " + std::string(kDiscA) + "/TANVO (Input/output error)\n"));
  EXPECT_FALSE(exists(std::string(kTanvo) + "/a.db"));
  EXPECT_EQ(countIn(readFile(kLog), "copySingleVolume: cannot open top level folder. Attempt "), 3);
}

TEST(Discs, OneThatIsBusyWhenItIsToBeEjectedStaysInAndTheInstallGoesOn) {
  layPackageForVolumes(2);
  makeFolder(kDiscA);
  ASSERT_EQ(mount("tmpfs", kDiscA, "tmpfs", 0, "mode=755"), 0) << std::strerror(errno);
  const std::vector<Entry> first{file("TANVO/a.db", 1000)};
  const std::vector<Entry> second{file("TANVO/b.db", 2000)};
  layTree(kDiscA, first);
  layTree(kDiscB, second);
  const int busy = open((std::string(kDiscA) + "/TANVO/a.db").c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_GE(busy, 0);

  const GatedRun run = install();

  EXPECT_EQ(run.status, 0) << run.output;
  EXPECT_THAT(run.error, HasSubstr("drutil: cannot take out /Volumes/Tavenhall Tessaphon A"));
  EXPECT_TRUE(exists(std::string(kDiscA) + "/TANVO/a.db"));
  expectInstalled(first, "TANVO", kTanvo);
  expectInstalled(second, "TANVO", kTanvo);
  close(busy);
}

struct FirstOfSeveral {
  int count;
  int first;
};

void PrintTo(const FirstOfSeveral& first, std::ostream* out) {
  *out << first.first + 1 << " of " << first.count;
}

class DiscsInAnyOrder : public testing::TestWithParam<FirstOfSeveral> {};

// A drive that holds one disc; whenever the page asks, the next in an order is put in, and the first after the
// last.
TEST_P(DiscsInAnyOrder, EachIsCopiedInItsTurn) {
  const int count = GetParam().count;
  layPackageForVolumes(count);
  std::vector<std::vector<Entry>> contents;
  std::vector<int> order{GetParam().first};
  for (int number = 0; number < count; ++number) {
    contents.push_back({file("TANVO/disc-" + std::to_string(number) + ".db", 500)});
    if (number != GetParam().first) {
      order.push_back(number);
    }
  }
  do {
    fs::remove_all("/Volumes");
    fs::remove_all(kTanvo);
    fs::create_directory("/Volumes");
    fs::create_directory(kTanvo);
    std::size_t next = 0;
    int looks = 0;
    const GatedRun run = installWith([&](const FileCall& call) {
      if (call.kind == CallKind::stat && isDisc(call.path) && !exists(call.path) && ++looks % 2 == 1) {
        fs::remove_all("/Volumes");
        const int number = order[next++ % order.size()];
        layTree(discFolder(number), contents[static_cast<std::size_t>(number)]);
      }
      return kPass;
    });
    ASSERT_EQ(run.status, 0) << run.output;
    for (const std::vector<Entry>& entries : contents) {
      expectInstalled(entries, "TANVO", kTanvo);
    }
    ASSERT_FALSE(HasFailure()) << testing::PrintToString(order) << "\n" << run.output;
  } while (std::next_permutation(order.begin() + 1, order.end()));
}

// Together all 152 orders.
std::vector<FirstOfSeveral> everyFirst() {
  std::vector<FirstOfSeveral> every;
  for (int count = 2; count <= 5; ++count) {
    for (int first = 0; first < count; ++first) {
      every.push_back({count, first});
    }
  }
  return every;
}

INSTANTIATE_TEST_SUITE_P(UpToFive, DiscsInAnyOrder, testing::ValuesIn(everyFirst()), [](const auto& instance) {
  return "Number" + std::to_string(instance.param.first + 1) + "Of" + std::to_string(instance.param.count) +
         "First";
});

// The discs of the other products have one name, so the page takes each for the one that it asks for. Whatever
// the order, each is copied once, if each is inserted once and leaves the drive when it is ejected.
struct ProductAndCount {
  const char* product;
  const char* drive;
  int count;
};

void PrintTo(const ProductAndCount& product, std::ostream* out) {
  *out << product.product << " " << product.count;
}

class DiscsOfOneName : public testing::TestWithParam<ProductAndCount> {};

TEST_P(DiscsOfOneName, AreAllCopiedInAnyOrder) {
  const char* const drive = GetParam().drive;
  const int count = GetParam().count;
  layPackageForVolumes(count);
  std::vector<std::vector<Entry>> contents;
  std::vector<int> order;
  for (int number = 0; number < count; ++number) {
    contents.push_back({file("DOVA/disc-" + std::to_string(number) + ".db", 500)});
    order.push_back(number);
  }
  do {
    fs::remove_all("/Volumes");
    fs::remove_all(kDova);
    fs::create_directory("/Volumes");
    makeFolder(kDova);
    std::size_t next = 0;
    const GatedRun run = install({"--product", GetParam().product}, [&](const FileCall& call) {
      if (call.kind == CallKind::startCommand) {
        fs::remove_all(drive);  // the only command ejects
      } else if (call.kind == CallKind::stat && call.path == drive && !exists(drive) && next < order.size()) {
        layTree(drive, contents[static_cast<std::size_t>(order[next++])]);
      }
      return kPass;
    });
    ASSERT_EQ(run.status, 0) << run.output << run.error;
    for (const std::vector<Entry>& entries : contents) {
      expectInstalled(entries, "DOVA", kDova);
    }
    ASSERT_FALSE(HasFailure()) << testing::PrintToString(order) << "\n" << run.output;
  } while (std::next_permutation(order.begin(), order.end()));
}

#ifdef TAVINSTALL_SANITIZED
constexpr int kMostDiscs = 4;  // 32 orders of each product
#else
constexpr int kMostDiscs = 5;  // 152 orders
#endif

std::vector<ProductAndCount> everyProductAndCount() {
  std::vector<ProductAndCount> every;
  for (int count = 2; count <= kMostDiscs; ++count) {
    every.push_back({"Lumaweave", "/Volumes/Tavenhall Lumaweave", count});
    every.push_back({"Bassoria", "/Volumes/Tavenhall Bassoria", count});
    every.push_back({"TemporaQX", "/Volumes/Tavenhall Tempora QX", count});
  }
  return every;
}

INSTANTIATE_TEST_SUITE_P(EveryCount, DiscsOfOneName, testing::ValuesIn(everyProductAndCount()),
                         [](const auto& instance) {
                           return instance.param.product + std::to_string(instance.param.count);
                         });

// ---- Discs that go bad while they are read ----

class FailingDisc : public testing::Test {
 protected:
  FailingDisc() {
    layPackageForVolumes(1);
    layTree(kStore, entries_);
    makeFolder(kDiscA);
  }
  ~FailingDisc() override { umount2(kDiscA, MNT_DETACH); }

  // Shows the disc's folder at its place until its big file is read at the byte.
  void putIn(off_t byte, const char* what) {
    disc_.emplace(std::vector<std::string>{TAVINSTALL_BINARY_DIR "/bin/failing_disc", kStore, kDiscA,
                                           "b-big.db", std::to_string(byte), what});
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!exists(std::string(kDiscA) + "/TANVO") && std::chrono::steady_clock::now() < limit) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    ASSERT_TRUE(exists(std::string(kDiscA) + "/TANVO"));
  }

  // The same disc without its fault.
  void expectThatASecondRunCompletesIt() {
    umount2(kDiscA, MNT_DETACH);
    layTree(kDiscA, entries_);
    const std::string log = readFile(kLog);
    const GatedRun again = install();
    EXPECT_EQ(again.status, 0) << again.output;
    expectInstalled(entries_, "TANVO", kTanvo);
    EXPECT_THAT(readFile(kLog), StartsWith(log));
  }

  static constexpr const char* kStore = "/Users/tester/Discs/A";
  static constexpr off_t kBigSize = 300000;
  std::vector<Entry> entries_{file("TANVO/a.db", 1000), file("TANVO/b-big.db", kBigSize),
                              file("TANVO/c-folder/d.db", 2000), file("TANVO/e.db", 3000)};
  std::optional<ChildProgram> disc_;
};

TEST_F(FailingDisc, AScratchAtAByteCostsThatFileAloneAndItIsNamed) {
  for (const off_t byte : {off_t{1}, off_t{10240}, kBigSize / 2, kBigSize - 1}) {
    fs::remove_all(kTanvo);
    makeFolder(kTanvo);
    putIn(byte, "error");
    const GatedRun run = install();
    EXPECT_EQ(run.status, 1) << byte << run.output;
    EXPECT_THAT(lastWord(run), StartsWith(kNotWholly));
    EXPECT_EQ(countIn(run.output, ": Failed to copy file.  Perhaps out of disk space"), 1);
    expectInstalled(entries_, "TANVO", kTanvo, {"b-big.db"});
    umount2(kDiscA, MNT_DETACH);
    disc_.reset();
  }
  expectThatASecondRunCompletesIt();
}

// What comes after the pull cannot be opened: files are named. Folders count as copied, so a whole folder
// behind the pull is missing without a word of its own; its files are in the comparison of a rehearsal.
TEST_F(FailingDisc, OnePulledOutWhileAFileIsReadIsReportedOfAndCompletedByTheNextRun) {
  putIn(kBigSize / 2, "end");
  const GatedRun run = install();
  EXPECT_EQ(run.status, 1) << run.output;
  EXPECT_THAT(lastWord(run), StartsWith(kNotWholly));
  EXPECT_EQ(disc_->waitForEnd(), 0);
  EXPECT_TRUE(isNamedInLog(std::string(kTanvo) + "/b-big.db"));
  for (const std::string& tail : missingFiles(entries_, "TANVO", kTanvo)) {
    EXPECT_TRUE(isNamedInLog(std::string(kTanvo) + "/" + tail) || tail.starts_with("c-folder/")) << tail;
  }
  expectThatASecondRunCompletesIt();
}

TEST_F(FailingDisc, AnImageThatWasCutOffCostsFilesThatAreNamed) {
  if (!isRealRoot()) {
    GTEST_SKIP() << "only the machine's own root may mount an image";
  }
  ASSERT_EQ(
      runThrough({"mksquashfs", kStore, "/tmp/A.squashfs", "-quiet", "-no-progress", "-b", "4096"}).status, 0);
  ASSERT_EQ(runThrough({"mount", "-t", "squashfs", "-o", "loop,ro", "/tmp/A.squashfs", kDiscA}).status, 0);

  const GatedRun run = installWith([](const FileCall& call) {
    if (call.kind == CallKind::open && call.path == std::string(kDiscA) + "/TANVO/b-big.db") {
      fs::resize_file("/tmp/A.squashfs", 4096);
    }
    return kPass;
  });

  EXPECT_EQ(run.status, 1) << run.output;
  EXPECT_THAT(lastWord(run), StartsWith(kNotWholly));
  const std::vector<std::string> missing = missingFiles(entries_, "TANVO", kTanvo);
  EXPECT_THAT(missing, testing::Contains("b-big.db"));
  for (const std::string& tail : missing) {
    EXPECT_TRUE(isNamedInLog(std::string(kTanvo) + "/" + tail)) << tail;
  }
  expectThatASecondRunCompletesIt();
}

}  // namespace
}  // namespace tavenhall::test

#include "pane/install_data_pane.h"
#include "tests/long/process_figures.h"
#include "tests/support/files.h"
#include "tests/support/page_threads.h"
#include "tests/support/recording_host.h"
#include "tests/support/recording_platform.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <mutex>
#include <unistd.h>

// More than three hours of an install, on the virtual clock: four discs, each put in a quarter of an hour after
// it is first asked for, and files of which each takes two seconds. The page's own threads poll, wait, copy and
// log as they do in real hours; what they leave behind is counted all the while.
namespace tavenhall::test {

namespace {

namespace fs = std::filesystem;

constexpr int kFolders = 20;
constexpr int kFilesPerFolder = 60;
constexpr std::uint64_t kSecondsUntilADiscIsPutIn = 900;
constexpr std::uint64_t kSecondsBetweenFigures = 300;
constexpr std::uint64_t kThreeHours = 3 * 3600;
constexpr std::array<const char*, 4> kVirtualDiscs{"Tavenhall Tessaphon A", "Tessaphon B", "Tessaphon C",
                                                   "Tessaphon D"};
const std::string kDestination = kTanvo;

std::string fileName(std::size_t disc, int folder, int file) {
  return "folder " + std::to_string(folder) + "/disc " + std::to_string(disc) + " file " +
         std::to_string(file) + ".db";
}

std::string contentsOf(std::size_t disc, int folder, int file) {
  const auto number =
      static_cast<unsigned>(disc) * 10000 + static_cast<unsigned>(folder * kFilesPerFolder + file);
  return someBytes(number * 37 % 12000, number);
}

void layDiscs() {
  for (std::size_t disc = 0; disc < kVirtualDiscs.size(); ++disc) {
    for (int folder = 0; folder < kFolders; ++folder) {
      for (int file = 0; file < kFilesPerFolder; ++file) {
        writeFile(std::string("/tmp/") + kVirtualDiscs[disc] + "/TANVO/" + fileName(disc, folder, file),
                  contentsOf(disc, folder, file));
      }
    }
  }
}

// Puts in each disc after its time, and takes out the one that is ejected.
class Tray {
 public:
  void asked() {
    const std::string disc = kVirtualDiscs[next_];
    const auto first = firstAsked_.try_emplace(disc, platform().now()).first->second;
    if (platform().now() - first >= kSecondsUntilADiscIsPutIn) {
      fs::rename("/tmp/" + disc, "/Volumes/" + disc);
    }
  }

  void eject() {
    fs::remove_all(std::string("/Volumes/") + kVirtualDiscs[next_]);
    ++next_;
  }

 private:
  std::size_t next_ = 0;
  std::map<std::string, std::uint64_t> firstAsked_;
};

// What the process holds, every few minutes of the virtual clock.
class Ledger {
 public:
  Ledger() { figures_.reserve(1000); }

  void look() {
    const std::lock_guard lock(mutex_);
    if (platform().now() >= next_) {
      next_ = platform().now() + kSecondsBetweenFigures;
      figures_.push_back(figuresOf(getpid()));
      figures_.back().seconds = static_cast<double>(platform().now());
    }
  }

  [[nodiscard]] const std::vector<Figures>& figures() const { return figures_; }

 private:
  std::mutex mutex_;
  std::uint64_t next_ = 0;
  std::vector<Figures> figures_;
};

void expectAllInstalled() {
  for (std::size_t disc = 0; disc < kVirtualDiscs.size(); ++disc) {
    for (int folder = 0; folder < kFolders; ++folder) {
      for (int file = 0; file < kFilesPerFolder; ++file) {
        const std::string path = kDestination + "/" + fileName(disc, folder, file);
        ASSERT_TRUE(readFile(path) == contentsOf(disc, folder, file)) << path;
      }
    }
  }
}

TEST(LongInstall, MoreThanThreeHoursLeaveNeitherMemoryNorDescriptorsBehind) {
  layDiscs();
  makeFolder(kDestination);
  makeFolder("/Users/tester/Library/Caches");
  setAttributes("Mode = InstallFromVolumes\nNumberOfVolumes = 4\nTotalSizeMillionsBytes = 30\n");
  Tray tray;
  Ledger ledger;
  platform().keepsCalls = false;
  platform().onSleep = [&ledger](unsigned /*seconds*/) { ledger.look(); };
  platform().shell = [&tray](const std::string& /*command*/) {
    tray.eject();
    return 0;
  };
  RecordingHost host;
  host.keepsLines = false;
  host.onAlert = [&tray](const std::string& /*line*/) { tray.asked(); };
  host.beforeDispatch = [] { sleepSeconds(1); };
  InstallDataPane pane(host);

  const Figures before = figuresOf(getpid());
  pane.didEnterPane(0);
  ASSERT_TRUE(PageThreads::instance().waitForEnd(true, std::chrono::minutes(10)));
  const Figures after = figuresOf(getpid());
  std::printf("%s", tableOf(ledger.figures(), 16).c_str());

  EXPECT_EQ(pane.readyToProceed, 1);
  EXPECT_EQ(logMessages().back(),
            "Installation complete\n*********************************************************\n");
  EXPECT_GE(platform().now(), kThreeHours);
  ASSERT_GE(ledger.figures().size(), kThreeHours / kSecondsBetweenFigures);
  expectAllInstalled();

  // The folders that the copy is in, its two files or the log, and the same of who reads ahead are all that is
  // ever open. Other threads open and close files while they are counted, so a few may count twice.
  constexpr int kMostOpen = 7;
  constexpr int kMostCountedTwice = 3;
  EXPECT_EQ(after.descriptors, before.descriptors);
  for (const Figures& at : ledger.figures()) {
    EXPECT_LE(at.descriptors, before.descriptors + kMostOpen + kMostCountedTwice) << at.seconds;
  }
  if (kMemoryTells) {
    const Figures& early = ledger.figures()[5];  // after the first disc was begun, and all code was run once
    EXPECT_LE(ledger.figures().back().ownMemory - early.ownMemory, 512) << "kB more after three hours";
  }
}

}  // namespace

}  // namespace tavenhall::test

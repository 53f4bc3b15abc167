#include "context/attributes_file.h"
#include "context/install_settings.h"
#include "context/installation_log.h"
#include "context/internal_lookups.h"
#include "tests/support/files.h"

#include <algorithm>
#include <array>
#include <barrier>
#include <cstdio>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

// The installer asks for the page's title on its main thread while the install thread looks up its own
// values, so threads meet in every function of the context.
namespace tavenhall {
namespace {

using test::logMessages;
using test::setAttributes;

constexpr std::ptrdiff_t kThreads = 8;
constexpr int kRounds = 40;

class ContextThreads : public testing::Test {
 protected:
  void SetUp() override { test::makeFolder("/Users/tester/Library/Caches"); }
};

// Runs `body` with the numbers from 0 on, on that many threads which all begin at once.
void onThreads(const std::function<void(int number)>& body) {
  std::barrier start(kThreads);
  std::vector<std::thread> threads;
  for (int number = 0; number < kThreads; ++number) {
    threads.emplace_back([&start, &body, number] {
      start.arrive_and_wait();
      body(number);
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

std::ptrdiff_t countOf(const std::string& message) {
  const std::vector<std::string> messages = logMessages();
  return std::ranges::count(messages, message);
}

TEST_F(ContextThreads, MayMeetInTheFirstReadOfTheLocationFile) {
  test::setPackage("/a/b/x.pkg");
  std::array<std::string, kThreads> folders;
  onThreads([&folders](int number) {
    getFolderContainingPKGfile(nullptr);
    folders.at(static_cast<std::size_t>(number)) = sOutputPathWithCallersSubfolder.c_str();
  });
  for (const std::string& folder : folders) {
    EXPECT_EQ(folder, "/a/b");
  }
  EXPECT_TRUE(logMessages().empty());
}

TEST_F(ContextThreads, LogAMissingLocationFileOnceWhenTheyMeetAtIt) {
  onThreads([](int /*number*/) { getFolderContainingPKGfile(nullptr); });
  EXPECT_EQ(countOf("getFolderContainingPKGfile: could not open preinstall file  /tmp/TavInstallLoc"), 1);
  EXPECT_EQ(countOf("getFolderContainingPKGfile: preinstall file is empty"), kThreads - 1);
}

TEST_F(ContextThreads, EachHaveTheirOwnResult) {
  test::setPackage("/a/b/x.pkg");
  std::array<int, kThreads> wrong{};
  onThreads([&wrong](int number) {
    const std::string subfolder = "folder " + std::to_string(number);
    for (int round = 0; round < kRounds; ++round) {
      getFolderContainingPKGfile(subfolder.c_str());
      std::this_thread::yield();
      wrong.at(static_cast<std::size_t>(number)) +=
          sOutputPathWithCallersSubfolder.view() == "/a/b/" + subfolder ? 0 : 1;
    }
  });
  EXPECT_EQ(wrong, (std::array<int, kThreads>{}));
}

TEST_F(ContextThreads, LogTheFoundFileOnceWhenTheyMeetAtIt) {
  setAttributes("Mode = DataUpdater\n");
  onThreads([](int /*number*/) {
    if (std::FILE* file = getInstallationAttributesFile()) {
      std::fclose(file);
    }
  });
  EXPECT_EQ(
      logMessages(),
      std::vector<std::string>{
          "Found Installation Attribute File at  /Users/tester/Downloads/Set/.InstallationAttributes.dat"});
}

TEST_F(ContextThreads, MayAskForTheTitleWhileOthersLookNumbersUp) {
  setAttributes(
      "InstallDataTitle = The title\nNumberOfVolumes = 2\nTotalSizeMillionsBytes = 6000\nMode = SupportHub\n");
  std::array<int, kThreads> wrong{};
  onThreads([&wrong](int number) {
    int& mine = wrong.at(static_cast<std::size_t>(number));
    for (int round = 0; round < kRounds; ++round) {
      if (number == 0) {
        std::array<char, 2048> title{};
        getInstallDataTitle(title.data());
        mine += std::string(title.data()) == "The title" ? 0 : 1;
      } else if (number == 1) {
        mine += getInstallationMode() == 4 ? 0 : 1;
      } else {
        mine += getLongLongFromAttributesFile("NumberOfVolumes") == 2 ? 0 : 1;
        mine += getLongLongFromAttributesFile("TotalSizeMillionsBytes") == 6000 ? 0 : 1;
      }
    }
  });
  EXPECT_EQ(wrong, (std::array<int, kThreads>{}));
  EXPECT_EQ(countOf("Data from attributes file::  InstallData title=The title "), kRounds);
}

TEST_F(ContextThreads, EachAddWholeRecordsToTheLog) {
  onThreads([](int number) {
    for (int round = 0; round < kRounds; ++round) {
      addEventToInstallationLog("thread %d, round %d, %s", number, round, std::string(200, 'x').c_str());
    }
  });
  std::vector<std::string> expected;
  for (int number = 0; number < kThreads; ++number) {
    for (int round = 0; round < kRounds; ++round) {
      expected.push_back("thread " + std::to_string(number) + ", round " + std::to_string(round) + ", " +
                         std::string(200, 'x'));
    }
  }
  std::vector<std::string> found = logMessages();
  std::ranges::sort(expected);
  std::ranges::sort(found);
  EXPECT_EQ(found, expected);
}

}  // namespace
}  // namespace tavenhall

#include "host/log/log_headline.h"

#include "host/base/text.h"
#include "tests/install/child_program.h"
#include "tests/support/files.h"

#include <algorithm>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <sys/file.h>
#include <unistd.h>

namespace tavenhall::test {
namespace {

using testing::StartsWith;

constexpr const char* kUsersLog = "/Users/tester/Library/Caches/Tavenhall/installationLog.txt";

const std::string kEntered = "\n\n" + std::string(94, '*') + "\n  Install Data Pane Enter: Version 7.7";
const std::string kCompleted = "Installation complete\n" + std::string(57, '*') + "\n";

std::string at(const char* time, const std::string& message) {
  return std::string("May 01 2026 ") + time + " studio: " + message + "\n";
}

// The log of a run that ends, or breaks off, after these records.
std::string runWith(const std::vector<std::string>& messages, bool isComplete = true) {
  std::string log = at("10:00:00", kEntered);
  for (const std::string& message : messages) {
    log += at("10:00:10", message);
  }
  return log + (isComplete ? at("10:00:20", kCompleted) : "");
}

std::vector<std::string> unreadable(const std::string& folder, int count) {
  std::vector<std::string> messages;
  for (int i = 1; i <= count; ++i) {
    const std::string name = "/" + std::to_string(i) + ".db";
    messages.push_back("Source error " + folder + name + " /U" + name);
  }
  return messages;
}

struct Headline {
  const char* name;
  std::string log;
  const char* text;  // without line breaks
  int status;        // of --check
};

void PrintTo(const Headline& headline, std::ostream* stream) { *stream << headline.name; }

class LogHeadline : public testing::TestWithParam<Headline> {};

TEST_P(LogHeadline, NamesTheCauseAndTheRemedyAndItsStatus) {
  writeFile("/tmp/a.log", GetParam().log);
  const Outcome outcome = runThrough({kTavinstall, "log", "--check", "/tmp/a.log"});
  std::string headline = outcome.output.substr(0, outcome.output.find("\n\n"));
  std::replace(headline.begin(), headline.end(), '\n', ' ');
  EXPECT_EQ(headline, GetParam().text);
  EXPECT_EQ(outcome.status, GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(
    Each, LogHeadline,
    testing::Values(
        Headline{"Good", runWith({}),
                 "The last run has ended, and the log records no failure. It does not prove that every file is "
                 "there: the summary of the run does.",
                 0},
        Headline{"OneDisc", runWith(unreadable("/Volumes/Tessaphon A/TANVO/Keyboards", 80)),
                 "The last run has ended with 80 failures. 80 files could not be read. What failed is on disc "
                 "Tessaphon "
                 "A: clean "
                 "the disc or replace it.",
                 1},
        Headline{"OneFile", runWith(unreadable("/Volumes/Tessaphon A/TANVO", 1)),
                 "The last run has ended with 1 failure. 1 file could not be read. What failed is on disc "
                 "Tessaphon A: clean "
                 "the disc "
                 "or replace it.",
                 1},
        Headline{"ADownload", runWith(unreadable("/Users/tester/Set/TANVO", 2)),
                 "The last run has ended with 2 failures. 2 files could not be read. Check the disk, or "
                 "download the "
                 "package again.",
                 1},
        Headline{"BrokenOff", runWith({"Copying folder /V /U"}, false),
                 "The last run did not end: it was stopped or killed, the computer was switched off, or the "
                 "log could "
                 "not be written any more. Run the installer again.",
                 1},
        Headline{
            "WaitingForADisc", runWith({"Dialog prompting to insert mandatory volume 2 Tessaphon B "}, false),
            "The last run did not end: it was stopped or killed while it waited for disc Tessaphon B. Run the "
            "installer again.",
            1},
        Headline{
            "NoDataFolder",
            at("10:00:00", kEntered) +
                at("10:00:01", "InstallData fatal error: TANVO or DOVA folder not found."),
            "The last run has not begun. The data folder was missing: install the product first, then run this "
            "installer again.",
            1}),
    [](const testing::TestParamInfo<Headline>& headline) { return headline.param.name; });

TEST(LogGroups, NameTheFirstThreeFilesOfEachFolder) {
  std::vector<std::string> messages = unreadable("/Volumes/A/TANVO/Keys", 80);
  for (const std::string& message : unreadable("/Volumes/A/TANVO/Bass", 1)) {
    messages.push_back(message);
  }
  writeFile("/tmp/a.log", runWith(messages));
  const Outcome outcome = runThrough({kTavinstall, "log", "/tmp/a.log"});
  EXPECT_THAT(outcome.output,
              testing::HasSubstr(
                  "    FAILED         10:00:10  80 files: cannot read /Volumes/A/TANVO/Keys (1.db, 2.db, "
                  "3.db, and 77 more)\n    FAILED         10:00:10  cannot read "
                  "/Volumes/A/TANVO/Bass/1.db\n"));
}

TEST(LogCheck, TheLockTellsWhetherTheUsersInstallRuns) {
  writeFile(kUsersLog, runWith({"Dialog prompting to insert mandatory volume 2 Tessaphon B "}, false));
  makeFolder("/Users/tester/Library/Application Support");
  EXPECT_EQ(runThrough({kTavinstall, "log", "--check"}).status, 1);

  const int folder = open("/Users/tester/Library/Application Support", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ASSERT_EQ(flock(folder, LOCK_EX | LOCK_NB), 0);
  const Outcome running = runThrough({kTavinstall, "log", "--check"});
  EXPECT_EQ(running.status, 3);
  EXPECT_THAT(running.output, StartsWith("The last run has not ended. It waits for disc Tessaphon B.\n\n"));
  close(folder);
}

TEST(LogCheck, ALogWithoutARunIsNotGood) {
  writeFile("/tmp/a.log", at("10:00:00", "something else"));
  EXPECT_EQ(runThrough({kTavinstall, "log", "--check", "/tmp/a.log"}).status, 1);
}

}  // namespace
}  // namespace tavenhall::test

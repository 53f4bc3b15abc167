#include "context/installation_log.h"

#include "tests/support/files.h"
#include "tests/support/private_root.h"
#include "tests/support/recording_platform.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <ctime>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <regex>
#include <sched.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace tavenhall {
namespace {

using test::kLog;
using test::logMessages;
using test::makeFolder;
using test::modeOf;
using test::readFile;

constexpr const char* kCaches = "/Users/tester/Library/Caches";

// By way of a pointer, so that the compiler does not object.
void logWithoutFormat() {
  void (*const volatile log)(const char*, ...) = addEventToInstallationLog;
  log(nullptr);
}

class InstallationLog : public testing::Test {
 protected:
  void SetUp() override { makeFolder(kCaches); }
};

using InstallationLogDeathTest = InstallationLog;

std::string hostName() {
  char name[256] = {};
  gethostname(name, sizeof name - 1);
  return name;
}

// The one record of the log as time, host name and message.
std::smatch onlyRecord(const std::string& log) {
  static const std::regex kForm(R"(^([A-Z][a-z]+ \d\d \d{4} \d\d:\d\d:\d\d) ([^ ]+): ([^\n]*)\n$)");
  std::smatch parts;
  EXPECT_TRUE(std::regex_match(log, parts, kForm)) << log;
  return parts;
}

// A Caches folder whose path has that many bytes.
std::string cachesOfLength(std::size_t length) {
  std::string path = test::kHome;
  while (length - path.size() > 201) {
    path += "/" + std::string(199, 'c');
  }
  return path + "/" + std::string(length - path.size() - 1, 'd');
}

TEST_F(InstallationLog, EveryCallAddsARecordInCallOrder) {
  addEventToInstallationLog("first");
  addEventToInstallationLog("second");
  EXPECT_EQ(logMessages(), (std::vector<std::string>{"first", "second"}));
}

TEST_F(InstallationLog, EveryRecordEndsWithANewline) {
  addEventToInstallationLog("first");
  addEventToInstallationLog("second");
  EXPECT_THAT(readFile(kLog), testing::MatchesRegex("[^\n]*: first\n[^\n]*: second\n"));
}

TEST_F(InstallationLog, ARecordIsTimeHostNameAndMessage) {
  addEventToInstallationLog("the message");
  const std::string log = readFile(kLog);
  const std::smatch parts = onlyRecord(log);
  EXPECT_EQ(parts[2], hostName());
  EXPECT_EQ(parts[3], "the message");
}

TEST_F(InstallationLog, TheLongestHostNameOfTheSystemIsWhole) {
  const std::string longest(HOST_NAME_MAX, 'h');
  ASSERT_EQ(unshare(CLONE_NEWUTS), 0) << std::strerror(errno);  // the name is this process's alone
  ASSERT_EQ(sethostname(longest.c_str(), longest.size()), 0) << std::strerror(errno);
  addEventToInstallationLog("the message");
  const std::string log = readFile(kLog);
  EXPECT_EQ(onlyRecord(log)[2], longest);
}

TEST_F(InstallationLog, TheTimeIsTheLocalTimeWithTheFullMonthName) {
  setenv("TZ", "XYZ-7:30", 1);
  tzset();
  const std::time_t before = std::time(nullptr);
  addEventToInstallationLog("now");
  const std::time_t after = std::time(nullptr);

  std::vector<std::string> allowed;
  for (std::time_t second = before; second <= after; ++second) {
    const std::time_t shifted = second + 7 * 3600 + 30 * 60;
    std::tm parts{};
    gmtime_r(&shifted, &parts);
    char text[64] = {};
    static const char* const kMonths[] = {"January",   "February", "March",    "April",
                                          "May",       "June",     "July",     "August",
                                          "September", "October",  "November", "December"};
    std::snprintf(text, sizeof text, "%s %02d %04d %02d:%02d:%02d", kMonths[parts.tm_mon], parts.tm_mday,
                  parts.tm_year + 1900, parts.tm_hour, parts.tm_min, parts.tm_sec);
    allowed.emplace_back(text);
  }
  const std::string log = readFile(kLog);
  EXPECT_THAT(allowed, testing::Contains(onlyRecord(log)[1].str()));
}

TEST_F(InstallationLog, AMessageMayHoldNewlines) {
  addEventToInstallationLog("\nStart\n\nEnd\n");
  EXPECT_THAT(readFile(kLog), testing::EndsWith(": \nStart\n\nEnd\n\n"));
}

TEST_F(InstallationLog, ArgumentsAreFormatted) {
  addEventToInstallationLog("%s: %d of %lld", "file", 3, 5000000000LL);
  EXPECT_EQ(logMessages(), std::vector<std::string>{"file: 3 of 5000000000"});
}

TEST_F(InstallationLog, PercentSignsOfAnArgumentAreNotExpandedAgain) {
  addEventToInstallationLog("%s", "100%d %s %n %%");
  EXPECT_EQ(logMessages(), std::vector<std::string>{"100%d %s %n %%"});
}

TEST_F(InstallationLog, AMessageOf4095BytesStandsWhole) {
  const std::string message(4095, 'm');
  addEventToInstallationLog("%s", message.c_str());
  EXPECT_EQ(logMessages(), std::vector<std::string>{message});
}

TEST_F(InstallationLog, ALongerMessageIsCutTo4095BytesAndTheRecordStillEnds) {
  addEventToInstallationLog("%s", std::string(4096, 'm').c_str());
  addEventToInstallationLog("%s", std::string(100000, 'n').c_str());
  addEventToInstallationLog("short");
  EXPECT_EQ(logMessages(), (std::vector<std::string>{std::string(4095, 'm'), std::string(4095, 'n'), "short"}));
}

TEST_F(InstallationLog, AnEmptyMessageIsARecordToo) {
  addEventToInstallationLog("%s", "");
  EXPECT_THAT(readFile(kLog), testing::EndsWith(": \n"));
}

TEST_F(InstallationLog, WhatTheFileHoldsAlreadyStays) {
  test::writeFile(kLog, "an older line\n");
  addEventToInstallationLog("new");
  EXPECT_THAT(readFile(kLog), testing::MatchesRegex("an older line\n[^\n]*: new\n"));
}

TEST_F(InstallationLog, TheMakersFolderIsMadeForTheUserAlone) {
  umask(0);
  addEventToInstallationLog("x");
  EXPECT_EQ(modeOf("/Users/tester/Library/Caches/Tavenhall"), 0700U);
}

TEST_F(InstallationLog, AnExistingMakersFolderKeepsItsMode) {
  makeFolder("/Users/tester/Library/Caches/Tavenhall");
  chmod("/Users/tester/Library/Caches/Tavenhall", 0755);
  addEventToInstallationLog("x");
  EXPECT_EQ(modeOf("/Users/tester/Library/Caches/Tavenhall"), 0755U);
  EXPECT_EQ(logMessages(), std::vector<std::string>{"x"});
}

TEST_F(InstallationLog, WithoutACachesFolderTheRecordLandsInTmp) {
  test::platform().caches = std::nullopt;
  addEventToInstallationLog("x");
  EXPECT_EQ(logMessages("/tmp/installationLog.txt"), std::vector<std::string>{"x"});
  EXPECT_EQ(test::treeOf("/tmp"), std::vector<std::string>{"installationLog.txt"});
  EXPECT_TRUE(test::treeOf(kCaches).empty());
}

TEST_F(InstallationLog, ANullFormatCreatesTheFileAndWritesNothing) {
  logWithoutFormat();
  EXPECT_EQ(readFile(kLog), "");
}

TEST_F(InstallationLog, ANullFormatLeavesTheRecordsBeforeAndAfterWhole) {
  addEventToInstallationLog("before");
  logWithoutFormat();
  addEventToInstallationLog("after");
  EXPECT_EQ(logMessages(), (std::vector<std::string>{"before", "after"}));
}

TEST(InstallationLogWithoutFolders, AFolderThatCannotBeMadeIsIgnored) {
  addEventToInstallationLog("x");  // there is no Caches folder in a private root's empty home
  EXPECT_TRUE(test::treeOf(test::kHome).empty());
  EXPECT_TRUE(test::treeOf("/tmp").empty());
}

TEST_F(InstallationLog, AFileThatCannotBeOpenedIsIgnored) {
  makeFolder(kLog);
  addEventToInstallationLog("x");
  EXPECT_EQ(test::treeOf(kCaches), (std::vector<std::string>{"Tavenhall/", "Tavenhall/installationLog.txt/"}));
}

TEST_F(InstallationLog, ALogThatWasRemovedIsMadeAgain) {
  addEventToInstallationLog("first");
  unlink(kLog);
  addEventToInstallationLog("second");
  EXPECT_EQ(logMessages(), std::vector<std::string>{"second"});
}

TEST_F(InstallationLog, APathOf2047BytesIsUsed) {
  const std::string caches = cachesOfLength(2047 - std::string("/Tavenhall/installationLog.txt").size());
  makeFolder(caches);
  test::platform().caches = caches;
  addEventToInstallationLog("x");
  EXPECT_EQ(logMessages(caches + "/Tavenhall/installationLog.txt"), std::vector<std::string>{"x"});
}

TEST_F(InstallationLogDeathTest, APathOf2048BytesEndsTheProcess) {
  test::platform().caches = cachesOfLength(2048 - std::string("/Tavenhall/installationLog.txt").size());
  EXPECT_EXIT(addEventToInstallationLog("x"), testing::KilledBySignal(SIGABRT),
              testing::MatchesRegex("InstallDataPane: [^\n]* 2048 bytes[^\n]*\n"));
}

}  // namespace
}  // namespace tavenhall

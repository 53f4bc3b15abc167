#include "tests/install/child_program.h"
#include "tests/support/files.h"

#include <array>
#include <chrono>
#include <ctime>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

// The built program, as people at support run it.
namespace tavenhall::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

const std::string kEntry = "\n\n" + std::string(94, '*') + "\n  Install Data Pane Enter: Version 7.7";
const std::string kEnd = "Installation complete\n" + std::string(57, '*') + "\n";

std::string record(const std::string& time, const std::string& message) {
  return "May 01 2026 " + time + " studio: " + message + "\n";
}

// A good run, one with a failure, one that found no data folder, and one that breaks off.
std::string fourEnds() {
  return record("10:00:00", kEntry) + record("10:00:05", kEnd) + record("11:00:00", kEntry) +
         record("11:00:01", "Source error /V/a /U/a\n") + record("11:00:05", kEnd) +
         record("12:00:00", kEntry) +
         record("12:00:01", "InstallData fatal error: TANVO or DOVA folder not found.") +
         record("13:00:00", kEntry) + record("13:00:01", "Copying folder /V /U\n");
}

Outcome tellLog(std::vector<std::string> arguments, std::string_view input = "") {
  arguments.insert(arguments.begin(), {kTavinstall, "log"});
  return runThrough(std::move(arguments), {}, input);
}

TEST(LogCommand, PrintsTheUsersLog) {
  writeFile(kLog, fourEnds());
  const Outcome outcome = tellLog({});
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_EQ(
      outcome.output,
      "The last run did not end: it was stopped or killed, the computer was switched\noff, or the log could "
      "not be "
      "written any more. Run the installer again.\n\nRun 1, May 01 2026 10:00:00, on studio: ended, nothing "
      "failed\n    lasted         5 s\n    settings     "
      "  no attributes file\n\nRun 2, May 01 2026 11:00:00, on studio: ended, with 1 failure\n    lasted       "
      "  5 s\n    settings       no attributes file\n    FAILED         11:00:01  cannot read /V/a\n\nRun 3, "
      "May 01 2026 12:00:00, on studio: not started: the data folder did not exist\n    lasted         1 s\n   "
      " settings       no attributes file\n\nRun 4, May 01 2026 13:00:00, on studio: it did not end; last "
      "message: Copying folder /V /U\n    lasted         1 s\n    settings       no attributes file\n\n4 runs "
      "in the log; 1 ended, nothing failed; 1 ended with failures; 1 not started; 1 did not end.\n");
}

TEST(LogCommand, PrintsOnlyTheLastRun) {
  writeFile("/tmp/a.log", fourEnds());
  const Outcome outcome = tellLog({"--last", "/tmp/a.log"});
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_THAT(outcome.output, HasSubstr("again.\n\nRun 4, May 01 2026 13:00:00, on studio: it did not end"));
  EXPECT_THAT(outcome.output, EndsWith("\n\n4 runs in the log; 1 ended, nothing failed; 1 ended with failures; "
                                       "1 not started; 1 did not end.\n"));
}

TEST(LogCommand, PrintsJson) {
  writeFile("/tmp/a.log", fourEnds());
  const auto runs = nlohmann::json::parse(tellLog({"/tmp/a.log", "--format", "json"}).output);
  ASSERT_EQ(runs.size(), 4U);
  EXPECT_EQ(runs[0]["outcome"], "complete");
  EXPECT_EQ(runs[1]["outcome"], "complete-with-failures");
  EXPECT_EQ(runs[1]["failures"][0]["file"], "/V/a");
  EXPECT_EQ(runs[1]["failures"][0]["target"], "/U/a");
  EXPECT_EQ(runs[2]["outcome"], "no-data-folder");
  EXPECT_EQ(runs[3]["outcome"], "never-ended");
  EXPECT_EQ(nlohmann::json::parse(tellLog({"/tmp/a.log", "--format", "json", "--last"}).output).size(), 1U);
}

// The one that has written a moment ago is not dead yet.
TEST(LogCommand, ARunThatIsGoingOnIsNotCalledEndless) {
  std::array<char, 64> now{};
  const std::time_t time = std::time(nullptr);
  std::tm local{};
  std::strftime(now.data(), now.size(), "%B %d %Y %T", localtime_r(&time, &local));
  writeFile("/tmp/a.log", std::string(now.data()) + " studio: " + kEntry + "\n");
  EXPECT_THAT(tellLog({"/tmp/a.log"}).output,
              HasSubstr("it has not ended and may still be running; last message: "));
  EXPECT_THAT(tellLog({"/tmp/a.log", "--format", "json"}).output, HasSubstr("\"mayStillRun\":true"));
  const std::string later = record("10:00:00", kEntry);
  writeFile("/tmp/a.log", std::string(now.data()) + " studio: " + kEntry + "\n" + later);
  EXPECT_THAT(tellLog({"/tmp/a.log"}).output, testing::Not(HasSubstr("may still run")));
}

TEST(LogCommand, ReadsAPipe) {
  const Outcome outcome = tellLog({"/dev/stdin"}, fourEnds());
  EXPECT_THAT(outcome.output, EndsWith("1 did not end.\n")) << outcome.error;
}

TEST(LogCommand, ALogWithoutARunIsNoError) {
  writeFile("/tmp/empty.log", "");
  EXPECT_EQ(tellLog({"/tmp/empty.log"}).output, "/tmp/empty.log contains no run of the page.\n");
  EXPECT_EQ(tellLog({"/tmp/empty.log", "--format", "json"}).output, "[]\n");
  writeFile("/tmp/title.log", record("10:00:00", "Data from attributes file::  InstallData title=T "));
  EXPECT_EQ(tellLog({"/tmp/title.log"}).output, "/tmp/title.log contains no run of the page.\n");
  mkfifo("/tmp/pipe.log", 0600);
  EXPECT_EQ(tellLog({"/tmp/pipe.log"}).output, "/tmp/pipe.log contains no run of the page.\n");
}

}  // namespace
}  // namespace tavenhall::test

#include "host/ui/run_outcome.h"

#include "tests/support/files.h"
#include "tests/terminal/in_utf8.h"
#include "tests/terminal/rendered.h"

#include <gmock/gmock.h>
#include <string>

namespace tavenhall::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

using RunOutcomes = InUtf8;

constexpr const char* kLogFile = "/tmp/installationLog.txt";

std::string record(const std::string& message) { return "May 01 2026 10:00:00 studio: " + message + "\n"; }

std::string banner() {
  return record("\n\n" + std::string(94, '*') + "\n  Install Data Pane Enter: Version 7.7");
}

RunOutcome told(ExitStatus status) {
  RunOutcome outcome;
  outcome.status = status;
  outcome.isTold = true;
  outcome.bytesCopied = 204800000;
  outcome.time = std::chrono::seconds(75);
  outcome.destination = "/Users/tester/Library/Application Support/Tavenhall/TANVO";
  outcome.logPath = "/Users/tester/Library/Caches/Tavenhall/installationLog.txt";
  return outcome;
}

TEST_F(RunOutcomes, SuccessSaysWhatWasInstalledWhereAndWhereTheLogIs) {
  const RunOutcome outcome = told(ExitStatus::success);
  EXPECT_EQ(outcomeHeading(outcome).text, "The installation was successful.");
  EXPECT_THAT(textOf(outcomeLines(outcome, 80)),
              ElementsAre("Installed  204.8 MB in 1 min 15 s",
                          "In         /Users/tester/Library/Application Support/Tavenhall/TANVO",
                          "Log        /Users/tester/Library/Caches/Tavenhall/installationLog.txt"));
}

TEST_F(RunOutcomes, WhatNobodyCountedIsNotSaid) {
  RunOutcome outcome = told(ExitStatus::success);
  outcome.bytesCopied.reset();
  EXPECT_EQ(outcomeLines(outcome, 80).front().back().text, "in 1 min 15 s");
  EXPECT_EQ(lastWord(outcome), "Installed in 1 min 15 s.\nThe log is " + outcome.logPath + ".\n");

  outcome.status = ExitStatus::failure;
  EXPECT_EQ(outcomeHeading(outcome).text, "The installation is not complete.");
}

TEST_F(RunOutcomes, EachFailureIsToldWithItsFile) {
  writeFile(kLogFile,
            banner() + record("Source error /Volumes/A/TANVO/a b/1.db /Users/tester/TANVO/a b/1.db\n") +
                record("Target error /Volumes/A/TANVO/2.db /Users/tester/TANVO/2.db No space left\n") +
                record("File copy failure: sizes differ: /Volumes/A/TANVO/3.db (size is 5) "
                       "/Users/tester/TANVO/3.db  (size is 4)  \n"));
  RunOutcome outcome = told(ExitStatus::failure);
  readFailures(kLogFile, 0, outcome);
  EXPECT_EQ(outcome.failureCount, 3);
  EXPECT_EQ(outcomeHeading(outcome).text, "The installation is not complete.");
  EXPECT_THAT(textOf(outcomeLines(outcome, 80)),
              ElementsAre("3 failures. Put right what is named below, then run the installer again.", "",
                          "Copied     204.8 MB in 1 min 15 s",
                          "Into       /Users/tester/Library/Application Support/Tavenhall/TANVO",
                          "Log        /Users/tester/Library/Caches/Tavenhall/installationLog.txt", "",
                          "Files that could not be read", "  /Volumes/A/TANVO/a b/1.db", "",
                          "Files that could not be written", "  /Volumes/A/TANVO/2.db", "",
                          "Files that were not copied whole", "  /Volumes/A/TANVO/3.db"));
}

TEST_F(RunOutcomes, ALongPathKeepsItsName) {
  writeFile(kLogFile,
            banner() + record("Source error /Volumes/A/TANVO/Keyboards/Grand/001.db /T/Grand/001.db\n"));
  RunOutcome outcome = told(ExitStatus::failure);
  readFailures(kLogFile, 0, outcome);
  EXPECT_THAT(textOf(outcomeLines(outcome, 22)), Contains("  …/Grand/001.db"));
}

TEST_F(RunOutcomes, FailuresOfEarlierRunsAreNotThisRuns) {
  const std::string before = banner() + record("Source error /Volumes/A/old.db /T/old.db\n");
  writeFile(kLogFile, before + banner() + record("Source error /Volumes/A/new.db /T/new.db\n"));
  RunOutcome outcome = told(ExitStatus::failure);
  readFailures(kLogFile, static_cast<std::int64_t>(before.size()), outcome);
  ASSERT_EQ(outcome.failureCount, 1);
  EXPECT_EQ(outcome.failures[0].file, "/Volumes/A/new.db");
}

TEST_F(RunOutcomes, ALogThatWasRemovedMeanwhileIsReadAsAWhole) {
  writeFile(kLogFile, banner() + record("Source error /Volumes/A/1.db /T/1.db\n"));
  RunOutcome outcome = told(ExitStatus::failure);
  readFailures(kLogFile, 1000000, outcome);
  EXPECT_EQ(outcome.failureCount, 1);
}

TEST_F(RunOutcomes, WithoutALogThereIsStillAnOutcome) {
  RunOutcome outcome = told(ExitStatus::failure);
  readFailures("/tmp/no log", 0, outcome);
  EXPECT_EQ(outcome.failureCount, 0);
  EXPECT_THAT(textOf(outcomeLines(outcome, 100)),
              Contains("Nothing in the log names a file. Run the installer again to complete it."));
}

TEST_F(RunOutcomes, MoreFailuresThanCanBeNamedAreCounted) {
  std::string log = banner();
  for (int i = 0; i < 1203; ++i) {
    const std::string name = std::to_string(i) + ".db";
    log += record("Source error /Volumes/A/" + name + " /T/" + name + "\n");
  }
  writeFile(kLogFile, log);
  RunOutcome outcome = told(ExitStatus::failure);
  readFailures(kLogFile, 0, outcome);
  EXPECT_EQ(outcome.failureCount, 1203);
  EXPECT_THAT(textOf(outcomeLines(outcome, 80)), Contains("and 203 more failures: the log has them all."));
}

TEST_F(RunOutcomes, NothingCopiedIsAFailedInstallation) {
  RunOutcome outcome = told(ExitStatus::failure);
  outcome.bytesCopied = 0;
  EXPECT_EQ(outcomeHeading(outcome).text, "The installation failed.");
}

TEST_F(RunOutcomes, AnEngineThatCameToNoEndIsSaidToHave) {
  RunOutcome outcome = told(ExitStatus::failure);
  outcome.isTold = false;
  EXPECT_EQ(outcomeHeading(outcome).text, "The installation ended before its time.");
}

TEST_F(RunOutcomes, SuccessNeverStandsOverAFailureThatOnlyTheLogTells) {
  writeFile(kLogFile, banner() + record("mkdir2 sudo mkdir /T/a 256 2 /T/a"));
  RunOutcome outcome = told(ExitStatus::success);
  readFailures(kLogFile, 0, outcome);
  EXPECT_FALSE(outcome.isSuccess());
  EXPECT_EQ(outcome.exitStatus(), ExitStatus::failure);
  EXPECT_EQ(outcomeHeading(outcome).text, "The installation is not complete.");
  EXPECT_THAT(textOf(outcomeLines(outcome, 80)), Contains("  /T/a"));
}

TEST_F(RunOutcomes, WhatCommandsSaidComesLast) {
  RunOutcome outcome = told(ExitStatus::success);
  outcome.messages = {"sudo: a password is required"};
  const auto lines = textOf(outcomeLines(outcome, 80));
  EXPECT_EQ(lines[lines.size() - 2], "Commands that ran on the way said");
  EXPECT_EQ(lines.back(), "  sudo: a password is required");
}

TEST_F(RunOutcomes, TheLastWordOnTheTerminalTellsTheSame) {
  EXPECT_EQ(lastWord(told(ExitStatus::success)),
            "Installed 204.8 MB in 1 min 15 s.\n"
            "The log is /Users/tester/Library/Caches/Tavenhall/installationLog.txt.\n");
  EXPECT_THAT(lastWord(told(ExitStatus::failure)),
              HasSubstr("The installation is not complete. Copied 204.8 MB in 1 min 15 s.\n"));
  EXPECT_THAT(lastWord(told(ExitStatus::failure)), Not(HasSubstr("Installed")));
}

}  // namespace
}  // namespace tavenhall::test

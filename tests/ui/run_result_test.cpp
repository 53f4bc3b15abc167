#include "host/ui/run_result.h"
#include "host/cli/run_description.h"

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

using RunResults = InUtf8;

constexpr const char* kLogFile = "/tmp/installationLog.txt";

std::string record(const std::string& message) { return "May 01 2026 10:00:00 studio: " + message + "\n"; }

std::string banner() {
  return record("\n\n" + std::string(94, '*') + "\n  Install Data Pane Enter: Version 7.7");
}

RunResult resultWith(ExitStatus status) {
  RunResult result;
  result.status = status;
  result.hasSummary = true;
  result.bytes = 204800000;
  result.time = std::chrono::seconds(75);
  result.destination = "/Users/tester/Library/Application Support/Tavenhall/TANVO";
  result.log = "/Users/tester/Library/Caches/Tavenhall/installationLog.txt";
  return result;
}

TEST_F(RunResults, SuccessNamesTheContentTheDestinationAndTheLog) {
  const RunResult result = resultWith(ExitStatus::success);
  EXPECT_EQ(resultHeading(result).text, "The installation was successful.");
  EXPECT_THAT(textOf(resultLines(result, 80)),
              ElementsAre("Installed  204.8 MB in 1 min 15 s",
                          "In         /Users/tester/Library/Application Support/Tavenhall/TANVO",
                          "Log        /Users/tester/Library/Caches/Tavenhall/installationLog.txt"));
}

TEST_F(RunResults, UnknownFiguresAreNotShown) {
  RunResult result = resultWith(ExitStatus::success);
  result.bytes.reset();
  EXPECT_EQ(resultLines(result, 80).front().back().text, "in 1 min 15 s");
  EXPECT_EQ(closingText(result), "Installed in 1 min 15 s.\nThe log is " + result.log + ".\n");

  result.status = ExitStatus::failure;
  EXPECT_EQ(resultHeading(result).text, "The installation is not complete.");
}

TEST_F(RunResults, EachFailureIsReportedWithItsFile) {
  writeFile(kLogFile,
            banner() + record("Source error /Volumes/A/TANVO/a b/1.db /Users/tester/TANVO/a b/1.db\n") +
                record("Target error /Volumes/A/TANVO/2.db /Users/tester/TANVO/2.db No space left\n") +
                record("File copy failure: sizes differ: /Volumes/A/TANVO/3.db (size is 5) "
                       "/Users/tester/TANVO/3.db  (size is 4)  \n"));
  RunResult result = resultWith(ExitStatus::failure);
  result.failures = failuresInLog(kLogFile, 0);
  EXPECT_EQ(result.failures.count, 3);
  EXPECT_EQ(resultHeading(result).text, "The installation is not complete.");
  EXPECT_THAT(textOf(resultLines(result, 80)),
              ElementsAre("3 failures. Fix the problems below, then run the installer again.", "",
                          "Copied     204.8 MB in 1 min 15 s",
                          "Into       /Users/tester/Library/Application Support/Tavenhall/TANVO",
                          "Log        /Users/tester/Library/Caches/Tavenhall/installationLog.txt", "",
                          "Cannot be read", "  /Volumes/A/TANVO/a b/1.db", "", "Cannot be written",
                          "  /Volumes/A/TANVO/2.db", "", "Not copied completely", "  /Volumes/A/TANVO/3.db"));
}

TEST_F(RunResults, ALongPathKeepsItsName) {
  writeFile(kLogFile,
            banner() + record("Source error /Volumes/A/TANVO/Keyboards/Grand/001.db /T/Grand/001.db\n"));
  RunResult result = resultWith(ExitStatus::failure);
  result.failures = failuresInLog(kLogFile, 0);
  EXPECT_THAT(textOf(resultLines(result, 22)), Contains("  …/Grand/001.db"));
}

TEST_F(RunResults, FailuresOfEarlierRunsAreNotThisRuns) {
  const std::string before = banner() + record("Source error /Volumes/A/old.db /T/old.db\n");
  writeFile(kLogFile, before + banner() + record("Source error /Volumes/A/new.db /T/new.db\n"));
  RunResult result = resultWith(ExitStatus::failure);
  result.failures = failuresInLog(kLogFile, static_cast<std::int64_t>(before.size()));
  ASSERT_EQ(result.failures.count, 1);
  EXPECT_EQ(result.failures.first[0].name, "/Volumes/A/new.db");
}

TEST_F(RunResults, ALogThatWasRemovedMeanwhileIsReadAsAWhole) {
  writeFile(kLogFile, banner() + record("Source error /Volumes/A/1.db /T/1.db\n"));
  RunResult result = resultWith(ExitStatus::failure);
  result.failures = failuresInLog(kLogFile, 1000000);
  EXPECT_EQ(result.failures.count, 1);
}

TEST_F(RunResults, WithoutALogThereIsStillAnOutcome) {
  RunResult result = resultWith(ExitStatus::failure);
  result.failures = failuresInLog("/tmp/no log", 0);
  EXPECT_EQ(result.failures.count, 0);
  EXPECT_THAT(
      textOf(resultLines(result, 100)),
      Contains("It is not known which file is missing. Run the installer again to complete the installation."));
}

TEST_F(RunResults, MoreFailuresThanCanBeNamedAreCounted) {
  std::string log = banner();
  for (int i = 0; i < 1203; ++i) {
    const std::string name = std::to_string(i) + ".db";
    log += record("Source error /Volumes/A/" + name + " /T/" + name + "\n");
  }
  writeFile(kLogFile, log);
  RunResult result = resultWith(ExitStatus::failure);
  result.failures = failuresInLog(kLogFile, 0);
  EXPECT_EQ(result.failures.count, 1203);
  EXPECT_THAT(textOf(resultLines(result, 80)), Contains("and 203 more failures"));
}

TEST_F(RunResults, NothingCopiedIsAFailedInstallation) {
  RunResult result = resultWith(ExitStatus::failure);
  result.bytes = 0;
  EXPECT_EQ(resultHeading(result).text, "The installation failed.");
}

TEST_F(RunResults, AnEngineThatWasKilledIsReported) {
  RunResult result = resultWith(ExitStatus::failure);
  result.hasSummary = false;
  EXPECT_EQ(resultHeading(result).text, "The installation ended unexpectedly.");
}

TEST_F(RunResults, ReportsAFailureThatOnlyTheLogRecords) {
  writeFile(kLogFile, banner() + record("mkdir2 sudo mkdir /T/a 256 2 /T/a"));
  RunResult result = resultWith(ExitStatus::success);
  result.failures = failuresInLog(kLogFile, 0);
  EXPECT_FALSE(result.isSuccess());
  EXPECT_EQ(result.exitStatus(), ExitStatus::failure);
  EXPECT_EQ(resultHeading(result).text, "The installation is not complete.");
  EXPECT_THAT(textOf(resultLines(result, 80)), Contains("  /T/a"));
}

TEST_F(RunResults, TheOutputOfCommandsComesLast) {
  RunResult result = resultWith(ExitStatus::success);
  result.messages = {"sudo: a password is required"};
  const auto lines = textOf(resultLines(result, 80));
  EXPECT_EQ(lines[lines.size() - 2], "Output of commands");
  EXPECT_EQ(lines.back(), "  sudo: a password is required");
}

TEST_F(RunResults, TheClosingTextStatesTheSame) {
  EXPECT_EQ(closingText(resultWith(ExitStatus::success)),
            "Installed 204.8 MB in 1 min 15 s.\n"
            "The log is /Users/tester/Library/Caches/Tavenhall/installationLog.txt.\n");
  EXPECT_THAT(closingText(resultWith(ExitStatus::failure)),
              HasSubstr("The installation is not complete. Copied 204.8 MB in 1 min 15 s.\n"));
  EXPECT_THAT(closingText(resultWith(ExitStatus::failure)), Not(HasSubstr("Installed")));
}

}  // namespace
}  // namespace tavenhall::test

#include "host/log/logged_run.h"
#include "host/log/log_report.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

namespace tavenhall {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

// A log, a record a line of the test; the clock moves on by ten seconds a record.
class Log {
 public:
  int step = 10;

  Log& say(const std::string& message) {
    std::array<char, 64> time{};
    std::snprintf(time.data(), time.size(), "May 01 2026 10:%02d:%02d", seconds_ / 60, seconds_ % 60);
    seconds_ += step;
    text_ += std::string(time.data()) + " studio: " + message + "\n";
    return *this;
  }

  Log& enter() { return say("\n\n" + std::string(94, '*') + "\n  Install Data Pane Enter: Version 7.7"); }

  Log& complete() { return say("Installation complete\n" + std::string(57, '*') + "\n"); }

  [[nodiscard]] std::vector<LoggedRun> runs() const {
    std::vector<LoggedRun> told;
    LoggedRuns runs([&told](const LoggedRun& run) { told.push_back(run); });
    LogRecords records([&runs](const LogRecord& record) { runs.add(record); });
    records.add(text_);
    records.finish();
    runs.finish();
    return told;
  }

  [[nodiscard]] LoggedRun run() const {
    const auto told = runs();
    EXPECT_EQ(told.size(), 1U);
    return told.empty() ? LoggedRun() : told.front();
  }

 private:
  std::string text_;
  int seconds_ = 0;
};

TEST(LoggedRuns, ALogWithoutAnEntryHasNoRun) { EXPECT_TRUE(Log().say("File exists").runs().empty()); }

TEST(LoggedRuns, EachEntryBeginsARun) {
  EXPECT_EQ(Log().enter().complete().enter().complete().enter().runs().size(), 3U);
}

TEST(LoggedRuns, ARunIsTimedFromItsEntryToItsLastWord) {
  const LoggedRun run = Log().enter().say("File exists").complete().run();
  EXPECT_EQ(run.begin, "May 01 2026 10:00:00");
  EXPECT_EQ(run.end, "May 01 2026 10:00:20");
  EXPECT_EQ(run.host, "studio");
  EXPECT_EQ(run.pageVersion, "Version 7.7");
}

TEST(LoggedRuns, WhatComesBeforeAnEntryBelongsToTheRunAfterIt) {
  const auto told = Log()
                        .enter()
                        .complete()
                        .say("Found Installation Attribute File at  /set/.InstallationAttributes.dat")
                        .say("Data from attributes file::  InstallData title=Second ")
                        .enter()
                        .runs();
  ASSERT_EQ(told.size(), 2U);
  EXPECT_EQ(told[0].title, "");
  EXPECT_EQ(told[0].end, "May 01 2026 10:00:10");
  EXPECT_EQ(told[1].title, "Second");
  EXPECT_EQ(told[1].attributesFile, "/set/.InstallationAttributes.dat");
}

TEST(LoggedRuns, ARunThatBreaksOffNeverEnded) {
  const LoggedRun run = Log().enter().say("Volume 0 /Volumes/A/TANVO\n").run();
  EXPECT_EQ(run.outcome, RunEnd::never);
  EXPECT_EQ(run.lastMessage, "Volume 0 /Volumes/A/TANVO");
  EXPECT_THAT(reportText(run, 1), HasSubstr("it did not end; last message: Volume 0 /Volumes/A/TANVO\n"));
}

TEST(LoggedRuns, ARunWhoseLastWordIsRecentMayStillRun) {
  const LoggedRun run = Log().enter().say("File exists").run();
  EXPECT_THAT(reportText(run, 1, true),
              HasSubstr("it has not ended and may still be running; last message: File exists\n"));
  EXPECT_EQ(reportJson(run, 1, true)["mayStillRun"], true);
}

TEST(LoggedRuns, EachDataFolderIsReportedOnce) {
  const LoggedRun run = Log()
                            .enter()
                            .say("After resolve 1 /U/TANVO")
                            .say("After resolve 1 /U/TANVO")
                            .say("After resolve 1 /U/DOVA")
                            .run();
  EXPECT_THAT(run.destinations, ElementsAre("/U/TANVO", "/U/DOVA"));
}

TEST(LoggedRuns, ReportsADiscThatLookedEmpty) {
  const LoggedRun run = Log()
                            .enter()
                            .say("Volume 0 /V/T\n")
                            .say("copySingleVolume: no items found in top level folder. Attempt 0")
                            .say("copySingleVolume: no items found in top level folder. Attempt 1")
                            .say("Begin copySingleVolume: copySrcPath /V/T\n")
                            .say("End copySingleVolume: copySrcPath /V/T\n")
                            .run();
  EXPECT_THAT(reportText(run, 1), HasSubstr(", 0 folders, found empty 2 times\n"));
}

TEST(LoggedRuns, AMissingDataFolderIsAnEndOfItsOwn) {
  const LoggedRun run = Log().enter().say("InstallData fatal error: TANVO or DOVA folder not found.").run();
  EXPECT_EQ(run.outcome, RunEnd::noDataFolder);
  EXPECT_THAT(reportText(run, 1), HasSubstr("not started: the data folder did not exist"));
}

TEST(LoggedRuns, ReportsTheSettings) {
  const LoggedRun run = Log()
                            .enter()
                            .say("After resolve 1 /Users/u/Library/Application Support/Tavenhall/TANVO")
                            .say("Installation mode is 4")
                            .say("Install Type = Lite")
                            .say("Confirmed Tessaphon Library Installation is Lite\n")
                            .say("Confirmed Quorra Library Installation is Full\n")
                            .say("Successfully deleted existing p/w/a at /Applications//Tessaphon.app")
                            .say("readyToProceed is False: issuing InstallError message\n")
                            .run();
  EXPECT_EQ(run.mode, 4);
  EXPECT_EQ(run.edition, "Lite");
  EXPECT_THAT(run.destinations, ElementsAre("/Users/u/Library/Application Support/Tavenhall/TANVO"));
  EXPECT_THAT(run.detectedEditions, ElementsAre("Tessaphon: Lite", "Quorra: Full"));
  EXPECT_THAT(run.placed, ElementsAre("/Applications//Tessaphon.app"));
  EXPECT_EQ(run.refusals, 1);
}

TEST(LoggedRuns, AVolumeIsTimedAndMeasured) {
  const LoggedRun run = Log()
                            .enter()
                            .say("Volume 0 path should be: /Volumes/A")
                            .say("Volume 0 /Volumes/A/TANVO\n")
                            .say("Volume count: 1")
                            .say("Begin copySingleVolume: copySrcPath /Volumes/A/TANVO\n")
                            .say("Copying folder /Volumes/A/TANVO /d/TANVO\n")
                            .say("Data copy progress 0 (x 100MB)")
                            .say("Data copy progress 1 (x 100MB)")
                            .say("End copySingleVolume: copySrcPath /Volumes/A/TANVO\n")
                            .complete()
                            .run();
  ASSERT_EQ(run.volumes.size(), 1U);
  EXPECT_EQ(run.volumes[0].folder, "/Volumes/A/TANVO");
  EXPECT_EQ(run.volumes[0].folders, 1);
  EXPECT_THAT(reportText(run, 1), HasSubstr("    volume         1: /Volumes/A/TANVO, 40 s, over 200.0 MB at "
                                            "5.0 MB a second, 1 folder\n"));
}

TEST(LoggedRuns, ReportsASkippedVolume) {
  const LoggedRun run = Log().enter().say("Volume 1 /p/../DOVA\n").complete().run();
  EXPECT_THAT(reportText(run, 1), HasSubstr("    volume         2: nothing was copied\n"));
}

TEST(LoggedRuns, PromptsForOneDiscAreCountedUntilItIsThere) {
  const std::string ask = "Dialog prompting to insert mandatory volume 2 Tavenhall Lumaweave ";
  const std::string found = "Using primary folder /Volumes/L /Volumes/L/DOVA /Volumes/L/Mac OSX/DOVA";
  const LoggedRun run = Log().enter().say(ask).say(ask).say(found).say(ask).run();
  ASSERT_EQ(run.prompts.size(), 2U);
  EXPECT_EQ(run.prompts[0].volume, "Tavenhall Lumaweave");
  EXPECT_EQ(run.prompts[0].times, 2);
  EXPECT_EQ(run.prompts[0].found, "May 01 2026 10:00:30");
  EXPECT_EQ(run.prompts[1].times, 1);
  EXPECT_THAT(reportText(run, 1),
              HasSubstr("    disc           Tavenhall Lumaweave, asked for 2 times, found after 20 s\n"
                        "    disc           Tavenhall Lumaweave, asked for 1 time, never found\n"));
}

TEST(LoggedRuns, ASkippedOptionalDiscIsReported) {
  const LoggedRun run = Log()
                            .enter()
                            .say("Dialog prompting to insert optional disc: 1 Copper Lanes\n")
                            .say("Skipping an optional disc (ProcessThisDisc false)")
                            .run();
  EXPECT_THAT(reportText(run, 1), HasSubstr("Copper Lanes (optional), asked for 1 time, skipped\n"));
}

struct FailureCase {
  const char* message;
  const char* kind;
  const char* file;
  const char* said;

  friend std::ostream& operator<<(std::ostream& out, const FailureCase& tested) { return out << tested.kind; }
};

class RunFailures : public testing::TestWithParam<FailureCase> {};

TEST_P(RunFailures, NameTheirFile) {
  const LoggedRun run = Log().enter().say(GetParam().message).complete().run();
  ASSERT_EQ(run.failures.size(), 1U);
  EXPECT_EQ(run.failures[0].kind, GetParam().kind);
  EXPECT_EQ(run.failures[0].file, GetParam().file);
  EXPECT_THAT(reportText(run, 1), HasSubstr(": ended, with 1 failure\n"));
  EXPECT_THAT(reportText(run, 1),
              HasSubstr("    FAILED         10:00:10  " + std::string(GetParam().said) + "\n"));
}

INSTANTIATE_TEST_SUITE_P(
    All, RunFailures,
    testing::Values(FailureCase{"Source error /V/A B/T/a b.db /U/Application Support/T/a b.db\n", "source",
                                "/V/A B/T/a b.db", "cannot read /V/A B/T/a b.db"},
                    FailureCase{"Target error /V/T/a b.db /U/T/a b.db No space left on device\n", "target",
                                "/V/T/a b.db", "cannot write /U/T/a b.db: No space left on device"},
                    FailureCase{"File copy failure: sizes differ: /V/a b (size is 7) /U/a b  (size is 0)  \n",
                                "size", "/V/a b", "not copied completely; the disk may be full: /U/a b"},
                    FailureCase{"mkdir2 sudo mkdir /U/x y 256 17 /U/x y", "folder", "/U/x y",
                                "cannot create the folder /U/x y"},
                    FailureCase{"Files to be installed not found /V /a /V /a/T /V /a/Mac OSX/T", "not-found",
                                "/V /a/T", "no data to install: there is no /V /a/T"},
                    FailureCase{"copyDirectoryOrFile: no destination for /V/T", "no-destination", "/V/T",
                                "no destination for /V/T: its data folder is missing"}),
    [](const auto& tested) {
      std::string name = tested.param.kind;
      std::replace(name.begin(), name.end(), '-', '_');
      return name;
    });

// A log that was cut or written to by others may hold anything.
TEST(LoggedRuns, TruncatedRecordsAreShownAsTheyAre) {
  for (const char* message :
       {"Source error", "Source error ", "Target error /V/a", "Target error /V/a /U/b",
        "File copy failure: sizes differ: ", "File copy failure: sizes differ: /V/a (size",
        "File copy failure: sizes differ: /V/a (size is 7) ", "mkdir2 sudo mkdir /U/x 256",
        "Files to be installed not found ", "Files to be installed not found /V /V"}) {
    const LoggedRun run = Log().enter().say(message).complete().run();
    EXPECT_THAT(reportText(run, 1), HasSubstr("Run 1, ")) << message;
    EXPECT_LE(run.failureCount, 1) << message;
  }
}

TEST(LoggedRuns, AFolderThatTheCommandMadeIsNoFailure) {
  EXPECT_EQ(Log().enter().say("mkdir2 sudo mkdir /U/x 0 17 /U/x").complete().run().failureCount, 0);
}

TEST(LoggedRuns, FiftyThousandFailuresAreCountedAndTheFirstAreKept) {
  Log log;
  log.step = 0;
  log.enter();
  for (int i = 0; i < 50000; ++i) {
    log.say("Source error /V/a /U/a\n");
  }
  const LoggedRun run = log.complete().run();
  EXPECT_EQ(run.failureCount, 50000);
  EXPECT_EQ(run.failures.size(), 1000U);
  EXPECT_THAT(reportText(run, 1), HasSubstr("and 49000 more"));
}

TEST(LoggedRuns, AVolumesNumberMayBeTheGreatest) {
  const LoggedRun run = Log().enter().say("Volume 2147483647 /Volumes/A/TANVO\n").run();
  EXPECT_THAT(reportText(run, 1), HasSubstr("2147483648: nothing was copied\n"));
}

TEST(LoggedRuns, ControlCharactersDoNotReachTheTerminal) {
  const LoggedRun run = Log().enter().say("Source error /V/\x1b[2Ja /U/\x1b[2Ja\n").complete().run();
  EXPECT_THAT(reportText(run, 1), Not(HasSubstr("\x1b")));
}

TEST(LoggedRuns, TheJsonFormNamesTheOutcome) {
  EXPECT_EQ(reportJson(Log().enter().complete().run(), 1)["outcome"], "complete");
  EXPECT_EQ(reportJson(Log().enter().say("Source error /V/a /U/a\n").complete().run(), 1)["outcome"],
            "complete-with-failures");
  EXPECT_EQ(reportJson(Log().enter().run(), 1)["outcome"], "never-ended");
}

}  // namespace
}  // namespace tavenhall

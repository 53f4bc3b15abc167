#include "host/log/run_story.h"
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

  [[nodiscard]] std::vector<RunStory> stories() const {
    std::vector<RunStory> told;
    RunStories stories([&told](const RunStory& story) { told.push_back(story); });
    LogRecords records([&stories](const LogRecord& record) { stories.add(record); });
    records.add(text_);
    records.finish();
    stories.finish();
    return told;
  }

  [[nodiscard]] RunStory story() const {
    const auto told = stories();
    EXPECT_EQ(told.size(), 1U);
    return told.empty() ? RunStory() : told.front();
  }

 private:
  std::string text_;
  int seconds_ = 0;
};

TEST(RunStories, ALogWithoutAnEntryTellsNoRun) { EXPECT_TRUE(Log().say("File exists").stories().empty()); }

TEST(RunStories, EachEntryBeginsARun) {
  EXPECT_EQ(Log().enter().complete().enter().complete().enter().stories().size(), 3U);
}

TEST(RunStories, ARunIsTimedFromItsEntryToItsLastWord) {
  const RunStory story = Log().enter().say("File exists").complete().story();
  EXPECT_EQ(story.begin, "May 01 2026 10:00:00");
  EXPECT_EQ(story.end, "May 01 2026 10:00:20");
  EXPECT_EQ(story.host, "studio");
  EXPECT_EQ(story.pageVersion, "Version 7.7");
}

TEST(RunStories, WhatComesBeforeAnEntryBelongsToTheRunAfterIt) {
  const auto told = Log()
                        .enter()
                        .complete()
                        .say("Found Installation Attribute File at  /set/.InstallationAttributes.dat")
                        .say("Data from attributes file::  InstallData title=Second ")
                        .enter()
                        .stories();
  ASSERT_EQ(told.size(), 2U);
  EXPECT_EQ(told[0].title, "");
  EXPECT_EQ(told[0].end, "May 01 2026 10:00:10");
  EXPECT_EQ(told[1].title, "Second");
  EXPECT_EQ(told[1].attributesFile, "/set/.InstallationAttributes.dat");
}

TEST(RunStories, ARunThatBreaksOffNeverEnded) {
  const RunStory story = Log().enter().say("Volume 0 /Volumes/A/TANVO\n").story();
  EXPECT_EQ(story.outcome, RunEnd::never);
  EXPECT_EQ(story.lastMessage, "Volume 0 /Volumes/A/TANVO");
  EXPECT_THAT(reportText(story, 1), HasSubstr("it never ended; its last word: Volume 0 /Volumes/A/TANVO\n"));
}

TEST(RunStories, ARunWhoseLastWordIsRecentMayStillRun) {
  const RunStory story = Log().enter().say("File exists").story();
  EXPECT_THAT(reportText(story, 1, true),
              HasSubstr("not ended, and it may still run; its latest word: File exists\n"));
  EXPECT_EQ(reportJson(story, 1, true)["mayStillRun"], true);
}

TEST(RunStories, EachDataFolderIsToldOnce) {
  const RunStory story = Log()
                             .enter()
                             .say("After resolve 1 /U/TANVO")
                             .say("After resolve 1 /U/TANVO")
                             .say("After resolve 1 /U/DOVA")
                             .story();
  EXPECT_THAT(story.destinations, ElementsAre("/U/TANVO", "/U/DOVA"));
}

TEST(RunStories, ADiscThatLookedEmptySaysSo) {
  const RunStory story = Log()
                             .enter()
                             .say("Volume 0 /V/T\n")
                             .say("copySingleVolume: no items found in top level folder. Attempt 0")
                             .say("copySingleVolume: no items found in top level folder. Attempt 1")
                             .say("Begin copySingleVolume: copySrcPath /V/T\n")
                             .say("End copySingleVolume: copySrcPath /V/T\n")
                             .story();
  EXPECT_THAT(reportText(story, 1), HasSubstr(", 0 folders, found empty 2 times\n"));
}

TEST(RunStories, AMissingDataFolderIsAnEndOfItsOwn) {
  const RunStory story = Log().enter().say("InstallData fatal error: TANVO or DOVA folder not found.").story();
  EXPECT_EQ(story.outcome, RunEnd::noDataFolder);
  EXPECT_THAT(reportText(story, 1), HasSubstr("not begun: the data folder was not there"));
}

TEST(RunStories, SettingsAreTold) {
  const RunStory story = Log()
                             .enter()
                             .say("After resolve 1 /Users/u/Library/Application Support/Tavenhall/TANVO")
                             .say("Installation mode is 4")
                             .say("Install Type = Lite")
                             .say("Confirmed Tessaphon Library Installation is Lite\n")
                             .say("Confirmed Quorra Library Installation is Full\n")
                             .say("Successfully deleted existing p/w/a at /Applications//Tessaphon.app")
                             .say("readyToProceed is False: issuing InstallError message\n")
                             .story();
  EXPECT_EQ(story.mode, 4);
  EXPECT_EQ(story.edition, "Lite");
  EXPECT_THAT(story.destinations, ElementsAre("/Users/u/Library/Application Support/Tavenhall/TANVO"));
  EXPECT_THAT(story.detectedEditions, ElementsAre("Tessaphon: Lite", "Quorra: Full"));
  EXPECT_THAT(story.placed, ElementsAre("/Applications//Tessaphon.app"));
  EXPECT_EQ(story.refusals, 1);
}

TEST(RunStories, AVolumeIsTimedAndMeasured) {
  const RunStory story = Log()
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
                             .story();
  ASSERT_EQ(story.volumes.size(), 1U);
  EXPECT_EQ(story.volumes[0].folder, "/Volumes/A/TANVO");
  EXPECT_EQ(story.volumes[0].folders, 1);
  EXPECT_THAT(reportText(story, 1), HasSubstr("    volume         1: /Volumes/A/TANVO, 40 s, over 200.0 MB at "
                                              "5.0 MB a second, 1 folder\n"));
}

TEST(RunStories, AVolumeThatWasPassedOverSaysSo) {
  const RunStory story = Log().enter().say("Volume 1 /p/../DOVA\n").complete().story();
  EXPECT_THAT(reportText(story, 1), HasSubstr("    volume         2: nothing was copied\n"));
}

TEST(RunStories, PromptsForOneDiscAreCountedUntilItIsThere) {
  const std::string ask = "Dialog prompting to insert mandatory volume 2 Tavenhall Lumaweave ";
  const std::string found = "Using primary folder /Volumes/L /Volumes/L/DOVA /Volumes/L/Mac OSX/DOVA";
  const RunStory story = Log().enter().say(ask).say(ask).say(found).say(ask).story();
  ASSERT_EQ(story.prompts.size(), 2U);
  EXPECT_EQ(story.prompts[0].volume, "Tavenhall Lumaweave");
  EXPECT_EQ(story.prompts[0].times, 2);
  EXPECT_EQ(story.prompts[0].found, "May 01 2026 10:00:30");
  EXPECT_EQ(story.prompts[1].times, 1);
  EXPECT_THAT(reportText(story, 1),
              HasSubstr("    disc           Tavenhall Lumaweave, asked for 2 times, found after 20 s\n"
                        "    disc           Tavenhall Lumaweave, asked for 1 time, never found\n"));
}

TEST(RunStories, ASkippedOptionalDiscIsTold) {
  const RunStory story = Log()
                             .enter()
                             .say("Dialog prompting to insert optional disc: 1 Copper Lanes\n")
                             .say("Skipping an optional disc (ProcessThisDisc false)")
                             .story();
  EXPECT_THAT(reportText(story, 1), HasSubstr("Copper Lanes (optional), asked for 1 time, skipped\n"));
}

struct FailureCase {
  const char* message;
  const char* kind;
  const char* file;
  const char* said;

  friend std::ostream& operator<<(std::ostream& out, const FailureCase& tested) { return out << tested.kind; }
};

class RunFailures : public testing::TestWithParam<FailureCase> {};

TEST_P(RunFailures, AreToldWithTheirFile) {
  const RunStory story = Log().enter().say(GetParam().message).complete().story();
  ASSERT_EQ(story.failures.size(), 1U);
  EXPECT_EQ(story.failures[0].kind, GetParam().kind);
  EXPECT_EQ(story.failures[0].file, GetParam().file);
  EXPECT_THAT(reportText(story, 1), HasSubstr(": ended, with 1 failure\n"));
  EXPECT_THAT(reportText(story, 1),
              HasSubstr("    FAILED         10:00:10  " + std::string(GetParam().said) + "\n"));
}

INSTANTIATE_TEST_SUITE_P(
    All, RunFailures,
    testing::Values(FailureCase{"Source error /V/A B/T/a b.db /U/Application Support/T/a b.db\n", "source",
                                "/V/A B/T/a b.db", "cannot read /V/A B/T/a b.db"},
                    FailureCase{"Target error /V/T/a b.db /U/T/a b.db No space left on device\n", "target",
                                "/V/T/a b.db", "cannot write /U/T/a b.db: No space left on device"},
                    FailureCase{"File copy failure: sizes differ: /V/a b (size is 7) /U/a b  (size is 0)  \n",
                                "size", "/V/a b", "not copied whole, perhaps since the disk is full: /U/a b"},
                    FailureCase{"mkdir2 sudo mkdir /U/x y 256 17 /U/x y", "folder", "/U/x y",
                                "cannot make the folder /U/x y"},
                    FailureCase{"Files to be installed not found /V /a /V /a/T /V /a/Mac OSX/T", "not-found",
                                "/V /a/T", "no data to install: there is no /V /a/T"},
                    FailureCase{"copyDirectoryOrFile: no destination for /V/T", "no-destination", "/V/T",
                                "nowhere to copy /V/T to: its data folder is missing"}),
    [](const auto& tested) {
      std::string name = tested.param.kind;
      std::replace(name.begin(), name.end(), '-', '_');
      return name;
    });

// A log that was cut or written to by others may hold anything.
TEST(RunStories, RecordsThatBreakOffAreToldInTheirOwnWords) {
  for (const char* message :
       {"Source error", "Source error ", "Target error /V/a", "Target error /V/a /U/b",
        "File copy failure: sizes differ: ", "File copy failure: sizes differ: /V/a (size",
        "File copy failure: sizes differ: /V/a (size is 7) ", "mkdir2 sudo mkdir /U/x 256",
        "Files to be installed not found ", "Files to be installed not found /V /V"}) {
    const RunStory story = Log().enter().say(message).complete().story();
    EXPECT_THAT(reportText(story, 1), HasSubstr("Run 1, ")) << message;
    EXPECT_LE(story.failureCount, 1) << message;
  }
}

TEST(RunStories, AFolderThatTheCommandMadeIsNoFailure) {
  EXPECT_EQ(Log().enter().say("mkdir2 sudo mkdir /U/x 0 17 /U/x").complete().story().failureCount, 0);
}

TEST(RunStories, FiftyThousandFailuresAreCountedAndTheFirstAreKept) {
  Log log;
  log.step = 0;
  log.enter();
  for (int i = 0; i < 50000; ++i) {
    log.say("Source error /V/a /U/a\n");
  }
  const RunStory story = log.complete().story();
  EXPECT_EQ(story.failureCount, 50000);
  EXPECT_EQ(story.failures.size(), 1000U);
  EXPECT_THAT(reportText(story, 1), HasSubstr("and 49000 more"));
}

TEST(RunStories, AVolumesNumberMayBeTheGreatest) {
  const RunStory story = Log().enter().say("Volume 2147483647 /Volumes/A/TANVO\n").story();
  EXPECT_THAT(reportText(story, 1), HasSubstr("2147483648: nothing was copied\n"));
}

TEST(RunStories, ControlCharactersDoNotReachTheTerminal) {
  const RunStory story = Log().enter().say("Source error /V/\x1b[2Ja /U/\x1b[2Ja\n").complete().story();
  EXPECT_THAT(reportText(story, 1), Not(HasSubstr("\x1b")));
}

TEST(RunStories, TheJsonFormNamesTheOutcome) {
  EXPECT_EQ(reportJson(Log().enter().complete().story(), 1)["outcome"], "complete");
  EXPECT_EQ(reportJson(Log().enter().say("Source error /V/a /U/a\n").complete().story(), 1)["outcome"],
            "complete-with-failures");
  EXPECT_EQ(reportJson(Log().enter().story(), 1)["outcome"], "never-ended");
}

}  // namespace
}  // namespace tavenhall

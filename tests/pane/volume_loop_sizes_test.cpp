#include "tests/pane/execution_fixtures.h"
#include "tests/pane/volume_pass.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavenhall::test {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kFallback =
    "Unable to read expectd size from installation instruction file. Assuming 1 volume and 10 GB.";

std::string sizeLine() {
  const auto lines = thoseThatBegin(logMessages(), "Data from attributes file:   data size");
  return lines.empty() ? "" : lines.back();
}

// ---- The first volume's set-up as a whole ----

TEST_F(VolumeLoop, TheFirstVolumeSetsTextsSizeAndBarInThisOrder) {
  setAttributes("InstalledData = Done in %s\nInstallingData = Copying to %s\nTotalSizeMillionsBytes = 6\n");
  VolumePass pass(3);
  pass.pane.gVolumeCount = 4;
  pass.pane.prepareFirstVolume();
  EXPECT_THAT(pass.trace.events(),
              ElementsAre("log Found Installation Attribute File at  "
                          "/Users/tester/Downloads/Set/.InstallationAttributes.dat",
                          "log Data from attributes file::  InstalledData=Done in %s ",
                          "log Data from attributes file::  InstallingData=Copying to %s ",
                          "instructions Copying to /Users/tester/Library/Application Support/Tavenhall/TANVO",
                          "log Data from attributes file:   data size=6000000 (bytes)", "animation.begin",
                          "animation.duration 0", "progress.min 0", "progress.max 5859.38", "animation.end",
                          "log Volume count: 4"));
  EXPECT_EQ(pass.pane.gCompletionMessage.view(), "Done in %s");
  EXPECT_EQ(pass.host.dispatches(), 0);
}

TEST_F(VolumeLoop, WithoutAttributesTheTextsAreTheBuiltInOnes) {
  setAttributes("Mode = DataUpdater\n");
  VolumePass pass(3);
  pass.pane.prepareFirstVolume();
  EXPECT_EQ(pass.pane.gCompletionMessage.view(),
            "Step 1 finished.\n\nPlease run the Data Updater to complete the installation.\n\nPress Continue "
            "button.");
  EXPECT_THAT(pass.host.linesThatBegin("instructions "),
              ElementsAre("instructions Now installing data from source media to: \n\n"
                          "/Users/tester/Library/Application Support/Tavenhall/TANVO\n\n"
                          "This process is lengthy and can take up to 3 hours.\n"
                          "The progress bar will move very slowly at first.\n"
                          "Thanks for your patience.\n\n"
                          "Please wait for the installation to complete."));
  EXPECT_EQ(thoseThatBegin(logMessages(), "Could not find InstallingData string in attributes file ").size(),
            2U);
}

TEST_F(VolumeLoop, OnlyTheFirstVolumeSetsTheTextsAndTheBar) {
  setAttributes("NumberOfVolumes = 3\nTotalSizeMillionsBytes = 6\n");
  VolumePass pass(4);
  pass.run();
  EXPECT_EQ(pass.messages("Volume count").size(), 1U);
  EXPECT_EQ(pass.host.linesThatBegin("progress.max").size(), 1U);
  EXPECT_EQ(pass.host.linesThatBegin("instructions").size(), 1U);
}

// ---- Sizes ----

struct SizeRow {
  const char* millions;
  const char* line;
  std::int64_t bytes;
  double barMaximum;
};

TEST_F(VolumeLoop, TheSizeInMillionsSetsTheExpectedBytesAndTheBarsMaximum) {
  const std::vector<SizeRow> rows = {
      {"1", "Data from attributes file:   data size=1000000 (bytes)", 1000000, 976.5625},
      {"6", "Data from attributes file:   data size=6000000 (bytes)", 6000000, 5859.375},
      {"4700", "Data from attributes file:   data size=4700000000 (bytes)", 4700000000, 4589843.75},
      {"-5", "Data from attributes file:   data size=-5000000 (bytes)", -5000000, -4882.8125},
      {"9223372036854", "Data from attributes file:   data size=9223372036854000000 (bytes)",
       9223372036854000000, 9007199254740234.0},
      {"9223372036855", "Data from attributes file:   data size=-9223372036854551616 (bytes)",
       -9223372036854551616, -9007199254740773.0},
      {"9223372036854775807", "Data from attributes file:   data size=-1000000 (bytes)", -1000000, -976.5625},
      {"99999999999999999999999", "Data from attributes file:   data size=-1000000 (bytes)", -1000000,
       -976.5625},
      {"-9223372036854775808", "Data from attributes file:   data size=0 (bytes)", 0, 0.0},
      {"288230376151711744", "Data from attributes file:   data size=0 (bytes)", 0, 0.0},
  };
  for (const SizeRow& row : rows) {
    SCOPED_TRACE(row.millions);
    setAttributes(std::string("TotalSizeMillionsBytes = ") + row.millions + "\n");
    VolumePass pass(3);
    pass.pane.prepareFirstVolume();
    EXPECT_EQ(sizeLine(), row.line);
    EXPECT_EQ(pass.pane.totalNumBytesExpectedAcrossAllVolumes, row.bytes);
    EXPECT_EQ(pass.host.barMaximum, row.barMaximum);
  }
  EXPECT_THAT(thoseThatBegin(logMessages(), "Unable to read"), IsEmpty());
}

TEST_F(VolumeLoop, AMissingSizeWritesTheFallbackLineAndAssumesAHundredMillionBytes) {
  setAttributes("Mode = DataUpdater\n");
  VolumePass pass(3);
  pass.pane.gVolumeCount = 4;
  pass.pane.prepareFirstVolume();
  const auto messages = logMessages();
  ASSERT_GE(messages.size(), 3U);
  EXPECT_THAT(std::vector<std::string>(messages.end() - 3, messages.end()),
              ElementsAre("Data from attributes file:   data size=0 (bytes)", kFallback, "Volume count: 4"));
  EXPECT_EQ(pass.pane.totalNumBytesExpectedAcrossAllVolumes, 100000000);
  EXPECT_EQ(pass.pane.gVolumeCount, 4);
}

TEST_F(VolumeLoop, AMissingSizeLeavesTheBarsRangeAsItWas) {
  setAttributes("Mode = DataUpdater\n");
  VolumePass pass(3);
  pass.host.barMaximum = 77.0;
  pass.pane.prepareFirstVolume();
  EXPECT_THAT(pass.host.linesThatBegin("progress."), IsEmpty());
  EXPECT_THAT(pass.host.linesThatBegin("animation."), IsEmpty());
  EXPECT_EQ(pass.host.barMaximum, 77.0);
}

TEST_F(VolumeLoop, ASizeOfZeroIsAMissingOne) {
  setAttributes("TotalSizeMillionsBytes = 0\n");
  VolumePass pass(3);
  pass.pane.prepareFirstVolume();
  EXPECT_THAT(logMessages(), Contains(kFallback));
  EXPECT_EQ(pass.pane.totalNumBytesExpectedAcrossAllVolumes, 100000000);
}

TEST_F(VolumeLoop, ASizeUnderAKeyInAnotherCaseIsAMissingOne) {
  setAttributes("totalsizemillionsbytes = 6\n");
  VolumePass pass(3);
  pass.pane.prepareFirstVolume();
  EXPECT_THAT(logMessages(), Contains(kFallback));
}

TEST_F(VolumeLoop, ASizeThatIsNoNumberIsTheLastNumberBeforeIt) {
  setAttributes("NumberOfVolumes = 2\nTotalSizeMillionsBytes = abc\n");
  VolumePass pass(3);
  pass.pane.prepareFirstVolume();
  EXPECT_EQ(sizeLine(), "Data from attributes file:   data size=2000000 (bytes)");
}

// ---- Lite ----

struct LiteRow {
  std::int32_t hasOption;
  std::int32_t allAreLite;
  std::int64_t bytes;
};

TEST_F(VolumeLoop, OnlyAnAllLiteInstallTakesTheSizeOfTheFirstComponent) {
  setAttributes("TotalSizeMillionsBytes = 9\nComponent1SizeMillionsBytes = 2\n");
  for (const LiteRow& row :
       {LiteRow{0, 0, 9000000}, LiteRow{1, 0, 9000000}, LiteRow{0, 1, 9000000}, LiteRow{1, 1, 2000000}}) {
    for (const std::int32_t mode : {0, 3, 4}) {
      VolumePass pass(mode);
      pass.pane.gInstallationHasLiteVsFullOption = row.hasOption;
      pass.pane.gAllTwoComponentInstallChoicesAreLite = row.allAreLite;
      pass.pane.prepareFirstVolume();
      EXPECT_EQ(pass.pane.totalNumBytesExpectedAcrossAllVolumes, row.bytes)
          << row.hasOption << row.allAreLite << mode;
    }
  }
}

TEST_F(VolumeLoop, AnAllLiteInstallWithoutItsSizeFallsBackThoughTheTotalIsKnown) {
  setAttributes("TotalSizeMillionsBytes = 9\n");
  VolumePass pass(3);
  pass.pane.gInstallationHasLiteVsFullOption = 1;
  pass.pane.gAllTwoComponentInstallChoicesAreLite = 1;
  pass.pane.prepareFirstVolume();
  EXPECT_EQ(sizeLine(), "Data from attributes file:   data size=0 (bytes)");
  EXPECT_EQ(pass.pane.totalNumBytesExpectedAcrossAllVolumes, 100000000);
}

TEST_F(VolumeLoop, AnAllLiteUpdateShowsTheFirstComponentsSizeOnTheBar) {
  setAttributes("TotalSizeMillionsBytes = 9\nComponent1SizeMillionsBytes = 2\n");
  VolumePass pass(4);
  pass.pane.gInstallationHasLiteVsFullOption = 1;
  pass.pane.gNumTwoComponentInstallFolders = 2;
  pass.pane.gTwoComponentInstallChoicesAreLite[0] = 1;
  pass.pane.gTwoComponentInstallChoicesAreLite[1] = 1;
  pass.run();
  EXPECT_EQ(pass.host.barMaximum, 1953.125);
}

// ---- The count once more ----

TEST_F(VolumeLoop, Mode2CountsTheVolumesAnewOnceTheFirstIsReadable) {
  setAttributes("NumberOfVolumes = 2\n");
  VolumePass pass(2, "/Volumes/Tavenhall Tessaphon A");
  pass.host.onAlert = [](const std::string& line) {
    const std::string name = line.substr(line.find("insert ") + 7);
    makeFolder("/Volumes/" + name.substr(0, name.find('|')) + "/TANVO/Samples");
    setAttributes("NumberOfVolumes = 3\n");
  };
  pass.run();
  EXPECT_THAT(
      pass.messages("Data from attributes file::   num Vol"),
      ElementsAre("Data from attributes file::   num Vol=2 ", "Data from attributes file::   num Vol=3 "));
  EXPECT_THAT(pass.messages("Volume count"), ElementsAre("Volume count: 3"));
  EXPECT_EQ(platform().callsThatBegin("thread ").size(), 3U);
}

TEST_F(VolumeLoop, OtherModesCountTheVolumesOnce) {
  setAttributes("NumberOfVolumes = 2\n");
  for (const std::int32_t mode : {0, 3, 4}) {
    VolumePass pass(mode);
    pass.run();
    EXPECT_EQ(thoseThatBegin(pass.trace.events(), "log Data from attributes file::   num Vol=2 ").size(), 1U);
  }
}

TEST_F(VolumeLoop, ACountThatFallsDuringTheFirstVolumeEndsThePassAfterIt) {
  setAttributes("NumberOfVolumes = 5\n");
  VolumePass pass(2, "/Volumes/Tavenhall Tessaphon A");
  pass.host.onAlert = [](const std::string&) {
    makeFolder("/Volumes/Tavenhall Tessaphon A/TANVO/Samples");
    setAttributes("NumberOfVolumes = 1\n");
  };
  pass.run();
  EXPECT_EQ(platform().callsThatBegin("thread ").size(), 1U);
  EXPECT_EQ(pass.pane.gCurrentVolumeNumber, 1);
}

}  // namespace

}  // namespace tavenhall::test

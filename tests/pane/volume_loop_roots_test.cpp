#include "tests/pane/execution_fixtures.h"
#include "tests/pane/volume_pass.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavenhall::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kRelativeLine = "Data from attributes file::  RelativePath2=Second ";

// ---- Roots by volume, option and mode ----

struct RootRow {
  std::int32_t volume;
  std::int32_t hasOption;
  std::int32_t allAreLite;
  std::int32_t mode;
  const char* root;
  const char* lastLine;
};

constexpr const char* kStart = "/tmp/Start";
constexpr const char* kSecondRoot = "/Users/tester/Downloads/Set/Second";
constexpr const char* kB = "/Volumes/Tessaphon B";
constexpr const char* kBLine = "Volume 1 path should be: /Volumes/Tessaphon B";

TEST_F(VolumeLoop, TheRootOfEveryVolumeFollowsFromOptionAndMode) {
  setAttributes("RelativePath2 = Second\n");
  std::vector<RootRow> rows;
  for (const std::int32_t mode : {0, 2, 3, 4}) {
    for (const std::int32_t lite : {0, 1}) {
      rows.push_back({0, 0, lite, mode, kStart, ""});
      rows.push_back({0, 1, lite, mode, kStart, ""});
      rows.push_back({1, 0, lite, mode, kB, kBLine});
      rows.push_back(
          {2, 0, lite, mode, "/Volumes/Tessaphon C", "Volume 2 path should be: /Volumes/Tessaphon C"});
      rows.push_back(
          {2, 1, lite, mode, "/Volumes/Tessaphon C", "Volume 2 path should be: /Volumes/Tessaphon C"});
    }
  }
  for (const std::int32_t mode : {0, 3, 4}) {
    rows.push_back({1, 1, 1, mode, kStart, ""});
    rows.push_back({1, 1, 0, mode, kSecondRoot, kRelativeLine});
  }
  rows.push_back({1, 1, 1, 2, kB, kBLine});
  rows.push_back({1, 1, 0, 2, kB, kBLine});

  for (const RootRow& row : rows) {
    SCOPED_TRACE(testing::Message() << "volume " << row.volume << ", option " << row.hasOption << ", lite "
                                    << row.allAreLite << ", mode " << row.mode);
    VolumePass pass(row.mode);
    pass.pane.gCurrentVolumeNumber = row.volume;
    pass.pane.gInstallationHasLiteVsFullOption = row.hasOption;
    pass.pane.gAllTwoComponentInstallChoicesAreLite = row.allAreLite;
    EXPECT_EQ(pass.pane.chooseVolumeRoot(false), nullptr);
    EXPECT_EQ(pass.root(), row.root);
    const auto events = pass.trace.events();
    EXPECT_EQ(events.empty() ? "" : events.back(),
              *row.lastLine != '\0' ? std::string("log ") + row.lastLine : "");
  }
}

TEST_F(VolumeLoop, WithoutRelativePath2TheSecondRootIsWhatTheLookupLeft) {
  setAttributes("Mode = DataUpdater\n");
  VolumePass pass(0);
  pass.pane.gCurrentVolumeNumber = 1;
  pass.pane.gInstallationHasLiteVsFullOption = 1;
  EXPECT_EQ(pass.pane.chooseVolumeRoot(false), nullptr);
  EXPECT_EQ(pass.root(), "/Users/tester/Downloads/Set/DataUpdater");
  EXPECT_EQ(lastLogMessage(), "Could not find RelativePath2 string in attributes file ");
}

TEST_F(VolumeLoop, WithoutAnyAttributesTheSecondRootIsThePackagesFolderWithASlash) {
  setPackage("/Users/tester/Downloads/Set/Installer.pkg");
  VolumePass pass(0);
  pass.pane.gCurrentVolumeNumber = 1;
  pass.pane.gInstallationHasLiteVsFullOption = 1;
  EXPECT_EQ(pass.pane.chooseVolumeRoot(false), nullptr);
  EXPECT_EQ(pass.root(), "/Users/tester/Downloads/Set/");
}

TEST_F(VolumeLoop, TheSecondComponentIsInstalledFromItsOwnFolder) {
  setAttributes("RelativePath2 = Second\nTotalSizeMillionsBytes = 1\n");
  writeFile("/tmp/Start/TANVO/one.dat", "one");
  writeFile("/Users/tester/Downloads/Set/Second/TANVO/two.dat", "two");
  VolumePass pass(3);
  pass.pane.gInstallationHasLiteVsFullOption = 1;
  pass.run();
  EXPECT_THAT(treeOf(kTanvo), ElementsAre("one.dat", "two.dat"));
  EXPECT_THAT(pass.messages("Volume "), ElementsAre("Volume 0 /tmp/Start/TANVO\n", "Volume count: 2",
                                                    "Volume 1 /Users/tester/Downloads/Set/Second/TANVO\n"));
}

TEST_F(VolumeLoop, ALiteChoiceInstallsTheFirstComponentOnly) {
  setAttributes("RelativePath2 = Second\nComponent1SizeMillionsBytes = 1\n");
  writeFile("/tmp/Start/TANVO/one.dat", "one");
  writeFile("/Users/tester/Downloads/Set/Second/TANVO/two.dat", "two");
  VolumePass pass(3);
  pass.pane.gInstallationHasLiteVsFullOption = 1;
  pass.pane.gTwoComponentInstallChoicesAreLite[0] = 1;
  pass.run();
  EXPECT_THAT(treeOf(kTanvo), ElementsAre("one.dat"));
}

TEST_F(VolumeLoop, TheStatusIsBlankedForEveryVolume) {
  setAttributes("NumberOfVolumes = 3\n");
  VolumePass pass(4);
  pass.run();
  EXPECT_THAT(pass.host.linesThatBegin("status"), ElementsAre("status  ", "status  ", "status  "));
}

// ---- The optional discs ----

struct DiscRow {
  std::int32_t volume;
  const char* mountPath;
  const char* dialogLine;
  const char* alert;
};

TEST_F(VolumeLoop, TheFiveOptionalDiscsFollowInTableOrder) {
  const std::vector<DiscRow> rows = {
      {2, "/Volumes/Northfield DOVA Outrider", "log Dialog prompting to insert optional disc: 0 Northfield\n",
       "main: alert Ready for next volume|Insert Northfield Outrider disc. Press Skip if you do not have this "
       "disc.|OK,Skip|1"},
      {3, "/Volumes/Copper Lanes DOVA Outrider",
       "log Dialog prompting to insert optional disc: 1 Copper Lanes\n",
       "main: alert Ready for next volume|Insert Copper Lanes Outrider disc. Press Skip if you do not have "
       "this "
       "disc.|OK,Skip|1"},
      {4, "/Volumes/Glass Rivers DOVA Outrider",
       "log Dialog prompting to insert optional disc: 2 Glass Rivers\n",
       "main: alert Ready for next volume|Insert Glass Rivers Outrider disc. Press Skip if you do not have "
       "this "
       "disc.|OK,Skip|1"},
      {5, "/Volumes/Slow Bloom DOVA Outrider", "log Dialog prompting to insert optional disc: 3 Slow Bloom\n",
       "main: alert Ready for next volume|Insert Slow Bloom Outrider disc. Press Skip if you do not have this "
       "disc.|OK,Skip|1"},
      {6, "/Volumes/Tin Parade DOVA Outrider", "log Dialog prompting to insert optional disc: 4 Tin Parade\n",
       "main: alert Ready for next volume|Insert Tin Parade Outrider disc. Press Skip if you do not have this "
       "disc.|OK,Skip|1"},
  };
  for (const DiscRow& row : rows) {
    SCOPED_TRACE(row.mountPath);
    VolumePass pass(2);
    pass.pane.gCurrentVolumeNumber = row.volume;
    const OptionalDisc* disc = pass.pane.chooseVolumeRoot(true);
    ASSERT_NE(disc, nullptr);
    EXPECT_EQ(pass.root(), row.mountPath);
    EXPECT_EQ(pass.pane.askForOptionalDisc(*disc), 1000);
    EXPECT_THAT(pass.trace.events(),
                ElementsAre(row.dialogLine, row.alert, "log Optional disc button choice 1000\n"));
  }
}

TEST_F(VolumeLoop, TheFirstTwoVolumesOfADiscSetAreMandatory) {
  VolumePass pass(2, "/Volumes/Tempora QX Disc 1", "TemporaQX");
  pass.pane.gCurrentVolumeNumber = 0;
  EXPECT_EQ(pass.pane.chooseVolumeRoot(true), nullptr);
  EXPECT_EQ(pass.root(), "/Volumes/Tempora QX Disc 1");
  pass.pane.gCurrentVolumeNumber = 1;
  EXPECT_EQ(pass.pane.chooseVolumeRoot(true), nullptr);
  EXPECT_EQ(pass.root(), "/Volumes/Tavenhall Tempora QX");
  EXPECT_THAT(logMessages(), ElementsAre("Volume 1 path should be: /Volumes/Tavenhall Tempora QX"));
}

TEST_F(VolumeLoop, VolumesBeyondTheTableHaveTheirUsualPathAndAreMandatory) {
  for (const std::int32_t volume : {7, 8, 100}) {
    VolumePass pass(2, "/Volumes/Tin Parade DOVA Outrider", "TemporaQX");
    pass.pane.gCurrentVolumeNumber = volume;
    EXPECT_EQ(pass.pane.chooseVolumeRoot(true), nullptr);
    EXPECT_EQ(pass.root(), "/Volumes/Tavenhall Tempora QX");
    EXPECT_EQ(lastLogMessage(),
              "Volume " + std::to_string(volume) + " path should be: /Volumes/Tavenhall Tempora QX");
  }
}

TEST_F(VolumeLoop, OnlyARootThatBeginsWithTheDiscSetsNameHasOptionalDiscs) {
  setAttributes("NumberOfVolumes = 3\n");
  const std::string northfield = "/Volumes/Northfield DOVA Outrider";
  const std::string usual = "/Volumes/Tavenhall Tempora QX";
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"/Volumes/Tempora QX Disc", northfield},
      {"/Volumes/Tempora QX Disc 1", northfield},
      {"/Volumes/Tempora QX Discovery/below", northfield},
      {"/Volumes/Tempora QX Dis", usual},
      {"/volumes/Tempora QX Disc 1", usual},
      {"/tmp/Volumes/Tempora QX Disc 1", usual},
      {"/Volumes/Tavenhall Tempora QX", usual},
      {"", usual},
  };
  for (const auto& [start, third] : rows) {
    VolumePass pass(4, start, "TemporaQX");  // an update passes over what is not there
    pass.run();
    EXPECT_EQ(pass.root(), third) << start;
    EXPECT_EQ(thoseThatBegin(pass.trace.events(), "log Volume 2 ").back(),
              "log Volume 2 " + third + "/TANVO\n");
  }
}

TEST_F(VolumeLoop, AnOptionalDiscOutsideMode2IsNotAskedForAndEndsThePass) {
  setAttributes("NumberOfVolumes = 4\n");
  makeFolder("/Volumes/Tempora QX Disc 1/TANVO");
  makeFolder("/Volumes/Tavenhall Tempora QX/TANVO");
  VolumePass pass(3, "/Volumes/Tempora QX Disc 1", "TemporaQX");
  pass.run();
  EXPECT_THAT(pass.host.linesThatBegin("alert "), IsEmpty());
  EXPECT_THAT(pass.host.linesThatBegin("sheet "), ElementsAre("sheet OK|Files to be installed not found."));
  EXPECT_EQ(pass.root(), "/Volumes/Northfield DOVA Outrider");
}

// ---- A whole disc set ----

std::vector<std::string> stepsOf(VolumePass& pass) {
  std::vector<std::string> steps = pass.trace.eventsButProgress();
  std::erase_if(steps, [](std::string_view line) {
    for (const char* start : {"log Volume ", "log Using", "log Skipping", "log Optional", "main: alert",
                              "sleep", "thread", "system"}) {
      if (line.starts_with(start)) {
        return false;
      }
    }
    return true;
  });
  return steps;
}

std::string usingPrimary(const std::string& root) {
  return "log Using primary folder " + root + " " + root + "/TANVO " + root + "/Mac OSX/TANVO";
}

std::string insert(const std::string& title) {
  return "main: alert Ready for next volume|Insert " + title +
         " Outrider disc. Press Skip if you do not have this disc.|OK,Skip|1";
}

constexpr const char* kOne = "/Volumes/Tempora QX Disc 1";
constexpr const char* kTwo = "/Volumes/Tavenhall Tempora QX";
constexpr const char* kEject = "system drutil -drive 1 eject";
constexpr const char* kThread = "thread copySingleVolume";
constexpr const char* kSkipping = "log Skipping an optional disc (ProcessThisDisc false)";

TEST_F(VolumeLoop, ASetOfSevenDiscsIsInstalledWithSkipsAndALateDisc) {
  setAttributes("NumberOfVolumes = 7\nTotalSizeMillionsBytes = 1\n");
  writeFile(std::string(kOne) + "/TANVO/1.dat", "1");
  writeFile(std::string(kTwo) + "/TANVO/2.dat", "2");
  writeFile("/Volumes/Slow Bloom DOVA Outrider/TANVO/6.dat", "6");
  VolumePass pass(2, kOne, "TemporaQX");
  pass.host.answers = {1001, 1001, 1000, 1000, 1001};
  int sleeps = 0;
  pass.trace.onSleep = [&](unsigned seconds) {
    if (seconds == 10 && ++sleeps == 2) {
      writeFile("/Volumes/Glass Rivers DOVA Outrider/TANVO/5.dat", "5");
    }
  };
  pass.run();
  EXPECT_THAT(
      stepsOf(pass),
      ElementsAre("log Volume 0 /Volumes/Tempora QX Disc 1/TANVO\n", "log Volume count: 7", usingPrimary(kOne),
                  kThread, kEject, "log Volume 1 path should be: /Volumes/Tavenhall Tempora QX",
                  "log Volume 1 /Volumes/Tavenhall Tempora QX/TANVO\n", usingPrimary(kTwo), kThread, kEject,
                  "log Volume 2 /Volumes/Northfield DOVA Outrider/TANVO\n", insert("Northfield"),
                  "log Optional disc button choice 1001\n", kSkipping,
                  "log Volume 3 /Volumes/Copper Lanes DOVA Outrider/TANVO\n", insert("Copper Lanes"),
                  "log Optional disc button choice 1001\n", kSkipping,
                  "log Volume 4 /Volumes/Glass Rivers DOVA Outrider/TANVO\n", insert("Glass Rivers"),
                  "log Optional disc button choice 1000\n", "sleep 10", insert("Glass Rivers"),
                  "log Optional disc button choice 1000\n", "sleep 10",
                  usingPrimary("/Volumes/Glass Rivers DOVA Outrider"), kThread, kEject,
                  "log Volume 5 /Volumes/Slow Bloom DOVA Outrider/TANVO\n",
                  usingPrimary("/Volumes/Slow Bloom DOVA Outrider"), kThread, kEject,
                  "log Volume 6 /Volumes/Tin Parade DOVA Outrider/TANVO\n", insert("Tin Parade"),
                  "log Optional disc button choice 1001\n", kSkipping));
  EXPECT_THAT(treeOf(kTanvo), ElementsAre("1.dat", "2.dat", "5.dat", "6.dat"));
  EXPECT_EQ(pass.pane.gCurrentVolumeNumber, 7);
}

TEST_F(VolumeLoop, AnEighthVolumeOfADiscSetIsTakenFromItsUsualPath) {
  setAttributes("NumberOfVolumes = 8\nTotalSizeMillionsBytes = 1\n");
  writeFile(std::string(kOne) + "/TANVO/1.dat", "1");
  writeFile(std::string(kTwo) + "/TANVO/2.dat", "2");
  VolumePass pass(2, kOne, "TemporaQX");
  pass.host.answers = {1001, 1001, 1001, 1001, 1001};
  pass.run();
  const auto steps = stepsOf(pass);
  const auto last =
      std::find(steps.begin(), steps.end(), "log Volume 7 path should be: /Volumes/Tavenhall Tempora QX");
  EXPECT_THAT(
      std::vector<std::string>(last, steps.end()),
      ElementsAre("log Volume 7 path should be: /Volumes/Tavenhall Tempora QX",
                  "log Volume 7 /Volumes/Tavenhall Tempora QX/TANVO\n", usingPrimary(kTwo), kThread, kEject));
  EXPECT_EQ(platform().callsThatBegin("system ").size(), 3U);
}

}  // namespace

}  // namespace tavenhall::test

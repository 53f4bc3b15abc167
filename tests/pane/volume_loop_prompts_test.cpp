#include "context/install_rules.h"
#include "tests/pane/execution_fixtures.h"
#include "tests/pane/volume_pass.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavenhall::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kA = "/Volumes/Tavenhall Tessaphon A";
constexpr const char* kCheckA =
    "log File check: /Volumes/Tavenhall Tessaphon A /Volumes/Tavenhall Tessaphon A/TANVO "
    "/Volumes/Tavenhall Tessaphon A/Mac OSX/TANVO";
constexpr const char* kDialogA = "log Dialog prompting to insert mandatory volume 1 Tavenhall Tessaphon A ";
constexpr const char* kAlertA = "main: alert Ready for next volume|Please insert Tavenhall Tessaphon A|OK|1";

// A page that waits for one volume, whose paths are settled already.
struct Waiting : VolumePass {
  explicit Waiting(std::int32_t volume = 0, const std::string& root = kA) : VolumePass(2, root) {
    pane.gCurrentVolumeNumber = volume;
    pane.gPathOfSourceDataIncludingTANVOtail.assign(root + "/TANVO");
    pane.gAltSrcFolder.assign(root + "/Mac OSX/TANVO");
  }
};

TEST_F(VolumeLoop, TheHostIsToldOfEachDiscItsWaitAndItsEjection) {
  VolumePass page(2, kA);
  page.pane.gTANVOorDOVAnameOnly.assign("TANVO");
  page.trace.onSleep = [](unsigned seconds) {
    if (seconds == 10) {
      writeFile(std::string(kA) + "/TANVO/one.db", "one");
    }
  };
  page.run();
  EXPECT_THAT(page.host.notifications(),
              ElementsAre("disc /Volumes/Tavenhall Tessaphon A", "awaited 10",
                          testing::StartsWith("begun /Volumes/Tavenhall Tessaphon A/TANVO "),
                          testing::StartsWith("finished /Volumes/Tavenhall Tessaphon A/TANVO "), "eject"));
}

// ---- A mandatory volume ----

TEST_F(VolumeLoop, AReadyVolumeIsCheckedOnceAndNobodyIsAsked) {
  makeFolder(std::string(kA) + "/TANVO");
  Waiting page;
  EXPECT_TRUE(page.pane.waitForVolume(nullptr));
  EXPECT_THAT(page.trace.events(), ElementsAre(kCheckA));
}

TEST_F(VolumeLoop, TheAlternateFolderAloneMakesAVolumeReady) {
  makeFolder(std::string(kA) + "/Mac OSX/TANVO");
  Waiting page;
  EXPECT_TRUE(page.pane.waitForVolume(nullptr));
  EXPECT_THAT(page.trace.events(), ElementsAre(kCheckA));
}

TEST_F(VolumeLoop, AFileInThePlaceOfTheDataFolderCountsAsReady) {
  writeFile(std::string(kA) + "/TANVO", "only existence is tested");
  Waiting page;
  EXPECT_TRUE(page.pane.waitForVolume(nullptr));
}

TEST_F(VolumeLoop, AMissingDiscIsAskedForEveryTenSecondsUntilItIsReadable) {
  Waiting page;
  int sleeps = 0;
  page.trace.onSleep = [&](unsigned) {
    switch (++sleeps) {
      case 1: return makeFolder(kA);
      case 2: return makeFolder(std::string(kA) + "/Mac OSX");
      default: return makeFolder(std::string(kA) + "/TANVO");
    }
  };
  EXPECT_TRUE(page.pane.waitForVolume(nullptr));
  EXPECT_THAT(page.trace.events(),
              ElementsAre(kCheckA, "log Disc not ready: 0 0 0", kDialogA, kAlertA, "sleep 10", kCheckA,
                          "log Disc not ready: 1 0 0", kDialogA, kAlertA, "sleep 10", kCheckA,
                          "log Disc not ready: 1 0 0", kDialogA, kAlertA, "sleep 10", kCheckA));
  EXPECT_EQ(platform().now(), 30U);
  EXPECT_THAT(page.host.notifications(), ElementsAre("awaited 10", "awaited 10", "awaited 10"));
}

TEST_F(VolumeLoop, ADiscPutInWhileTheAlertIsUpIsSeenTenSecondsLater) {
  Waiting page;
  page.host.onAlert = [](const std::string&) { makeFolder(std::string(kA) + "/TANVO"); };
  EXPECT_TRUE(page.pane.waitForVolume(nullptr));
  EXPECT_THAT(page.trace.events(),
              ElementsAre(kCheckA, "log Disc not ready: 0 0 0", kDialogA, kAlertA, "sleep 10", kCheckA));
}

TEST_F(VolumeLoop, TheAnswerToAMandatoryPromptMattersNot) {
  Waiting page;
  page.host.answers = {1001, 0, -1};
  int alerts = 0;
  page.host.onAlert = [&](const std::string&) {
    if (++alerts == 4) {
      makeFolder(std::string(kA) + "/TANVO");
    }
  };
  EXPECT_TRUE(page.pane.waitForVolume(nullptr));
  EXPECT_EQ(alerts, 4);
}

TEST_F(VolumeLoop, ThePromptNumbersVolumesFromOneAndNamesThemWithoutTheirFolder) {
  Waiting page(3, "/Volumes/Tessaphon D");
  page.pane.askForMandatoryVolume();
  EXPECT_THAT(page.trace.events(),
              ElementsAre("log Dialog prompting to insert mandatory volume 4 Tessaphon D ",
                          "main: alert Ready for next volume|Please insert Tessaphon D|OK|1"));
  EXPECT_EQ(page.host.dispatches(), 1);
}

TEST_F(VolumeLoop, ARootOutsideVolumesLosesItsFirstNineBytesAllTheSame) {
  Waiting page(0, "/Users/tester/Downloads");
  page.pane.askForMandatoryVolume();
  EXPECT_THAT(page.host.linesThatBegin("alert "),
              ElementsAre("alert Ready for next volume|Please insert ster/Downloads|OK|1"));
}

TEST_F(VolumeLoop, ARootShorterThanTheVolumesFolderHasNoName) {
  for (const char* root : {"", "/tmp", "/Volumes/"}) {
    Waiting page(0, root);
    page.pane.askForMandatoryVolume();
    EXPECT_THAT(page.trace.events(), ElementsAre("log Dialog prompting to insert mandatory volume 1  ",
                                                 "main: alert Ready for next volume|Please insert |OK|1"));
  }
}

TEST_F(VolumeLoop, PercentSignsInAVolumesNameAreShownAsTheyStand) {
  Waiting page(0, "/Volumes/100% %s %n");
  page.pane.askForMandatoryVolume();
  EXPECT_THAT(page.trace.events(),
              ElementsAre("log Dialog prompting to insert mandatory volume 1 100% %s %n ",
                          "main: alert Ready for next volume|Please insert 100% %s %n|OK|1"));
}

TEST_F(VolumeLoop, AVolumeNameOf511BytesIsAskedForWhole) {
  const std::string name(511, 'n');
  Waiting page(0, "/Volumes/" + name);
  page.pane.askForMandatoryVolume();
  EXPECT_THAT(page.host.linesThatBegin("alert "),
              ElementsAre("alert Ready for next volume|Please insert " + name + "|OK|1"));
}

TEST_F(VolumeLoop, AVolumeNameOf512BytesEndsTheProcess) {
  Waiting page(0, "/Volumes/" + std::string(512, 'n'));
  EXPECT_DEATH(page.pane.askForMandatoryVolume(), "does not fit its buffer of 512 bytes");
}

TEST_F(VolumeLoop, ARootWithoutADataFolderKeepsPromptingAndNeverReachesTheSheet) {
  setAttributes("NumberOfVolumes = 1\n");
  makeFolder(kA);
  VolumePass pass(2, kA);
  int alerts = 0;
  pass.host.onAlert = [&](const std::string&) {
    if (++alerts == 25) {
      writeFile(std::string(kA) + "/TANVO/a.dat", "a");
    }
  };
  pass.run();
  EXPECT_EQ(pass.messages("Disc not ready: 1 0 0").size(), 25U);
  EXPECT_EQ(platform().callsThatBegin("sleep 10").size(), 25U);
  EXPECT_THAT(pass.host.linesThatBegin("sheet "), IsEmpty());
  EXPECT_EQ(readFile(std::string(kTanvo) + "/a.dat"), "a");
}

TEST_F(VolumeLoop, OtherModesNeverCheckAndNeverAsk) {
  setAttributes("NumberOfVolumes = 1\n");
  for (const std::int32_t mode : {0, 3, 4}) {
    VolumePass pass(mode, kA);
    pass.run();
    EXPECT_THAT(pass.host.linesThatBegin("alert "), IsEmpty()) << mode;
  }
  EXPECT_THAT(thoseThatBegin(logMessages(), "File check"), IsEmpty());
  EXPECT_THAT(platform().callsThatBegin("sleep"), IsEmpty());
}

// Each disc is put in after one more prompt than the one before it, while three threads are at work.
TEST_F(VolumeLoop, SeveralLateDiscsAreWaitedForEachInItsTurn) {
  setAttributes("NumberOfVolumes = 3\n");
  const std::vector<std::string> discs = {"Tavenhall Tessaphon A", "Tessaphon B", "Tessaphon C"};
  VolumePass pass(2, kA);
  std::size_t disc = 0;
  std::size_t sleeps = 0;
  pass.trace.onSleep = [&](unsigned seconds) {
    if (seconds == 10 && ++sleeps > disc) {
      writeFile("/Volumes/" + discs[disc] + "/TANVO/" + std::to_string(disc) + ".dat", discs[disc]);
      ++disc;
      sleeps = 0;
    }
  };
  pass.host.serve([&] { pass.pane.installAllVolumesForOneOf_TANVOorDOVA(); });
  EXPECT_THAT(pass.host.linesThatBegin("alert "),
              ElementsAre("alert Ready for next volume|Please insert Tavenhall Tessaphon A|OK|1",
                          "alert Ready for next volume|Please insert Tessaphon B|OK|1",
                          "alert Ready for next volume|Please insert Tessaphon B|OK|1",
                          "alert Ready for next volume|Please insert Tessaphon C|OK|1",
                          "alert Ready for next volume|Please insert Tessaphon C|OK|1",
                          "alert Ready for next volume|Please insert Tessaphon C|OK|1"));
  EXPECT_EQ(platform().callsThatBegin("sleep 10").size(), 6U);
  EXPECT_THAT(treeOf(kTanvo), ElementsAre("0.dat", "1.dat", "2.dat"));
  EXPECT_EQ(platform().callsThatBegin("system drutil -drive 1 eject").size(), 3U);
}

// ---- An optional disc ----

constexpr OptionalDisc kGlassRivers = {"Glass Rivers", "/Volumes/Glass Rivers DOVA Outrider"};
constexpr const char* kCheckG =
    "log File check: /Volumes/Glass Rivers DOVA Outrider /Volumes/Glass Rivers DOVA Outrider/TANVO "
    "/Volumes/Glass Rivers DOVA Outrider/Mac OSX/TANVO";
constexpr const char* kDialogG = "log Dialog prompting to insert optional disc: 2 Glass Rivers\n";
constexpr const char* kAlertG =
    "main: alert Ready for next volume|Insert Glass Rivers Outrider disc. Press Skip if you do not have this "
    "disc.|OK,Skip|1";

TEST_F(VolumeLoop, SkipOnAnOptionalDiscGoesOnAtOnce) {
  Waiting page(4, kGlassRivers.mountPath);
  page.host.answers = {1001};
  EXPECT_FALSE(page.pane.waitForVolume(&kGlassRivers));
  EXPECT_THAT(page.trace.events(), ElementsAre(kCheckG, "log Disc not ready: 0 0 0", kDialogG, kAlertG,
                                               "log Optional disc button choice 1001\n",
                                               "log Skipping an optional disc (ProcessThisDisc false)"));
  EXPECT_EQ(platform().now(), 0U);
}

TEST_F(VolumeLoop, OkOnAnOptionalDiscThatIsNotThereAsksAgainAfterTenSeconds) {
  Waiting page(4, kGlassRivers.mountPath);
  page.host.answers = {1000, 1000, 1001};
  EXPECT_FALSE(page.pane.waitForVolume(&kGlassRivers));
  EXPECT_THAT(
      page.trace.events(),
      ElementsAre(kCheckG, "log Disc not ready: 0 0 0", kDialogG, kAlertG,
                  "log Optional disc button choice 1000\n", "sleep 10", kCheckG, "log Disc not ready: 0 0 0",
                  kDialogG, kAlertG, "log Optional disc button choice 1000\n", "sleep 10", kCheckG,
                  "log Disc not ready: 0 0 0", kDialogG, kAlertG, "log Optional disc button choice 1001\n",
                  "log Skipping an optional disc (ProcessThisDisc false)"));
  EXPECT_EQ(platform().now(), 20U);
}

TEST_F(VolumeLoop, AnOptionalDiscThatIsThereIsNotAskedFor) {
  makeFolder(std::string(kGlassRivers.mountPath) + "/TANVO");
  Waiting page(4, kGlassRivers.mountPath);
  page.host.answers = {1001};
  EXPECT_TRUE(page.pane.waitForVolume(&kGlassRivers));
  EXPECT_THAT(page.trace.events(), ElementsAre(kCheckG));
}

TEST_F(VolumeLoop, AnOptionalDiscPutInWhileItIsAskedForIsReadyAfterTheSleep) {
  Waiting page(4, kGlassRivers.mountPath);
  page.host.onAlert = [](const std::string&) {
    makeFolder(std::string(kGlassRivers.mountPath) + "/Mac OSX/TANVO");
  };
  EXPECT_TRUE(page.pane.waitForVolume(&kGlassRivers));
  EXPECT_THAT(page.trace.events(), ElementsAre(kCheckG, "log Disc not ready: 0 0 0", kDialogG, kAlertG,
                                               "log Optional disc button choice 1000\n", "sleep 10", kCheckG));
}

TEST_F(VolumeLoop, SkipWinsThoughTheDiscWasPutIn) {
  Waiting page(4, kGlassRivers.mountPath);
  page.host.answers = {1001};
  page.host.onAlert = [](const std::string&) { makeFolder(std::string(kGlassRivers.mountPath) + "/TANVO"); };
  EXPECT_FALSE(page.pane.waitForVolume(&kGlassRivers));
}

TEST_F(VolumeLoop, EveryOtherAnswerMeansOk) {
  Waiting page(4, kGlassRivers.mountPath);
  page.host.answers = {0, 999, 1002, -1, 1, 1001};
  EXPECT_FALSE(page.pane.waitForVolume(&kGlassRivers));
  EXPECT_THAT(page.messages("Optional disc button choice"),
              ElementsAre("Optional disc button choice 0\n", "Optional disc button choice 999\n",
                          "Optional disc button choice 1002\n", "Optional disc button choice -1\n",
                          "Optional disc button choice 1\n", "Optional disc button choice 1001\n"));
  EXPECT_EQ(platform().now(), 50U);
}

}  // namespace

}  // namespace tavenhall::test

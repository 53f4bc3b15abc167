#include "tests/pane/execution_fixtures.h"
#include "tests/pane/volume_pass.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>

namespace tavenhall::test {

namespace {

using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;

// ---- Whole passes ----

TEST_F(VolumeLoop, AFolderBesideThePackageIsInstalledInThisOrder) {
  setTexts("");
  writeFile("/tmp/Start/TANVO/one.dat", "one");
  VolumePass pass(0);
  pass.run();
  EXPECT_THAT(
      pass.trace.eventsButProgress(),
      ElementsAre(kFound, "log Data from attributes file::   num Vol=0 ", "log Volume 0 /tmp/Start/TANVO\n",
                  "status  ", "log Data from attributes file::  InstalledData=Done in %s ",
                  "log Data from attributes file::  InstallingData=Copying to %s ",
                  "instructions Copying to " + kTo,
                  "log Data from attributes file:   data size=1000000 (bytes)", "animation.begin",
                  "animation.duration 0", "progress.min 0", "progress.max 976.562", "animation.end",
                  "log Volume count: 1",
                  "log Using primary folder /tmp/Start /tmp/Start/TANVO /tmp/Start/Mac OSX/TANVO",
                  "thread copySingleVolume", "log Begin copySingleVolume: copySrcPath /tmp/Start/TANVO\n",
                  "log Copying folder /tmp/Start/TANVO " + kTo + "\n", "status  ",
                  "log End copySingleVolume: copySrcPath /tmp/Start/TANVO\n"));
  EXPECT_EQ(readFile(kTo + "/one.dat"), "one");
  EXPECT_EQ(pass.pane.readyToProceed, 1);
  EXPECT_EQ(pass.pane.gCurrentVolumeNumber, 1);
}

TEST_F(VolumeLoop, TwoDiscsAreInstalledAndEjectedInThisOrder) {
  setTexts("NumberOfVolumes = 2\n");
  writeFile("/Volumes/Tavenhall Tessaphon A/TANVO/a.dat", "a");
  writeFile("/Volumes/Tessaphon B/Mac OSX/TANVO/b.dat", "b");
  VolumePass pass(2, "/Volumes/Tavenhall Tessaphon A");
  pass.run();
  const std::string a = "/Volumes/Tavenhall Tessaphon A";
  const std::string threeA = a + " " + a + "/TANVO " + a + "/Mac OSX/TANVO";
  const std::string b = "/Volumes/Tessaphon B";
  const std::string threeB = b + " " + b + "/TANVO " + b + "/Mac OSX/TANVO";
  EXPECT_THAT(
      pass.trace.eventsButProgress(),
      ElementsAre(
          kFound, "log Data from attributes file::   num Vol=2 ", "log Volume 0 " + a + "/TANVO\n", "status  ",
          "log File check: " + threeA, "log Data from attributes file::  InstalledData=Done in %s ",
          "log Data from attributes file::  InstallingData=Copying to %s ", "instructions Copying to " + kTo,
          "log Data from attributes file:   data size=1000000 (bytes)", "animation.begin",
          "animation.duration 0", "progress.min 0", "progress.max 976.562", "animation.end",
          "log Data from attributes file::   num Vol=2 ", "log Volume count: 2",
          "log Using primary folder " + threeA, "thread copySingleVolume",
          "log Begin copySingleVolume: copySrcPath " + a + "/TANVO\n",
          "log Copying folder " + a + "/TANVO " + kTo + "\n", "status  ",
          "log End copySingleVolume: copySrcPath " + a + "/TANVO\n", "system drutil -drive 1 eject",
          "log Volume 1 path should be: " + b, "log Volume 1 " + b + "/TANVO\n", "status  ",
          "log File check: " + threeB, "log Using alternate folder " + threeB, "thread copySingleVolume",
          "log Begin copySingleVolume: copySrcPath " + b + "/Mac OSX/TANVO\n",
          "log Copying folder " + b + "/Mac OSX/TANVO " + kTo + "\n", "status  ",
          "log End copySingleVolume: copySrcPath " + b + "/Mac OSX/TANVO\n", "system drutil -drive 1 eject"));
  EXPECT_THAT(treeOf(kTo), ElementsAre("a.dat", "b.dat"));
}

TEST_F(VolumeLoop, ACountThatComesOutBelowOneEndsThePassBeforeItsFirstVolume) {
  // Both are many volumes in 64 bits, and less than one in the 32 bits that keep them.
  for (const char* number : {"4294967296", "2147483648"}) {
    setTexts(std::string("NumberOfVolumes = ") + number + "\n");
    writeFile("/tmp/Start/TANVO/one.dat", "one");
    VolumePass pass(0);
    pass.pane.gCurrentVolumeNumber = 5;
    pass.run();
    EXPECT_EQ(lastLogMessage(), std::string("Data from attributes file::   num Vol=") + number + " ");
    EXPECT_THAT(pass.host.lines(), IsEmpty());
    EXPECT_EQ(pass.pane.gCurrentVolumeNumber, 0);
  }
  EXPECT_THAT(platform().calls(), IsEmpty());
  EXPECT_THAT(treeOf(kTo), IsEmpty());
}

// ---- The folder that is copied ----

TEST_F(VolumeLoop, ThePrimaryFolderWinsWhenBothAreThere) {
  setTexts("");
  writeFile("/tmp/Start/TANVO/primary.dat", "p");
  writeFile("/tmp/Start/Mac OSX/TANVO/alternate.dat", "a");
  VolumePass pass(3);
  pass.run();
  EXPECT_THAT(pass.messages("Using "),
              ElementsAre("Using primary folder /tmp/Start /tmp/Start/TANVO /tmp/Start/Mac OSX/TANVO"));
  EXPECT_THAT(treeOf(kTo), ElementsAre("primary.dat"));
}

TEST_F(VolumeLoop, TheAlternateFolderIsCopiedWhenItAloneIsThere) {
  setTexts("");
  writeFile("/tmp/Start/Mac OSX/TANVO/alternate.dat", "a");
  VolumePass pass(3);
  pass.run();
  EXPECT_THAT(pass.messages("Using "),
              ElementsAre("Using alternate folder /tmp/Start /tmp/Start/TANVO /tmp/Start/Mac OSX/TANVO"));
  EXPECT_THAT(treeOf(kTo), ElementsAre("alternate.dat"));
}

TEST_F(VolumeLoop, TheCopyThreadGetsTheBuffersThemselves) {
  setTexts("");
  makeFolder("/tmp/Start/TANVO");
  VolumePass primary(0);
  primary.run();
  EXPECT_EQ(primary.pane.copySrcPath, primary.pane.gPathOfSourceDataIncludingTANVOtail.c_str());
  EXPECT_EQ(primary.pane.copyDstPath, primary.pane.gTANVOorDOVA_destinationPath);

  std::filesystem::remove("/tmp/Start/TANVO");
  makeFolder("/tmp/Start/Mac OSX/TANVO");
  VolumePass alternate(0);
  alternate.run();
  EXPECT_EQ(alternate.pane.copySrcPath, alternate.pane.gAltSrcFolder.c_str());
}

TEST_F(VolumeLoop, FilesThatAreNotFoundAreLoggedShownAndEndThePass) {
  for (const std::int32_t mode : {0, 3}) {
    setTexts("NumberOfVolumes = 3\n");
    VolumePass pass(mode);
    pass.run();
    const auto events = pass.trace.events();
    const auto count = std::find(events.begin(), events.end(), "log Volume count: 3");
    EXPECT_THAT(std::vector<std::string>(count, events.end()),
                ElementsAre("log Volume count: 3",
                            "log Files to be installed not found /tmp/Start /tmp/Start/TANVO "
                            "/tmp/Start/Mac OSX/TANVO",
                            "main: sheet OK|Files to be installed not found.", "previous 0", "next 0"));
    EXPECT_EQ(pass.pane.gCurrentVolumeNumber, pass.pane.gVolumeCount + 1);
    EXPECT_EQ(pass.pane.gVolumeCount, 3);
  }
  EXPECT_THAT(platform().calls(), IsEmpty());
}

TEST_F(VolumeLoop, TheNotFoundSheetHasTheLocalisedButton) {
  platform().strings["OK_BUTTON"] = "Weiter";
  setTexts("");
  VolumePass pass(0);
  pass.run();
  EXPECT_THAT(pass.host.linesThatBegin("sheet "), ElementsAre("sheet Weiter|Files to be installed not found."));
}

TEST_F(VolumeLoop, AVolumeThatIsNotFoundLeavesTheResultOfTheOneBefore) {
  setTexts("NumberOfVolumes = 2\n");
  writeFile("/tmp/Start/TANVO/one.dat", "one");
  VolumePass pass(3);
  pass.run();
  EXPECT_EQ(lastLogMessage(),
            "Files to be installed not found /Volumes/Tessaphon B /Volumes/Tessaphon B/TANVO "
            "/Volumes/Tessaphon B/Mac OSX/TANVO");
  EXPECT_EQ(pass.pane.readyToProceed, 1);
  EXPECT_THAT(pass.host.linesThatBegin("next "), ElementsAre("next 1"));
}

TEST_F(VolumeLoop, AnUpdatePassesOverAMissingFolderWithoutAWord) {
  setTexts("NumberOfVolumes = 2\n");
  writeFile("/Volumes/Tessaphon B/TANVO/b.dat", "b");
  VolumePass pass(4);
  pass.pane.gNumTwoComponentInstallFolders = 1;
  pass.pane.gTwoComponentInstallFolderNames[0].assign("Aria");
  pass.run();
  EXPECT_THAT(pass.messages("Files to be"), IsEmpty());
  EXPECT_THAT(pass.host.linesThatBegin("sheet "), IsEmpty());
  EXPECT_THAT(pass.messages("Vol"), ElementsAre("Volume 0 /tmp/Start/TANVO\n", "Volume count: 2",
                                                "Volume 1 path should be: /Volumes/Tessaphon B",
                                                "Volume 1 /Volumes/Tessaphon B/TANVO\n"));
  EXPECT_THAT(
      pass.messages("Begin"),
      ElementsAre("Begin copySingleVolume for copySrcPathWithSubFolder /Volumes/Tessaphon B/TANVO/Aria\n"));
  EXPECT_EQ(pass.pane.gCurrentVolumeNumber, 2);
}

// ---- The copy ----

TEST_F(VolumeLoop, AFailedCopyDoesNotStopTheLoopAndTheLastResultStands) {
  setTexts("NumberOfVolumes = 2\n");
  makeFolder("/Volumes/Tavenhall Tessaphon A/TANVO");
  std::filesystem::create_symlink("/tmp/nowhere", "/Volumes/Tavenhall Tessaphon A/TANVO/broken");
  writeFile("/Volumes/Tessaphon B/TANVO/b.dat", "b");
  VolumePass pass(2, "/Volumes/Tavenhall Tessaphon A");
  pass.run();
  EXPECT_EQ(pass.pane.readyToProceed, 1);
  EXPECT_EQ(readFile(kTo + "/b.dat"), "b");
  EXPECT_EQ(platform().callsThatBegin("system ").size(), 2U);  // the failed disc is ejected, too
}

TEST_F(VolumeLoop, AFailedLastCopyIsNotReady) {
  setTexts("NumberOfVolumes = 2\n");
  writeFile("/Volumes/Tavenhall Tessaphon A/TANVO/a.dat", "a");
  makeFolder("/Volumes/Tessaphon B/TANVO");
  std::filesystem::create_symlink("/tmp/nowhere", "/Volumes/Tessaphon B/TANVO/broken");
  VolumePass pass(2, "/Volumes/Tavenhall Tessaphon A");
  pass.run();
  EXPECT_EQ(pass.pane.readyToProceed, 0);
}

TEST_F(VolumeLoop, DiscsAreEjectedInMode2Only) {
  setTexts("");
  writeFile("/tmp/Start/TANVO/one.dat", "one");
  for (const std::int32_t mode : {0, 3, 4}) {
    VolumePass pass(mode);
    pass.run();
    EXPECT_EQ(pass.pane.readyToProceed, 1) << mode;
  }
  EXPECT_THAT(platform().callsThatBegin("system "), IsEmpty());

  VolumePass pass(2);
  pass.run();
  EXPECT_THAT(platform().callsThatBegin("system "), ElementsAre("system drutil -drive 1 eject"));
}

TEST_F(VolumeLoop, AFailingEjectIsIgnored) {
  setTexts("NumberOfVolumes = 2\n");
  writeFile("/Volumes/Tavenhall Tessaphon A/TANVO/a.dat", "a");
  writeFile("/Volumes/Tessaphon B/TANVO/b.dat", "b");
  VolumePass pass(2, "/Volumes/Tavenhall Tessaphon A");
  pass.trace.shell = [](const std::string&) { return -1; };
  pass.run();
  EXPECT_THAT(treeOf(kTo), ElementsAre("a.dat", "b.dat"));
  EXPECT_THAT(pass.messages("drutil"), IsEmpty());
}

TEST_F(VolumeLoop, NoDestinationIsLoggedForEveryVolumeAndFails) {
  setTexts("");
  writeFile("/tmp/Start/TANVO/one.dat", "one");
  VolumePass pass(4);
  pass.pane.gTANVOorDOVA_destinationPath = nullptr;
  pass.run();
  EXPECT_THAT(pass.host.linesThatBegin("instructions "), ElementsAre("instructions Copying to (null)"));
  EXPECT_THAT(pass.messages("copyDirectoryOrFile:"),
              ElementsAre("copyDirectoryOrFile: no destination for /tmp/Start/TANVO"));
  EXPECT_EQ(pass.pane.readyToProceed, 0);
}

TEST_F(VolumeLoop, WithoutAThreadTheVolumeIsCopiedInline) {
  setTexts("");
  writeFile("/tmp/Start/TANVO/one.dat", "one");
  platform().canStartThreads = false;
  VolumePass pass(0);
  pass.run();
  EXPECT_EQ(readFile(kTo + "/one.dat"), "one");
  EXPECT_EQ(pass.pane.copySingleVolumeRunning, 0);
  EXPECT_THAT(platform().calls(), ElementsAre("thread copySingleVolume"));
}

// ---- Threads ----

TEST_F(VolumeLoop, TheFlagIsSetBeforeTheCopyThreadStarts) {
  setTexts("");
  makeFolder("/tmp/Start/TANVO");
  VolumePass pass(0);
  int flag = -1;
  pass.trace.onLine = [&](const std::string& line) {
    if (line == "thread.started copySingleVolume") {
      flag = pass.pane.copySingleVolumeRunning;
    }
  };
  pass.run();
  EXPECT_EQ(flag, 1);
  EXPECT_EQ(pass.pane.copySingleVolumeRunning, 0);
}

TEST_F(VolumeLoop, TheFlagIsPolledOnceASecondUntilTheCopyThreadClearsIt) {
  setTexts("");
  writeFile("/tmp/Start/TANVO/one.dat", "one");
  VolumePass pass(0);
  std::mutex mutex;
  std::condition_variable polled;
  std::thread::id copyThread;
  int polls = 0;
  pass.trace.onSleep = [&](unsigned seconds) {
    const std::lock_guard lock(mutex);
    if (std::this_thread::get_id() != copyThread) {
      EXPECT_EQ(seconds, 1U);
      ++polls;
      polled.notify_all();
    }
  };
  // The copy thread, at its end, lasts until the fourth poll, for three seconds.
  pass.trace.onLine = [&](const std::string& line) {
    if (line != "status  " || pass.pane.copySingleVolumeRunning == 0) {
      return;
    }
    std::unique_lock lock(mutex);
    copyThread = std::this_thread::get_id();
    for (int second = 0; second < 4; ++second) {
      ASSERT_TRUE(polled.wait_for(lock, std::chrono::seconds(30), [&] { return polls > second; }));
      if (second < 3) {
        lock.unlock();
        sleepSeconds(1);
        lock.lock();
      }
    }
  };
  pass.host.serve([&] { pass.pane.installAllVolumesForOneOf_TANVOorDOVA(); });
  EXPECT_EQ(polls, 4);
  EXPECT_EQ(platform().now(), 4U);
  EXPECT_EQ(pass.pane.readyToProceed, 1);
}

TEST_F(VolumeLoop, OneCopyThreadAVolumeRunsWhileTheMainThreadServes) {
  setTexts("NumberOfVolumes = 2\n");
  writeFile("/Volumes/Tavenhall Tessaphon A/TANVO/a.dat", someBytes(3000000));
  writeFile("/Volumes/Tessaphon B/TANVO/b.dat", someBytes(2000000, 2));
  VolumePass pass(2, "/Volumes/Tavenhall Tessaphon A");
  pass.host.serve([&] { pass.pane.installAllVolumesForOneOf_TANVOorDOVA(); });
  EXPECT_THAT(platform().callsThatBegin("thread "),
              ElementsAre("thread copySingleVolume", "thread copySingleVolume"));
  EXPECT_EQ(readFile(kTo + "/a.dat"), someBytes(3000000));
  EXPECT_EQ(readFile(kTo + "/b.dat"), someBytes(2000000, 2));
  EXPECT_EQ(pass.host.linesThatBegin("thread.ended copySingleVolume").size(), 2U);
}

}  // namespace

}  // namespace tavenhall::test

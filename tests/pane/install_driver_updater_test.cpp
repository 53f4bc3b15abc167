#include "tests/pane/execution_fixtures.h"
#include "tests/pane/volume_pass.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavenhall::test {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

const std::string kPackage = "/Users/tester/Downloads/Set";
const std::string kData = kPackage + "/Data";
const std::string kDova = "/Users/tester/Library/Application Support/Tavenhall/DOVA";

// An update whose data lies in the folder Data beside the package.
struct Update : VolumePass {
  explicit Update(const std::string& more = "") : VolumePass(4, kData) {
    setAttributes(
        "InstallingData = Copying to %s\nInstalledData = Done in %s\nTotalSizeMillionsBytes = 1\n"
        "RelativePath = Data\n" +
        more);
    pane.gTANVOorDOVAnameOnly.clear();
  }

  void run() {
    host.serve([this] { pane.doEntireInstall(); });
  }
};

void append(std::vector<std::string>& lines, const std::vector<std::string>& more) {
  lines.insert(lines.end(), more.begin(), more.end());
}

// A pass of one volume whose data folder `name` is empty.
std::vector<std::string> passOf(const std::string& name, const std::string& destination) {
  const std::string folder = kData + "/" + name;
  return {"log Data from attributes file::   num Vol=0 ",
          "log Volume 0 " + folder + "\n",
          "status  ",
          "log Data from attributes file::  InstalledData=Done in %s ",
          "log Data from attributes file::  InstallingData=Copying to %s ",
          "instructions Copying to " + destination,
          "log Data from attributes file:   data size=1000000 (bytes)",
          "animation.begin",
          "animation.duration 0",
          "progress.min 0",
          "progress.max 976.562",
          "animation.end",
          "log Volume count: 1",
          "log Using primary folder " + kData + " " + folder + " " + kData + "/Mac OSX/" + name,
          "thread copySingleVolume",
          "log Begin copySingleVolume: copySrcPath " + folder + "\n",
          destination == "(null)" ? "log copyDirectoryOrFile: no destination for " + folder
                                  : "log Copying folder " + folder + " " + destination + "\n",
          "status  ",
          "log End copySingleVolume: copySrcPath " + folder + "\n"};
}

// The events up to and without the driver's closing lines.
std::vector<std::string> eventsOfPasses(Update& update) {
  auto events = update.trace.events();
  events.erase(std::find(events.begin(), events.end(), "log Finished with all TANVO/DOVA data"), events.end());
  return events;
}

// ---- The passes ----

TEST_F(InstallDriver, AnUpdateCopiesTheOutsideFoldersThenTanvoThenDova) {
  Update update;
  makeFolder(kPackage + "/Library/Empty");
  makeFolder(kPackage + "/Applications");
  makeFolder(kData + "/TANVO");
  makeFolder(kData + "/DOVA");
  makeFolder(kDova);
  update.run();
  std::vector<std::string> expected = {"main: progress.value 0",
                                       "main: progress.display",
                                       "log Copying folder " + kPackage + "/Library /Library/\n",
                                       "log Copying folder " + kPackage + "/Library/Empty /Library//Empty\n",
                                       "log mkdir 0 2 /Library//Empty",
                                       "log Copying folder " + kPackage + "/Applications /Applications/\n",
                                       "log After resolve 1 " + kTo,
                                       "log File exists",
                                       kFound};
  append(expected, passOf("TANVO", kTo));
  append(expected, {"log Data from attributes file::    RelativePath=Data ", "log After resolve 1 " + kDova,
                    "log File exists"});
  append(expected, passOf("DOVA", kDova));
  EXPECT_THAT(eventsOfPasses(update), ElementsAreArray(expected));
}

TEST_F(InstallDriver, EachPassFillsItsOwnFolder) {
  Update update;
  writeFile(kData + "/TANVO/one.dat", "one");
  writeFile(kData + "/DOVA/two.dat", "two");
  makeFolder(kDova);
  update.run();
  EXPECT_THAT(treeOf(kTo), ElementsAre("one.dat"));
  EXPECT_THAT(treeOf(kDova), ElementsAre("two.dat"));
  EXPECT_EQ(update.host.linesThatBegin("instructions ").back(), "instructions Done in " + kDova);
  EXPECT_EQ(update.pane.gTANVOorDOVAnameOnly.view(), "DOVA");
}

TEST_F(InstallDriver, AnUpdateAsksForNoLocalisedFolderName) {
  platform().strings["FolderName"] = "Data";
  Update update;
  writeFile(kData + "/TANVO/one.dat", "one");
  update.run();
  EXPECT_THAT(update.messages("Volume 0"),
              ElementsAre("Volume 0 " + kData + "/TANVO\n", "Volume 0 " + kData + "/DOVA\n"));
}

TEST_F(InstallDriver, TheDovaPassTakesTheRelativePathThoughTheTanvoPassReadFromVolumes) {
  Update update("NumberOfVolumes = 2\n");
  update.pane.gPathOfSourceDataExcludingTANVOtail.assign("/Volumes/Tavenhall Tessaphon A");
  writeFile("/Volumes/Tavenhall Tessaphon A/TANVO/a.dat", "a");
  writeFile(kData + "/DOVA/two.dat", "two");
  makeFolder(kDova);
  update.run();
  EXPECT_THAT(
      update.messages("Volume "),
      ElementsAre("Volume 0 /Volumes/Tavenhall Tessaphon A/TANVO\n", "Volume count: 2",
                  "Volume 1 path should be: /Volumes/Tessaphon B", "Volume 1 /Volumes/Tessaphon B/TANVO\n",
                  "Volume 0 " + kData + "/DOVA\n", "Volume count: 2",
                  "Volume 1 path should be: /Volumes/Tessaphon B", "Volume 1 /Volumes/Tessaphon B/DOVA\n"));
  EXPECT_THAT(treeOf(kTo), ElementsAre("a.dat"));
  EXPECT_THAT(treeOf(kDova), ElementsAre("two.dat"));
}

TEST_F(InstallDriver, WithoutARelativePathTheDovaDataLiesAboveThePackagesFolder) {
  Update update;
  setAttributes("TotalSizeMillionsBytes = 1\n");
  writeFile("/Users/tester/Downloads/DOVA/two.dat", "two");
  makeFolder(kDova);
  update.run();
  EXPECT_THAT(update.messages("Could not find RelativePath"),
              ElementsAre("Could not find RelativePath string in attributes file "));
  EXPECT_EQ(update.root(), kPackage + "/..");
  EXPECT_THAT(treeOf(kDova), ElementsAre("two.dat"));
}

TEST_F(InstallDriver, APartThatTheUpdateDoesNotCarryIsPassedOver) {
  Update update;
  writeFile(kData + "/DOVA/two.dat", "two");
  makeFolder(kDova);
  update.run();
  EXPECT_THAT(update.host.linesThatBegin("sheet "), IsEmpty());
  EXPECT_EQ(platform().callsThatBegin("thread ").size(), 1U);
  EXPECT_EQ(readFile(kDova + "/two.dat"), "two");
}

// ---- Central folders that cannot be resolved ----

TEST_F(InstallDriver, ACentralFolderThatIsNotThereReachesTheCopyAsNoDestination) {
  Update update;
  std::filesystem::remove(kTo);
  makeFolder(kData + "/TANVO");
  makeFolder(kData + "/DOVA");
  update.run();
  std::vector<std::string> expected = {"main: progress.value 0", "main: progress.display",
                                       "log After resolve 1 " + kTo, kFound};
  append(expected, passOf("TANVO", "(null)"));
  append(expected, {"log Data from attributes file::    RelativePath=Data ", "log After resolve 1 " + kDova});
  append(expected, passOf("DOVA", "(null)"));
  EXPECT_THAT(eventsOfPasses(update), ElementsAreArray(expected));
  EXPECT_EQ(update.pane.readyToProceed, 0);
}

TEST_F(InstallDriver, WithoutCentralFoldersNothingIsTouched) {
  Update update;
  std::filesystem::remove(kTo);
  writeFile(kData + "/TANVO/one.dat", "one");
  writeFile(kData + "/DOVA/two.dat", "two");
  const auto before = treeOf("/Users/tester/Library/Application Support");
  update.run();
  EXPECT_EQ(treeOf("/Users/tester/Library/Application Support"), before);
  EXPECT_EQ(update.pane.kBytesCopied, 0);
  EXPECT_THAT(update.host.linesThatBegin("sheet "), IsEmpty());
  EXPECT_EQ(update.host.linesThatBegin("instructions ").back(), "instructions Done in (null)");
  EXPECT_EQ(lastLogMessage(),
            "Installation complete\n*********************************************************\n");
}

TEST_F(InstallDriver, ADestinationMissingForTanvoAloneLeavesDovaItsOwn) {
  Update update;
  std::filesystem::remove(kTo);
  writeFile(kData + "/TANVO/one.dat", "one");
  writeFile(kData + "/DOVA/two.dat", "two");
  makeFolder(kDova);
  update.run();
  EXPECT_FALSE(exists(kTo));
  EXPECT_THAT(treeOf(kDova), ElementsAre("two.dat"));
  EXPECT_EQ(update.pane.readyToProceed, 1);
}

// ---- Library and Applications beside the package ----

TEST_F(InstallDriver, WithoutLibraryAndApplicationsTheTanvoPassFollowsAtOnce) {
  Update update;
  makeFolder(kData + "/TANVO");
  makeFolder(kData + "/DOVA");
  makeFolder(kDova);
  update.run();
  std::vector<std::string> expected = {"main: progress.value 0", "main: progress.display",
                                       "log After resolve 1 " + kTo, "log File exists", kFound};
  append(expected, passOf("TANVO", kTo));
  const auto events = eventsOfPasses(update);
  ASSERT_GE(events.size(), expected.size());
  EXPECT_THAT(
      std::vector<std::string>(events.begin(), events.begin() + static_cast<std::ptrdiff_t>(expected.size())),
      ElementsAreArray(expected));
  EXPECT_THAT(treeOf("/Library"), IsEmpty());
  EXPECT_THAT(treeOf("/Applications"), IsEmpty());
}

TEST_F(InstallDriver, LibraryAloneIsCopied) {
  Update update;
  writeFile(kPackage + "/Library/Audio/Presets/one.txt", "one");
  update.pane.copySupportHubExternalFolders();
  EXPECT_THAT(logMessages(),
              ElementsAre("Copying folder " + kPackage + "/Library /Library/\n",
                          "Copying folder " + kPackage + "/Library/Audio /Library//Audio\n",
                          "mkdir 0 2 /Library//Audio",
                          "Copying folder " + kPackage + "/Library/Audio/Presets /Library//Audio/Presets\n",
                          "mkdir 0 2 /Library//Audio/Presets"));
  EXPECT_EQ(readFile("/Library/Audio/Presets/one.txt"), "one");
}

TEST_F(InstallDriver, ApplicationsAloneAreCopied) {
  Update update;
  writeFile(kPackage + "/Applications/Tools/two.txt", "two");
  update.pane.copySupportHubExternalFolders();
  EXPECT_THAT(logMessages(),
              ElementsAre("Copying folder " + kPackage + "/Applications /Applications/\n",
                          "Copying folder " + kPackage + "/Applications/Tools /Applications//Tools\n",
                          "mkdir 0 2 /Applications//Tools"));
  EXPECT_EQ(readFile("/Applications/Tools/two.txt"), "two");
}

TEST_F(InstallDriver, TheOutsideFoldersHaveAnEmptyTailName) {
  Update update;
  writeFile(kPackage + "/Library/one.txt", "one");
  update.pane.copySupportHubExternalFolders();
  EXPECT_THAT(update.host.linesThatBegin("status "), ElementsAre("status Installing... "));
}

TEST_F(InstallDriver, AFailureInTheOutsideFoldersIsShownButNotKept) {
  Update update;
  makeFolder(kPackage + "/Library");
  std::filesystem::create_symlink("/tmp/nowhere", kPackage + "/Library/broken");
  writeFile(kData + "/TANVO/one.dat", "one");
  update.pane.readyToProceed = 1;
  update.pane.copySupportHubExternalFolders();
  EXPECT_EQ(update.pane.readyToProceed, 1);
  EXPECT_THAT(update.host.linesThatBegin("sheet "), ElementsAre("sheet OK|Failed to open input file."));
}

TEST_F(InstallDriver, BytesOfTheOutsideFoldersCountForTheBar) {
  Update update;
  writeFile(kPackage + "/Library/one.dat", someBytes(20480));
  writeFile(kData + "/TANVO/two.dat", someBytes(30720));
  update.run();
  EXPECT_EQ(update.pane.kBytesCopied, 50);
}

TEST_F(InstallDriver, PluginsAndApplicationsOfAnUpdateReplaceTheOldOnes) {
  Update update;
  writeFile(kPackage + "/Library/Audio/Plug-Ins/VST/Tessaphon.vst/new", "new");
  writeFile(kPackage + "/Applications/Tessaphon.app/new", "new");
  writeFile("/Library/Audio/Plug-Ins/VST/Tessaphon.vst/old", "old");
  writeFile("/Applications/Tessaphon.app/old", "old");
  update.run();
  EXPECT_THAT(
      platform().callsThatBegin("remove "),
      ElementsAre("remove /Library//Audio/Plug-Ins/VST/Tessaphon.vst", "remove /Applications//Tessaphon.app"));
  EXPECT_THAT(treeOf("/Library/Audio/Plug-Ins/VST/Tessaphon.vst"), ElementsAre("new"));
  EXPECT_THAT(treeOf("/Applications/Tessaphon.app"), ElementsAre("new"));
  EXPECT_THAT(platform().callsThatBegin("system sudo chmod -R"),
              ElementsAre("system sudo chmod -R 777 /Applications//Tessaphon.app/new",
                          "system sudo chmod -R 777 /Applications//Tessaphon.app"));
}

}  // namespace

}  // namespace tavenhall::test

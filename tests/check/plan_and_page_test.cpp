#include "context/installation_log.h"
#include "host/set/install_plan.h"
#include "pane/install_data_pane.h"
#include "tests/support/files.h"
#include "tests/support/private_root.h"
#include "tests/support/recording_host.h"
#include "tests/support/recording_platform.h"

#include <gtest/gtest.h>

// The plan against the page itself: the same package, once planned, once installed.
namespace tavenhall::test {

namespace {

const std::string kDataRoot = "/Users/tester/Library/Application Support/Tavenhall";

InstallPlan planFor(const std::string& product, std::optional<std::string> installType = {}) {
  return planInstall(
      {std::string(kSet) + "/Installer.pkg", productNamed(product), kDataRoot, std::move(installType)});
}

// What the page does, as its installer sees it.
struct PageRun {
  RecordingHost host;
  InstallDataPane pane{host};

  explicit PageRun(const std::string& product) {
    const Product names = productNamed(product);
    platform().strings["PluginName"] = names.pluginName;
    platform().strings["FolderName"] = names.folderName;
    makeFolder("/Users/tester/Library/Caches");
    makeFolder(kDataRoot + "/TANVO");
    makeFolder(kDataRoot + "/DOVA");
    pane.didEnterPane(0);
    host.serve();
  }

  // The primary folder of each volume, in order.
  static std::vector<std::string> volumes() {
    std::vector<std::string> folders;
    for (const std::string& message : logMessages()) {
      if (message.starts_with("Volume ") && message.ends_with("\n")) {
        folders.push_back(message.substr(message.find('/'), message.size() - 1 - message.find('/')));
      }
    }
    return folders;
  }
};

std::vector<std::string> plannedVolumes(const InstallPlan& plan) {
  std::vector<std::string> folders;
  for (const PlannedPass& pass : plan.passes) {
    for (const PlannedVolume& volume : pass.volumes) {
      folders.push_back(volume.primary);
    }
  }
  return folders;
}

void expectSame(const InstallPlan& plan, PageRun& page) {
  EXPECT_EQ(plan.mode, page.pane.gInstallMode);
  EXPECT_EQ(plan.editions.isOffered, page.pane.gInstallationHasLiteVsFullOption != 0);
  EXPECT_EQ(plan.editions.allAreLite, page.pane.gAllTwoComponentInstallChoicesAreLite != 0);
  EXPECT_EQ(plan.title, page.pane.title());
  EXPECT_EQ(plan.announced.bytes, page.pane.totalNumBytesExpectedAcrossAllVolumes);
  EXPECT_EQ(plan.passes.back().destination, page.pane.gTANVOorDOVA_destinationPath);
  EXPECT_EQ(plan.passes.back().volumeCount, page.pane.gVolumeCount);
  EXPECT_EQ(plannedVolumes(plan), page.volumes());
  const auto texts = page.host.linesThatBegin("instructions ");
  ASSERT_GE(texts.size(), 2U);
  EXPECT_EQ("instructions " + plan.enteringText, texts.front());
  EXPECT_EQ("instructions " + plan.passes.back().text, texts.at(texts.size() - 2));
  EXPECT_EQ("instructions " + plan.completionText, texts.back());
  ASSERT_EQ(plan.editions.libraries.size(), static_cast<std::size_t>(page.pane.gNumTwoComponentInstallFolders));
  for (std::size_t i = 0; i < plan.editions.libraries.size(); ++i) {
    EXPECT_EQ(plan.editions.libraries[i].folderName, page.pane.gTwoComponentInstallFolderNames[i].view());
    EXPECT_EQ(plan.editions.libraries[i].isLite, page.pane.gTwoComponentInstallChoicesAreLite[i] != 0);
  }
}

// Builds nothing that the page changes, so the plan is made first.
void expectPlanIsWhatThePageDoes(const std::string& product,
                                 const std::optional<std::string>& installType = {}) {
  const InstallPlan plan = planFor(product, installType);
  PageRun page(product);
  expectSame(plan, page);
}

void makeDisc(const std::string& name, const std::string& dataFolder) {
  writeFile("/Volumes/" + name + "/" + dataFolder + "/Library/file.db", "data");
}

}  // namespace

TEST(InstallPlan, IsWhatThePageDoesWithOneDisc) {
  makeDisc("Tavenhall Lumaweave", "DOVA");
  setAttributes("Mode = InstallFromVolumes\nTotalSizeMillionsBytes = 7\nInstallDataTitle = Lumaweave\n");
  expectPlanIsWhatThePageDoes("Lumaweave");
}

TEST(InstallPlan, IsWhatThePageDoesWithThreeDiscsOfTessaphon) {
  makeDisc("Tavenhall Tessaphon A", "TANVO");
  makeDisc("Tessaphon B", "TANVO");
  makeDisc("Tessaphon C", "Mac OSX/TANVO");
  setAttributes(
      "Mode = InstallFromVolumes\nNumberOfVolumes = 3\nInstalledData = In %s\nInstallingData = To %s\n");
  expectPlanIsWhatThePageDoes("Tessaphon");
}

TEST(InstallPlan, IsWhatThePageDoesWithALiteChoice) {
  makeDisc("Tavenhall Bassoria", "DOVA");
  setAttributes(
      "NumberOfVolumes = 2\nLiteVsFullPrompt = YES\nTotalSizeMillionsBytes = 9\n"
      "Component1SizeMillionsBytes = 4\n");
  writeFile("/tmp/TavInstallType", "Lite\n");
  expectPlanIsWhatThePageDoes("Bassoria");
}

TEST(InstallPlan, IsWhatThePageDoesWithoutAnyAttributes) {
  makeDisc("Tavenhall Tempora QX", "DOVA");
  makeFolder(kSet);
  setPackage(std::string(kSet) + "/Installer.pkg");
  expectPlanIsWhatThePageDoes("TemporaQX");
}

TEST(InstallPlan, IsWhatThePageDoesWithAFullDataUpdate) {
  writeFile(std::string(kSet) + "/One/TANVO/a", "a");
  writeFile(std::string(kSet) + "/Two/TANVO/b", "b");
  setAttributes(
      "Mode = DataUpdater\nRelativePath = One\nRelativePath2 = Two\nNumberOfVolumes = 2\n"
      "TotalSizeMillionsBytes = 3\nComponent1SizeMillionsBytes = 1\n");
  writeFile("/tmp/TavInstallType", "Full\n");
  expectPlanIsWhatThePageDoes("Tessaphon");
}

TEST(InstallPlan, IsWhatThePageDoesWithALiteDataUpdate) {
  writeFile(std::string(kSet) + "/One/TANVO/a", "a");
  setAttributes(
      "Mode = DataUpdater\nRelativePath = One\nRelativePath2 = Two\nNumberOfVolumes = 2\n"
      "TotalSizeMillionsBytes = 3\nComponent1SizeMillionsBytes = 1\n");
  writeFile("/tmp/TavInstallType", "Lite\n");
  expectPlanIsWhatThePageDoes("Tessaphon");
}

TEST(InstallPlan, IsWhatThePageDoesWithASecondFolderThatNobodyNamed) {
  writeFile(std::string(kSet) + "/One/TANVO/a", "a");
  writeFile(std::string(kSet) + "/My title/TANVO/b", "b");
  setAttributes("Mode = Downloaded\nRelativePath = One\nNumberOfVolumes = 2\nInstallDataTitle = My title\n");
  expectPlanIsWhatThePageDoes("Tessaphon");
}

TEST(InstallPlan, IsWhatThePageDoesWithThreeVolumesBesideThePackage) {
  writeFile("/Users/tester/Downloads/DOVA/a", "a");
  makeDisc("Tavenhall Lumaweave", "DOVA");
  setAttributes("Mode = Downloaded\nNumberOfVolumes = 3\n");
  expectPlanIsWhatThePageDoes("Lumaweave");
}

namespace {

void makeUpdate() {
  for (const char* part : {"One", "Two"}) {
    for (const char* library : {"Tessaphon", "Mirel Packs/Velmora", "Mirel Packs/Quorra", "Other"}) {
      writeFile(std::string(kSet) + "/" + part + "/TANVO/" + library + "/" + part + ".db", "data");
    }
  }
  setAttributes(
      "Mode = TavenhallUpdater\nRelativePath = One\nRelativePath2 = Two\nTotalSizeMillionsBytes = 8\n"
      "Component1SizeMillionsBytes = 5\n");
}

void installPack(const std::string& name, std::size_t databaseSize) {
  writeFile(kDataRoot + "/TANVO/Mirel Packs/" + name + "/Soundsources/Factory/" + name + " Library/Sub/a.db",
            std::string(databaseSize, 'x'));
}

}  // namespace

TEST(InstallPlan, IsWhatThePageDoesWithAnUpdateOfDifferentEditions) {
  makeUpdate();
  installPack("Velmora", 999);
  installPack("Quorra", 1000);
  expectPlanIsWhatThePageDoes("Tessaphon");
}

TEST(InstallPlan, IsWhatThePageDoesWithAnUpdateOfLiteEditions) {
  makeUpdate();
  std::filesystem::remove_all(std::string(kSet) + "/Two/TANVO/Other");
  installPack("Velmora", 12);
  installPack("Quorra", 34);
  expectPlanIsWhatThePageDoes("Tessaphon");
}

TEST(InstallPlan, IsWhatThePageDoesWithAnUpdateWithoutLibraries) {
  writeFile(std::string(kSet) + "/One/DOVA/a", "a");
  writeFile(std::string(kSet) + "/Library/Audio/readme", "a");
  setAttributes("Mode = SupportHub\nRelativePath = One\nNumberOfVolumes = 2\n");
  expectPlanIsWhatThePageDoes("Lumaweave");
  EXPECT_EQ(planFor("Lumaweave").systemFolders.size(), 1U);
}

TEST(InstallPlan, ListsNoMoreLibrariesThanThePageHasRoomFor) {
  setAttributes("Mode = SupportHub\nRelativePath2 = Two\n");
  for (int i = 0; i < 60; ++i) {
    makeFolder(std::string(kSet) + "/Two/TANVO/Library " + std::to_string(i));
  }
  EXPECT_EQ(planFor("Tessaphon").editions.libraries.size(), 50U);
  expectPlanIsWhatThePageDoes("Tessaphon");
}

TEST(InstallPlan, AnAskedForTypeCountsBeforeTheFileInTmp) {
  setAttributes("Mode = DataUpdater\nNumberOfVolumes = 2\n");
  writeFile("/tmp/TavInstallType", "Full\n");
  const InstallPlan plan = planFor("Tessaphon", "Lite");
  EXPECT_EQ(plan.editions.source, EditionSource::request);
  EXPECT_TRUE(plan.editions.allAreLite);
  EXPECT_EQ(planFor("Tessaphon").editions.source, EditionSource::choiceFile);
  EXPECT_FALSE(planFor("Tessaphon").editions.allAreLite);
}

TEST(InstallPlan, NobodysPlanNamesTheHomeByItsSign) {
  setAttributes("InstallingData = To %s\nMode = InstallFromVolumes\n");
  const InstallPlan plan =
      planInstall({std::string(kSet) + "/Installer.pkg", productNamed("Lumaweave"), {}, {}});
  EXPECT_EQ(plan.enteringText, "To ~/Library/Application Support/Tavenhall/DOVA");
}

TEST(InstallPlan, AnAbsurdNumberOfVolumesIsNotListedToItsEnd) {
  setAttributes("NumberOfVolumes = 2000000000\nMode = InstallFromVolumes\n");
  const InstallPlan plan = planFor("Tessaphon");
  EXPECT_EQ(plan.passes[0].volumeCount, 2000000000);
  EXPECT_EQ(plan.passes[0].volumes.size(), 100U);
}

TEST(InstallPlan, WritesNoLogAndNoOtherFile) {
  setAttributes("Mode = DataUpdater\nNumberOfVolumes = 2\n");
  const auto before = treeOf("/Users/tester");
  static_cast<void>(planFor("Tessaphon"));
  EXPECT_EQ(treeOf("/Users/tester"), before);
  EXPECT_EQ(treeOf("/tmp"), std::vector<std::string>{"TavInstallLoc"});
}

TEST(InstallPlan, ThePackagesFolderIsFoundAsThePageFindsIt) {
  EXPECT_EQ(packageFolderOf("/Users/u/Downloads/Data Installer.pkg"), "/Users/u/Downloads");
  EXPECT_EQ(packageFolderOf("/Volumes/Disk/Installer.pkg/"), "/Volumes/Disk");
  EXPECT_EQ(packageFolderOf("C:\\dir\\x.pkg"), "C:\\dir");
  EXPECT_EQ(packageFolderOf("/a/b\\x.pkg"), "/a/b");
  EXPECT_EQ(packageFolderOf("x.pkg"), "x.pkg");
  EXPECT_EQ(packageFolderOf("/x.pkg"), "");
}

}  // namespace tavenhall::test

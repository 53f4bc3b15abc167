#include "pane/install_data_pane.h"
#include "tests/pane/event_trace.h"
#include "tests/pane/execution_fixtures.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace tavenhall::test {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

// An update's page that copies whole bundles.
struct BundlePage {
  RecordingHost host;
  InstallDataPane pane{host};
  EventTrace trace{host};

  explicit BundlePage(std::int32_t mode = 4) {
    pane.gInstallMode = mode;
    platform().removal = [this](const std::string& path) {
      trace.takeRecords();
      std::error_code error;
      return RemovalError{std::filesystem::remove_all(path, error) == 0, "", ""};
    };
    platform().fileSystem = [this](const std::string& path) {
      trace.takeRecords();
      return exists(path);
    };
  }

  std::int32_t copyFolder(const std::string& source, const std::string& dest) {
    return pane.copyDirectoryOrFile(source.c_str(), dest.c_str(), "", true);
  }
  std::int32_t copyFile(const std::string& source, const std::string& dest) {
    return pane.copyDirectoryOrFile(source.c_str(), dest.c_str(), "", false);
  }
};

std::vector<std::string> chmods() { return platform().callsThatBegin("system sudo chmod -R"); }

// ---- A plug-in ----

TEST_F(PluginPlacement, AComponentReplacesTheOldOneAndItsInnerItemsLogNothingOfIt) {
  const std::string from = "/tmp/Set/Library/Audio/Plug-Ins/Components/Lumaweave.component";
  const std::string to = "/Library//Audio/Plug-Ins/Components/Lumaweave.component";
  writeFile(from + "/Contents/MacOS/Lumaweave", "new");
  writeFile(to + "/Contents/Resources/old.nib", "old");
  BundlePage page;
  EXPECT_EQ(page.copyFolder(from, to), 1);
  EXPECT_THAT(page.trace.eventsButProgress(),
              ElementsAre("log Configuring VST and Comp", "system sudo chmod 777 /Library/Audio/Plug-Ins/VST",
                          "log sudo chmod 777 /Library/Audio/Plug-Ins/VST   ... result = 0\n",
                          "system sudo chmod 777 /Library/Audio/Plug-Ins/VST3",
                          "log sudo chmod 777 /Library/Audio/Plug-Ins/VST3   ... result = 0\n",
                          "system sudo chmod 777 /Library/Audio/Plug-Ins/Components",
                          "log sudo chmod 777 /Library/Audio/Plug-Ins/Components   ... result = 0\n",
                          "log Deleting pre-existing plugin/wrapper/application at " + to, "remove " + to,
                          "log Successfully deleted existing p/w/a at " + to, "log  ...   ", "statfs " + to,
                          "log  ...  statfs call on p/w/a failed.",
                          "log  ... failed to write dummy file into p/w/a folder.",
                          "log Copying folder " + from + " " + to + "\n", "log mkdir 0 2 " + to,
                          "log Copying folder " + from + "/Contents " + to + "/Contents\n",
                          "log mkdir 0 2 " + to + "/Contents",
                          "log Copying folder " + from + "/Contents/MacOS " + to + "/Contents/MacOS\n",
                          "log mkdir 0 2 " + to + "/Contents/MacOS"));
  EXPECT_THAT(treeOf(to), ElementsAre("Contents/", "Contents/MacOS/", "Contents/MacOS/Lumaweave"));
  EXPECT_EQ(readFile(to + "/Contents/MacOS/Lumaweave"), "new");
}

TEST_F(PluginPlacement, AllKindsOfOneProductAreRemovedInOneCopyOfTheLibrary) {
  for (const char* bundle :
       {"Audio/Plug-Ins/Components/Tessaphon.component", "Audio/Plug-Ins/VST/Tessaphon.vst",
        "Audio/Plug-Ins/VST3/Tessaphon.vst3", "Application Support/Avid/Audio/Plug-Ins/Tessaphon.aaxplugin"}) {
    writeFile(std::string("/tmp/Set/Library/") + bundle + "/Contents/new", "new");
    writeFile(std::string("/Library/") + bundle + "/Contents/old", "old");
  }
  BundlePage page;
  EXPECT_EQ(page.copyFolder("/tmp/Set/Library", "/Library/"), 1);
  EXPECT_THAT(platform().callsThatBegin("remove "),
              testing::UnorderedElementsAre(
                  "remove /Library//Audio/Plug-Ins/Components/Tessaphon.component",
                  "remove /Library//Audio/Plug-Ins/VST/Tessaphon.vst",
                  "remove /Library//Audio/Plug-Ins/VST3/Tessaphon.vst3",
                  "remove /Library//Application Support/Avid/Audio/Plug-Ins/Tessaphon.aaxplugin"));
  EXPECT_EQ(treeOf("/Library"), treeOf("/tmp/Set/Library"));
}

TEST_F(PluginPlacement, APluginOfNoListedProductIsCopiedOverWhatIsThere) {
  writeFile("/tmp/Set/Library/Audio/Plug-Ins/VST/Foreign.vst/Contents/new", "new");
  writeFile("/Library/Audio/Plug-Ins/VST/Foreign.vst/Contents/old", "old");
  BundlePage page;
  EXPECT_EQ(page.copyFolder("/tmp/Set/Library", "/Library/"), 1);
  EXPECT_THAT(treeOf("/Library/Audio/Plug-Ins/VST/Foreign.vst"),
              ElementsAre("Contents/", "Contents/new", "Contents/old"));
  EXPECT_THAT(platform().calls(), IsEmpty());
}

TEST_F(PluginPlacement, ASecondItemOfTheSameProductAndKindIsCopiedOverWhatIsThere) {
  BundlePage page;
  for (const char* bundle : {"Lumaweave.vst", "Lumaweave Legacy.vst"}) {
    writeFile(std::string("/tmp/Set/") + bundle + "/new", "new");
    writeFile(std::string("/Library/Audio/Plug-Ins/VST/") + bundle + "/old", "old");
    EXPECT_EQ(page.copyFolder(std::string("/tmp/Set/") + bundle,
                              std::string("/Library/Audio/Plug-Ins/VST/") + bundle),
              1);
  }
  EXPECT_THAT(treeOf("/Library/Audio/Plug-Ins/VST"),
              ElementsAre("Lumaweave Legacy.vst/", "Lumaweave Legacy.vst/new", "Lumaweave Legacy.vst/old",
                          "Lumaweave.vst/", "Lumaweave.vst/new"));
}

TEST_F(PluginPlacement, AFailedRemovalDoesNotKeepThePluginFromBeingCopied) {
  writeFile("/tmp/Set/Lumaweave.vst/new", "new");
  writeFile("/Library/Audio/Plug-Ins/VST/Lumaweave.vst/old", "old");
  BundlePage page;
  platform().removal = [](const std::string&) { return RemovalError{true, "busy", "in use"}; };
  EXPECT_EQ(page.copyFolder("/tmp/Set/Lumaweave.vst", "/Library/Audio/Plug-Ins/VST/Lumaweave.vst"), 1);
  EXPECT_THAT(treeOf("/Library/Audio/Plug-Ins/VST/Lumaweave.vst"), ElementsAre("new", "old"));
}

TEST_F(PluginPlacement, APluginThatIsASingleFileIsReplacedToo) {
  writeFile("/tmp/Set/Lumaweave.vst3", "new");
  writeFile("/Library/Audio/Plug-Ins/VST3/Lumaweave.vst3/Contents/old", "old");
  BundlePage page;
  EXPECT_EQ(page.copyFile("/tmp/Set/Lumaweave.vst3", "/Library/Audio/Plug-Ins/VST3/Lumaweave.vst3"), 1);
  EXPECT_EQ(readFile("/Library/Audio/Plug-Ins/VST3/Lumaweave.vst3"), "new");
}

TEST_F(PluginPlacement, PluginsOfOtherModesAreCopiedLikeAnyData) {
  for (const std::int32_t mode : {0, 2, 3}) {
    const std::string vst = "/Library/Audio/Plug-Ins/VST/Lumaweave.vst";
    writeFile("/tmp/Set/Lumaweave.vst/new", "new");
    writeFile(vst + "/old", "old");
    BundlePage page(mode);
    EXPECT_EQ(page.copyFolder("/tmp/Set/Lumaweave.vst", vst), 1);
    EXPECT_THAT(page.trace.eventsButProgress(),
                ElementsAre("log Copying folder /tmp/Set/Lumaweave.vst " + vst + "\n"));
    EXPECT_THAT(treeOf(vst), ElementsAre("new", "old"));
  }
}

// ---- An application ----

TEST_F(PluginPlacement, AnApplicationIsRemovedOnceCopiedAndOpenedUpFromTheInsideOut) {
  const std::string from = "/tmp/Set/Applications/Tessaphon.app";
  const std::string to = "/Applications//Tessaphon.app";
  writeFile(from + "/Contents/MacOS/Tessaphon", "new");
  writeFile(to + "/Contents/old", "old");
  BundlePage page;
  EXPECT_EQ(page.copyFolder(from, to), 1);
  EXPECT_THAT(
      page.trace.eventsButProgress(),
      ElementsAre(
          "log Deleting pre-existing plugin/wrapper/application at " + to, "remove " + to,
          "log Successfully deleted existing p/w/a at " + to, "log  ...   ", "statfs " + to,
          "log  ...  statfs call on p/w/a failed.", "log  ... failed to write dummy file into p/w/a folder.",
          "log Copying folder " + from + " " + to + "\n", "log mkdir 0 2 " + to,
          "log Copying folder " + from + "/Contents " + to + "/Contents\n", "log mkdir 0 2 " + to + "/Contents",
          "log Copying folder " + from + "/Contents/MacOS " + to + "/Contents/MacOS\n",
          "log mkdir 0 2 " + to + "/Contents/MacOS",
          "system sudo chmod -R 777 " + to + "/Contents/MacOS/Tessaphon",
          "log sudo chmod -R 777 " + to + "/Contents/MacOS/Tessaphon   ... result = 0\n",
          "system sudo chmod -R 777 " + to + "/Contents/MacOS",
          "log sudo chmod -R 777 " + to + "/Contents/MacOS   ... result = 0\n",
          "system sudo chmod -R 777 " + to + "/Contents",
          "log sudo chmod -R 777 " + to + "/Contents   ... result = 0\n", "system sudo chmod -R 777 " + to,
          "log sudo chmod -R 777 " + to + "   ... result = 0\n"));
  EXPECT_THAT(treeOf(to), ElementsAre("Contents/", "Contents/MacOS/", "Contents/MacOS/Tessaphon"));
}

TEST_F(PluginPlacement, EveryItemOfAnApplicationGetsRights777OfItsOwn) {
  writeFile("/tmp/Set/Tessaphon.app/Contents/MacOS/Tessaphon", "new");
  const mode_t before = umask(0077);
  BundlePage page;
  EXPECT_EQ(page.copyFolder("/tmp/Set/Tessaphon.app", "/Applications/Tessaphon.app"), 1);
  umask(before);
  EXPECT_THAT(platform().callsThatBegin("permissions "),
              ElementsAre("permissions 777 /Applications/Tessaphon.app/Contents/MacOS/Tessaphon",
                          "permissions 777 /Applications/Tessaphon.app/Contents/MacOS",
                          "permissions 777 /Applications/Tessaphon.app/Contents",
                          "permissions 777 /Applications/Tessaphon.app"));
  for (const char* item : {"", "/Contents", "/Contents/MacOS", "/Contents/MacOS/Tessaphon"}) {
    EXPECT_EQ(modeOf(std::string("/Applications/Tessaphon.app") + item), 0777U) << item;
  }
}

TEST_F(PluginPlacement, AnApplicationOfNoListedProductIsNotRemovedButOpenedUp) {
  writeFile("/tmp/Set/Foreign.app/new", "new");
  writeFile("/Applications/Foreign.app/old", "old");
  BundlePage page;
  EXPECT_EQ(page.copyFolder("/tmp/Set/Foreign.app", "/Applications/Foreign.app"), 1);
  EXPECT_THAT(platform().callsThatBegin("remove "), IsEmpty());
  EXPECT_THAT(chmods(), ElementsAre("system sudo chmod -R 777 /Applications/Foreign.app/new",
                                    "system sudo chmod -R 777 /Applications/Foreign.app"));
  EXPECT_THAT(treeOf("/Applications/Foreign.app"), ElementsAre("new", "old"));
}

TEST_F(PluginPlacement, WhatLiesBesideTheApplicationsIsNotOpenedUp) {
  writeFile("/tmp/Set/Applications/Tavenhall/Read Me.txt", "text");
  BundlePage page;
  EXPECT_EQ(page.copyFolder("/tmp/Set/Applications", "/Applications/"), 1);
  EXPECT_THAT(platform().calls(), IsEmpty());
}

TEST_F(PluginPlacement, AnApplicationsPermissionsFollowEveryOutcome) {
  makeFolder("/Applications/Foreign.app/folder");
  writeFile("/tmp/file", "x");
  BundlePage page;
  EXPECT_EQ(page.copyFile("/tmp/none", "/Applications/Foreign.app/missing"), 0);
  EXPECT_EQ(page.copyFile("/tmp/file", "/Applications/Foreign.app/folder"), 0);
  EXPECT_EQ(page.copyFile("/tmp/.InstallationAttributes.dat", "/Applications/Foreign.app/skipped"), 1);
  EXPECT_EQ(
      page.copyFile("/tmp/Resources/__Pace_Eden/Signatures/codesign.dsig", "/Applications/Foreign.app/sign"),
      1);
  EXPECT_EQ(page.copyFolder("/tmp/none", "/Applications/Foreign.app/unreadable"), 1);
  EXPECT_THAT(chmods(), ElementsAre("system sudo chmod -R 777 /Applications/Foreign.app/missing",
                                    "system sudo chmod -R 777 /Applications/Foreign.app/folder",
                                    "system sudo chmod -R 777 /Applications/Foreign.app/skipped",
                                    "system sudo chmod -R 777 /Applications/Foreign.app/sign",
                                    "system sudo chmod -R 777 /Applications/Foreign.app/unreadable"));
}

TEST_F(PluginPlacement, ApplicationsOfOtherModesAreNeitherRemovedNorOpenedUp) {
  for (const std::int32_t mode : {0, 2, 3}) {
    writeFile("/tmp/Set/Tessaphon.app/new", "new");
    writeFile("/Applications/Tessaphon.app/old", "old");
    BundlePage page(mode);
    EXPECT_EQ(page.copyFolder("/tmp/Set/Tessaphon.app", "/Applications/Tessaphon.app"), 1);
  }
  EXPECT_THAT(platform().calls(), IsEmpty());
  EXPECT_THAT(treeOf("/Applications/Tessaphon.app"), ElementsAre("new", "old"));
}

TEST_F(PluginPlacement, TheSignatureInsideAWrapperIsCopiedByTheShellAmongItsOtherFiles) {
  const std::string from = "/tmp/Set/Lumaweave.aaxplugin";
  const std::string to = "/Library//Application Support/Avid/Audio/Plug-Ins/Lumaweave.aaxplugin";
  writeFile(from + "/Contents/Resources/__Pace_Eden/Signatures/codesign.dsig", "signature");
  makeFolder("/Library/Application Support/Avid/Audio/Plug-Ins");
  BundlePage page;
  EXPECT_EQ(page.copyFolder(from, to), 1);
  const std::string tail = "/Contents/Resources/__Pace_Eden/Signatures/codesign.dsig\"";
  const std::string command = "cp  -a  \"" + from + tail + " \"" + to + tail;
  EXPECT_THAT(platform().callsThatBegin("system cp"), ElementsAre("system " + command));
  EXPECT_EQ(lastLogMessage(), "copying AAX signature with command:  " + command);
  EXPECT_FALSE(exists(to + "/Contents/Resources/__Pace_Eden/Signatures/codesign.dsig"));
  EXPECT_EQ(page.pane.kBytesCopied, 0);
}

}  // namespace

}  // namespace tavenhall::test

#include "pane/plugin_placement.h"
#include "pane/install_data_pane.h"
#include "tests/pane/event_trace.h"
#include "tests/pane/execution_fixtures.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace tavenhall::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kVst = "/Library//Audio/Plug-Ins/VST/Lumaweave.vst";

struct PlacingPage {
  RecordingHost host;
  InstallDataPane pane{host};

  explicit PlacingPage(std::int32_t mode = 4) { pane.gInstallMode = mode; }

  void placeVst() const { pane.placePlugin("/tmp/Set/Lumaweave.vst", kVst); }
};

std::vector<std::string> linesFrom(const std::string& start) {
  const auto messages = logMessages();
  const auto first = std::find_if(messages.begin(), messages.end(),
                                  [&start](const std::string& line) { return line.starts_with(start); });
  return {first, messages.end()};
}

// ---- The steps of a placement ----

TEST_F(PluginPlacement, FoldersAreOpenedTheItemIsRemovedAndThePlaceIsProbedInThisOrder) {
  PlacingPage page;
  EventTrace trace(page.host);
  platform().removal = [&](const std::string&) {
    trace.takeRecords();
    return RemovalError{};
  };
  platform().fileSystem = [&](const std::string&) {
    trace.takeRecords();
    return true;
  };
  makeFolder(kVst);
  page.placeVst();
  EXPECT_THAT(trace.events(),
              ElementsAre("log Configuring VST and Comp", "system sudo chmod 777 /Library/Audio/Plug-Ins/VST",
                          "log sudo chmod 777 /Library/Audio/Plug-Ins/VST   ... result = 0\n",
                          "system sudo chmod 777 /Library/Audio/Plug-Ins/VST3",
                          "log sudo chmod 777 /Library/Audio/Plug-Ins/VST3   ... result = 0\n",
                          "system sudo chmod 777 /Library/Audio/Plug-Ins/Components",
                          "log sudo chmod 777 /Library/Audio/Plug-Ins/Components   ... result = 0\n",
                          std::string("log Deleting pre-existing plugin/wrapper/application at ") + kVst,
                          std::string("remove ") + kVst,
                          std::string("log Successfully deleted existing p/w/a at ") + kVst, "log  ...   ",
                          std::string("statfs ") + kVst, "log  ...  statfs call on p/w/a  successful.",
                          "log  ... successfully wrote dummy file into p/w/a folder."));
}

TEST_F(PluginPlacement, ThePluginFoldersThemselvesAreOpenedOneByOne) {
  makeFolder("/Library/Audio/Plug-Ins/VST/inside");
  makeFolder("/Library/Audio/Plug-Ins/Components");
  chmod("/Library/Audio/Plug-Ins/VST", 0755);
  chmod("/Library/Audio/Plug-Ins/VST/inside", 0755);
  chmod("/Library/Audio/Plug-Ins/Components", 0700);
  PlacingPage().placeVst();
  EXPECT_THAT(
      platform().callsThatBegin("permissions "),
      ElementsAre("permissions 777 /Library/Audio/Plug-Ins/VST", "permissions 777 /Library/Audio/Plug-Ins/VST3",
                  "permissions 777 /Library/Audio/Plug-Ins/Components"));
  EXPECT_EQ(modeOf("/Library/Audio/Plug-Ins/VST"), 0777U);
  EXPECT_EQ(modeOf("/Library/Audio/Plug-Ins/VST/inside"), 0755U);
  EXPECT_EQ(modeOf("/Library/Audio/Plug-Ins/Components"), 0777U);
  EXPECT_FALSE(exists("/Library/Audio/Plug-Ins/VST3"));
}

TEST_F(PluginPlacement, AWholeTreeIsRemoved) {
  writeFile("/Library/Audio/Plug-Ins/VST/Lumaweave.vst/Contents/MacOS/Lumaweave", "old");
  PlacingPage().placeVst();
  EXPECT_THAT(treeOf("/Library/Audio/Plug-Ins/VST"), IsEmpty());
}

TEST_F(PluginPlacement, ADestinationThatIsNotThereGivesTheUnableLine) {
  PlacingPage().placeVst();
  EXPECT_THAT(
      linesFrom("Deleting"),
      ElementsAre(std::string("Deleting pre-existing plugin/wrapper/application at ") + kVst,
                  std::string("Unable to delete existing p/w/a at ") + kVst, " ...  No such file or directory ",
                  " ...  statfs call on p/w/a failed.", " ... failed to write dummy file into p/w/a folder."));
}

TEST_F(PluginPlacement, ARemovalsErrorIsLoggedWithBothItsTexts) {
  platform().removal = [](const std::string& path) {
    EXPECT_EQ(path, kVst);
    return RemovalError{true, "\"Lumaweave.vst\" couldn't be removed. 100% %s", "You don't have permission."};
  };
  PlacingPage().placeVst();
  const auto lines = linesFrom("Unable to delete");
  ASSERT_GE(lines.size(), 2U);
  EXPECT_EQ(lines[0], std::string("Unable to delete existing p/w/a at ") + kVst);
  EXPECT_EQ(lines[1], " ...  \"Lumaweave.vst\" couldn't be removed. 100% %s You don't have permission.");
}

TEST_F(PluginPlacement, AnErrorWithoutTextsIsAnErrorAllTheSame) {
  platform().removal = [](const std::string&) { return RemovalError{true, "", ""}; };
  PlacingPage().placeVst();
  const auto lines = linesFrom("Unable to delete");
  ASSERT_GE(lines.size(), 2U);
  EXPECT_EQ(lines[1], " ...   ");
}

TEST_F(PluginPlacement, AReasonWithoutADescriptionKeepsBothBlanks) {
  platform().removal = [](const std::string&) { return RemovalError{true, "", "the reason"}; };
  PlacingPage().placeVst();
  const auto lines = linesFrom("Unable to delete");
  ASSERT_GE(lines.size(), 2U);
  EXPECT_EQ(lines[1], " ...   the reason");
}

TEST_F(PluginPlacement, AProbeThatWritesLeavesNothingBehind) {
  writeFile("/Library/Audio/Plug-Ins/VST/Lumaweave.vst/old", "old");
  platform().removal = [](const std::string&) { return RemovalError{true, "busy", ""}; };
  PlacingPage().placeVst();
  EXPECT_THAT(linesFrom(" ...  statfs"), ElementsAre(" ...  statfs call on p/w/a  successful.",
                                                     " ... successfully wrote dummy file into p/w/a folder."));
  EXPECT_THAT(treeOf("/Library/Audio/Plug-Ins/VST/Lumaweave.vst"), ElementsAre("old"));
}

TEST_F(PluginPlacement, AFailedStatfsDoesNotKeepTheProbeFromWriting) {
  makeFolder(kVst);
  platform().removal = [](const std::string&) { return RemovalError{}; };
  platform().fileSystem = [](const std::string& path) {
    EXPECT_EQ(path, kVst);
    return false;
  };
  PlacingPage().placeVst();
  EXPECT_THAT(linesFrom(" ...  statfs"), ElementsAre(" ...  statfs call on p/w/a failed.",
                                                     " ... successfully wrote dummy file into p/w/a folder."));
}

TEST_F(PluginPlacement, AProbePathOf1023BytesIsProbed) {
  const std::string folder = "/Library//Audio/Plug-Ins/VST/";
  PlacingPage().pane.placePlugin("/tmp/Lumaweave.vst",
                                 (folder + std::string(1010 - folder.size() - 4, 'p') + ".vst").c_str());
  EXPECT_EQ(lastLogMessage(), " ... failed to write dummy file into p/w/a folder.");
}

TEST_F(PluginPlacement, AProbePathOf1024BytesEndsTheProcess) {
  const std::string folder = "/Library//Audio/Plug-Ins/VST/";
  const std::string dest = folder + std::string(1011 - folder.size() - 4, 'p') + ".vst";
  EXPECT_DEATH(PlacingPage().pane.placePlugin("/tmp/Lumaweave.vst", dest.c_str()),
               "does not fit its buffer of 1024 bytes");
}

// ---- setPermissionTo_777 ----

TEST_F(PluginPlacement, PermissionsOfOneItemAreSetByCommandAndDirectly) {
  writeFile("/tmp/item/inside", "x");
  chmod("/tmp/item", 0700);
  chmod("/tmp/item/inside", 0600);
  setPermissionTo_777("/tmp/item", 0);
  EXPECT_THAT(platform().calls(), ElementsAre("system sudo chmod 777 /tmp/item", "permissions 777 /tmp/item"));
  EXPECT_THAT(logMessages(), ElementsAre("sudo chmod 777 /tmp/item   ... result = 0\n"));
  EXPECT_EQ(modeOf("/tmp/item"), 0777U);
  EXPECT_EQ(modeOf("/tmp/item/inside"), 0600U);
}

TEST_F(PluginPlacement, RecursivePermissionsAreTheCommandsOnlyAndTheItemItselfIsSetDirectly) {
  writeFile("/tmp/item/inside", "x");
  chmod("/tmp/item", 0700);
  chmod("/tmp/item/inside", 0600);
  setPermissionTo_777("/tmp/item", 1);
  setPermissionTo_777("/tmp/item", -3);
  EXPECT_THAT(platform().calls(),
              ElementsAre("system sudo chmod -R 777 /tmp/item", "permissions 777 /tmp/item",
                          "system sudo chmod -R 777 /tmp/item", "permissions 777 /tmp/item"));
  EXPECT_EQ(logMessages().size(), 2U);
  EXPECT_EQ(lastLogMessage(), "sudo chmod -R 777 /tmp/item   ... result = 0\n");
  EXPECT_EQ(modeOf("/tmp/item"), 0777U);
  EXPECT_EQ(modeOf("/tmp/item/inside"), 0600U);
}

TEST_F(PluginPlacement, AFailedPermissionCommandIsLoggedAndTheItemIsSetDirectly) {
  writeFile("/tmp/item", "x");
  chmod("/tmp/item", 0600);
  platform().shell = [](const std::string&) { return 256; };
  setPermissionTo_777("/tmp/item", 0);
  EXPECT_THAT(logMessages(), ElementsAre("sudo chmod 777 /tmp/item   ... result = 256\n"));
  EXPECT_EQ(modeOf("/tmp/item"), 0777U);
}

TEST_F(PluginPlacement, APathWithBlanksGoesIntoTheCommandUnquoted) {
  platform().shell = [](const std::string&) { return -1; };
  setPermissionTo_777("/Applications/Tempora QX $(id).app", 1);
  EXPECT_THAT(platform().callsThatBegin("system "),
              ElementsAre("system sudo chmod -R 777 /Applications/Tempora QX $(id).app"));
  EXPECT_THAT(logMessages(),
              ElementsAre("sudo chmod -R 777 /Applications/Tempora QX $(id).app   ... result = -1\n"));
}

TEST_F(PluginPlacement, APermissionCommandOf2047BytesIsRunAndOneOf2048EndsTheProcess) {
  setPermissionTo_777(std::string(2047 - 15, 'p').c_str(), 0);
  setPermissionTo_777(std::string(2047 - 18, 'p').c_str(), 1);
  EXPECT_EQ(platform().callsThatBegin("system ").size(), 2U);
  EXPECT_DEATH(setPermissionTo_777(std::string(2048 - 15, 'p').c_str(), 0),
               "does not fit its buffer of 2048 bytes");
  EXPECT_DEATH(setPermissionTo_777(std::string(2048 - 18, 'p').c_str(), 1),
               "does not fit its buffer of 2048 bytes");
}

}  // namespace

}  // namespace tavenhall::test

#include "pane/install_data_pane.h"
#include "tests/pane/event_trace.h"
#include "tests/pane/execution_fixtures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavenhall::test {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

struct Kind {
  const char* name;
  const char* folder;
  const char* suffix;
  bool isPlugin;
};

const std::vector<Kind>& kinds() {
  static const std::vector<Kind> rows = {
      {"Aax", "/Library//Application Support/Avid/Audio/Plug-Ins/", ".aaxplugin", true},
      {"App", "/Applications//", ".app", false},
      {"Component", "/Library//Audio/Plug-Ins/Components/", ".component", true},
      {"Vst3", "/Library//Audio/Plug-Ins/VST3/", ".vst3", true},
      {"Vst", "/Library//Audio/Plug-Ins/VST/", ".vst", true},
  };
  return rows;
}

const std::vector<std::string>& products() {
  static const std::vector<std::string> names = {"Lumaweave", "TemporaQX", "Tessaphon", "Bassoria"};
  return names;
}

struct RemovingPage {
  RecordingHost host;
  InstallDataPane pane{host};

  explicit RemovingPage(std::int32_t mode = 4) { pane.gInstallMode = mode; }

  // Every destination that a placement removed since the test began.
  std::vector<std::string> removals(const std::string& source, const std::string& dest) {
    pane.placePlugin(source.c_str(), dest.c_str());
    return platform().callsThatBegin("remove ");
  }
};

// ---- Every kind with every product ----

class PluginKinds : public PluginPlacement,
                    public testing::WithParamInterface<std::tuple<std::size_t, std::size_t>> {
 protected:
  const Kind& kind = kinds()[std::get<0>(GetParam())];
  const std::string& product = products()[std::get<1>(GetParam())];
};

INSTANTIATE_TEST_SUITE_P(PluginPlacement, PluginKinds,
                         testing::Combine(testing::Range<std::size_t>(0, 5), testing::Range<std::size_t>(0, 4)),
                         [](const auto& row) {
                           return kinds()[std::get<0>(row.param)].name + products()[std::get<1>(row.param)];
                         });

TEST_P(PluginKinds, IsRemovedOnceWithAllItsLines) {
  const std::string dest = kind.folder + product + kind.suffix;
  writeFile(dest + "/Contents/old", "old");
  RemovingPage page;
  page.pane.placePlugin(("/tmp/Set/" + product + kind.suffix).c_str(), dest.c_str());
  EXPECT_FALSE(exists(dest));

  std::vector<std::string> expected;
  if (kind.isPlugin) {
    expected = {"Configuring VST and Comp", "sudo chmod 777 /Library/Audio/Plug-Ins/VST   ... result = 0\n",
                "sudo chmod 777 /Library/Audio/Plug-Ins/VST3   ... result = 0\n",
                "sudo chmod 777 /Library/Audio/Plug-Ins/Components   ... result = 0\n"};
  }
  for (const std::string& line : {"Deleting pre-existing plugin/wrapper/application at " + dest,
                                  "Successfully deleted existing p/w/a at " + dest, std::string(" ...   "),
                                  std::string(" ...  statfs call on p/w/a failed."),
                                  std::string(" ... failed to write dummy file into p/w/a folder.")}) {
    expected.push_back(line);
  }
  EXPECT_THAT(logMessages(), ElementsAreArray(expected));
}

TEST_P(PluginKinds, IsNotRemovedASecondTime) {
  const std::string dest = kind.folder + product + kind.suffix;
  writeFile(dest + "/Contents/old", "old");
  RemovingPage page;
  page.pane.placePlugin(("/tmp/Set/" + product + kind.suffix).c_str(), dest.c_str());
  const auto messages = logMessages();
  writeFile(dest + "/Contents/new", "new");
  page.pane.placePlugin(("/tmp/Set/" + product + kind.suffix).c_str(), dest.c_str());
  page.pane.placePlugin(("/tmp/Set/Second " + product + kind.suffix).c_str(),
                        (dest + "2" + kind.suffix).c_str());
  EXPECT_THAT(treeOf(dest), ElementsAre("Contents/", "Contents/new"));
  EXPECT_EQ(logMessages(), messages);
}

TEST_P(PluginKinds, IsLeftAloneInOtherModes) {
  const std::string dest = kind.folder + product + kind.suffix;
  writeFile(dest + "/Contents/old", "old");
  for (const std::int32_t mode : {0, 2, 3}) {
    RemovingPage page(mode);
    page.pane.placePlugin(("/tmp/Set/" + product + kind.suffix).c_str(), dest.c_str());
    page.pane.openApplicationPermissions(dest.c_str());
  }
  EXPECT_TRUE(exists(dest + "/Contents/old"));
  EXPECT_THAT(logMessages(), IsEmpty());
  EXPECT_THAT(platform().calls(), IsEmpty());
  // Nor has any of them been taken for done.
  EXPECT_EQ(RemovingPage().removals("/tmp/Set/" + product, dest).size(), 1U);
}

TEST_F(PluginPlacement, EveryKindOfEveryProductIsRemovedOnceInOneRun) {
  std::vector<std::string> expected;
  for (int round = 0; round < 2; ++round) {
    for (const std::string& product : products()) {
      for (const Kind& kind : kinds()) {
        const std::string dest = kind.folder + product + kind.suffix;
        RemovingPage page;  // the flags are the process's, not the page's
        page.pane.placePlugin(("/tmp/Set/" + product).c_str(), dest.c_str());
        if (round == 0) {
          expected.push_back("remove " + dest);
        }
      }
    }
  }
  EXPECT_THAT(platform().callsThatBegin("remove "), ElementsAreArray(expected));
}

// ---- Which kind ----

// Is the kind of `dest`, for a product met for the first time, that of the folder and suffix of `other`?
bool isOfTheKindOf(const std::string& dest, const std::string& other) {
  RemovingPage page;
  const auto before = page.removals("/tmp/Set/Lumaweave", dest).size();
  return before == 1 && page.removals("/tmp/Set/Lumaweave", other).size() == before;
}

TEST_F(PluginPlacement, AVst3FolderWithoutItsSuffixStillReachesTheVstTest) {
  EXPECT_TRUE(isOfTheKindOf("/Library//Audio/Plug-Ins/VST3/Lumaweave.vst",
                            "/Library//Audio/Plug-Ins/VST/Lumaweave.vst"));
}

TEST_F(PluginPlacement, AVst3SuffixInTheVstFolderIsAVst) {
  EXPECT_TRUE(isOfTheKindOf("/Library//Audio/Plug-Ins/VST/Lumaweave.vst3",
                            "/Library//Audio/Plug-Ins/VST/Lumaweave.vst"));
}

TEST_F(PluginPlacement, AVst3IsNotAVst) {
  RemovingPage page;
  EXPECT_EQ(page.removals("/tmp/Set/Lumaweave", "/Library//Audio/Plug-Ins/VST3/Lumaweave.vst3").size(), 1U);
  EXPECT_EQ(page.removals("/tmp/Set/Lumaweave", "/Library//Audio/Plug-Ins/VST/Lumaweave.vst").size(), 2U);
}

TEST_F(PluginPlacement, AnAaxFolderWithoutItsSuffixReachesTheLaterTests) {
  EXPECT_TRUE(isOfTheKindOf("/Library//Application Support/Avid/Audio/Plug-Ins/Components/Lumaweave.component",
                            "/Library//Audio/Plug-Ins/Components/Lumaweave.component"));
}

TEST_F(PluginPlacement, AComponentsFolderWithoutItsSuffixReachesTheLaterTests) {
  EXPECT_TRUE(isOfTheKindOf("/Library//Audio/Plug-Ins/Components/Plug-Ins/VST/Lumaweave.vst",
                            "/Library//Audio/Plug-Ins/VST/Lumaweave.vst"));
}

TEST_F(PluginPlacement, AnAaxWrapperInsideAnApplicationIsAnAaxWrapper) {
  EXPECT_TRUE(
      isOfTheKindOf("/Applications//Lumaweave.app/Application Support/Avid/Audio/Plug-Ins/Lumaweave.aaxplugin",
                    "/Library//Application Support/Avid/Audio/Plug-Ins/Lumaweave.aaxplugin"));
}

TEST_F(PluginPlacement, APluginInsideAnApplicationIsAnApplication) {
  EXPECT_TRUE(isOfTheKindOf("/Applications//Lumaweave.app/Contents/Plug-Ins/VST/Lumaweave.vst",
                            "/Applications//Lumaweave.app"));
}

TEST_F(PluginPlacement, WhatLiesInsideAnApplicationThatIsDoneIsNotTriedAsAnotherKind) {
  RemovingPage page;
  EXPECT_EQ(page.removals("/tmp/Set/Lumaweave", "/Applications//Lumaweave.app").size(), 1U);
  EXPECT_EQ(
      page.removals("/tmp/Set/Lumaweave", "/Applications//Lumaweave.app/Plug-Ins/VST/Lumaweave.vst").size(),
      1U);
  EXPECT_EQ(page.removals("/tmp/Set/Lumaweave", "/Library//Audio/Plug-Ins/VST/Lumaweave.vst").size(), 2U);
}

TEST_F(PluginPlacement, DestinationsOfNoKindAreLeftAlone) {
  for (const char* dest :
       {"/Library//Audio/Plug-Ins/VST3/Lumaweave.bundle", "/Library//Audio/Plug-Ins/Components/Lumaweave.vst3",
        "/Library//Audio/Plug-Ins/Lumaweave.component", "/Library//Audio/plug-ins/vst/Lumaweave.vst",
        "/Library//Application Support/Avid/Audio/Plug-Ins/Lumaweave.APP",
        "/Library//Application Support/Tavenhall/TANVO/Lumaweave.vst", "/Applications//Lumaweave",
        "/Applications", "/tmp/Applications.app/Lumaweave", "/Library//Audio/Plug-Ins/VST"}) {
    EXPECT_THAT(RemovingPage().removals("/tmp/Set/Lumaweave", dest), IsEmpty()) << dest;
  }
  EXPECT_THAT(logMessages(), IsEmpty());
  EXPECT_THAT(platform().calls(), IsEmpty());
}

TEST_F(PluginPlacement, AKindsWordsMayStandAnywhereInThePath) {
  EXPECT_THAT(RemovingPage().removals("/tmp/Set/Lumaweave", "/tmp/a.vst/Plug-Ins/VST-old/Lumaweave"),
              ElementsAre("remove /tmp/a.vst/Plug-Ins/VST-old/Lumaweave"));
}

// ---- Which product ----

TEST_F(PluginPlacement, APluginOfNoListedProductIsLeftAlone) {
  writeFile("/Library/Audio/Plug-Ins/VST/Foreign.vst/old", "old");
  for (const char* source : {"/tmp/Set/Foreign.vst", "/tmp/Set/lumaweave.vst", "/tmp/Set/Tempora QX.vst", ""}) {
    EXPECT_THAT(RemovingPage().removals(source, "/Library//Audio/Plug-Ins/VST/Foreign.vst"), IsEmpty())
        << source;
  }
  EXPECT_THAT(logMessages(), IsEmpty());
  EXPECT_TRUE(exists("/Library/Audio/Plug-Ins/VST/Foreign.vst/old"));
}

TEST_F(PluginPlacement, TheDestinationsNameMattersNot) {
  EXPECT_THAT(RemovingPage().removals("/tmp/Set/Foreign.vst", "/Library//Audio/Plug-Ins/VST/Lumaweave.vst"),
              IsEmpty());
  EXPECT_THAT(RemovingPage().removals("/tmp/Set/Lumaweave.vst", "/Library//Audio/Plug-Ins/VST/Foreign.vst"),
              ElementsAre("remove /Library//Audio/Plug-Ins/VST/Foreign.vst"));
}

TEST_F(PluginPlacement, OfTwoNamesInThePathTheEarlierInTheTableCounts) {
  RemovingPage page;
  const std::string folder = "/Library//Audio/Plug-Ins/VST/";
  EXPECT_EQ(page.removals("/tmp/Bassoria/Tessaphon.vst", folder + "a.vst").size(), 1U);   // Tessaphon
  EXPECT_EQ(page.removals("/tmp/Set/Tessaphon.vst", folder + "b.vst").size(), 1U);        // done already
  EXPECT_EQ(page.removals("/tmp/Set/Bassoria.vst", folder + "c.vst").size(), 2U);         // not yet
  EXPECT_EQ(page.removals("/tmp/Tessaphon/TemporaQX.vst", folder + "d.vst").size(), 3U);  // TemporaQX
  EXPECT_EQ(page.removals("/tmp/TemporaQX/Lumaweave.vst", folder + "e.vst").size(), 4U);  // Lumaweave
  EXPECT_EQ(page.removals("/tmp/Set/Lumaweave.vst", folder + "f.vst").size(), 4U);
}

TEST_F(PluginPlacement, ANameInThePackagesOwnPathMakesEveryPluginThatProduct) {
  RemovingPage page;
  const std::string folder = "/Library//Audio/Plug-Ins/VST/";
  EXPECT_EQ(page.removals("/tmp/Lumaweave Set/Tessaphon.vst", folder + "Tessaphon.vst").size(), 1U);
  EXPECT_EQ(page.removals("/tmp/Lumaweave Set/Bassoria.vst", folder + "Bassoria.vst").size(), 1U);
  EXPECT_EQ(page.removals("/tmp/Lumaweave Set/Foreign.vst", folder + "Foreign.vst").size(), 1U);
}

// ---- Short destinations ----

TEST_F(PluginPlacement, ADestinationOf30BytesIsNoPluginAndSetsItsFlagSilently) {
  const std::string dest = "/tmp/Plug-Ins/VST/abcdefgh.vst";
  ASSERT_EQ(dest.size(), 30U);
  writeFile(dest + "/old", "old");
  RemovingPage page;
  EXPECT_THAT(page.removals("/tmp/Set/Lumaweave.vst", dest), IsEmpty());
  EXPECT_TRUE(exists(dest + "/old"));
  EXPECT_THAT(logMessages(), IsEmpty());
  EXPECT_THAT(platform().calls(), IsEmpty());
  // The flag is set: a longer one of the kind is now left alone, too.
  EXPECT_THAT(page.removals("/tmp/Set/Lumaweave.vst", "/Library//Audio/Plug-Ins/VST/Lumaweave.vst"), IsEmpty());
}

TEST_F(PluginPlacement, ADestinationOf31BytesIsAPlugin) {
  const std::string dest = "/tmp/Plug-Ins/VST/abcdefghi.vst";
  ASSERT_EQ(dest.size(), 31U);
  EXPECT_THAT(RemovingPage().removals("/tmp/Set/Lumaweave.vst", dest), ElementsAre("remove " + dest));
}

TEST_F(PluginPlacement, AShortApplicationDestinationIsAnApplicationAllTheSame) {
  EXPECT_THAT(RemovingPage().removals("/tmp/Set/Lumaweave.app", "/Applications/L.app"),
              ElementsAre("remove /Applications/L.app"));
}

TEST_F(PluginPlacement, AnApplicationThatIsNoPluginDestinationConfiguresNoPluginFolders) {
  RemovingPage page;
  EXPECT_EQ(page.removals("/tmp/Set/Lumaweave.app", "/Applications//Lumaweave.app").size(), 1U);
  EXPECT_THAT(thoseThatBegin(logMessages(), "Configuring"), IsEmpty());
  EXPECT_THAT(platform().callsThatBegin("system "), IsEmpty());
}

TEST_F(PluginPlacement, AnApplicationInAPluginFolderConfiguresThePluginFolders) {
  RemovingPage page;
  EXPECT_EQ(page.removals("/tmp/Set/Lumaweave.app", "/tmp/Plug-Ins/Applications/Lumaweave.app").size(), 1U);
  EXPECT_THAT(thoseThatBegin(logMessages(), "Configuring"), ElementsAre("Configuring VST and Comp"));
}

}  // namespace

}  // namespace tavenhall::test

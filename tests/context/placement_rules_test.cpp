#include "context/placement_rules.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tavenhall {
namespace {

TEST(PluginNames, AreSearchedInTheDocumentedOrder) {
  const std::vector<std::string> names(pluginNames.begin(), pluginNames.end());
  EXPECT_EQ(names, (std::vector<std::string>{"Lumaweave", "TemporaQX", "Tessaphon", "Bassoria"}));
}

TEST(Product, IsTheNameThatOccursInTheSource) {
  EXPECT_EQ(productIn("/set/Library/Audio/Plug-Ins/VST/Lumaweave.vst"), 0U);
  EXPECT_EQ(productIn("/set/Library/Audio/Plug-Ins/VST/TemporaQX.vst"), 1U);
  EXPECT_EQ(productIn("/set/Applications/Tessaphon.app"), 2U);
  EXPECT_EQ(productIn("/set/Library/Audio/Plug-Ins/VST/Bassoria.vst"), 3U);
}

TEST(Product, IsTheEarlierOfTwoNamesInTableOrder) {
  EXPECT_EQ(productIn("/Bassoria/Tessaphon.app"), 2U);
  EXPECT_EQ(productIn("/Tessaphon and Lumaweave/Tessaphon.app"), 0U);
}

TEST(Product, IsMissingWhereNoNameOccurs) {
  for (const char* source : {"/set/Applications/Other.app", "/set/tessaphon.app", "/set/Tempora QX.app", ""}) {
    EXPECT_EQ(productIn(source), std::nullopt) << source;
  }
}

TEST(PluginKind, IsAaxWrapperInTheAvidFolder) {
  EXPECT_EQ(pluginKindOf("/Library//Application Support/Avid/Audio/Plug-Ins/Tessaphon.aaxplugin"),
            PluginKind::aaxWrapper);
}

TEST(PluginKind, IsStandaloneAppInTheApplicationsFolder) {
  EXPECT_EQ(pluginKindOf("/Applications//Tessaphon.app"), PluginKind::standaloneApp);
}

TEST(PluginKind, IsAudioUnitInTheComponentsFolder) {
  EXPECT_EQ(pluginKindOf("/Library//Audio/Plug-Ins/Components/Tessaphon.component"), PluginKind::auPlugin);
}

TEST(PluginKind, IsVst3InTheVst3Folder) {
  EXPECT_EQ(pluginKindOf("/Library//Audio/Plug-Ins/VST3/Tessaphon.vst3"), PluginKind::vst3Plugin);
}

TEST(PluginKind, IsVstInTheVstFolder) {
  EXPECT_EQ(pluginKindOf("/Library//Audio/Plug-Ins/VST/Tessaphon.vst"), PluginKind::vstPlugin);
}

TEST(PluginKind, HoldsForWhatLiesInsideABundle) {
  EXPECT_EQ(pluginKindOf("/Library//Audio/Plug-Ins/VST3/Tessaphon.vst3/Contents/MacOS/x"),
            PluginKind::vst3Plugin);
  EXPECT_EQ(pluginKindOf("/Applications//Tessaphon.app/Contents/Info.plist"), PluginKind::standaloneApp);
}

TEST(PluginKind, NeedsItsFolderAndItsSuffix) {
  for (const char* destination :
       {"/Library//Application Support/Avid/Audio/Plug-Ins/Tessaphon", "/Library//Avid/Tessaphon.aaxplugin",
        "/Applications//Tessaphon", "/Library//Tessaphon.app", "/Library//Audio/Plug-Ins/Components/Tessaphon",
        "/Library//Tessaphon.component", "/Library//Audio/Plug-Ins/VST3/Tessaphon", "/Library//Tessaphon.vst3",
        "/Library//Audio/Plug-Ins/VST/Tessaphon", "/Library//Tessaphon.vst", ""}) {
    EXPECT_EQ(pluginKindOf(destination), std::nullopt) << destination;
  }
}

TEST(PluginKind, IsCaseSensitive) {
  for (const char* destination :
       {"/applications//Tessaphon.app", "/Applications//Tessaphon.App",
        "/Library//Audio/plug-ins/VST/Tessaphon.vst", "/Library//Audio/Plug-Ins/VST/T.VST"}) {
    EXPECT_EQ(pluginKindOf(destination), std::nullopt) << destination;
  }
}

TEST(PluginKind, AVst3FolderWithoutItsSuffixStillReachesTheVstTest) {
  EXPECT_EQ(pluginKindOf("/Library//Audio/Plug-Ins/VST3/Tessaphon.vst"), PluginKind::vstPlugin);
}

TEST(PluginKind, AVst3BundleInTheVstFolderIsAVst) {
  EXPECT_EQ(pluginKindOf("/Library//Audio/Plug-Ins/VST/Tessaphon.vst3"), PluginKind::vstPlugin);
}

TEST(PluginKind, IsTheFirstWhoseTestPasses) {
  EXPECT_EQ(pluginKindOf("/Applications/x/Application Support/Avid/Audio/Plug-Ins/T.aaxplugin/T.app"),
            PluginKind::aaxWrapper);
  EXPECT_EQ(pluginKindOf("/Applications/T.app/Plug-Ins/Components/T.component"), PluginKind::standaloneApp);
  EXPECT_EQ(pluginKindOf("/Library/Audio/Plug-Ins/Components/Plug-Ins/VST3/T.component.vst3"),
            PluginKind::auPlugin);
}

TEST(PluginKind, TheNextTestIsTriedWhereOnlyTheFolderMatches) {
  EXPECT_EQ(pluginKindOf("/Library//Application Support/Avid/Audio/Plug-Ins/Components/T.component"),
            PluginKind::auPlugin);
}

TEST(PluginDestination, ContainsThePlugInsFolderAndHasAtLeast31Bytes) {
  const std::string folder = "/Library/Audio/Plug-Ins/";
  EXPECT_FALSE(isPluginDestination(folder + std::string(30 - folder.size(), 'x')));
  EXPECT_TRUE(isPluginDestination(folder + std::string(31 - folder.size(), 'x')));
  EXPECT_FALSE(isPluginDestination("/Library/Audio/Plug-Ins"));
  EXPECT_FALSE(isPluginDestination("/Library/Audio/plug-ins/Components/T.component"));
  EXPECT_FALSE(isPluginDestination(std::string(40, 'x')));
}

TEST(ApplicationDestination, ContainsTheApplicationsFolderAndTheSuffix) {
  EXPECT_TRUE(isApplicationDestination("/Applications//Tessaphon.app"));
  EXPECT_TRUE(isApplicationDestination("/Applications//Other.app/Contents"));
  EXPECT_FALSE(isApplicationDestination("/Applications//Tessaphon"));
  EXPECT_FALSE(isApplicationDestination("/Library/Tessaphon.app"));
  EXPECT_FALSE(isApplicationDestination("/Applications"));
}

TEST(Removable, IsWhatBearsOneOfTheSuffixes) {
  for (const char* destination : {"/x/T.vst", "/x/T.vst3", "/x/T.aaxplugin", "/x/T.component", "/x/T.app"}) {
    EXPECT_TRUE(isRemovable(destination)) << destination;
  }
  for (const char* destination : {"/x/T", "/x/T.VST", "/x/T.aax", "/x/vst", ""}) {
    EXPECT_FALSE(isRemovable(destination)) << destination;
  }
}

TEST(AaxSignature, IsRecognisedByItsPathInTheSource) {
  EXPECT_TRUE(isAaxSignature("/set/T.aaxplugin/Contents/Resources/__Pace_Eden/Signatures/codesign.dsig"));
  EXPECT_FALSE(isAaxSignature("/set/T.aaxplugin/Contents/Resources/__Pace_Eden/codesign.dsig"));
  EXPECT_FALSE(isAaxSignature("/set/codesign.dsig"));
}

TEST(AttributesFileName, IsRecognisedAnywhereInTheSource) {
  EXPECT_TRUE(isAttributesFile("/set/.InstallationAttributes.dat"));
  EXPECT_TRUE(isAttributesFile("/set/.InstallationAttributes.dat/inner"));
  EXPECT_TRUE(isAttributesFile("/set/old.InstallationAttributes.dat.bak"));
  EXPECT_FALSE(isAttributesFile("/set/InstallationAttributes.dat"));
}

TEST(AudioPluginDestination, ContainsTheAudioPlugInsFolder) {
  EXPECT_TRUE(isAudioPluginDestination("/Library//Audio/Plug-Ins/VST/T.vst"));
  EXPECT_TRUE(isAudioPluginDestination("/Library/Application Support/Avid/Audio/Plug-Ins/T.aaxplugin"));
  EXPECT_FALSE(isAudioPluginDestination("/Library/Plug-Ins/VST/T.vst"));
}

}  // namespace
}  // namespace tavenhall

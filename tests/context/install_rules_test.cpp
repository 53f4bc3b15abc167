#include "context/install_rules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tavenhall {
namespace {

struct KeyRow {
  std::string name;
  KeyKind kind;
  const char* fallback;
};

const std::vector<KeyRow> kDocumentedKeys = {
    {"Mode", KeyKind::text, nullptr},
    {"InstallDataTitle", KeyKind::text, "Installing Data"},
    {"InstallingData", KeyKind::text,
     "Now installing data from source media to: \n\n%s\n\nThis process is lengthy and can take up to 3 "
     "hours.\nThe "
     "progress bar will move very slowly at first.\nThanks for your patience.\n\nPlease wait for the "
     "installation to "
     "complete."},
    {"InstalledData", KeyKind::text,
     "Step 1 finished.\n\nPlease run the Data Updater to complete the installation.\n\nPress Continue button."},
    {"RelativePath", KeyKind::text, ".."},
    {"RelativePath2", KeyKind::text, nullptr},
    {"PreparationTitle", KeyKind::text, "Data Location"},
    {"LiteVsFullPromptText", KeyKind::text, "What installation of Tessaphon are you using?"},
    {"AlternateNameForLiteInstallation", KeyKind::text, "Lite"},
    {"AlternateNameForFullInstallation", KeyKind::text, "Full"},
    {"LiteVsFullPrompt", KeyKind::text, nullptr},
    {"NumberOfVolumes", KeyKind::number, nullptr},
    {"TotalSizeMillionsBytes", KeyKind::number, nullptr},
    {"Component1SizeMillionsBytes", KeyKind::number, nullptr},
};

TEST(AttributesKeys, AreTheDocumentedOnesInTheirOrder) {
  std::vector<std::string> expected;
  std::vector<std::string> found;
  for (const KeyRow& row : kDocumentedKeys) {
    expected.push_back(row.name);
  }
  for (const AttributesKey& row : attributesKeys()) {
    found.emplace_back(row.name);
  }
  EXPECT_EQ(found, expected);
}

TEST(AttributesKeys, EachIsATextOrANumberAsDocumented) {
  ASSERT_EQ(attributesKeys().size(), kDocumentedKeys.size());
  for (std::size_t i = 0; i < kDocumentedKeys.size(); ++i) {
    EXPECT_EQ(attributesKeys()[i].kind, kDocumentedKeys[i].kind) << kDocumentedKeys[i].name;
  }
}

TEST(AttributesKeys, EachHasItsDocumentedFallback) {
  for (const KeyRow& row : kDocumentedKeys) {
    EXPECT_STREQ(fallbackText(row.name), row.fallback) << row.name;
  }
}

TEST(AttributesKeys, AnUnknownKeyHasNoFallback) { EXPECT_EQ(fallbackText("NoSuchKey"), nullptr); }

TEST(InstallMode, EachWordGivesItsMode) {
  EXPECT_EQ(installModeForValue("DataUpdater"), 0);
  EXPECT_EQ(installModeForValue("InstallFromVolumes"), 2);
  EXPECT_EQ(installModeForValue("TavenhallUpdater"), 4);
  EXPECT_EQ(installModeForValue("SupportHub"), 4);
}

TEST(InstallMode, AWordCountsAnywhereInTheValue) {
  EXPECT_EQ(installModeForValue("MyDataUpdater2"), 0);
  EXPECT_EQ(installModeForValue("x InstallFromVolumes y"), 2);
  EXPECT_EQ(installModeForValue("theSupportHub"), 4);
}

TEST(InstallMode, TheFirstWordInTheOrderOfTestsDecides) {
  EXPECT_EQ(installModeForValue("TavenhallUpdater DataUpdater"), 0);
  EXPECT_EQ(installModeForValue("SupportHub InstallFromVolumes DataUpdater"), 0);
  EXPECT_EQ(installModeForValue("SupportHub TavenhallUpdater InstallFromVolumes"), 2);
  EXPECT_EQ(installModeForValue("SupportHub TavenhallUpdater"), 4);
}

TEST(InstallMode, AnyOtherValueGivesMode3) {
  for (const char* value :
       {"Download", "dataupdater", "installfromvolumes", "Data Updater", "supporthub", ""}) {
    EXPECT_EQ(installModeForValue(value), 3) << value;
  }
}

TEST(EditionChoice, IsLiteOnlyForExactlyLite) {
  EXPECT_TRUE(choiceIsLite("Lite"));
  for (const char* choice : {"lite", "LITE", " Lite", "Lite ", "Lite\r", "Lit", "Full", ""}) {
    EXPECT_FALSE(choiceIsLite(choice)) << choice;
  }
}

TEST(MirelPack, IsAFolderNameWithTheWordsAndASlash) {
  EXPECT_TRUE(isMirelPack("Mirel Packs/Velmora"));
  EXPECT_FALSE(isMirelPack("Tessaphon"));
  EXPECT_FALSE(isMirelPack("mirel packs/Velmora"));
}

TEST(MirelPack, ANameWithoutASlashIsAnOrdinaryLibrary) {
  EXPECT_FALSE(isMirelPack("Mirel Packs"));
  EXPECT_STREQ(libraryDisplayName("Old Mirel Packs 2").c_str(), "Old Mirel Packs 2");
}

TEST(MirelPack, ItsLibraryIsWhatFollowsTheFirstSlash) {
  EXPECT_EQ(mirelPackLibrary("Mirel Packs/Velmora"), "Velmora");
  EXPECT_EQ(mirelPackLibrary("Mirel Packs/Vel/mora"), "Vel/mora");
}

TEST(LibraryDisplayName, OfAnOrdinaryLibraryIsTheFolderName) {
  EXPECT_STREQ(libraryDisplayName("Tessaphon").c_str(), "Tessaphon");
}

TEST(LibraryDisplayName, OfAMirelPackNamesThePack) {
  EXPECT_STREQ(libraryDisplayName("Mirel Packs/Velmora").c_str(), "Mirel Pack Velmora");
}

TEST(LibraryDisplayName, HoldsAtMost255Bytes) {
  EXPECT_EQ(libraryDisplayName(std::string(255, 'x')).view(), std::string(255, 'x'));
  EXPECT_EQ(libraryDisplayName(std::string(300, 'x')).view(), std::string(255, 'x'));
  EXPECT_EQ(libraryDisplayName("Mirel Packs/" + std::string(244, 'x')).view(),
            "Mirel Pack " + std::string(244, 'x'));
  EXPECT_EQ(libraryDisplayName("Mirel Packs/" + std::string(245, 'x')).view(),
            "Mirel Pack " + std::string(244, 'x'));
  EXPECT_EQ(libraryDisplayName("Mirel Packs/" + std::string(499, 'x')).view(),
            "Mirel Pack " + std::string(244, 'x'));
}

TEST(LibraryDisplayName, IsCutAtTheEdgeOfACharacter) {
  EXPECT_EQ(libraryDisplayName(std::string(254, 'x') + "\u00e9").view(), std::string(254, 'x'));
  EXPECT_EQ(libraryDisplayName("Mirel Packs/" + std::string(243, 'x') + "\u00e9").view(),
            "Mirel Pack " + std::string(243, 'x'));
}

TEST(EditionWords, OfAFullEdition) {
  EXPECT_STREQ(editionWords("Tessaphon", false).edition, "Full");
  EXPECT_STREQ(editionWords("Tessaphon", false).phrase, "a Full");
  EXPECT_STREQ(editionWords("Mirel Packs/Velmora", false).edition, "Full");
  EXPECT_STREQ(editionWords("Mirel Packs/Velmora", false).phrase, "a Full");
}

TEST(EditionWords, OfALiteEdition) {
  EXPECT_STREQ(editionWords("Tessaphon", true).edition, "Lite");
  EXPECT_STREQ(editionWords("Tessaphon", true).phrase, "a Lite");
}

TEST(EditionWords, OfALiteMirelPackSayFxOnly) {
  EXPECT_STREQ(editionWords("Mirel Packs/Velmora", true).edition, "FX only");
  EXPECT_STREQ(editionWords("Mirel Packs/Velmora", true).phrase, "an FX only");
}

TEST(DatabaseName, HasTheExtensionDbExactly) {
  EXPECT_TRUE(isDatabaseName("Glassophone.db"));
  EXPECT_TRUE(isDatabaseName("a.bak.db"));
  for (const char* name : {"x.DB", "x.db.bak", "db", "xdb", "x.", "x.dbx", ""}) {
    EXPECT_FALSE(isDatabaseName(name)) << name;
  }
}

TEST(DatabaseSize, Below1000BytesIsLite) {
  EXPECT_TRUE(databaseSizeIsLite(0));
  EXPECT_TRUE(databaseSizeIsLite(999));
  EXPECT_FALSE(databaseSizeIsLite(1000));
  EXPECT_TRUE(databaseSizeIsLite(-1)) << "a size beyond 32 bits may come out negative";
}

TEST(HiddenName, BeginsWithAFullStop) {
  EXPECT_TRUE(isHiddenName("."));
  EXPECT_TRUE(isHiddenName(".."));
  EXPECT_TRUE(isHiddenName(".DS_Store"));
  EXPECT_FALSE(isHiddenName("a.b"));
  EXPECT_FALSE(isHiddenName(""));
}

}  // namespace
}  // namespace tavenhall

#include "pane/install_data_pane.h"
#include "tests/support/files.h"
#include "tests/support/recording_host.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavenhall::test {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

const std::string kUpdate = "/Users/tester/Downloads/Set/Update/TANVO";
constexpr const char* kPacks = "/Users/tester/Downloads/Set/Update/TANVO/Mirel Packs";

constexpr const char* kAttributes = "Mode = TavenhallUpdater\nRelativePath2 = Update\n";
constexpr const char* kRelativePathLine = "Data from attributes file::  RelativePath2=Update ";
constexpr const char* kSearchLine =
    "Searching for Mirel Packs update data: /Users/tester/Downloads/Set/Update/TANVO/Mirel Packs \n";

// The names in a folder, in the order in which the system lists them.
std::vector<std::string> listed(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    names.push_back(entry.path().filename());
  }
  return names;
}

std::vector<std::string> storedNames(const InstallDataPane& pane) {
  std::vector<std::string> names;
  for (std::int32_t i = 0; i < pane.gNumTwoComponentInstallFolders; ++i) {
    names.emplace_back(pane.gTwoComponentInstallFolderNames[i].view());
  }
  return names;
}

class EditionListing : public testing::Test {
 protected:
  EditionListing() {
    makeFolder("/Users/tester/Library/Caches");  // where the log goes
    setAttributes(kAttributes);
  }

  std::vector<std::string> list() {
    pane.storeTwoComponentInstallFolderNames();
    return storedNames(pane);
  }

  RecordingHost host;
  InstallDataPane pane{host};
};

TEST_F(EditionListing, LibrariesAndMirelPacksAreStoredInListingOrder) {
  makeFolder(kUpdate + "/Tessaphon");
  writeFile(kUpdate + "/.DS_Store", "");
  makeFolder(kUpdate + "/Mirel Packs/Velmora");
  makeFolder(kUpdate + "/Mirel Packs/Quorra");
  std::vector<std::string> expected;
  for (const std::string& name : listed(kUpdate)) {
    if (name == "Mirel Packs") {
      for (const std::string& pack : listed(kPacks)) {
        expected.push_back("Mirel Packs/" + pack);
      }
    } else if (name != ".DS_Store") {
      expected.push_back(name);
    }
  }
  ASSERT_EQ(expected.size(), 3U);

  EXPECT_THAT(list(), ElementsAreArray(expected));
  EXPECT_EQ(pane.gNumTwoComponentInstallFolders, 3);
  EXPECT_EQ(pane.gNumMirelPacksInstallFolders, 2);
}

TEST_F(EditionListing, TheLogHasTheSearchAndEachMirelPack) {
  makeFolder(kUpdate + "/Tessaphon");
  makeFolder(kUpdate + "/Mirel Packs/Velmora");
  list();
  EXPECT_THAT(logMessages(), ElementsAre(kFoundLine, kRelativePathLine, kSearchLine,
                                         "Found Mirel Packs library: Mirel Packs/Velmora\n"));
}

TEST_F(EditionListing, NothingIsShownToTheUser) {
  makeFolder(kUpdate + "/Mirel Packs/Velmora");
  list();
  EXPECT_THAT(host.lines(), IsEmpty());
}

TEST_F(EditionListing, FilesCountLikeFolders) {
  writeFile(kUpdate + "/readme.txt", "");
  EXPECT_THAT(list(), ElementsAre("readme.txt"));
  EXPECT_EQ(pane.gNumMirelPacksInstallFolders, 0);
}

TEST_F(EditionListing, FilesInMirelPacksCountToo) {
  writeFile(std::string(kPacks) + "/readme.txt", "");
  EXPECT_THAT(list(), ElementsAre("Mirel Packs/readme.txt"));
  EXPECT_EQ(pane.gNumMirelPacksInstallFolders, 1);
}

TEST_F(EditionListing, HiddenNamesAreNotListedAtEitherLevel) {
  makeFolder(kUpdate + "/.Hidden");
  makeFolder(kUpdate + "/Mirel Packs/.Hidden");
  makeFolder(kUpdate + "/Mirel Packs/Velmora");
  EXPECT_THAT(list(), ElementsAre("Mirel Packs/Velmora"));
}

TEST_F(EditionListing, AnEmptyMirelPacksFolderAddsNothing) {
  makeFolder(kPacks);
  EXPECT_THAT(list(), IsEmpty());
  EXPECT_EQ(pane.gNumMirelPacksInstallFolders, 0);
  EXPECT_THAT(logMessages(), ElementsAre(kFoundLine, kRelativePathLine, kSearchLine));
}

TEST_F(EditionListing, AnEmptyMirelPacksFolderIsNotCountedBesideALibrary) {
  makeFolder(kPacks);
  makeFolder(kUpdate + "/Tessaphon");
  EXPECT_THAT(list(), ElementsAre("Tessaphon"));
}

TEST_F(EditionListing, AMirelPacksThatCannotBeOpenedAddsNothing) {
  writeFile(kPacks, "a file");
  EXPECT_THAT(list(), IsEmpty());
  EXPECT_THAT(logMessages(), ElementsAre(kFoundLine, kRelativePathLine, kSearchLine));
}

TEST_F(EditionListing, OnlyTheExactNameIsTheMirelPacksFolder) {
  for (const char* name : {"mirel packs", "Mirel Packs 2", "My Mirel Packs"}) {
    makeFolder(kUpdate + "/" + name + "/Velmora");
  }
  EXPECT_THAT(list(), testing::UnorderedElementsAre("mirel packs", "Mirel Packs 2", "My Mirel Packs"));
  EXPECT_EQ(pane.gNumMirelPacksInstallFolders, 0);
}

TEST_F(EditionListing, AMissingSourceFolderGivesNoEntries) {
  EXPECT_THAT(list(), IsEmpty());
  EXPECT_THAT(logMessages(), ElementsAre(kFoundLine, kRelativePathLine));
}

TEST_F(EditionListing, AnEmptySourceFolderGivesNoEntries) {
  makeFolder(kUpdate);
  EXPECT_THAT(list(), IsEmpty());
}

TEST_F(EditionListing, AMissingRelativePath2ListsNothingWhateverTheLookupLeftBehind) {
  setAttributes("Mode = TavenhallUpdater\nInstallDataTitle = Update\n");
  makeFolder(kUpdate + "/Tessaphon");
  EXPECT_THAT(list(), IsEmpty());
  EXPECT_THAT(logMessages(),
              ElementsAre(kFoundLine, "Could not find RelativePath2 string in attributes file "));
}

TEST_F(EditionListing, AnEarlierRelativePathIsNotTakenForRelativePath2) {
  setAttributes("RelativePath = Update\n");
  makeFolder(kUpdate + "/Tessaphon");
  EXPECT_THAT(list(), IsEmpty());
}

TEST_F(EditionListing, TheLongestNamesAreStoredWhole) {
  const std::string name(255, 'n');
  makeFolder(std::string(kPacks) + "/" + name);
  EXPECT_THAT(list(), ElementsAre("Mirel Packs/" + name));
}

// ---- Fifty entries ----

void makeFolders(const std::string& folder, int count) {
  for (int i = 0; i < count; ++i) {
    makeFolder(folder + "/Library " + std::to_string(i));
  }
}

TEST_F(EditionListing, FiftyLibrariesAreAllStored) {
  makeFolders(kUpdate, 50);
  EXPECT_THAT(list(), ElementsAreArray(listed(kUpdate)));
  EXPECT_EQ(pane.gNumTwoComponentInstallFolders, 50);
}

TEST_F(EditionListing, TheListingStopsAtFifty) {
  makeFolders(kUpdate, 60);
  std::vector<std::string> firstFifty = listed(kUpdate);
  firstFifty.resize(50);
  EXPECT_THAT(list(), ElementsAreArray(firstFifty));
}

TEST_F(EditionListing, TheListingStopsAtFiftyInsideMirelPacksToo) {
  makeFolders(kPacks, 60);
  std::vector<std::string> expected = listed(kPacks);
  expected.resize(50);
  std::vector<std::string> expectedLog = {kFoundLine, kRelativePathLine, kSearchLine};
  for (std::string& name : expected) {
    name.insert(0, "Mirel Packs/");
    expectedLog.push_back("Found Mirel Packs library: " + name + "\n");
  }

  EXPECT_THAT(list(), ElementsAreArray(expected));
  EXPECT_EQ(pane.gNumMirelPacksInstallFolders, 50);
  EXPECT_THAT(logMessages(), ElementsAreArray(expectedLog));
}

TEST_F(EditionListing, AMirelPacksFolderAfterTheFiftiethEntryIsNotLookedAt) {
  makeFolder(std::string(kPacks) + "/Velmora");
  const auto place = [] {
    const auto names = listed(kUpdate);
    return std::ranges::find(names, "Mirel Packs") - names.begin();
  };
  int made = 0;
  while (place() < 50 && made < 2000) {  // how a system orders its listings is its own affair
    makeFolder(kUpdate + "/Library " + std::to_string(made));
    ++made;
  }
  ASSERT_GE(place(), 50);

  EXPECT_EQ(list().size(), 50U);
  EXPECT_EQ(pane.gNumMirelPacksInstallFolders, 0);
  EXPECT_THAT(logMessages(), ElementsAre(kFoundLine, kRelativePathLine));
}

TEST_F(EditionListing, LibrariesAndMirelPacksShareTheFiftyPlaces) {
  makeFolders(kUpdate, 30);
  makeFolders(kPacks, 30);
  EXPECT_EQ(list().size(), 50U);
  EXPECT_GE(pane.gNumMirelPacksInstallFolders, 20);
  const auto names = storedNames(pane);
  EXPECT_EQ(
      std::ranges::count_if(names, [](const std::string& name) { return name.starts_with("Mirel Packs/"); }),
      pane.gNumMirelPacksInstallFolders);
}

}  // namespace

}  // namespace tavenhall::test

#include "pane/install_data_pane.h"
#include "tests/support/files.h"
#include "tests/support/recording_host.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tavenhall::test {

namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::IsEmpty;

const std::string kGlassophone =
    "/Users/tester/Library/Application Support/Tavenhall/TANVO/Tessaphon/Soundsources/Factory/Tessaphon "
    "Library/"
    "Keyboards/Glassophone.db";
const std::string kVelmora =
    "/Users/tester/Library/Application Support/Tavenhall/TANVO/Mirel "
    "Packs/Velmora/Soundsources/Factory/Velmora "
    "Library";
const std::string kSearching = "Searching: " + kVelmora + " \n";

constexpr std::int32_t kUntouched = 7;

// A file of that many bytes, however many, without the room they would take.
void makeSparseFile(const std::string& path, std::int64_t size) {
  writeFile(path, "");
  ASSERT_EQ(truncate(path.c_str(), size), 0);
}

std::string foundLine(const std::string& path, const std::string& size) {
  return "Found " + path + " file with size = " + size + "\n";
}

class EditionDetection : public testing::Test {
 protected:
  EditionDetection() {
    makeFolder("/Users/tester/Library/Caches");  // where the log goes
    pane.gTANVOorDOVA_destinationPath = kTanvo;
  }

  // The flag that one library gets, which is kUntouched before.
  std::int32_t detect(const std::string& library) {
    pane.gNumTwoComponentInstallFolders = 1;
    pane.gTwoComponentInstallFolderNames[0].assign(library);
    pane.gTwoComponentInstallChoicesAreLite[0] = kUntouched;
    pane.determineInstallationTypesInLocalTANVOFolder();
    return pane.gTwoComponentInstallChoicesAreLite[0];
  }

  RecordingHost host;
  InstallDataPane pane{host};
};

// ---- Tessaphon ----

TEST_F(EditionDetection, TessaphonWithoutGlassophoneIsLite) {
  makeFolder(fs::path(kGlassophone).parent_path());
  EXPECT_EQ(detect("Tessaphon"), 1);
  EXPECT_THAT(logMessages(), ElementsAre("Confirmed Tessaphon Library Installation is Lite\n"));
}

TEST_F(EditionDetection, TessaphonWithGlassophoneIsFull) {
  writeFile(kGlassophone, "");
  EXPECT_EQ(detect("Tessaphon"), 0);
  EXPECT_THAT(logMessages(), ElementsAre("Confirmed Tessaphon Library Installation is Full\n"));
}

TEST_F(EditionDetection, TessaphonThatIsNotInstalledIsLite) { EXPECT_EQ(detect("Tessaphon"), 1); }

TEST_F(EditionDetection, OnlyTheExactNameIsTessaphon) {
  for (const char* name : {"tessaphon", "Tessaphon 2", "My Tessaphon"}) {
    EXPECT_EQ(detect(name), kUntouched) << name;
  }
  EXPECT_THAT(logMessages(), IsEmpty());
}

// ---- Other names ----

TEST_F(EditionDetection, AnyOtherLibraryIsLeftAsItIs) {
  makeSparseFile(std::string(kTanvo) + "/Lumaweave/Soundsources/Factory/Lumaweave Library/Sub/x.db", 10);
  EXPECT_EQ(detect("Lumaweave"), kUntouched);
  EXPECT_THAT(logMessages(), IsEmpty());
}

TEST_F(EditionDetection, ANameWithMirelPacksButNoSlashIsAnOrdinaryLibrary) {
  EXPECT_EQ(detect("My Mirel Packs"), kUntouched);
  EXPECT_THAT(logMessages(), IsEmpty());
}

TEST_F(EditionDetection, WithoutEntriesNothingIsDone) {
  pane.gTwoComponentInstallFolderNames[0].assign("Tessaphon");
  pane.determineInstallationTypesInLocalTANVOFolder();
  EXPECT_EQ(pane.gTwoComponentInstallChoicesAreLite[0], 0);
  EXPECT_THAT(logMessages(), IsEmpty());
}

TEST_F(EditionDetection, EachLibraryGetsItsOwnFlagInOrder) {
  makeSparseFile(kVelmora + "/Sub/x.db", 999);
  writeFile(kGlassophone, "");
  pane.gNumTwoComponentInstallFolders = 3;
  pane.gTwoComponentInstallFolderNames[0].assign("Lumaweave");
  pane.gTwoComponentInstallFolderNames[1].assign("Mirel Packs/Velmora");
  pane.gTwoComponentInstallFolderNames[2].assign("Tessaphon");

  pane.determineInstallationTypesInLocalTANVOFolder();

  EXPECT_EQ(pane.gTwoComponentInstallChoicesAreLite[0], 0);
  EXPECT_EQ(pane.gTwoComponentInstallChoicesAreLite[1], 1);
  EXPECT_EQ(pane.gTwoComponentInstallChoicesAreLite[2], 0);
  EXPECT_THAT(logMessages(), ElementsAre(kSearching, foundLine(kVelmora + "/Sub/x.db", "999"),
                                         "Confirmed Velmora Library Installation is Lite\n",
                                         "Confirmed Tessaphon Library Installation is Full\n"));
  EXPECT_THAT(host.lines(), IsEmpty());
}

// ---- A Mirel Pack's size ----

struct Size {
  std::int64_t bytes;
  const char* logged;
  std::int32_t isLite;
};

void PrintTo(const Size& row, std::ostream* out) { *out << row.bytes << " bytes"; }

class EditionDetectionSize : public EditionDetection, public testing::WithParamInterface<Size> {};

TEST_P(EditionDetectionSize, DecidesAsASigned32BitNumber) {
  const Size& row = GetParam();
  makeSparseFile(kVelmora + "/Sub/x.db", row.bytes);
  EXPECT_EQ(detect("Mirel Packs/Velmora"), row.isLite);
  EXPECT_THAT(logMessages(), ElementsAre(kSearching, foundLine(kVelmora + "/Sub/x.db", row.logged),
                                         row.isLite == 1 ? "Confirmed Velmora Library Installation is Lite\n"
                                                         : "Confirmed Velmora Library Installation is Full\n"));
}

INSTANTIATE_TEST_SUITE_P(Rows, EditionDetectionSize,
                         testing::Values(Size{0, "0", 1}, Size{999, "999", 1}, Size{1000, "1000", 0},
                                         Size{2147483647, "2147483647", 0}, Size{2147483648, "-2147483648", 1},
                                         Size{4294967295, "-1", 1}, Size{4294967296 + 999, "999", 1},
                                         Size{4294967296 + 1000, "1000", 0}));

// ---- Which file decides ----

TEST_F(EditionDetection, AMirelPackThatIsNotInstalledKeepsItsFlag) {
  EXPECT_EQ(detect("Mirel Packs/Velmora"), kUntouched);
  EXPECT_THAT(logMessages(), ElementsAre(kSearching));
}

TEST_F(EditionDetection, AMirelPackWithoutADatabaseKeepsItsFlag) {
  writeFile(kVelmora + "/Sub/readme.txt", "");
  EXPECT_EQ(detect("Mirel Packs/Velmora"), kUntouched);
  EXPECT_THAT(logMessages(), ElementsAre(kSearching));
}

TEST_F(EditionDetection, ADatabaseBesideTheSubfoldersIsNotExamined) {
  makeSparseFile(kVelmora + "/x.db", 10);
  EXPECT_EQ(detect("Mirel Packs/Velmora"), kUntouched);
}

TEST_F(EditionDetection, ADatabaseTwoLevelsDownIsNotExamined) {
  makeSparseFile(kVelmora + "/Sub/Deeper/x.db", 10);
  EXPECT_EQ(detect("Mirel Packs/Velmora"), kUntouched);
}

TEST_F(EditionDetection, NamesThatOnlyLookLikeDatabasesAreNotExamined) {
  for (const char* name : {"x.DB", "x.db.bak", "xdb", "db", ".db", ".x.db", "x.db "}) {
    makeSparseFile(kVelmora + "/Sub/" + name, 10);
  }
  EXPECT_EQ(detect("Mirel Packs/Velmora"), kUntouched);
  EXPECT_THAT(logMessages(), ElementsAre(kSearching));
}

TEST_F(EditionDetection, TheTextAfterTheLastFullStopCounts) {
  makeSparseFile(kVelmora + "/Sub/x.bak.db", 10);
  EXPECT_EQ(detect("Mirel Packs/Velmora"), 1);
}

TEST_F(EditionDetection, AFolderNamedLikeADatabaseIsNotExamined) {
  makeFolder(kVelmora + "/Sub/x.db");
  EXPECT_EQ(detect("Mirel Packs/Velmora"), kUntouched);
}

TEST_F(EditionDetection, ALinkedDatabaseIsNotExamined) {
  makeSparseFile("/Volumes/x.db", 10);
  makeFolder(kVelmora + "/Sub");
  ASSERT_EQ(symlink("/Volumes/x.db", (kVelmora + "/Sub/x.db").c_str()), 0);
  EXPECT_EQ(detect("Mirel Packs/Velmora"), kUntouched);
}

TEST_F(EditionDetection, ALinkedSubfolderIsNotExamined) {
  makeSparseFile("/Volumes/Sub/x.db", 10);
  makeFolder(kVelmora);
  ASSERT_EQ(symlink("/Volumes/Sub", (kVelmora + "/Sub").c_str()), 0);
  EXPECT_EQ(detect("Mirel Packs/Velmora"), kUntouched);
}

TEST_F(EditionDetection, AHiddenSubfolderIsNotExamined) {
  makeSparseFile(kVelmora + "/.Sub/x.db", 10);
  EXPECT_EQ(detect("Mirel Packs/Velmora"), kUntouched);
}

TEST_F(EditionDetection, TheFirstDatabaseOfTheListingDecidesAlone) {
  makeSparseFile(kVelmora + "/Sub/a.db", 10);
  makeSparseFile(kVelmora + "/Sub/b.db", 2000);
  const fs::path first = fs::directory_iterator(kVelmora + "/Sub")->path();
  EXPECT_EQ(detect("Mirel Packs/Velmora"), first.filename() == "a.db" ? 1 : 0);
  EXPECT_EQ(logMessages().size(), 3U);
  EXPECT_EQ(logMessages()[1], foundLine(first, first.filename() == "a.db" ? "10" : "2000"));
}

// ---- Several subfolders ----

struct Subfolders {
  std::string first;  // names, in listing order
  std::string second;
};

Subfolders makeTwoSubfolders() {
  makeFolder(kVelmora + "/Bells");
  makeFolder(kVelmora + "/Strings");
  const std::string first = fs::directory_iterator(kVelmora)->path().filename();
  return {first, first == "Bells" ? "Strings" : "Bells"};
}

TEST_F(EditionDetection, TheFirstSubfoldersDatabaseDecides) {
  const Subfolders sub = makeTwoSubfolders();
  makeSparseFile(kVelmora + "/" + sub.first + "/x.db", 999);
  makeSparseFile(kVelmora + "/" + sub.second + "/x.db", 1000);
  EXPECT_EQ(detect("Mirel Packs/Velmora"), 1);
  EXPECT_EQ(logMessages().size(), 3U);
}

TEST_F(EditionDetection, ADatabaseInTheSecondSubfolderAloneIsNeverFound) {
  const Subfolders sub = makeTwoSubfolders();
  makeSparseFile(kVelmora + "/" + sub.second + "/x.db", 10);
  EXPECT_EQ(detect("Mirel Packs/Velmora"), kUntouched);
  EXPECT_THAT(logMessages(), ElementsAre(kSearching));
}

TEST_F(EditionDetection, ThePathOnlyGrowsSoTheSecondIsLookedForInTheFirst) {
  const Subfolders sub = makeTwoSubfolders();
  const std::string grown = kVelmora + "/" + sub.first + "/" + sub.second + "/x.db";
  makeSparseFile(grown, 10);
  makeSparseFile(kVelmora + "/" + sub.second + "/x.db", 2000);
  EXPECT_EQ(detect("Mirel Packs/Velmora"), 1);
  EXPECT_THAT(logMessages(), ElementsAre(kSearching, foundLine(grown, "10"),
                                         "Confirmed Velmora Library Installation is Lite\n"));
}

TEST_F(EditionDetection, ASubfolderThatCannotBeOpenedCountsAsOneWithoutADatabase) {
  const Subfolders sub = makeTwoSubfolders();
  makeSparseFile(kVelmora + "/" + sub.first + "/x.db", 10);
  const std::string closed = kVelmora + "/" + sub.first;
  const std::string logFolder = fs::path(kLog).parent_path();
  makeFolder(logFolder);
  ASSERT_EQ(chmod(logFolder.c_str(), 0777), 0);
  ASSERT_EQ(chmod(closed.c_str(), 0), 0);
  constexpr uid_t kNobody = 65534;
  if (seteuid(kNobody) != 0) {
    GTEST_SKIP() << "only the real root may become somebody whom permissions bind";
  }

  const std::int32_t flag = detect("Mirel Packs/Velmora");

  ASSERT_EQ(seteuid(0), 0);
  EXPECT_EQ(flag, kUntouched);
  EXPECT_THAT(logMessages(), ElementsAre(kSearching));
}

TEST_F(EditionDetection, AStrayFileBeforeTheSubfolderDoesNotCount) {
  writeFile(kVelmora + "/a.txt", "");
  writeFile(kVelmora + "/z.txt", "");
  makeSparseFile(kVelmora + "/Sub/x.db", 999);
  EXPECT_EQ(detect("Mirel Packs/Velmora"), 1);
}

// ---- Limits ----

// A central folder with which Velmora's library folder has that many bytes.
std::string centralForLength(std::size_t length) {
  const std::size_t tail = std::string("/Mirel Packs/Velmora/Soundsources/Factory/Velmora Library").size();
  return "/" + std::string(length - tail - 1, 'd');
}

TEST_F(EditionDetection, APathOf2047BytesIsLookedAt) {
  const std::string central = centralForLength(2047);
  pane.gTANVOorDOVA_destinationPath = central.c_str();
  EXPECT_EQ(detect("Mirel Packs/Velmora"), kUntouched);
  EXPECT_THAT(logMessages(), ElementsAre("Searching: " + central +
                                         "/Mirel Packs/Velmora/Soundsources/Factory/Velmora Library \n"));
}

TEST_F(EditionDetection, APathOf2048BytesEndsTheProcess) {
  const std::string central = centralForLength(2048);
  pane.gTANVOorDOVA_destinationPath = central.c_str();
  EXPECT_DEATH(static_cast<void>(detect("Mirel Packs/Velmora")),
               "InstallDataPane: a text does not fit its buffer of 2048 bytes; stopping");
}

}  // namespace

}  // namespace tavenhall::test

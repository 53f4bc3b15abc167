#include "context/internal_lookups.h"

#include "tests/support/files.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tavenhall {
namespace {

using test::logMessages;
using test::writeFile;

constexpr const char* kLocationFile = "/tmp/TavInstallLoc";
constexpr const char* kCouldNotOpen =
    "getFolderContainingPKGfile: could not open preinstall file  /tmp/TavInstallLoc";
constexpr const char* kIsEmpty = "getFolderContainingPKGfile: preinstall file is empty";

// The location file is read once a process, so each test sets it before its first call.
class PackageLocation : public testing::Test {
 protected:
  void SetUp() override { test::makeFolder("/Users/tester/Library/Caches"); }
};

using PackageLocationDeathTest = PackageLocation;

std::string folder(const char* subfolder = nullptr) {
  getFolderContainingPKGfile(subfolder);
  return sOutputPathWithCallersSubfolder.c_str();
}

std::string folderOf(const std::string& locationFile) {
  writeFile(kLocationFile, locationFile);
  return folder();
}

TEST_F(PackageLocation, IsTheFolderThatHoldsThePackage) {
  EXPECT_EQ(folderOf("/Users/u/Downloads/Data Installer.pkg\n"), "/Users/u/Downloads");
  EXPECT_TRUE(logMessages().empty());
}

TEST_F(PackageLocation, TakesASubfolderBehindASlash) {
  writeFile(kLocationFile, "/Users/u/Downloads/Data Installer.pkg\n");
  EXPECT_EQ(folder(".."), "/Users/u/Downloads/..");
  EXPECT_EQ(folder("Data/Set 2"), "/Users/u/Downloads/Data/Set 2");
  EXPECT_EQ(folder(""), "/Users/u/Downloads/");
}

TEST_F(PackageLocation, EveryCallReplacesTheResult) {
  writeFile(kLocationFile, "/a/b/x.pkg\n");
  EXPECT_EQ(folder("first"), "/a/b/first");
  EXPECT_EQ(folder(), "/a/b");
}

TEST_F(PackageLocation, OneTrailingSeparatorIsRemovedFirst) {
  EXPECT_EQ(folderOf("/Volumes/Disk/Installer.pkg/\n"), "/Volumes/Disk");
}

TEST_F(PackageLocation, OneTrailingBackslashIsRemovedFirst) {
  EXPECT_EQ(folderOf("C:\\dir\\x.pkg\\\n"), "C:\\dir");
}

TEST_F(PackageLocation, OnlyOneTrailingSeparatorIsRemoved) {
  EXPECT_EQ(folderOf("/a/b/x.pkg//\n"), "/a/b/x.pkg");
}

TEST_F(PackageLocation, WithoutAFinalNewlineLosesALetterBeforeTheFolderIsTaken) {
  EXPECT_EQ(folderOf("/a/b/x.pkg"), "/a/b");
}

TEST_F(PackageLocation, WithoutAFinalNewlineALetterOfTheNameIsLost) {
  EXPECT_EQ(folderOf("package"), "packag");
}

TEST_F(PackageLocation, MayUseBackslashesOnly) { EXPECT_EQ(folderOf("C:\\dir\\x.pkg\n"), "C:\\dir"); }

TEST_F(PackageLocation, OfBothSeparatorsTheOneFurtherRightCounts) {
  EXPECT_EQ(folderOf("/a\\b/c\\x.pkg\n"), "/a\\b/c");
}

TEST_F(PackageLocation, ASlashBehindABackslashCounts) { EXPECT_EQ(folderOf("C:\\a\\b/x.pkg\n"), "C:\\a\\b"); }

TEST_F(PackageLocation, APathWithoutSeparatorIsLeftWhole) { EXPECT_EQ(folderOf("x.pkg\n"), "x.pkg"); }

TEST_F(PackageLocation, APathWhoseOnlySeparatorIsItsFirstCharacterIsEmpty) {
  EXPECT_EQ(folderOf("/x.pkg\n"), "");
  EXPECT_EQ(folder("Data"), "/Data");
  EXPECT_TRUE(logMessages().empty());
}

TEST_F(PackageLocation, ASeparatorAloneIsEmptyWithoutALogLine) {
  EXPECT_EQ(folderOf("/\n"), "");
  EXPECT_TRUE(logMessages().empty());
}

TEST_F(PackageLocation, OnlyTheFirstLineCounts) { EXPECT_EQ(folderOf("/a/b/x.pkg\n/c/d/y.pkg\n"), "/a/b"); }

TEST_F(PackageLocation, EndsAtANulByteBeforeItsLastCharacterGoes) {
  using namespace std::string_literals;
  EXPECT_EQ(folderOf("/a/b/c\0/d/x.pkg\n"s), "/a");
}

TEST_F(PackageLocation, WithACarriageReturnStillHasItsFolder) { EXPECT_EQ(folderOf("/a/b/x.pkg\r\n"), "/a/b"); }

TEST_F(PackageLocation, KeepsBytesThatAreNoCharacters) {
  EXPECT_EQ(folderOf("/a\xff/b\x80/x.pkg\n"), "/a\xff/b\x80");
}

TEST_F(PackageLocation, AMissingFileIsLoggedOnceAndTheFolderIsEmpty) {
  EXPECT_EQ(folder(), "");
  EXPECT_EQ(logMessages(), std::vector<std::string>{kCouldNotOpen});
}

TEST_F(PackageLocation, AfterAFailedOpenEveryFurtherCallSaysThatTheFileIsEmpty) {
  EXPECT_EQ(folder(), "");
  EXPECT_EQ(folder("Data"), "");
  EXPECT_EQ(folder(), "");
  EXPECT_EQ(logMessages(), (std::vector<std::string>{kCouldNotOpen, kIsEmpty, kIsEmpty}));
}

TEST_F(PackageLocation, AFailedOpenIsNeverRetried) {
  EXPECT_EQ(folder(), "");
  EXPECT_EQ(folderOf("/a/b/x.pkg\n"), "");
}

TEST_F(PackageLocation, IsReadOnceAProcess) {
  EXPECT_EQ(folderOf("/a/b/x.pkg\n"), "/a/b");
  EXPECT_EQ(folderOf("/c/d/y.pkg\n"), "/a/b");
}

TEST_F(PackageLocation, AnEmptyFileIsLoggedAtEveryCall) {
  EXPECT_EQ(folderOf(""), "");
  EXPECT_EQ(folder("Data"), "");
  EXPECT_EQ(logMessages(), (std::vector<std::string>{kIsEmpty, kIsEmpty}));
}

TEST_F(PackageLocation, ANewlineAloneIsAnEmptyFile) {
  EXPECT_EQ(folderOf("\n"), "");
  EXPECT_EQ(logMessages(), std::vector<std::string>{kIsEmpty});
}

TEST_F(PackageLocation, AFailedCallLeavesNoEarlierResult) {
  sOutputPathWithCallersSubfolder.assign("/before");
  EXPECT_EQ(folder(), "");
}

TEST_F(PackageLocation, AFirstLineBeyondItsLimitIsReadInPart) {
  EXPECT_EQ(folderOf("/a/" + std::string(5000, 'x') + "/y.pkg\n"), "/a");
}

TEST_F(PackageLocation, APathThatFillsTheLimitFits) {
  const std::string name = "/" + std::string(1021, 'x');  // 1022 bytes are the most that a first line keeps
  EXPECT_EQ(folderOf(name + "\n"), "");
  EXPECT_TRUE(logMessages().empty());
}

TEST_F(PackageLocation, AResultOf1023BytesFits) {
  writeFile(kLocationFile, "/a/x.pkg\n");
  const std::string subfolder(1023 - 3, 's');
  EXPECT_EQ(folder(subfolder.c_str()), "/a/" + subfolder);
}

TEST_F(PackageLocationDeathTest, AResultOf1024BytesEndsTheProcess) {
  writeFile(kLocationFile, "/a/x.pkg\n");
  const std::string subfolder(1024 - 3, 's');
  EXPECT_EXIT(getFolderContainingPKGfile(subfolder.c_str()), testing::KilledBySignal(SIGABRT),
              testing::MatchesRegex("InstallDataPane: [^\n]* 1024 bytes[^\n]*\n"));
}

}  // namespace
}  // namespace tavenhall

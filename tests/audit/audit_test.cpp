#include "host/audit/audit.h"
#include "tests/support/files.h"
#include "tests/support/private_root.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace tavenhall::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace fs = std::filesystem;

constexpr const char* kSource = "/Volumes/Disc/TANVO";
constexpr const char* kDestination = "/Users/tester/TANVO";

const std::map<AuditProblem, std::string> kNames{{AuditProblem::noDestination, "no destination"},
                                                 {AuditProblem::sameSource, "same source"},
                                                 {AuditProblem::notListed, "not listed"},
                                                 {AuditProblem::notReadable, "not readable"},
                                                 {AuditProblem::folderAsFile, "folder as file"},
                                                 {AuditProblem::skipped, "skipped"},
                                                 {AuditProblem::missing, "missing"},
                                                 {AuditProblem::refused, "refused"},
                                                 {AuditProblem::wrongType, "wrong type"},
                                                 {AuditProblem::wrongSize, "wrong size"},
                                                 {AuditProblem::sharedFile, "shared file"},
                                                 {AuditProblem::isSource, "is source"}};

// An install that copied "Keys/one.db" and "two.db", and what its audit finds.
class AuditTest : public testing::Test {
 protected:
  AuditTest() {
    for (const char* top : {kSource, kDestination}) {
      writeFile(std::string(top) + "/Keys/one.db", "one");
      writeFile(std::string(top) + "/two.db", "zwei");
    }
  }

  // "<problem> <path at the source>" for each failure.
  std::vector<std::string> failuresOf(const char* source = kSource, const char* destination = kDestination) {
    failures.clear();
    counts = audit.compare(source, destination);
    EXPECT_EQ(counts.failures, static_cast<std::int64_t>(failures.size()));
    return failures;
  }

  static std::string atSource(const std::string& path) { return std::string(kSource) + "/" + path; }
  static std::string installed(const std::string& path) { return std::string(kDestination) + "/" + path; }

  std::vector<std::string> failures;
  AuditFailure last;
  AuditCounts counts;
  Audit audit{[this](const AuditFailure& failure) {
    failures.push_back(kNames.at(failure.problem) + " " + failure.source);
    last = failure;
  }};
};

TEST_F(AuditTest, CountsAnInstallThatIsComplete) {
  writeFile(installed("of the user.db"), "x");
  EXPECT_THAT(failuresOf(), IsEmpty());
  EXPECT_EQ(counts.files, 2);
  EXPECT_EQ(counts.folders, 2);
  EXPECT_EQ(counts.bytes, 7);
  EXPECT_EQ(counts.skipped, 0);
}

TEST_F(AuditTest, CountsWhatThePageSkipsByDesign) {
  writeFile(atSource(".DS_Store"), "x");
  writeFile(atSource(".hidden/deep/file.db"), "x");
  writeFile(atSource("Old.InstallationAttributes.dat"), "x");
  EXPECT_THAT(failuresOf(), IsEmpty());
  EXPECT_EQ(counts.files, 2);
  EXPECT_EQ(counts.skipped, 3);
}

TEST_F(AuditTest, ReportsAMissingFile) {
  fs::remove(installed("Keys/one.db"));
  EXPECT_THAT(failuresOf(), ElementsAre("missing " + atSource("Keys/one.db")));
  EXPECT_EQ(last.destination, installed("Keys/one.db"));
  EXPECT_EQ(last.error, ENOENT);
}

TEST_F(AuditTest, ReportsEachFileOfAMissingFolder) {
  fs::remove_all(installed("Keys"));
  EXPECT_THAT(failuresOf(), ElementsAre("missing " + atSource("Keys"), "missing " + atSource("Keys/one.db")));
}

TEST_F(AuditTest, ReportsAFileThatIsTooShort) {
  writeFile(installed("two.db"), "zw");
  EXPECT_THAT(failuresOf(), ElementsAre("wrong size " + atSource("two.db")));
  EXPECT_EQ(last.sourceSize, 4);
  EXPECT_EQ(last.destinationSize, 2);
}

TEST_F(AuditTest, ReportsAFolderInAFilesPlaceAndAFileInAFolders) {
  fs::remove(installed("two.db"));
  makeFolder(installed("two.db"));
  fs::remove_all(installed("Keys"));
  writeFile(installed("Keys"), "x");
  EXPECT_THAT(failuresOf(),
              UnorderedElementsAre("wrong type " + atSource("two.db"), "wrong type " + atSource("Keys"),
                                   "missing " + atSource("Keys/one.db")));
}

TEST_F(AuditTest, ReportsAFolderThatCannotBeListedAndAFileThatCannotBeRead) {
  fs::remove(installed("two.db"));
  ASSERT_EQ(chmod(atSource("two.db").c_str(), 0), 0);
  ASSERT_EQ(chmod(atSource("Keys").c_str(), 0), 0);
  dropOverridesOfPermissions();
  EXPECT_THAT(failuresOf(),
              UnorderedElementsAre("not readable " + atSource("two.db"), "not listed " + atSource("Keys")));
  EXPECT_EQ(last.error, EACCES);
}

TEST_F(AuditTest, ReportsAFolderThatIsMissingAtTheSource) {
  EXPECT_THAT(failuresOf("/Volumes/None"), ElementsAre("not listed /Volumes/None"));
  EXPECT_EQ(last.error, ENOENT);
}

TEST_F(AuditTest, ReportsAMissingDestination) {
  EXPECT_THAT(failuresOf(kSource, nullptr), ElementsAre("no destination " + std::string(kSource)));
}

// The page copies a link to a folder as an empty file. A file system may give 0 as the folder's size, too.
TEST_F(AuditTest, ReportsALinkToAFolder) {
  fs::create_directory_symlink("Keys", atSource("Link"));
  writeFile(installed("Link"), "");
  EXPECT_THAT(failuresOf(), ElementsAre("folder as file " + atSource("Link")));
}

TEST_F(AuditTest, FollowsALinkToAFile) {
  fs::create_symlink("two.db", atSource("link.db"));
  writeFile(installed("link.db"), "zwei");
  EXPECT_THAT(failuresOf(), IsEmpty());
  EXPECT_EQ(counts.files, 3);
}

TEST_F(AuditTest, ReportsWhatIsNoFile) {
  ASSERT_EQ(mkfifo(atSource("pipe").c_str(), 0666), 0);
  fs::create_symlink("nowhere", atSource("link"));
  EXPECT_THAT(failuresOf(),
              UnorderedElementsAre("not readable " + atSource("pipe"), "not readable " + atSource("link")));
}

TEST_F(AuditTest, ReportsFilesBelowAPathThatThePageSkips) {
  const std::string source = "/Volumes/x.InstallationAttributes.dat/TANVO";
  writeFile(source + "/one.db", "one");
  EXPECT_THAT(failuresOf(source.c_str()), ElementsAre("skipped " + source + "/one.db"));
}

// An older file of the same size is there.
TEST_F(AuditTest, ReportsAFileThatThePageRefused) {
  audit.addRefusal(atSource("two.db"));
  EXPECT_THAT(failuresOf(), ElementsAre("refused " + atSource("two.db")));
}

// ---- Files with two names ----

TEST_F(AuditTest, ReportsTwoEntriesThatAreOneFile) {
  writeFile(atSource("three.db"), "drei");
  fs::create_symlink("two.db", installed("three.db"));
  EXPECT_THAT(failuresOf(), ElementsAre("shared file " + atSource("three.db")));
}

TEST_F(AuditTest, ReportsHardLinks) {
  writeFile(atSource("three.db"), "drei");
  fs::create_hard_link(installed("two.db"), installed("three.db"));
  EXPECT_THAT(failuresOf(),
              UnorderedElementsAre("shared file " + atSource("two.db"), "shared file " + atSource("three.db")));
}

TEST_F(AuditTest, ReportsFilesOfAFolderThatIsALinkToAnother) {
  writeFile(atSource("Strings/one.db"), "eins");
  writeFile(installed("Keys/one.db"), "eins");
  writeFile(atSource("Keys/one.db"), "unos");
  fs::create_directory_symlink("Keys", installed("Strings"));
  EXPECT_THAT(failuresOf(), ElementsAre("shared file " + atSource("Strings/one.db")));
}

TEST_F(AuditTest, ReportsAFileThatALaterVolumeOverwrote) {
  EXPECT_THAT(failuresOf(), IsEmpty());
  writeFile("/Volumes/Second/TANVO/three.db", "drei");
  fs::create_symlink("two.db", installed("three.db"));
  EXPECT_THAT(failuresOf("/Volumes/Second/TANVO"), ElementsAre("shared file /Volumes/Second/TANVO/three.db"));
}

TEST_F(AuditTest, AcceptsTwoNamesOfOneSource) {
  fs::create_hard_link(atSource("two.db"), atSource("three.db"));
  fs::create_hard_link(installed("two.db"), installed("three.db"));
  EXPECT_THAT(failuresOf(), IsEmpty());
}

TEST_F(AuditTest, AcceptsAnotherNameOfTheUsers) {
  fs::create_hard_link(installed("two.db"), "/Users/tester/backup.db");
  fs::create_symlink(installed("two.db"), installed("of the user.db"));
  EXPECT_THAT(failuresOf(), IsEmpty());
}

TEST_F(AuditTest, ReportsALinkThatLeadsBackToTheSource) {
  fs::remove(installed("two.db"));
  fs::create_symlink(atSource("two.db"), installed("two.db"));
  EXPECT_THAT(failuresOf(), ElementsAre("is source " + atSource("two.db")));
}

// ---- Several volumes ----

TEST_F(AuditTest, ReportsAVolumeThatIsCopiedTwice) {
  EXPECT_THAT(failuresOf(), IsEmpty());
  EXPECT_THAT(failuresOf(), ElementsAre("same source " + std::string(kSource)));
}

TEST_F(AuditTest, AcceptsALaterVolumesFileOfTheSamePath) {
  EXPECT_THAT(failuresOf(), IsEmpty());
  writeFile("/Volumes/Second/TANVO/two.db", "dos!");
  EXPECT_THAT(failuresOf("/Volumes/Second/TANVO"), IsEmpty());
}

// The next disc may get the device's number of the one before, and its folder the same number.
TEST_F(AuditTest, AcceptsAnotherDiscInTheSameFolder) {
  EXPECT_THAT(failuresOf(), IsEmpty());
  fs::rename(atSource("two.db"), atSource("four.db"));
  fs::rename(installed("two.db"), installed("four.db"));
  EXPECT_THAT(failuresOf(), IsEmpty());
}

}  // namespace
}  // namespace tavenhall::test

#include "host/set/installer_set.h"

#include "host/base/exit_status.h"
#include "tests/check/sets.h"

namespace tavenhall::test {

namespace {

// What a reader is told of a set that cannot be used; empty for one that can.
std::string complaintAbout(const std::string& folder) {
  try {
    static_cast<void>(checkSet({folder, "", "", ""}));
  } catch (const UsageError& error) {
    return error.what();
  }
  return {};
}

}  // namespace

TEST(InstallerSet, FindsThePackageInAFolderOfItsOwn) {
  makeDownloadSet();
  EXPECT_EQ(openInstallerSet(kSetFolder).package, inSet("Package/Installer.pkg"));
}

TEST(InstallerSet, ThePackageMayBeAFolder) {
  makeFolder(inSet("Installer.pkg/Contents"));
  EXPECT_EQ(openInstallerSet(kSetFolder).package, inSet("Installer.pkg"));
}

TEST(InstallerSet, ListsItsDiscsByNumber) {
  makeFolder(inSet("discs/10 Tessaphon J"));
  makeFolder(inSet("discs/2 Tessaphon B"));
  writeFile(inSet("discs/1 Tavenhall Tessaphon A.iso"), "x");
  writeFile(inSet("discs/.DS_Store"), "x");
  writeFile(inSet("Installer.pkg"), "x");
  const InstallerSet set = openInstallerSet(kSetFolder);
  ASSERT_EQ(set.discs.size(), 3U);
  EXPECT_EQ(set.discs[0].volumeName, "Tavenhall Tessaphon A");
  EXPECT_TRUE(set.discs[0].isImage);
  EXPECT_EQ(set.discs[1].volumeName, "Tessaphon B");
  EXPECT_FALSE(set.discs[1].isImage);
  EXPECT_EQ(set.discs[2].number, 10);
  EXPECT_TRUE(set.notDiscs.empty());
}

TEST(InstallerSet, ADiscsNameIsANumberABlankAndAName) {
  EXPECT_EQ(discFromName("discs/3 A B", true)->volumeName, "A B");
  EXPECT_EQ(discFromName("discs/3 A.v2", true)->volumeName, "A.v2");
  EXPECT_EQ(discFromName("discs/3 A.v2.squashfs", false)->volumeName, "A.v2");
  EXPECT_FALSE(discFromName("discs/3", true).has_value());
  EXPECT_FALSE(discFromName("discs/3 ", true).has_value());
  EXPECT_FALSE(discFromName("discs/0 A", true).has_value());
  EXPECT_FALSE(discFromName("discs/-1 A", true).has_value());
  EXPECT_FALSE(discFromName("discs/A", true).has_value());
  EXPECT_FALSE(discFromName("discs/3 A", false).has_value());
  EXPECT_FALSE(discFromName("discs/99999999999 A", true).has_value());
}

TEST(InstallerSet, MustBeAFolder) {
  EXPECT_EQ(complaintAbout("/Users/tester/none"),
            "no installer set at /Users/tester/none; a set is a folder with an installer package");
}

TEST(InstallerSet, MustHaveAPackage) {
  makeFolder(inSet("discs/1 Installer.pkg"));
  EXPECT_EQ(complaintAbout(kSetFolder),
            "no installer package in /Users/tester/Installer; put one there, its name ending in .pkg");
}

TEST(InstallerSet, MustHaveOnePackageOrNameIt) {
  writeFile(inSet("A.pkg"), "x");
  writeFile(inSet("B.pkg"), "x");
  EXPECT_EQ(complaintAbout(kSetFolder),
            "more than one installer package in /Users/tester/Installer (A.pkg, B.pkg); name one in "
            "rehearsal.json, as "
            "\"package\"");
  writeFile(inSet("rehearsal.json"), R"({"package": "B.pkg"})");
  EXPECT_EQ(openInstallerSet(kSetFolder).package, inSet("B.pkg"));
}

TEST(InstallerSet, TellsWhatIsWrongWithItsRehearsalFile) {
  writeFile(inSet("A.pkg"), "x");
  const std::string file = "/Users/tester/Installer/rehearsal.json";
  writeFile(file, "{\"product\": ");
  EXPECT_EQ(complaintAbout(kSetFolder), file + " is not a JSON object; write it as {\"product\": \"NAME\"}");
  writeFile(file, R"({"Product": "Tessaphon"})");
  EXPECT_EQ(complaintAbout(kSetFolder),
            file + ": unknown key \"Product\"; the keys are product, package, installType and discSize");
  writeFile(file, R"({"product": 7})");
  EXPECT_EQ(complaintAbout(kSetFolder), file + ": \"product\" is not a text; put it in quotes");
  writeFile(file, R"({"installType": "lite"})");
  EXPECT_EQ(complaintAbout(kSetFolder), file + ": installType must be Lite or Full");
  writeFile(file, R"({"package": "C.pkg"})");
  EXPECT_EQ(complaintAbout(kSetFolder), file + ": there is no package /Users/tester/Installer/C.pkg");
  writeFile(file, R"({"product": "Obonia"})");
  EXPECT_EQ(complaintAbout(kSetFolder),
            "unknown product Obonia; the products are Tessaphon, Lumaweave, Bassoria, TemporaQX");
}

TEST(InstallerSet, TheUsersFolderMayBeAHome) {
  makeFolder("/Users/tester/Library/Application Support/Tavenhall/TANVO");
  makeFolder("/Users/tester/Has/TANVO");
  EXPECT_EQ(dataRootIn("/Users/tester"), "/Users/tester/Library/Application Support/Tavenhall");
  EXPECT_EQ(dataRootIn("/Users/tester/Has"), "/Users/tester/Has");
  EXPECT_THROW(static_cast<void>(dataRootIn("/Users/tester/none")), UsageError);
}

}  // namespace tavenhall::test

#include "tests/check/sets.h"
#include "tests/support/private_root.h"

#include <sys/stat.h>

namespace tavenhall::test {

namespace {

const std::string kData = "discs/1 Tavenhall Lumaweave/DOVA/";

void makeLink(const std::string& target, const std::string& path) {
  std::filesystem::create_symlink(target, inSet(path));
}

}  // namespace

TEST(FileDiagnostic, AHiddenFile) {
  makeDiscSet();
  writeFile(inSet(kData + ".settings/one"), "one");
  writeFile(inSet(kData + "Factory/.index"), "two");
  const CheckResult result = checkFor("Lumaweave");
  expectDiagnostics(result, {{"hidden-file", "warning", kData + ".settings"}}, 3);
  EXPECT_THAT(sentenceOf(result, "hidden-file"), testing::HasSubstr("2 of them here"));
}

TEST(FileDiagnostic, TheSystemsOwnHiddenFiles) {
  makeDiscSet();
  writeFile(inSet(kData + "Factory/.DS_Store"), "x");
  writeFile(inSet(kData + "Factory/._one.db"), "x");
  expectDiagnostics(checkFor("Lumaweave"), {{"hidden-litter", "note", kData + "Factory/.DS_Store"}}, 0);
}

TEST(FileDiagnostic, HiddenFilesBesideTheDataFolderAreSound) {
  makeDiscSet();
  writeFile(inSet("discs/1 Tavenhall Lumaweave/.Trashes/one"), "x");
  writeFile(inSet("discs/1 Tavenhall Lumaweave/.background.png"), "x");
  expectDiagnostics(checkFor("Lumaweave"), {}, 0);
}

TEST(FileDiagnostic, AFileThatIsTakenForAnAttributesFile) {
  makeDiscSet();
  writeFile(inSet(kData + "Factory/Copy of.InstallationAttributes.dat"), "x");
  expectDiagnostics(checkFor("Lumaweave"),
                    {{"file-skipped", "warning", kData + "Factory/Copy of.InstallationAttributes.dat"}}, 3);
}

TEST(FileDiagnostic, ALinkToAFile) {
  makeDiscSet();
  makeLink("Factory/one.db", kData + "alias.db");
  expectDiagnostics(checkFor("Lumaweave"), {{"link-copied", "warning", kData + "alias.db"}}, 3);
}

TEST(FileDiagnostic, ALinkToAFolder) {
  makeDiscSet();
  makeLink("Factory", kData + "Presets");
  expectDiagnostics(checkFor("Lumaweave"), {{"link-to-folder", "error", kData + "Presets"}}, 1);
}

TEST(FileDiagnostic, ALinkThatLeadsNowhere) {
  makeDiscSet();
  makeLink("nothing", kData + "broken");
  expectDiagnostics(checkFor("Lumaweave"), {{"link-broken", "error", kData + "broken"}}, 1);
}

TEST(FileDiagnostic, ADataFolderThatIsALinkIsSound) {
  makeDiscSet();
  std::filesystem::rename(inSet("discs/1 Tavenhall Lumaweave/DOVA"), inSet("discs/1 Tavenhall Lumaweave/Data"));
  makeLink("Data", "discs/1 Tavenhall Lumaweave/DOVA");
  expectDiagnostics(checkFor("Lumaweave"), {}, 0);
}

TEST(FileDiagnostic, ANamedPipe) {
  makeDiscSet();
  ASSERT_EQ(mkfifo(inSet(kData + "pipe").c_str(), 0600), 0);
  expectDiagnostics(checkFor("Lumaweave"), {{"special-file", "error", kData + "pipe"}}, 1);
}

TEST(FileDiagnostic, AFileThatNobodyMayRead) {
  makeDiscSet();
  ASSERT_EQ(chmod(inSet(kData + "Factory/one.db").c_str(), 0200), 0);
  expectDiagnostics(checkFor("Lumaweave"), {{"not-readable", "error", kData + "Factory/one.db"}}, 1);
}

TEST(FileDiagnostic, AFolderThatNobodyMayLookInto) {
  makeDiscSet();
  ASSERT_EQ(chmod(inSet(kData + "Factory").c_str(), 0600), 0);
  const CheckResult result = checkFor("Lumaweave");
  expectDiagnostics(result, {{"not-readable", "error", kData + "Factory"}}, 1);
  EXPECT_THAT(sentenceOf(result, "not-readable"), testing::HasSubstr("the page reports nothing"));
}

namespace {

// Folders below the data folder, down to a path of `length` bytes below it.
std::string deepPath(std::size_t length) {
  std::string path;
  while (length - path.size() > 202) {
    path += std::string(200, 'd') + "/";
  }
  return path + std::string(length - path.size(), 'f');
}

}  // namespace

TEST(FileDiagnostic, APathThatGetsTooLong) {
  makeDiscSet();
  const std::string destination = "/Users/12345678901234567890/Library/Application Support/Tavenhall/DOVA/";
  const std::string fits = deepPath(1023 - destination.size());
  writeFile(inSet(kData + fits), "fits");
  expectDiagnostics(checkFor("Lumaweave"), {}, 0);
  writeFile(inSet(kData + fits + "f"), "does not");
  expectDiagnostics(checkFor("Lumaweave"), {{"path-too-long", "error", kData + fits + "f"}}, 1);
}

TEST(FileDiagnostic, ATooLongPathIsSaidOnceOfAWholeFolder) {
  makeDiscSet();
  writeFile(inSet(kData + deepPath(940) + "/a"), "a");
  writeFile(inSet(kData + deepPath(940) + "/" + std::string(100, 'g') + "/b"), "b");
  const CheckResult result = checkFor("Lumaweave");
  ASSERT_EQ(result.diagnostics.all().size(), 1U) << checkText(result);
  EXPECT_EQ(result.diagnostics.all()[0].name(), "path-too-long");
}

TEST(FileDiagnostic, NamesThatDifferInCaseAlone) {
  makeDiscSet();
  writeFile(inSet(kData + "Factory/ONE.db"), "other");
  expectDiagnostics(checkFor("Lumaweave"), {{"case-clash", "error", kData + "Factory/one.db"}}, 1);
}

TEST(FileDiagnostic, NamesThatDifferInTheCaseOfALetterWithAnAccent) {
  makeDiscSet();
  writeFile(inSet(kData + "Factory/\xC3\x9C.db"), "one");
  writeFile(inSet(kData + "Factory/\xC3\xBC.db"), "two");
  expectDiagnostics(checkFor("Lumaweave"), {{"case-clash", "error", kData + "Factory/\xC3\xBC.db"}}, 1);
}

TEST(FileDiagnostic, NamesOnTwoDiscsThatDifferInCaseAlone) {
  makeDiscSet();
  writeFile(inSet("discs/2 Tavenhall Lumaweave/DOVA/Factory/One.db"), "other");
  expectDiagnostics(checkFor("Lumaweave"),
                    {{"case-clash", "error", "discs/2 Tavenhall Lumaweave/DOVA/Factory/One.db"}}, 1);
}

TEST(FileDiagnostic, AFileOfTwoDiscsWithOtherContents) {
  for (const char* contents : {"the full one", "ONE"}) {
    makeDiscSet();
    const std::string later = "discs/2 Tavenhall Lumaweave/DOVA/Factory/one.db";
    writeFile(inSet(later), contents);
    const CheckResult result = checkFor("Lumaweave");
    expectDiagnostics(result, {{"file-differs", "error", later}}, 1);
    EXPECT_THAT(result.diagnostics.all()[0].sentence,
                testing::HasSubstr("\"discs/1 Tavenhall Lumaweave/DOVA/Factory/one.db\""));
  }
}

TEST(FileDiagnostic, AFileOfTwoDiscsWithTheSameContentsIsSound) {
  makeDiscSet();
  writeFile(inSet("discs/2 Tavenhall Lumaweave/DOVA/Factory/one.db"), "one");
  expectDiagnostics(checkFor("Lumaweave"), {}, 0);
}

// The permission bits let others in, but not the owner.
TEST(FileDiagnostic, AFolderThatCannotBeListed) {
  makeDiscSet();
  ASSERT_EQ(chmod(inSet(kData + "Factory").c_str(), 0055), 0);
  dropOverridesOfPermissions();
  expectDiagnostics(checkFor("Lumaweave"), {{"not-readable", "error", kData + "Factory"}}, 1);
}

TEST(FileDiagnostic, OfOneKindOnlySoManyAreShown) {
  makeDiscSet();
  for (int i = 0; i < 25; ++i) {
    makeLink("nothing", kData + "broken" + std::to_string(i));
  }
  const CheckResult result = checkFor("Lumaweave");
  EXPECT_EQ(result.diagnostics.all().size(), 20U);
  EXPECT_EQ(result.diagnostics.more().at("link-broken"), 5);
  EXPECT_EQ(result.diagnostics.count(Severity::error), 25);
}

TEST(FileDiagnostic, NamesThatLookAlikeAndNamesInNoUtf8) {
  makeDiscSet();
  writeFile(inSet(kData + "Factory/e\xCC\x81.db"), "x");
  writeFile(inSet(kData + "Factory/\xC3\x89.db"), "x");
  writeFile(inSet(kData + "Factory/\xE9.db"), "x");
  expectDiagnostics(checkFor("Lumaweave"),
                    {{"composition-clash", "error", kData + "Factory/\xC3\x89.db"},
                     {"name-not-utf8", "error", kData + "Factory/\xE9.db"}},
                    1);
}

TEST(FileDiagnostic, ModesThatTheCopyDoesNotKeep) {
  makeDiscSet();
  ASSERT_EQ(chmod(inSet(kData + "Factory/one.db").c_str(), 02755), 0);
  expectDiagnostics(checkFor("Lumaweave"), {{"mode-bits-lost", "warning", kData + "Factory/one.db"}}, 3);
  ASSERT_EQ(chmod(inSet(kData + "Factory/one.db").c_str(), 0700), 0);
  expectDiagnostics(checkFor("Lumaweave"), {{"mode-bits-lost", "warning", kData + "Factory/one.db"}}, 3);
}

}  // namespace tavenhall::test

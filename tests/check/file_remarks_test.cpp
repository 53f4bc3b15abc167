#include "tests/check/sets.h"

#include <sys/stat.h>

namespace tavenhall::test {

namespace {

const std::string kData = "discs/1 Tavenhall Lumaweave/DOVA/";

void makeLink(const std::string& target, const std::string& path) {
  std::filesystem::create_symlink(target, inSet(path));
}

}  // namespace

TEST(FileRemark, AHiddenFile) {
  makeDiscSet();
  writeFile(inSet(kData + ".settings/one"), "one");
  writeFile(inSet(kData + "Factory/.index"), "two");
  const CheckResult result = checkFor("Lumaweave");
  expectRemarks(result, {{"hidden-file", "warning", kData + ".settings"}}, 3);
  EXPECT_THAT(sentenceOf(result, "hidden-file"), testing::HasSubstr("2 of them here"));
}

TEST(FileRemark, TheSystemsOwnHiddenFiles) {
  makeDiscSet();
  writeFile(inSet(kData + "Factory/.DS_Store"), "x");
  writeFile(inSet(kData + "Factory/._one.db"), "x");
  expectRemarks(checkFor("Lumaweave"), {{"hidden-litter", "note", kData + "Factory/.DS_Store"}}, 0);
}

TEST(FileRemark, HiddenFilesBesideTheDataFolderAreSound) {
  makeDiscSet();
  writeFile(inSet("discs/1 Tavenhall Lumaweave/.Trashes/one"), "x");
  writeFile(inSet("discs/1 Tavenhall Lumaweave/.background.png"), "x");
  expectRemarks(checkFor("Lumaweave"), {}, 0);
}

TEST(FileRemark, AFileThatIsTakenForAnAttributesFile) {
  makeDiscSet();
  writeFile(inSet(kData + "Factory/Copy of.InstallationAttributes.dat"), "x");
  expectRemarks(checkFor("Lumaweave"),
                {{"file-skipped", "warning", kData + "Factory/Copy of.InstallationAttributes.dat"}}, 3);
}

TEST(FileRemark, ALinkToAFile) {
  makeDiscSet();
  makeLink("Factory/one.db", kData + "alias.db");
  expectRemarks(checkFor("Lumaweave"), {{"link-copied", "warning", kData + "alias.db"}}, 3);
}

TEST(FileRemark, ALinkToAFolder) {
  makeDiscSet();
  makeLink("Factory", kData + "Presets");
  expectRemarks(checkFor("Lumaweave"), {{"link-to-folder", "error", kData + "Presets"}}, 1);
}

TEST(FileRemark, ALinkThatLeadsNowhere) {
  makeDiscSet();
  makeLink("nothing", kData + "broken");
  expectRemarks(checkFor("Lumaweave"), {{"link-broken", "error", kData + "broken"}}, 1);
}

TEST(FileRemark, ADataFolderThatIsALinkIsSound) {
  makeDiscSet();
  std::filesystem::rename(inSet("discs/1 Tavenhall Lumaweave/DOVA"), inSet("discs/1 Tavenhall Lumaweave/Data"));
  makeLink("Data", "discs/1 Tavenhall Lumaweave/DOVA");
  expectRemarks(checkFor("Lumaweave"), {}, 0);
}

TEST(FileRemark, ANamedPipe) {
  makeDiscSet();
  ASSERT_EQ(mkfifo(inSet(kData + "pipe").c_str(), 0600), 0);
  expectRemarks(checkFor("Lumaweave"), {{"special-file", "error", kData + "pipe"}}, 1);
}

TEST(FileRemark, AFileThatNobodyMayRead) {
  makeDiscSet();
  ASSERT_EQ(chmod(inSet(kData + "Factory/one.db").c_str(), 0200), 0);
  expectRemarks(checkFor("Lumaweave"), {{"not-readable", "error", kData + "Factory/one.db"}}, 1);
}

TEST(FileRemark, AFolderThatNobodyMayLookInto) {
  makeDiscSet();
  ASSERT_EQ(chmod(inSet(kData + "Factory").c_str(), 0600), 0);
  const CheckResult result = checkFor("Lumaweave");
  expectRemarks(result, {{"not-readable", "error", kData + "Factory"}}, 1);
  EXPECT_THAT(sentenceOf(result, "not-readable"), testing::HasSubstr("the page says nothing"));
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

TEST(FileRemark, APathThatGetsTooLong) {
  makeDiscSet();
  const std::string destination = "/Users/12345678901234567890/Library/Application Support/Tavenhall/DOVA/";
  const std::string fits = deepPath(1023 - destination.size());
  writeFile(inSet(kData + fits), "fits");
  expectRemarks(checkFor("Lumaweave"), {}, 0);
  writeFile(inSet(kData + fits + "f"), "does not");
  expectRemarks(checkFor("Lumaweave"), {{"path-too-long", "error", kData + fits + "f"}}, 1);
}

TEST(FileRemark, ATooLongPathIsSaidOnceOfAWholeFolder) {
  makeDiscSet();
  writeFile(inSet(kData + deepPath(940) + "/a"), "a");
  writeFile(inSet(kData + deepPath(940) + "/" + std::string(100, 'g') + "/b"), "b");
  const CheckResult result = checkFor("Lumaweave");
  ASSERT_EQ(result.remarks.all().size(), 1U) << checkText(result);
  EXPECT_EQ(result.remarks.all()[0].name, "path-too-long");
}

TEST(FileRemark, NamesThatDifferInCaseAlone) {
  makeDiscSet();
  writeFile(inSet(kData + "Factory/ONE.db"), "other");
  expectRemarks(checkFor("Lumaweave"), {{"case-clash", "error", kData + "Factory/one.db"}}, 1);
}

TEST(FileRemark, NamesThatDifferInTheCaseOfALetterWithAnAccent) {
  makeDiscSet();
  writeFile(inSet(kData + "Factory/\xC3\x9C.db"), "one");
  writeFile(inSet(kData + "Factory/\xC3\xBC.db"), "two");
  expectRemarks(checkFor("Lumaweave"), {{"case-clash", "error", kData + "Factory/\xC3\xBC.db"}}, 1);
}

TEST(FileRemark, NamesOnTwoDiscsThatDifferInCaseAlone) {
  makeDiscSet();
  writeFile(inSet("discs/2 Tavenhall Lumaweave/DOVA/Factory/One.db"), "other");
  expectRemarks(checkFor("Lumaweave"),
                {{"case-clash", "error", "discs/2 Tavenhall Lumaweave/DOVA/Factory/One.db"}}, 1);
}

TEST(FileRemark, AFileThatALaterDiscReplacesIsSound) {
  makeDiscSet();
  writeFile(inSet("discs/2 Tavenhall Lumaweave/DOVA/Factory/one.db"), "the full one");
  expectRemarks(checkFor("Lumaweave"), {}, 0);
}

TEST(FileRemark, OfOneKindOnlySoManyAreShown) {
  makeDiscSet();
  for (int i = 0; i < 25; ++i) {
    makeLink("nothing", kData + "broken" + std::to_string(i));
  }
  const CheckResult result = checkFor("Lumaweave");
  EXPECT_EQ(result.remarks.all().size(), 20U);
  EXPECT_EQ(result.remarks.more().at("link-broken"), 5);
  EXPECT_EQ(result.remarks.count(Severity::error), 25);
}

}  // namespace tavenhall::test

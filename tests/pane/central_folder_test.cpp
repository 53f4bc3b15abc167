#include "pane/install_data_pane.h"
#include "tests/support/files.h"
#include "tests/support/recording_platform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace tavenhall::test {

namespace {

using testing::ElementsAre;
using testing::StrEq;

const std::string kMaker = "/Users/tester/Library/Application Support/Tavenhall";
const std::string kExpected = kMaker + "/TANVO";

class CentralFolder : public testing::Test {
 protected:
  CentralFolder() { makeFolder("/Users/tester/Library/Caches"); }  // where the log goes
};

// A link at the expected path.
void linkTo(const std::string& target) {
  makeFolder(kMaker);
  ASSERT_EQ(symlink(target.c_str(), kExpected.c_str()), 0) << target;
}

void expectFound(const std::string& path) {
  EXPECT_THAT(InstallDataPane::findCentralFolder(""), StrEq(path));
  EXPECT_THAT(logMessages(), ElementsAre("After resolve 1 " + path, "File exists"));
}

void expectMissing(const std::string& path) {
  EXPECT_EQ(InstallDataPane::findCentralFolder(""), nullptr);
  EXPECT_THAT(logMessages(), ElementsAre("After resolve 1 " + path));
}

// ---- The name ----

TEST_F(CentralFolder, AnEmptyNameTakesTheLocalisedFolderName) {
  platform().strings["FolderName"] = "Klänge";
  makeFolder(kMaker + "/Klänge");
  expectFound("/Users/tester/Library/Application Support/Tavenhall/Klänge");
}

TEST_F(CentralFolder, ANullNameTakesTheLocalisedFolderName) {
  makeFolder(kExpected);
  EXPECT_STREQ(InstallDataPane::findCentralFolder(nullptr),
               "/Users/tester/Library/Application Support/Tavenhall/TANVO");
}

TEST_F(CentralFolder, ANameIgnoresTheLocalisedFolderName) {
  makeFolder(kExpected);
  makeFolder(kMaker + "/DOVA");
  EXPECT_STREQ(InstallDataPane::findCentralFolder("DOVA"),
               "/Users/tester/Library/Application Support/Tavenhall/DOVA");
  EXPECT_THAT(
      logMessages(),
      ElementsAre("After resolve 1 /Users/tester/Library/Application Support/Tavenhall/DOVA", "File exists"));
}

TEST_F(CentralFolder, AMissingFolderNameYieldsTheKey) {
  platform().strings.erase("FolderName");
  expectMissing("/Users/tester/Library/Application Support/Tavenhall/FolderName");
}

// ---- Neither link nor alias ----

TEST_F(CentralFolder, AFolderComesBackAsTheExpectedPath) {
  makeFolder(kExpected);
  expectFound("/Users/tester/Library/Application Support/Tavenhall/TANVO");
}

TEST_F(CentralFolder, NoFolderIsNullAndTheLogShowsTheExpectedPath) {
  makeFolder(kMaker);
  expectMissing("/Users/tester/Library/Application Support/Tavenhall/TANVO");
}

TEST_F(CentralFolder, AFileExistsToo) {
  writeFile(kExpected, "not a folder");
  expectFound("/Users/tester/Library/Application Support/Tavenhall/TANVO");
}

TEST_F(CentralFolder, WithoutASearchPathThereIsNoFolder) {
  platform().applicationSupport.reset();
  makeFolder(kExpected);
  EXPECT_EQ(InstallDataPane::findCentralFolder("TANVO"), nullptr);
  ASSERT_EQ(logMessages().size(), 1U);
  EXPECT_THAT(logMessages()[0], testing::MatchesRegex("After resolve 1 .*/Tavenhall/TANVO"));
}

TEST_F(CentralFolder, AnEarlierResultStaysAsItWas) {
  makeFolder(kExpected);
  makeFolder(kMaker + "/DOVA");
  const char* first = InstallDataPane::findCentralFolder("TANVO");
  const char* second = InstallDataPane::findCentralFolder("DOVA");
  EXPECT_EQ(InstallDataPane::findCentralFolder("Missing"), nullptr);
  EXPECT_STREQ(first, "/Users/tester/Library/Application Support/Tavenhall/TANVO");
  EXPECT_STREQ(second, "/Users/tester/Library/Application Support/Tavenhall/DOVA");
}

// ---- Absolute links ----

TEST_F(CentralFolder, AnAbsoluteLinkIsFollowed) {
  makeFolder("/Volumes/Data/TANVO");
  linkTo("/Volumes/Data/TANVO");
  expectFound("/Volumes/Data/TANVO");
}

TEST_F(CentralFolder, ADanglingAbsoluteLinkIsNullAndTheLogShowsItsTarget) {
  linkTo("/Volumes/Data/TANVO");
  expectMissing("/Volumes/Data/TANVO");
}

TEST_F(CentralFolder, AnAbsoluteTargetIsTakenAsItIs) {
  makeFolder("/Volumes/Data/TANVO");
  linkTo("/Volumes/./Data/../Data//TANVO/");
  expectFound("/Volumes/./Data/../Data//TANVO/");
}

TEST_F(CentralFolder, ATargetThatIsALinkItselfIsNotFollowedFurther) {
  makeFolder("/Volumes/Data/TANVO");
  ASSERT_EQ(symlink("/Volumes/Data/TANVO", "/Volumes/Second"), 0);
  linkTo("/Volumes/Second");
  expectFound("/Volumes/Second");
}

// ---- Relative links ----

TEST_F(CentralFolder, ARelativeLinkIntoAFolderBesideItJustWorks) {
  makeFolder(kMaker + "/Store/TANVO");
  linkTo("Store/TANVO");
  expectFound("/Users/tester/Library/Application Support/Tavenhall/Store/TANVO");
}

TEST_F(CentralFolder, ARelativeLinkToASiblingJustWorks) {
  makeFolder(kMaker + "/Moved");
  linkTo("Moved");
  expectFound("/Users/tester/Library/Application Support/Tavenhall/Moved");
}

TEST_F(CentralFolder, ARelativeLinkUpwardsIsCanonicalised) {
  makeFolder("/Users/tester/Library/Application Support/Elsewhere/TANVO");
  linkTo("../Elsewhere/./TANVO");
  expectFound("/Users/tester/Library/Application Support/Elsewhere/TANVO");
}

TEST_F(CentralFolder, ARelativeLinkFarUpwardsIsCanonicalised) {
  makeFolder("/Volumes/Data/TANVO");
  linkTo("../../../../../Volumes/Data/TANVO");
  expectFound("/Volumes/Data/TANVO");
}

TEST_F(CentralFolder, ATargetThatExistsOnlyThroughTheLinkItselfIsFoundThere) {
  // Seen from the link's own folder the target is Store/TANVO; through the link it is Store/Store/TANVO.
  makeFolder(kMaker + "/Store/TANVO");
  makeFolder(kMaker + "/Store/Store/TANVO");
  linkTo("Store/TANVO");
  expectFound("/Users/tester/Library/Application Support/Tavenhall/Store/Store/TANVO");
}

TEST_F(CentralFolder, ARelativeLinkThroughAnotherLinkIsCanonicalised) {
  makeFolder("/Volumes/Big/TANVO");
  makeFolder(kMaker);
  ASSERT_EQ(symlink("/Volumes/Big", (kMaker + "/Store").c_str()), 0);
  linkTo("Store/TANVO");
  expectFound("/Volumes/Big/TANVO");
}

TEST_F(CentralFolder, ADanglingRelativeLinkIsNormalised) {
  linkTo("./Gone/../Store//TANVO");
  expectMissing("/Users/tester/Library/Application Support/Tavenhall/Store/TANVO");
}

TEST_F(CentralFolder, ADanglingRelativeLinkUpwardsIsNormalised) {
  linkTo("../Gone/TANVO");
  expectMissing("/Users/tester/Library/Application Support/Gone/TANVO");
}

TEST_F(CentralFolder, ANormalisedPathCountsWhenSomethingIsThere) {
  makeFolder(kMaker + "/Store");
  linkTo("Gone/../Store");
  expectFound("/Users/tester/Library/Application Support/Tavenhall/Store");
}

TEST_F(CentralFolder, ALinkToItselfIsMissing) {
  linkTo("TANVO");
  expectMissing("/Users/tester/Library/Application Support/Tavenhall/TANVO");
}

// ---- Aliases ----

TEST_F(CentralFolder, AnAliasIsFollowed) {
  writeFile(kExpected, "alias");
  makeFolder("/Volumes/Data/TANVO");
  platform().aliases[kExpected] = "/Volumes/Data/TANVO";
  expectFound("/Volumes/Data/TANVO");
}

TEST_F(CentralFolder, ALinkIsFollowedFirstAndThenItsAlias) {
  writeFile("/Volumes/Shortcut", "alias");
  makeFolder("/Volumes/Data/TANVO");
  linkTo("/Volumes/Shortcut");
  platform().aliases[kExpected] = "/Volumes/Wrong";
  platform().aliases["/Volumes/Shortcut"] = "/Volumes/Data/TANVO";
  expectFound("/Volumes/Data/TANVO");
  EXPECT_THAT(platform().calls(), ElementsAre("alias /Volumes/Shortcut"));
}

TEST_F(CentralFolder, ADanglingAliasIsNullAndTheLogShowsItsTarget) {
  writeFile(kExpected, "alias");
  platform().aliases[kExpected] = "/Volumes/Gone/TANVO";
  expectMissing("/Volumes/Gone/TANVO");
}

TEST_F(CentralFolder, AnAliasThatLeadsToALinkIsNotFollowedFurther) {
  writeFile(kExpected, "alias");
  makeFolder("/Volumes/Data/TANVO");
  ASSERT_EQ(symlink("/Volumes/Data/TANVO", "/Volumes/Second"), 0);
  platform().aliases[kExpected] = "/Volumes/Second";
  expectFound("/Volumes/Second");
}

TEST_F(CentralFolder, AnAliasTargetOf1023BytesIsTaken) {
  const std::string target = pathOfLength(1023, "/Volumes");
  makeFolder(target);
  writeFile(kExpected, "alias");
  platform().aliases[kExpected] = target;
  expectFound(target);
}

TEST_F(CentralFolder, AnAliasTargetOf1024BytesKeepsThePathThatWasThere) {
  const std::string target = pathOfLength(1024, "/Volumes");
  makeFolder(target);
  writeFile(kExpected, "alias");
  platform().aliases[kExpected] = target;
  expectFound("/Users/tester/Library/Application Support/Tavenhall/TANVO");
}

// ---- Limits ----

TEST_F(CentralFolder, ALinkTargetOf1023BytesIsTaken) {
  const std::string target = pathOfLength(1023, "/Volumes");
  ASSERT_EQ(target.size(), 1023U);
  makeFolder(target);
  linkTo(target);
  expectFound(target);
}

TEST_F(CentralFolder, ALinkTargetOf1024BytesEndsTheProcess) {
  linkTo(pathOfLength(1024, "/Volumes"));
  EXPECT_DEATH(static_cast<void>(InstallDataPane::findCentralFolder("")),
               "does not fit its buffer of 1024 bytes");
}

// The expected path, "/../" and the target.
std::string relativeTargetForJoinedLength(std::size_t length) {
  const std::size_t rest = length - kExpected.size() - 4;
  return pathOfLength(rest + 1, "").substr(1);
}

TEST_F(CentralFolder, AJoinedPathOf1023BytesIsTaken) {
  const std::string target = relativeTargetForJoinedLength(1023);
  linkTo(target);
  expectMissing("/Users/tester/Library/Application Support/Tavenhall/" + target);
}

TEST_F(CentralFolder, AJoinedPathOf1024BytesEndsTheProcess) {
  linkTo(relativeTargetForJoinedLength(1024));
  EXPECT_DEATH(static_cast<void>(InstallDataPane::findCentralFolder("")),
               "does not fit its buffer of 1024 bytes");
}

TEST_F(CentralFolder, ACanonicalPathOf1024BytesEndsTheProcess) {
  const std::string target = pathOfLength(1024, "/Volumes");
  makeFolder(target);
  makeFolder(kMaker);
  ASSERT_EQ(symlink(target.c_str(), (kMaker + "/Store").c_str()), 0);
  linkTo("Store");
  EXPECT_DEATH(static_cast<void>(InstallDataPane::findCentralFolder("")),
               "does not fit its buffer of 1024 bytes");
}

TEST_F(CentralFolder, TheExpectedPathItselfMayBeLonger) {
  const std::string support = pathOfLength(1500, "/Volumes");
  platform().applicationSupport = support;
  makeFolder(support + "/Tavenhall/TANVO");
  expectFound(support + "/Tavenhall/TANVO");
}

}  // namespace

}  // namespace tavenhall::test

#include "tests/install/case_files.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>

// The lines of `--ui json`: what is done when, and how a run ends.
namespace tavenhall::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr const char* kAllowed = R"({"event":"exit","direction":0,"allowed":true})";
constexpr const char* kTitleEvent = R"({"event":"title","text":"Tessaphon Update"})";

void layDataUpdate() {
  layTree(kSet, {textFile(".InstallationAttributes.dat",
                          "Mode = DataUpdater\nInstallDataTitle = Tessaphon Update\nRelativePath = .\n"
                          "TotalSizeMillionsBytes = 1\n"),
                 textFile("Installer.pkg", ""), file("TANVO/a.db", 2048)});
  layTree(kTanvo, {});
}

// An update that asks twice before it starts.
void layUpdateWithAlerts() {
  layTree(kSet, {textFile(".InstallationAttributes.dat",
                          "Mode = TavenhallUpdater\nInstallDataTitle = Tessaphon Update\nRelativePath = .\n"
                          "RelativePath2 = Full\n"),
                 folder("Full/TANVO/Bells"), folder("Full/TANVO/Choirs"), textFile("Installer.pkg", "")});
  layTree(kTanvo, {});
}

// An install that asks for a disc that is not there.
void layMissingDisc() { layPackage("Mode = InstallFromVolumes\n"); }

TEST(JsonProtocol, DoesNothingWithoutACommand) {
  layDataUpdate();

  JsonInstaller installer({"--package", kPackage});

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_THAT(installer.events(), IsEmpty());
  EXPECT_EQ(readFile("/tmp/TavInstallLoc"), "/Users/tester/Downloads/Set/Installer.pkg\n");
  EXPECT_FALSE(std::filesystem::is_symlink("/tmp/TavInstallType"));
  EXPECT_FALSE(exists("/tmp/TavInstallType"));
  EXPECT_FALSE(exists(kLog));
}

TEST(JsonProtocol, NobodyCanPutAChoiceOfEditionThereUntilThePageIsEntered) {
  layDataUpdate();
  JsonInstaller installer({"--package", kPackage});
  installer.send(kTitle);
  static_cast<void>(installer.await("title"));
  EXPECT_TRUE(std::filesystem::is_symlink("/tmp/TavInstallType"));
  installer.send({kEnter, kWait});
  static_cast<void>(installer.await("idle"));
  EXPECT_FALSE(std::filesystem::is_symlink("/tmp/TavInstallType"));
  EXPECT_EQ(installer.finish(), 0);
}

TEST(JsonProtocol, ClosedInputLetsTheLinesFinishThatCameBefore) {
  layDataUpdate();

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});
  installer.closeInput();

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_EQ(installer.events().back(), kAllowed);
}

TEST(JsonProtocol, ALastLineWithoutANewlineCounts) {
  layDataUpdate();
  const Outcome outcome =
      runThrough({kTavinstall, "run", "--ui", "json", "--package", kPackage}, {}, R"({"do":"title"})");

  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.output, StartsWith(std::string(kTitleEvent) + "\n" + R"({"event":"summary")"));
}

TEST(JsonProtocol, ClosedInputWhileAnAlertWaitsEndsWithStatusThree) {
  layMissingDisc();

  JsonInstaller installer({"--package", kPackage, "--summary", "/tmp/summary.json"});
  installer.send({kEnter, kWait, kForward});
  installer.await("alert");
  installer.closeInput();

  EXPECT_EQ(installer.finish(), 3);
  EXPECT_THAT(installer.events().back(), StartsWith(R"({"event":"alert")"));
  EXPECT_THAT(readFile("/tmp/summary.json"), StartsWith(R"({"left":false,"ready":0,"mode":2,)"));
}

TEST(JsonProtocol, AnAlertThatComesAfterTheInputWasClosedEndsWithStatusThreeToo) {
  layMissingDisc();

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait});

  EXPECT_EQ(installer.finish(), 3);
  EXPECT_THAT(installer.events().back(), StartsWith(R"({"event":"alert")"));
}

TEST(JsonProtocol, AnswersMayBeSentBeforeTheirAlerts) {
  layUpdateWithAlerts();

  JsonInstaller installer({"--package", kPackage});
  installer.send({kFirstButton, kFirstButton, kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_EQ(
      std::ranges::count_if(installer.events(),
                            [](const std::string& event) { return event.starts_with(R"({"event":"alert")"); }),
      2);
  EXPECT_THAT(installer.events(), Contains(kAllowed));
}

TEST(JsonProtocol, CommandsWaitWhileAnAlertIsUp) {
  layUpdateWithAlerts();

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter});
  installer.await("alert");
  installer.send({kTitle, kFirstButton});
  installer.await("alert");
  EXPECT_EQ(std::ranges::count(installer.events(), kTitleEvent), 0);
  installer.send({kSecondButton, kWait});

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_EQ(std::ranges::count(installer.events(), kTitleEvent), 1);
  EXPECT_LT(std::ranges::find(installer.events(), R"({"event":"entered"})"),
            std::ranges::find(installer.events(), kTitleEvent));
}

TEST(JsonProtocol, QuitEndsAnInstallThatStillRuns) {
  layMissingDisc();

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter});
  installer.await("alert");
  const auto start = std::chrono::steady_clock::now();
  installer.send({kFirstButton, kQuit, kTitle});

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(9)) << "it waited for the disc";
  EXPECT_THAT(installer.events().back(), StartsWith(R"({"event":"phase","phase":"looking")"));
}

TEST(JsonProtocol, EnteringAgainWaitsUntilTheInstallHasEnded) {
  layDataUpdate();

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kEnter, kWait});

  EXPECT_EQ(installer.finish(), 0);
  const auto& events = installer.events();
  const std::string holdGivenBack = R"({"event":"assertion.release","type":"NoIdleSleepAssertion"})";
  const auto secondEntered = std::ranges::find(std::ranges::find(events, R"({"event":"entered"})") + 1,
                                               events.end(), R"({"event":"entered"})");
  EXPECT_NE(secondEntered, events.end());
  EXPECT_LT(std::ranges::find(events, holdGivenBack), secondEntered);
}

struct BadLine {
  const char* name;
  const char* line;
};

void PrintTo(const BadLine& line, std::ostream* out) { *out << line.name; }

class BadLines : public testing::TestWithParam<BadLine> {};

TEST_P(BadLines, GetAnErrorAndAreSkipped) {
  layDataUpdate();

  JsonInstaller installer({"--package", kPackage});
  installer.send(GetParam().line);
  const std::string error = installer.await("error");
  installer.send(kTitle);

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_THAT(error, testing::MatchesRegex(R"(\{"event":"error","message":".+"\})"));
  EXPECT_THAT(installer.events(), ElementsAre(error, kTitleEvent));
}

INSTANTIATE_TEST_SUITE_P(JsonProtocol, BadLines,
                         testing::Values(BadLine{"Empty", ""}, BadLine{"NoJson", "no json"},
                                         BadLine{"CutShort", R"({"do":"enter")"},
                                         BadLine{"AnUnknownCommand", R"({"do":"leave"})"},
                                         BadLine{"ANumberAsACommand", R"({"do":1})"},
                                         BadLine{"ATextAsAnAnswer", R"({"answer":"OK"})"},
                                         BadLine{"AFractionAsAnAnswer", R"({"answer":1000.5})"},
                                         BadLine{"AList", R"(["do","title"])"}, BadLine{"AText", R"("title")"},
                                         BadLine{"AnEmptyObject", R"({})"},
                                         BadLine{"NotUtf8", "{\"do\":\"ti\xFFtle\"}"}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(JsonProtocol, ALineEndingInACarriageReturnIsUnderstood) {
  layDataUpdate();

  JsonInstaller installer({"--package", kPackage});
  installer.send(std::string(kTitle) + "\r");

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_THAT(installer.events(), ElementsAre(kTitleEvent));
}

TEST(JsonProtocol, CommandsThatThePageRunsHaveNeitherTheInputNorTheOutput) {
  layPackage("Mode = InstallFromVolumes\n");
  layTree(kDiscA, {file("TANVO/a.db", 1024)});
  writeFile("/tmp/bin/drutil", "#!/bin/sh\necho out\necho err >&2\ncat >/tmp/what-was-read\n");
  ASSERT_EQ(runThrough({"chmod", "755", "/tmp/bin/drutil"}).status, 0);

  JsonInstaller installer({"--package", kPackage}, {{"PATH", "/tmp/bin:/usr/bin:/bin"}});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_EQ(installer.events().back(), kAllowed);
  EXPECT_THAT(installer.events(), testing::Not(Contains("out")));
  EXPECT_EQ(readFile("/tmp/what-was-read"), "");
  EXPECT_THAT(installer.program().standardError(), HasSubstr("out\nerr\n"));
}

TEST(JsonProtocol, AReaderThatGoesAwayDoesNotEndTheInstall) {
  layDataUpdate();
  const std::string commands = R"('{"do":"enter"}\n{"do":"wait"}\n{"do":"forward"}\n')";
  const Outcome outcome = runThrough({"sh", "-c",
                                      "printf " + commands + " | " + kTavinstall + " run --ui json --package " +
                                          kPackage + " --summary /tmp/summary.json | true"});

  EXPECT_EQ(outcome.error, "");
  EXPECT_EQ(treeOf(kTanvo), std::vector<std::string>{"a.db"});
  EXPECT_THAT(readFile("/tmp/summary.json"), StartsWith(R"({"left":true,"ready":1,)"));
}

}  // namespace
}  // namespace tavenhall::test

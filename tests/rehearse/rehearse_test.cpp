#include "tests/check/sets.h"
#include "tests/install/child_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

// Whole rehearsals with the built program: its own sandbox inside the test's.
namespace tavenhall::test {
namespace {

using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kReport = "/Users/tester/report.json";

Outcome rehearse(std::vector<std::string> arguments) {
  std::vector<std::string> commandLine{kTavinstall, "rehearse", kSetFolder, "--report", kReport};
  commandLine.insert(commandLine.end(), arguments.begin(), arguments.end());
  return runThrough(commandLine, {{"PATH", usualPath()}});
}

json report() { return json::parse(readFile(kReport)); }

std::vector<std::string> volumesAskedFor() {
  std::vector<std::string> asked;
  const json told = report();
  for (const auto& prompt : told["observed"]["prompts"]) {
    asked.push_back(prompt["volume"].get<std::string>() + ": " + prompt["reply"].get<std::string>());
  }
  return asked;
}

TEST(Rehearse, ADownloadedInstallerIsInstalledWithNothingToRemark) {
  makeDownloadSet();
  const Outcome outcome = rehearse({"--ui", "quiet"});
  EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.error;
  EXPECT_THAT(outcome.output, HasSubstr("Everything is installed, and there is nothing to remark."));
  EXPECT_EQ(report()["files"].size(), 1U);
  EXPECT_EQ(report()["files"][0]["fate"], "same");
}

TEST(Rehearse, DiscsGoInWhenThePageAsksAndOutWhenItEjects) {
  makeDiscSet();
  const Outcome outcome = rehearse({"--ui", "quiet", "--product", "Lumaweave", "--keep", "/Users/tester/kept"});
  EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.error;
  EXPECT_THAT(volumesAskedFor(), ElementsAre("Tavenhall Lumaweave: inserted", "Tavenhall Lumaweave: inserted"));
  EXPECT_THAT(treeOf("/Users/tester/kept/Volumes"), IsEmpty());
  const std::string data =
      "/Users/tester/kept/Users/rehearsal/Library/Application Support/Tavenhall/DOVA/Factory/";
  EXPECT_EQ(readFile(data + "one.db"), "one");
  EXPECT_EQ(readFile(data + "two.db"), "two");
}

TEST(Rehearse, AMissingDiscFailsAndIsNamed) {
  makeDiscSet("Mode = InstallFromVolumes\nNumberOfVolumes = 1\nTotalSizeMillionsBytes = 1\n");
  const Outcome outcome = rehearse({"--ui", "quiet", "--product", "Bassoria"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.output,
              HasSubstr("FAILED: the page asks for a disc that the set does not have: Tavenhall Bassoria"));
}

TEST(Rehearse, AByteThatChangesInTheSourceMeanwhileIsFound) {
  makeDownloadSet();
  ChildProgram program({kTavinstall, "rehearse", kSetFolder, "--ui", "json", "--report", kReport},
                       {{"PATH", usualPath()}});
  program.write("{\"do\":\"enter\"}\n{\"do\":\"wait\"}\n");
  while (const auto line = program.readLine()) {
    if (*line == R"({"event":"idle"})") {
      break;
    }
  }
  writeFile(inSet("TANVO/Tessaphon/one.db"), "onf");
  program.write("{\"do\":\"forward\"}\n{\"do\":\"quit\"}\n");
  EXPECT_EQ(program.waitForEnd(), 1);
  EXPECT_THAT(report()["failures"],
              Contains("content differs: /Users/rehearsal/Installer/Package/../TANVO/Tessaphon/one.db"));
}

TEST(Rehearse, AnAnnouncedSizeThatIsFarFromTheRealOneIsRemarked) {
  makeDownloadSet("Mode = Downloaded\nInstalledData = Installed in %s\nTotalSizeMillionsBytes = 12\n");
  writeFile(inSet("TANVO/Tessaphon/large.db"), someBytes(10'000'000));
  const Outcome outcome = rehearse({"--ui", "quiet"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.output, HasSubstr("remark: the whole is announced as 12.0 MB and is 10.0 MB"));
  EXPECT_THAT(outcome.output, HasSubstr("Everything is installed, with remarks."));
}

TEST(Rehearse, AnUpdateIsToldWhatTheUserHas) {
  makeUpdateSet();
  writeFile("/Users/tester/had/TANVO/Tessaphon/Soundsources/Factory/Tessaphon Library/Keyboards/Glassophone.db",
            "x");
  makeFolder("/Users/tester/had/DOVA");
  const Outcome outcome = rehearse({"--ui", "quiet", "--installed", "/Users/tester/had"});
  EXPECT_NE(outcome.status, 2) << outcome.error;
  EXPECT_THAT(report()["run"]["detected"], Contains("Tessaphon: Full"));
}

TEST(Rehearse, TheUsersOwnFoldersAreNotTouched) {
  makeDownloadSet();
  static_cast<void>(rehearse({"--ui", "quiet"}));
  EXPECT_FALSE(exists("/tmp/TavInstallLoc"));
  EXPECT_FALSE(exists("/Users/tester/Library"));
  EXPECT_THAT(treeOf("/tmp"), Not(Contains(HasSubstr("rehearsal"))));
}

TEST(Rehearse, ASetThatIsNotThereIsBadUsage) {
  const Outcome outcome = runThrough({kTavinstall, "rehearse", "/Users/tester/nowhere"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("/Users/tester/nowhere"));
}

TEST(Rehearse, AFolderToKeepThatIsNotEmptyIsRefused) {
  makeDownloadSet();
  writeFile("/Users/tester/kept/mine", "x");
  const Outcome outcome = rehearse({"--keep", "/Users/tester/kept"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("the folder /Users/tester/kept is not empty"));
  EXPECT_EQ(readFile("/Users/tester/kept/mine"), "x");
}

}  // namespace
}  // namespace tavenhall::test

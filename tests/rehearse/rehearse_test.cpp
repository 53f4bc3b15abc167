#include "tests/rehearse/rehearsals.h"
#include "tests/support/private_root.h"

#include <sys/stat.h>

// How rehearsals end, by what is wrong with the set or goes wrong meanwhile.
namespace tavenhall::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

TEST(Rehearse, InstallsADownloadedSetWithoutProblems) {
  makeDownloadSet();
  const Outcome outcome = rehearse();
  EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.error;
  EXPECT_THAT(outcome.output, HasSubstr("Rehearsal passed: everything was installed, no problems found."));
  EXPECT_THAT(fatesReported(), ElementsAre("Tessaphon/one.db same"));
  EXPECT_EQ(report()["status"], 0);
}

TEST(Rehearse, InstallsADataUpdateWithoutProblems) {
  makeDataUpdateSet();
  const Outcome outcome = rehearse();
  EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.error;
  EXPECT_THAT(fatesReported(), ElementsAre("Tessaphon/one.db same", "Tessaphon/two.db same"));
}

TEST(Rehearse, DiscsGoInWhenThePageAsksAndOutWhenItEjects) {
  makeDiscSet();
  const Outcome outcome = rehearse({"--product", "Lumaweave", "--keep", "/Users/tester/kept"});
  EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.error;
  EXPECT_THAT(promptsReported(), ElementsAre("Tavenhall Lumaweave: inserted", "Tavenhall Lumaweave: inserted"));
  EXPECT_THAT(treeOf("/Users/tester/kept/Volumes"), IsEmpty());
  const std::string data =
      "/Users/tester/kept/Users/rehearsal/Library/Application Support/Tavenhall/DOVA/Factory/";
  EXPECT_EQ(readFile(data + "one.db"), "one");
  EXPECT_EQ(readFile(data + "two.db"), "two");
}

TEST(Rehearse, AMissingDiscFailsAndIsNamed) {
  makeDiscSet("Mode = InstallFromVolumes\nNumberOfVolumes = 1\nTotalSizeMillionsBytes = 1\n");
  const Outcome outcome = rehearse({"--product", "Bassoria"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.output,
              HasSubstr("FAILED: the page asks for a disc that the set does not have: Tavenhall Bassoria\n"));
  EXPECT_EQ(outcome.error, "tavinstall: the set has no disc Tavenhall Bassoria, so the rehearsal ends here\n");
  EXPECT_THAT(promptsReported(), ElementsAre("Tavenhall Bassoria: no such disc"));
}

TEST(Rehearse, ASecondDiscThatIsMissingFailsAfterTheFirstWasInstalled) {
  makeDiscSet("Mode = InstallFromVolumes\nNumberOfVolumes = 3\nTotalSizeMillionsBytes = 1\n");
  const Outcome outcome = rehearse({"--product", "Lumaweave"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(promptsReported(), ElementsAre("Tavenhall Lumaweave: inserted", "Tavenhall Lumaweave: inserted",
                                             "Tavenhall Lumaweave: no such disc"));
  EXPECT_THAT(fatesReported(), ElementsAre("Factory/one.db same", "Factory/two.db same"));
}

TEST(Rehearse, ADiscWithoutADataFolderFailsAndIsNotCalledMissing) {
  makeDiscSet("Mode = InstallFromVolumes\nNumberOfVolumes = 1\nTotalSizeMillionsBytes = 1\n");
  writeFile(inSet("discs/3 Tavenhall Bassoria/Dova/one.db"), "one");
  const Outcome outcome = rehearse({"--product", "Bassoria"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.output, HasSubstr("FAILED: the page finds no data folder on the disc and asks for it "
                                        "again: Tavenhall Bassoria\n"));
  EXPECT_THAT(promptsReported(),
              ElementsAre("Tavenhall Bassoria: inserted", "Tavenhall Bassoria: not accepted"));
}

// Rehearses the download set, and changes something in it when everything is copied. Returns the exit status.
int rehearseWhile(const std::function<void()>& change) {
  makeDownloadSet();
  ChildProgram program(rehearseCommand({"--ui", "json"}));
  program.write("{\"do\":\"enter\"}\n{\"do\":\"wait\"}\n");
  while (const auto line = program.readLine()) {
    if (*line == R"({"event":"idle"})") {
      break;
    }
  }
  change();
  program.write("{\"do\":\"forward\"}\n{\"do\":\"quit\"}\n");
  return program.waitForEnd();
}

TEST(Rehearse, AFileThatDisappearsFromTheSourceMeanwhileIsAFailure) {
  EXPECT_EQ(rehearseWhile([] {
              writeFile(inSet("TANVO/Tessaphon/late.db"), "new");
              std::filesystem::remove(inSet("TANVO/Tessaphon/one.db"));
            }),
            1);
  EXPECT_EQ(report()["gone"], nlohmann::json({"TANVO/Tessaphon/one.db"}));
  EXPECT_THAT(report()["failures"],
              testing::Contains("disappeared from the set during the rehearsal: TANVO/Tessaphon/one.db"));
}

TEST(Rehearse, AByteThatChangesInTheSourceMeanwhileIsFound) {
  EXPECT_EQ(rehearseWhile([] { writeFile(inSet("TANVO/Tessaphon/one.db"), "onf"); }), 1);
  EXPECT_THAT(
      report()["failures"],
      ElementsAre("content differs: /Users/rehearsal/Downloads/Installer/Package/../TANVO/Tessaphon/one.db"));
  EXPECT_THAT(fatesReported(), ElementsAre("Tessaphon/one.db differs"));
}

TEST(Rehearse, AFileThatCannotBeInstalledFailsWithItsSheet) {
  makeDownloadSet();
  makeFolder("/Users/tester/had/TANVO/Tessaphon/one.db");
  const Outcome outcome = rehearse({"--installed", "/Users/tester/had"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(report()["sheets"], Contains("Failed to open output file."));
  EXPECT_THAT(outcome.output, HasSubstr("FAILED: a sheet appeared: Failed to open output file.\n"));
  EXPECT_THAT(outcome.output, HasSubstr("FAILED: content differs: "));
  EXPECT_THAT(outcome.output, HasSubstr("\nThe log ends with:\n"));
}

// 12.0 MB where 10.0 MB lie: wrong by a fifth.
TEST(Rehearse, WarnsOfAWrongTotalSize) {
  makeDownloadSet("Mode = Downloaded\nInstalledData = Installed in %s\nTotalSizeMillionsBytes = 12\n");
  writeFile(inSet("TANVO/Tessaphon/large.db"), someBytes(10'000'000));
  const Outcome outcome = rehearse();
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.output, HasSubstr("  size         12.0 MB announced, 10.0 MB real\n"));
  EXPECT_THAT(outcome.output, HasSubstr("  warning: the total size is announced as 12.0 MB but is 10.0 MB: the "
                                        "bar will end early or late\n"));
  EXPECT_THAT(outcome.output, HasSubstr("Rehearsal passed with warnings: everything was installed.\n"));
}

TEST(Rehearse, WarnsOfAWrongComponentSize) {
  makeDataUpdateSet(
      "Mode = DataUpdater\nRelativePath = First\nRelativePath2 = Second\nNumberOfVolumes = 2\n"
      "TotalSizeMillionsBytes = 20\nComponent1SizeMillionsBytes = 8\n" +
      kTexts);
  writeFile(inSet("First/TANVO/Tessaphon/large.db"), someBytes(10'000'000));
  writeFile(inSet("Second/TANVO/Tessaphon/more.db"), someBytes(10'000'000, 2));
  const Outcome outcome = rehearse();
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(report()["remarks"], ElementsAre("the size of the first component is announced as 8.0 MB but is "
                                               "10.0 MB: the bar will end early or late",
                                               "tavinstall check has 1 warning for this set"));
  EXPECT_EQ(report()["firstComponent"]["announcedBytes"], 8'000'000);
  EXPECT_EQ(report()["firstComponent"]["realBytes"], 10'000'003);
}

TEST(Rehearse, WarnsOfDataThatIsNotInstalled) {
  makeDataUpdateSet();
  writeFile(inSet("First/DOVA/Bassoria/lost.db"), "x");
  writeFile(inSet("First/Read me.txt"), "x");
  writeFile(inSet("First/TANVO/.DS_Store"), "x");
  const Outcome outcome = rehearse();
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(report()["remarks"], ElementsAre("nothing installs First/DOVA/Bassoria/lost.db"));
  EXPECT_THAT(outcome.output, HasSubstr("  not data     1 file beside the data folders: First/Read me.txt\n"));
}

TEST(Rehearse, WarnsOfAnUnusedDisc) {
  makeDiscSet("Mode = InstallFromVolumes\nNumberOfVolumes = 1\nTotalSizeMillionsBytes = 1\n" + kTexts);
  const Outcome outcome = rehearse({"--product", "Lumaweave"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(report()["remarks"],
              ElementsAre("nothing installs discs/2 Tavenhall Lumaweave/DOVA/Factory/two.db",
                          "the page never asked for discs/2 Tavenhall Lumaweave",
                          "tavinstall check has 1 warning for this set"));
}

TEST(Rehearse, DoesNotWarnOfDataOfTheFullEdition) {
  makeDataUpdateSet();
  const Outcome outcome = rehearse({"--install-type", "Lite"});
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_THAT(fatesReported(), ElementsAre("Tessaphon/one.db same"));
  EXPECT_THAT(outcome.output, HasSubstr("  left out     1 file of the Full edition\n"));
  EXPECT_EQ(report()["notInstalled"][0]["path"], "Second/TANVO/Tessaphon/two.db");
  EXPECT_EQ(report()["notInstalled"][0]["fullEditionOnly"], true);
}

// ---- What nobody sees who looks at the installed files alone ----

TEST(Rehearse, AFolderThatCannotBeListedFails) {
  if (!isRealRoot()) {
    GTEST_SKIP() << "a folder of another user's is needed";
  }
  makeDownloadSet();
  ASSERT_EQ(chmod(inSet("TANVO/Tessaphon").c_str(), 0700), 0);
  const Outcome outcome = runThrough(asOrdinaryUser(rehearseCommand({"--ui", "quiet"})));
  EXPECT_EQ(outcome.status, 1) << outcome.error;
  EXPECT_THAT(outcome.output, HasSubstr("FAILED: Cannot be listed: "));
}

TEST(Rehearse, AFileThatACommandOfTheSetMadeIsFound) {
  makeUpdateSet();
  writeFile(inSet("Applications/$(cd;touch made).app/Contents/program"), "program");
  const Outcome outcome = rehearse();
  EXPECT_EQ(outcome.status, 1) << outcome.output << outcome.error;
  EXPECT_THAT(
      outcome.output,
      HasSubstr("warning: the installation left a file that is not in the set: /Users/rehearsal/made\n"));
  EXPECT_EQ(report()["extra"], nlohmann::json({"/Users/rehearsal/made"}));
}

TEST(Rehearse, WarnsOfLostModes) {
  makeDownloadSet();
  writeFile(inSet("TANVO/Tessaphon/private.db"), "private");
  writeFile(inSet("TANVO/Tessaphon/program"), "program");
  ASSERT_EQ(chmod(inSet("TANVO/Tessaphon/private.db").c_str(), 0600), 0);
  ASSERT_EQ(chmod(inSet("TANVO/Tessaphon/program").c_str(), 04755), 0);
  const Outcome outcome = rehearse();
  EXPECT_EQ(outcome.status, 3) << outcome.output << outcome.error;
  EXPECT_THAT(outcome.output,
              HasSubstr("warning: 1 file loses its setuid or setgid bit, since the copy keeps no "
                        "permissions: /Users/rehearsal/Downloads/Installer/Package/../TANVO/"
                        "Tessaphon/program\n"));
  EXPECT_THAT(outcome.output,
              HasSubstr("warning: 1 file that only its owner may read can be read by others after "
                        "the installation: "));
}

TEST(Rehearse, NamesThatDifferInCaseAreAnErrorThoughBothAreInstalledHere) {
  makeDownloadSet();
  writeFile(inSet("TANVO/Tessaphon/ONE.db"), "ONE");
  const Outcome outcome = rehearse();
  EXPECT_EQ(outcome.status, 1) << outcome.error;
  EXPECT_THAT(outcome.output,
              HasSubstr("\n\n  FAILED: tavinstall check: TANVO/Tessaphon/one.db: error: The name differs from "
                        "\"ONE.db\" only in case, so most disks keep only one of the two files. [case-clash]\n"
                        "Rehearsal failed: everything was installed, but the set has errors.\n"));
  EXPECT_THAT(outcome.output, Not(HasSubstr("The log ends with:")));
}

TEST(Rehearse, ALaterDiscsOtherFileIsAnError) {
  makeDiscSet();
  writeFile(inSet("discs/2 Tavenhall Lumaweave/DOVA/Factory/one.db"), "eno");
  const Outcome outcome = rehearse({"--product", "Lumaweave"});
  EXPECT_EQ(outcome.status, 1) << outcome.error;
  EXPECT_THAT(outcome.output, HasSubstr("warning: a later disc has another file of the same path: "
                                        "/Volumes/Tavenhall Lumaweave/DOVA/Factory/one.db\n"));
}

}  // namespace
}  // namespace tavenhall::test

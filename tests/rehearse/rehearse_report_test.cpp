#include "tests/rehearse/rehearsals.h"

#include <filesystem>

// The report as a whole, as text and as JSON.
namespace tavenhall::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

TEST(RehearseReport, OfDiscsIsCompleteText) {
  makeDiscSet();
  writeFile(inSet("discs/1 Tavenhall Lumaweave/DOVA/Factory/more.db"), someBytes(990'000));
  writeFile(inSet("discs/1 Tavenhall Lumaweave/Read me.txt"), "text");
  const Outcome outcome = rehearse({"--product", "Lumaweave"});
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_EQ(withoutTimes(outcome.output), R"(
Rehearsal of /Users/tester/Installer

  mode         2: The Mode in line 1 of .InstallationAttributes.dat reads "InstallFromVolumes".
  edition      There is one edition.
  plan         DOVA to /Users/rehearsal/Library/Application Support/Tavenhall/DOVA, 2 volumes
  prompt       Tavenhall Lumaweave: inserted
  prompt       Tavenhall Lumaweave: inserted
  volume       1: /Volumes/Tavenhall Lumaweave/DOVA, 990.0 kB in TIME, 2 files in 2 folders
  volume       2: /Volumes/Tavenhall Lumaweave/DOVA, 3 bytes in TIME, 1 file in 2 folders
  files        3 files identical, 0 differ, 0 missing, 0 replaced by a later copy
  not data     1 file beside the data folders: discs/1 Tavenhall Lumaweave/Read me.txt
  size         1.0 MB announced, 990.0 kB real
  bar          989.2 kB of 1.0 MB at its highest
  log          not kept; use --keep DIR

Rehearsal passed: everything was installed, no problems found.
)");
}

TEST(RehearseReport, OfAnUpdateIsCompleteText) {
  makeUpdateSet();
  std::filesystem::remove_all(inSet("First/TANVO/Mirel Packs"));
  std::filesystem::remove_all(inSet("Second/TANVO/Mirel Packs"));
  const Outcome outcome = rehearse();
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_EQ(withoutTimes(outcome.output), R"(
Rehearsal of /Users/tester/Installer

  mode         4: The Mode in line 1 of .InstallationAttributes.dat reads "TavenhallUpdater".
  edition      The update carries 1 library, each installed in the edition that the user has.
  library      Tessaphon: Lite
  plan         /Library/ from beside the package
  plan         /Applications/ from beside the package
  plan         TANVO to /Users/rehearsal/Library/Application Support/Tavenhall/TANVO, 1 volume
  plan         DOVA to /Users/rehearsal/Library/Application Support/Tavenhall/DOVA, 1 volume
  alert        Detected Installation Type: Lite installation detected for Tessaphon. Performing a Lite data update.
  beside       /Library/, 14 bytes, 2 files in 9 folders
  beside       /Applications/, 7 bytes, 1 file in 3 folders
  volume       1: /Users/rehearsal/Downloads/Installer/First/TANVO, 4 bytes in TIME, 1 file in 2 folders
  volume       1: nothing was copied
  files        4 files identical, 0 differ, 0 missing, 0 replaced by a later copy
  left out     1 file of the Full edition
  size         1.0 MB announced, 8 bytes real
  component    1.0 MB announced, 4 bytes real
  bar          0 bytes of 1.0 MB at its highest
  log          not kept; use --keep DIR

Rehearsal passed: everything was installed, no problems found.
)");
}

TEST(RehearseReport, AsJsonHasEveryField) {
  makeUpdateSet();
  std::filesystem::remove_all(inSet("Library"));
  writeFile(inSet("Applications/Tessaphon.app/Contents/Tessaphon"), "program");
  std::filesystem::remove_all(inSet("First/TANVO/Mirel Packs"));
  std::filesystem::remove_all(inSet("Second/TANVO/Mirel Packs"));
  EXPECT_EQ(rehearse().status, 0);
  EXPECT_EQ(steadyFields(report()), json::parse(R"({
    "set": "/Users/tester/Installer",
    "status": 0,
    "failures": [],
    "remarks": [],
    "plan": {
      "product": "Tessaphon",
      "mode": 4,
      "modeReason": "The Mode in line 1 of .InstallationAttributes.dat reads \"TavenhallUpdater\".",
      "edition": "The update carries 1 library, each installed in the edition that the user has.",
      "libraries": [{"folder": "Tessaphon", "edition": "Lite"}],
      "passes": [
        {"folder": "TANVO", "destination": "/Users/rehearsal/Library/Application Support/Tavenhall/TANVO",
         "volumes": 1},
        {"folder": "DOVA", "destination": "/Users/rehearsal/Library/Application Support/Tavenhall/DOVA",
         "volumes": 1}
      ]
    },
    "left": true,
    "systemFolders": [{"destination": "/Applications/", "bytes": 7, "files": 1, "folders": 3}],
    "volumes": [
      {"number": 1, "folder": "/Users/rehearsal/Downloads/Installer/First/TANVO", "bytes": 4, "files": 1,
       "folders": 2},
      {"number": 1, "folder": "", "bytes": 0, "files": 0, "folders": 0}
    ],
    "prompts": [],
    "alerts": [{"message": "Detected Installation Type", "informative":
      "Lite installation detected for Tessaphon. Performing a Lite data update.", "answer": 1000}],
    "sheets": [],
    "whole": {"announcedBytes": 1000000, "realBytes": 8, "far": false},
    "firstComponent": {"announcedBytes": 1000000, "realBytes": 4, "far": false},
    "bar": {"highest": 0.0, "maximum": 976.5625},
    "files": [
      {"source": "/Users/rehearsal/Downloads/Installer/Applications/Tessaphon.app/Contents/Tessaphon",
       "destination": "/Applications//Tessaphon.app/Contents/Tessaphon", "bytes": 7, "fate": "same"},
      {"source": "/Users/rehearsal/Downloads/Installer/First/TANVO/Tessaphon/readme.txt",
       "destination": "/Users/rehearsal/Library/Application Support/Tavenhall/TANVO/Tessaphon/readme.txt",
       "bytes": 4, "fate": "same"}
    ],
    "notInstalled": [
      {"path": "Second/TANVO/Tessaphon/readme.txt", "data": true, "fullEditionOnly": true}
    ],
    "unusedDiscs": [],
    "logFile": null,
    "gone": [],
    "extra": []
  })"));
}

TEST(RehearseReport, HasTheWholeLogWhetherOrNotItIsKept) {
  makeDownloadSet();
  EXPECT_EQ(rehearse().status, 0);
  const std::string log = report()["log"];
  EXPECT_THAT(
      log, HasSubstr("Copying folder /Users/rehearsal/Downloads/Installer/Package/../TANVO /Users/rehearsal/"));
  EXPECT_THAT(log, HasSubstr(": Installation complete\n****"));
}

TEST(RehearseReport, OfManyFailuresNamesTheFirstInTheTextAndAllInTheJson) {
  makeDownloadSet();
  for (int i = 0; i < 30; ++i) {
    const std::string name = "TANVO/Tessaphon/" + std::to_string(100 + i) + ".db";
    writeFile(inSet(name), "x");
    makeFolder("/Users/tester/had/" + name);
  }
  const Outcome outcome = rehearse({"--installed", "/Users/tester/had"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(report()["sheets"].size(), 31U);
  EXPECT_EQ(report()["failures"].size(), 33U) << "it cannot be left, two kinds of sheets, a difference each";
  EXPECT_EQ(report()["failures"][1], "a sheet appeared 30 times: Failed to open output file.");
  EXPECT_THAT(outcome.output, HasSubstr("  sheet        Failed to open output file. (30 times)\n"));
  EXPECT_THAT(outcome.output, HasSubstr("  FAILED: and 13 more\n"));
}

}  // namespace
}  // namespace tavenhall::test

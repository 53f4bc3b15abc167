#include "tests/install/case_files.h"
#include "tests/install/child_program.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <sys/stat.h>
#include <vector>

// A set's manifest, and an installed library that is compared with it.
namespace tavenhall::test {
namespace {

using nlohmann::ordered_json;
using testing::HasSubstr;

constexpr const char* kManifestSummary = "/tmp/summary.json";
constexpr const char* kManifestSet = "/Users/tester/Downloads/Set";
const std::string kManifestFile = std::string(kManifestSet) + "/Manifest.sha256";
const std::string kInstalled = std::string(kMakersFolder) + "/TANVO/Tessaphon";

class VerifiedInstall : public testing::Test {
 protected:
  VerifiedInstall() {
    layPackage(
        "Mode = InstallFromVolumes\nInstallDataTitle = Tessaphon\nInstallingData = Installing into:\\n%s\n"
        "InstalledData = All is in:\\n%s\nNumberOfVolumes = 2\nTotalSizeMillionsBytes = 1\n");
    for (const auto& [disc, name] :
         {std::pair("1 Tavenhall Tessaphon A", "a.db"), std::pair("2 Tessaphon B", "b.db")}) {
      const std::string folder = std::string(kManifestSet) + "/discs/" + disc;
      layTree(folder, {file("TANVO/Tessaphon/" + std::string(name), 12288),
                       textFile("TANVO/Tessaphon/.hidden", "no"), textFile("TANVO/Tessaphon/both.db", disc)});
    }
    std::filesystem::create_directories("/Volumes");
    std::filesystem::create_directory_symlink(std::string(kManifestSet) + "/discs/1 Tavenhall Tessaphon A",
                                              kDiscA);
    std::filesystem::create_directory_symlink(std::string(kManifestSet) + "/discs/2 Tessaphon B", kDiscB);
  }

  static Outcome tavinstall(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), kTavinstall);
    return runThrough(arguments);
  }

  static void install() {
    ASSERT_EQ(tavinstall({"run", "--unattended", "--trusted", "--ui", "quiet", "--package", kPackage}).status,
              0);
  }

  static Outcome verify(std::vector<std::string> more = {}) {
    more.insert(more.begin(), {"verify", "--package", kPackage});
    return tavinstall(more);
  }
};

TEST_F(VerifiedInstall, TheManifestListsWhatIsInstalledAndEachDiscItsPart) {
  const Outcome outcome = tavinstall({"manifest", kManifestSet});
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_EQ(outcome.output, "3 files, 24.6 kB.\nWritten: " + kManifestFile + "\nWritten: " + kManifestSet +
                                "/discs/1 Tavenhall Tessaphon A/Manifest.sha256\nWritten: " + kManifestSet +
                                "/discs/2 Tessaphon B/Manifest.sha256\n");
  const std::string text = readFile(kManifestFile);
  EXPECT_THAT(text, testing::Not(HasSubstr(".hidden")));
  EXPECT_THAT(text, HasSubstr("# volume 1 Tavenhall Tessaphon A\n# volume 2 Tessaphon B\n"));
  EXPECT_THAT(text, HasSubstr("# file 2 13\n")) << "a file of both discs is the later one's";
  EXPECT_THAT(readFile(std::string(kManifestSet) + "/discs/1 Tavenhall Tessaphon A/Manifest.sha256"),
              testing::Not(HasSubstr("b.db")));

  install();
  EXPECT_FALSE(exists(kInstalled + "/Manifest.sha256"));
  EXPECT_EQ(
      runThrough({"/bin/sh", "-c",
                  std::string("cd '") + kMakersFolder + "' && sha256sum --quiet -c '" + kManifestFile + "'"})
          .status,
      0)
      << "any tool reads it";
  EXPECT_EQ(verify().output, "Whole: 3 files, 24.6 kB, are as the manifest says.\n");
  EXPECT_EQ(verify().status, 0);
}

TEST_F(VerifiedInstall, EachKindOfDamageIsNamedWithItsDisc) {
  ASSERT_EQ(tavinstall({"manifest", kManifestSet}).status, 0);
  install();
  std::string bytes = readFile(kInstalled + "/a.db");
  bytes[5000] ^= 1;
  writeFile(kInstalled + "/a.db", bytes);
  std::filesystem::resize_file(kInstalled + "/b.db", 12000);
  std::filesystem::remove(kInstalled + "/both.db");
  writeFile(kInstalled + "/extra.db", "");

  const Outcome outcome = verify();

  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output,
            "! Different: TANVO/Tessaphon/a.db\n"
            "! Too short: TANVO/Tessaphon/b.db (12000 of 12288 bytes)\n"
            "! Missing: TANVO/Tessaphon/both.db\n"
            "  Not in the manifest: TANVO/Tessaphon/extra.db\n"
            "1 file is to be installed again from disc 1, Tavenhall Tessaphon A.\n"
            "2 files are to be installed again from disc 2, Tessaphon B.\n"
            "Not whole: 3 files are missing or wrong.\n");
  const ordered_json fields = ordered_json::parse(verify({"--json"}).output);
  EXPECT_EQ(fields["whole"], false);
  EXPECT_EQ(fields["problems"][1]["problem"], "short");
  EXPECT_EQ(fields["volumes"][1]["disc"], "Tessaphon B");
  EXPECT_EQ(fields["volumes"][1]["files"], 2);
  EXPECT_EQ(fields["extra"][0], "TANVO/Tessaphon/extra.db");
}

TEST_F(VerifiedInstall, FilesOfTheUsersOwnAreNoDamage) {
  ASSERT_EQ(tavinstall({"manifest", kManifestSet}).status, 0);
  install();
  writeFile(kInstalled + "/own.db", "mine");
  const Outcome outcome = verify();
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.output, HasSubstr("  Not in the manifest: TANVO/Tessaphon/own.db\nWhole: 3 files"));
}

// Of a library with one bad file, one disc and one file are needed.
TEST_F(VerifiedInstall, CompleteInstallsWhatIsWrongFromItsDiscAlone) {
  ASSERT_EQ(tavinstall({"manifest", kManifestSet}).status, 0);
  install();
  std::string bytes = readFile(kInstalled + "/b.db");
  bytes[5000] ^= 1;
  writeFile(kInstalled + "/b.db", bytes);
  writeFile(kInstalled + "/own.db", "mine");
  std::filesystem::remove(kDiscA);  // it is not asked for
  struct stat before {};
  ASSERT_EQ(stat((kInstalled + "/a.db").c_str(), &before), 0);

  const Outcome outcome = tavinstall(
      {"run", "--complete", "--unattended", "--trusted", "--package", kPackage, "--summary", kManifestSummary});

  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_EQ(outcome.output,
            "! Different: TANVO/Tessaphon/b.db\n"
            "  Not in the manifest: TANVO/Tessaphon/own.db\n"
            "1 file is to be installed again from disc 2, Tessaphon B.\n"
            "Installed: TANVO/Tessaphon/b.db\n"
            "Whole: 3 files, 24.6 kB, are as the manifest says.\n");
  EXPECT_EQ(verify().status, 3) << "whole, with a file of the user's own";
  EXPECT_EQ(tavinstall({"run", "--complete", "--ui", "quiet", "--trusted", "--package", kPackage}).output, "");
  struct stat after {};
  ASSERT_EQ(stat((kInstalled + "/a.db").c_str(), &after), 0);
  EXPECT_EQ(after.st_ino, before.st_ino);
  EXPECT_EQ(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
  const ordered_json summary = ordered_json::parse(readFile(kManifestSummary));
  EXPECT_EQ(summary["status"], 0);
  EXPECT_EQ(summary["installed"], true);
  EXPECT_EQ(summary["audit"]["files"], 3);
}

TEST_F(VerifiedInstall, CompleteAsksForTheDiscAndSaysSoWhereNobodyAnswers) {
  ASSERT_EQ(tavinstall({"manifest", kManifestSet}).status, 0);
  install();
  std::filesystem::remove(kInstalled + "/b.db");
  std::filesystem::remove(kDiscB);
  const std::vector<std::string> command{"run", "--complete", "--trusted", "--package", kPackage};

  const Outcome nobody = tavinstall(command);
  EXPECT_EQ(nobody.status, 3);
  EXPECT_THAT(nobody.output, HasSubstr("? Please insert disc 2, Tessaphon B.\n  1) Continue\n  2) Stop\n"));
  EXPECT_EQ(nobody.error, "tavinstall: disc Tessaphon B was not found\n");
  std::vector<std::string> unattended = command;
  unattended.emplace_back("--unattended");
  EXPECT_EQ(tavinstall(unattended).status, 7);

  std::vector<std::string> whole = command;
  whole.insert(whole.begin(), kTavinstall);
  ChildProgram program(whole);
  while (program.readLine().value() != "  2) Stop") {
  }
  std::filesystem::create_directory_symlink(std::string(kManifestSet) + "/discs/2 Tessaphon B", kDiscB);
  program.write("1\n");
  EXPECT_EQ(program.waitForEnd(), 0);
  EXPECT_EQ(verify().status, 0);
}

// A disc of another edition must not be installed under the manifest's name.
TEST_F(VerifiedInstall, CompleteTakesNoFileThatDiffersFromTheManifest) {
  ASSERT_EQ(tavinstall({"manifest", kManifestSet}).status, 0);
  install();
  const std::string good = readFile(kInstalled + "/b.db");
  writeFile(kInstalled + "/b.db", "older");
  std::string bytes = good;
  bytes[77] ^= 1;
  writeFile(std::string(kDiscB) + "/TANVO/Tessaphon/b.db", bytes);

  const Outcome outcome = tavinstall({"run", "--complete", "--unattended", "--trusted", "--package", kPackage});

  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(
      outcome.output,
      HasSubstr("! TANVO/Tessaphon/b.db: the source is not the file of the manifest\nNot whole: 1 file"));
  EXPECT_EQ(readFile(kInstalled + "/b.db"), "older");
  for (const auto& entry : std::filesystem::directory_iterator(kInstalled)) {
    EXPECT_FALSE(entry.path().filename().native().starts_with(".tavinstall")) << entry.path();
  }
}

// Nothing that is said of a library may come from a manifest that is not there or of a set that is not whole.
TEST_F(VerifiedInstall, WhatCannotBeKnownIsRefused) {
  EXPECT_EQ(verify().error, "tavinstall: cannot read " + kManifestFile + ": No such file or directory\n");
  EXPECT_EQ(tavinstall({"verify"}).error,
            "tavinstall: --package or --manifest is required; see tavinstall verify --help\n");
  std::filesystem::remove_all(std::string(kManifestSet) + "/discs/2 Tessaphon B");
  const Outcome incomplete = tavinstall({"manifest", kManifestSet});
  EXPECT_EQ(incomplete.status, 2);
  EXPECT_EQ(incomplete.error,
            "tavinstall: /Volumes/Tessaphon B is missing, so its files cannot be read; put it into the set\n");
  EXPECT_FALSE(exists(kManifestFile));
}

}  // namespace
}  // namespace tavenhall::test

#include "tests/install/case_files.h"
#include "tests/install/child_program.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

// A set's manifest, and an installed library that is compared with it.
namespace tavenhall::test {
namespace {

using nlohmann::ordered_json;
using testing::HasSubstr;

constexpr const char* kSet = "/Users/tester/Downloads/Set";
const std::string kManifestFile = std::string(kSet) + "/Manifest.sha256";
const std::string kInstalled = std::string(kMakersFolder) + "/TANVO/Tessaphon";

class VerifiedInstall : public testing::Test {
 protected:
  VerifiedInstall() {
    layPackage(
        "Mode = InstallFromVolumes\nInstallDataTitle = Tessaphon\nInstallingData = Installing into:\\n%s\n"
        "InstalledData = All is in:\\n%s\nNumberOfVolumes = 2\nTotalSizeMillionsBytes = 1\n");
    for (const auto& [disc, name] :
         {std::pair("1 Tavenhall Tessaphon A", "a.db"), std::pair("2 Tessaphon B", "b.db")}) {
      const std::string folder = std::string(kSet) + "/discs/" + disc;
      layTree(folder, {file("TANVO/Tessaphon/" + std::string(name), 12288),
                       textFile("TANVO/Tessaphon/.hidden", "no"), textFile("TANVO/Tessaphon/both.db", disc)});
    }
    std::filesystem::create_directories("/Volumes");
    std::filesystem::create_directory_symlink(std::string(kSet) + "/discs/1 Tavenhall Tessaphon A", kDiscA);
    std::filesystem::create_directory_symlink(std::string(kSet) + "/discs/2 Tessaphon B", kDiscB);
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
  const Outcome outcome = tavinstall({"manifest", kSet});
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_EQ(outcome.output, "3 files, 24.6 kB.\nWritten: " + kManifestFile + "\nWritten: " + kSet +
                                "/discs/1 Tavenhall Tessaphon A/Manifest.sha256\nWritten: " + kSet +
                                "/discs/2 Tessaphon B/Manifest.sha256\n");
  const std::string text = readFile(kManifestFile);
  EXPECT_THAT(text, testing::Not(HasSubstr(".hidden")));
  EXPECT_THAT(text, HasSubstr("# volume 1 Tavenhall Tessaphon A\n# volume 2 Tessaphon B\n"));
  EXPECT_THAT(text, HasSubstr("# file 2 13\n")) << "a file of both discs is the later one's";
  EXPECT_THAT(readFile(std::string(kSet) + "/discs/1 Tavenhall Tessaphon A/Manifest.sha256"),
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
  ASSERT_EQ(tavinstall({"manifest", kSet}).status, 0);
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
  ASSERT_EQ(tavinstall({"manifest", kSet}).status, 0);
  install();
  writeFile(kInstalled + "/own.db", "mine");
  const Outcome outcome = verify();
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.output, HasSubstr("  Not in the manifest: TANVO/Tessaphon/own.db\nWhole: 3 files"));
}

// Nothing that is said of a library may come from a manifest that is not there or of a set that is not whole.
TEST_F(VerifiedInstall, WhatCannotBeKnownIsRefused) {
  EXPECT_EQ(verify().error, "tavinstall: cannot read " + kManifestFile + ": No such file or directory\n");
  EXPECT_EQ(tavinstall({"verify"}).error,
            "tavinstall: --package or --manifest is required; see tavinstall verify --help\n");
  std::filesystem::remove_all(std::string(kSet) + "/discs/2 Tessaphon B");
  const Outcome incomplete = tavinstall({"manifest", kSet});
  EXPECT_EQ(incomplete.status, 2);
  EXPECT_EQ(
      incomplete.error,
      "tavinstall: /Volumes/Tessaphon B is missing or an image, so its files cannot be read; put its folder "
      "into the set\n");
  EXPECT_FALSE(exists(kManifestFile));
}

}  // namespace
}  // namespace tavenhall::test

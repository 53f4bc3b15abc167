#include "tests/faults/gated_install.h"
#include "tests/install/case_files.h"
#include "tests/support/files.h"

#include <cerrno>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <set>
#include <string>
#include <vector>

// The page's commands have a required form; here is what a shell makes of them. docs/security.md says what
// follows from it.
namespace tavenhall::test {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::StartsWith;

constexpr const char* kSignature = "Contents/Resources/__Pace_Eden/Signatures/codesign.dsig";

// An update with folders of these names in its data, which the page itself cannot make; into a folder whose
// path has no blank of its own.
GatedRun installFoldersThatNeedSudo(const std::vector<std::string>& names) {
  std::vector<Entry> entries{textFile(".InstallationAttributes.dat", "Mode = DataUpdater\nRelativePath = .\n"),
                             textFile("Installer.pkg", "")};
  std::set<std::string> refused;
  for (const std::string& name : names) {
    entries.push_back(file("TANVO/" + name + "/a.db", 100));
    refused.insert("/Volumes/Data/TANVO/" + name);
  }
  layTree(kSet, entries);
  makeFolder("/Volumes/Data/TANVO");
  layTree(kMakersFolder, {link("TANVO", "/Volumes/Data/TANVO")});
  return installWith([&refused](const FileCall& call) {
    return call.kind == CallKind::makeFolder && refused.contains(call.path) ? failWith(EACCES) : kPass;
  });
}

TEST(SudoMkdir, APlainNameIsMadeAndFilled) {
  EXPECT_EQ(installFoldersThatNeedSudo({"Tessaphon"}).status, 0);
  EXPECT_THAT(logMessages(), Contains("mkdir -1 13 /Volumes/Data/TANVO/Tessaphon"));
  EXPECT_THAT(logMessages(), Contains(StartsWith("mkdir2 sudo mkdir /Volumes/Data/TANVO/Tessaphon 0 ")));
  EXPECT_TRUE(exists("/Volumes/Data/TANVO/Tessaphon/a.db"));
}

TEST(SudoMkdir, ABlankMakesTwoNamesOfOneAndTheFilesAreNamedAsMissing) {
  EXPECT_EQ(installFoldersThatNeedSudo({"two words"}).status, 1);
  EXPECT_EQ(treeOf("/Volumes/Data/TANVO"), std::vector<std::string>{"two/"});
  EXPECT_TRUE(isNamedInLog("/Volumes/Data/TANVO/two words/a.db"));
}

struct Trick {
  const char* what;
  const char* name;
};

void PrintTo(const Trick& trick, std::ostream* out) { *out << trick.what; }

class ReadByTheShell : public testing::TestWithParam<Trick> {};

TEST_P(ReadByTheShell, ANameInAnUnquotedCommandIsCarriedOut) {
  EXPECT_EQ(installFoldersThatNeedSudo({GetParam().name}).status, 1);
  EXPECT_TRUE(exists("/owned"));
}

// The working folder is the root, which is the test's own.
INSTANTIATE_TEST_SUITE_P(SudoMkdir, ReadByTheShell,
                         testing::Values(Trick{"Substitution", "$(touch owned)"},
                                         Trick{"Backquotes", "`touch owned`"},
                                         Trick{"Semicolons", "x; touch owned; #"},
                                         Trick{"LineBreak", "x\ntouch owned"}, Trick{"And", "x && touch owned"},
                                         Trick{"Pipe", "x | touch owned"}, Trick{"Redirection", "x > owned"}),
                         [](const auto& instance) { return instance.param.what; });

TEST(SudoMkdir, AQuoteWithoutItsPairLeavesTheCommandUndone) {
  EXPECT_EQ(installFoldersThatNeedSudo({"it's"}).status, 1);
  EXPECT_EQ(treeOf("/Volumes/Data/TANVO"), std::vector<std::string>{});
  EXPECT_TRUE(isNamedInLog("/Volumes/Data/TANVO/it's/a.db"));
}

TEST(SudoMkdir, ADashNeverBeginsAnOptionUnlessABlankComesBefore) {
  EXPECT_EQ(installFoldersThatNeedSudo({"--parents"}).status, 0);
  EXPECT_TRUE(exists("/Volumes/Data/TANVO/--parents/a.db"));
}

GatedRun installApplication(const std::string& name) {
  layTree(kSet, {textFile(".InstallationAttributes.dat", "Mode = TavenhallUpdater\nRelativePath = .\n"),
                 file("Applications/" + name + "/Contents/program", 100), textFile("Installer.pkg", "")});
  makeFolder(kTanvo);
  makeFolder(kDova);
  return install();
}

TEST(SudoChmod, APlainApplicationIsOpenedToAll) {
  EXPECT_EQ(installApplication("Tessaphon.app").status, 0);
  EXPECT_THAT(logMessages(),
              Contains("sudo chmod -R 777 /Applications//Tessaphon.app/Contents/program   ... result = 0\n"));
  EXPECT_EQ(modeOf("/Applications/Tessaphon.app/Contents/program"), 0777U);
}

// Each item has its own permissions set besides, without a shell.
TEST(SudoChmod, ABlankMakesTwoNamesOfOneAndTheItemIsOpenedAllTheSame) {
  EXPECT_EQ(installApplication("Tessaphon Player.app").status, 0);
  EXPECT_THAT(logMessages(),
              Contains("sudo chmod -R 777 /Applications//Tessaphon Player.app   ... result = 256\n"));
  EXPECT_EQ(modeOf("/Applications/Tessaphon Player.app"), 0777U);
}

TEST(SudoChmod, AStarOpensTheApplicationsOfOthersToo) {
  writeFile("/Applications/Other.app/Contents/program", "");
  ASSERT_EQ(modeOf("/Applications/Other.app/Contents/program"), 0644U);
  EXPECT_EQ(installApplication("*.app").status, 0);
  EXPECT_EQ(modeOf("/Applications/Other.app/Contents/program"), 0777U);
}

TEST(SudoChmod, ASubstitutionInAnApplicationsNameIsCarriedOut) {
  EXPECT_EQ(installApplication("$(touch owned).app").status, 0);
  EXPECT_TRUE(exists("/owned"));
}

// The three folders are the page's own words, whatever is installed.
TEST(SudoChmod, ThePluginFoldersCommandsTakeNothingFromAName) {
  layTree(kSet, {textFile(".InstallationAttributes.dat", "Mode = TavenhallUpdater\nRelativePath = .\n"),
                 textFile("Installer.pkg", ""),
                 file("Library/Audio/Plug-Ins/VST/Tessaphon $(touch owned).vst", 100)});
  makeFolder(kTanvo);
  makeFolder(kDova);
  EXPECT_EQ(install().status, 0);
  EXPECT_FALSE(exists("/owned"));
  EXPECT_TRUE(exists("/Library/Audio/Plug-Ins/VST/Tessaphon $(touch owned).vst"));
}

GatedRun installSignature(const std::string& bundle) {
  layTree(kSet, {textFile(".InstallationAttributes.dat", "Mode = TavenhallUpdater\nRelativePath = .\n"),
                 textFile("Installer.pkg", ""),
                 file("Library/Audio/Plug-Ins/VST/" + bundle + "/" + kSignature, 100)});
  makeFolder(kTanvo);
  makeFolder(kDova);
  return install();
}

TEST(CopyOfASignature, BlanksSemicolonsStarsAndSingleQuotesStayWhatTheyAre) {
  const std::string bundle = "It's  Tessaphon; touch owned; *.vst";
  EXPECT_EQ(installSignature(bundle).status, 0);
  const std::string tail = "/Audio/Plug-Ins/VST/" + bundle + "/" + kSignature;
  EXPECT_EQ(readFile("/Library" + tail), readFile(kSet + ("/Library" + tail)));
  EXPECT_FALSE(exists("/owned"));
}

// The signature itself does not arrive.
TEST(CopyOfASignature, ASubstitutionIsCarriedOutInsideTheQuotes) {
  EXPECT_EQ(installSignature("$(touch owned).vst").status, 1);
  EXPECT_TRUE(exists("/owned"));
}

TEST(CopyOfASignature, ADoubleQuoteEndsTheQuoting) {
  EXPECT_EQ(installSignature("a\"; touch owned; \".vst").status, 1);
  EXPECT_TRUE(exists("/owned"));
}

TEST(Eject, TheCommandTakesNothingFromAName) {
  layPackage("Mode = InstallFromVolumes\nRelativePath = $(touch owned)\n");
  layTree(kDiscA, {file("TANVO/$(touch owned)/a.db", 100)});
  EXPECT_EQ(install().status, 0);
  EXPECT_FALSE(exists("/owned"));
}

}  // namespace
}  // namespace tavenhall::test

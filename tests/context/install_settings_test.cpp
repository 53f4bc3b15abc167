#include "context/install_settings.h"

#include "tests/support/files.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tavenhall {
namespace {

using test::kFoundLine;
using test::logMessages;
using test::setAttributes;
using Messages = std::vector<std::string>;

constexpr const char* kNoFile = "Did not find Installation Attribute File.";

struct GetterRow {
  const char* name;
  void (*get)(char*);
  const char* key;
  const char* foundStart;  // the found line up to its value; a blank follows the value
  const char* missingLine;
  const char* fallback;  // null where the buffer is left as the lookup left it
};

const std::vector<GetterRow> kGetters = {
    {"getInstallDataTitle", getInstallDataTitle, "InstallDataTitle",
     "Data from attributes file::  InstallData title=", "Could not find title string in attributes file ",
     "Installing Data"},
    {"getRelativePath", getRelativePath, "RelativePath", "Data from attributes file::    RelativePath=",
     "Could not find RelativePath string in attributes file ", ".."},
    {"getRelativePath2", getRelativePath2, "RelativePath2", "Data from attributes file::  RelativePath2=",
     "Could not find RelativePath2 string in attributes file ", nullptr},
    {"getPreparationTitle", getPreparationTitle, "PreparationTitle",
     "Data from attributes file::  preparation title=",
     "Could not find preparation title string in attributes file ", "Data Location"},
    {"getInstallingDataString", getInstallingDataString, "InstallingData",
     "Data from attributes file::  InstallingData=", "Could not find InstallingData string in attributes file ",
     "Now installing data from source media to: \n\n%s\n\nThis process is lengthy and can take up to 3 "
     "hours.\nThe "
     "progress bar will move very slowly at first.\nThanks for your patience.\n\nPlease wait for the "
     "installation to "
     "complete."},
    {"getCompletionMessage", [](char* text) { getCompletionMessage(0, text); }, "InstalledData",
     "Data from attributes file::  InstalledData=", "Could not find InstallingData string in attributes file ",
     "Step 1 finished.\n\nPlease run the Data Updater to complete the installation.\n\nPress Continue button."},
    {"getLiteVsFullPromptText", getLiteVsFullPromptText, "LiteVsFullPromptText",
     "Data from attributes file::  LiteVsFullPromptText=",
     "Could not find LiteVsFullPromptText string in attributes file ",
     "What installation of Tessaphon are you using?"},
    {"getAlternateNameForLiteInstalltion", getAlternateNameForLiteInstalltion,
     "AlternateNameForLiteInstallation", "Data from attributes file::  AlternateNameForLiteInstallation=",
     "Could not find AlternateNameForLiteInstallation string in attributes file ", "Lite"},
    {"getAlternateNameForFullInstalltion", getAlternateNameForFullInstalltion,
     "AlternateNameForFullInstallation", "Data from attributes file::  AlternateNameForFullInstallation=",
     "Could not find AlternateNameForFullInstallation string in attributes file ", "Full"},
};

void PrintTo(const GetterRow& row, std::ostream* out) { *out << row.name; }

class Getter : public testing::TestWithParam<GetterRow> {
 protected:
  void SetUp() override { test::makeFolder("/Users/tester/Library/Caches"); }

  // What the getter leaves in a buffer that held `before`.
  static std::string get(std::string before = "before") {
    before.resize(2048);
    GetParam().get(before.data());
    return before.c_str();
  }
};

TEST_P(Getter, GivesAndLogsTheValueOfItsKey) {
  setAttributes(std::string("Other = thing\n") + GetParam().key + " = My own  text \nLast = line\n");
  EXPECT_EQ(get(), "My own  text ");
  EXPECT_EQ(logMessages(), (Messages{kFoundLine, std::string(GetParam().foundStart) + "My own  text  "}));
}

TEST_P(Getter, FindsItsKeyInAnyCase) {
  std::string lower = GetParam().key;
  std::ranges::transform(lower, lower.begin(), [](unsigned char byte) { return std::tolower(byte); });
  setAttributes(lower + " = text\n");
  EXPECT_EQ(get(), "text");
}

TEST_P(Getter, HasItsFallbackWithoutItsKey) {
  setAttributes("Other = thing\n");
  EXPECT_EQ(get(), GetParam().fallback != nullptr ? GetParam().fallback : "thing");
  EXPECT_EQ(logMessages(), (Messages{kFoundLine, GetParam().missingLine}));
}

TEST_P(Getter, HasItsFallbackWithoutAFile) {
  test::setPackage("/Users/tester/Downloads/Set/Installer.pkg");
  EXPECT_EQ(get(), GetParam().fallback != nullptr ? GetParam().fallback : "before");
  EXPECT_EQ(logMessages(), (Messages{kNoFile, GetParam().missingLine}));
}

TEST_P(Getter, LogsAtEveryCall) {
  setAttributes("Other = thing\n");
  get();
  get();
  EXPECT_EQ(logMessages(), (Messages{kFoundLine, GetParam().missingLine, GetParam().missingLine}));
}

INSTANTIATE_TEST_SUITE_P(InstallSettings, Getter, testing::ValuesIn(kGetters),
                         [](const auto& row) { return std::string(row.param.name); });

class InstallSettings : public testing::Test {
 protected:
  void SetUp() override { test::makeFolder("/Users/tester/Library/Caches"); }
};

TEST_F(InstallSettings, TitleIsFoundUnderItsKeyInLowerCase) {
  setAttributes("installdatatitle = Strings\n");
  std::array<char, 2048> text{};
  getInstallDataTitle(text.data());
  EXPECT_STREQ(text.data(), "Strings");
}

TEST_F(InstallSettings, AMissingCompletionTextNamesTheInstallingText) {
  setAttributes("InstallingData = here\n");
  std::array<char, 2048> text{};
  getCompletionMessage(0, text.data());
  EXPECT_EQ(logMessages().back(), "Could not find InstallingData string in attributes file ");
}

TEST_F(InstallSettings, TheCompletionTextIgnoresItsFirstArgument) {
  setAttributes("InstalledData = Done.\\nReally.\n");
  for (const int ignored : {0, 1, -1, 2147483647}) {
    std::array<char, 2048> text{};
    getCompletionMessage(ignored, text.data());
    EXPECT_STREQ(text.data(), "Done. \nReally.") << ignored;
  }
}

TEST_F(InstallSettings, ALineBreakInAValueIsLoggedAsOne) {
  setAttributes("InstalledData = Done.\\nReally.\n");
  std::array<char, 2048> text{};
  getCompletionMessage(0, text.data());
  EXPECT_EQ(logMessages().back(), "Data from attributes file::  InstalledData=Done. \nReally. ");
}

TEST_F(InstallSettings, TheSecondRelativePathSaysWhetherItIsThere) {
  setAttributes("RelativePath = first\n");
  std::array<char, 2048> text{};
  EXPECT_FALSE(findRelativePath2(text.data()));
  EXPECT_STREQ(text.data(), "first") << "the lookup leaves another line's value";
  setAttributes("RelativePath2 = second\n");
  EXPECT_TRUE(findRelativePath2(text.data()));
  EXPECT_STREQ(text.data(), "second");
  EXPECT_EQ(logMessages(), (Messages{kFoundLine, "Could not find RelativePath2 string in attributes file ",
                                     "Data from attributes file::  RelativePath2=second "}));
}

TEST_F(InstallSettings, AFolderWithAVisibleEntryHasContents) {
  test::writeFile("/Users/tester/folder/file", "");
  EXPECT_EQ(folderExistsAndHasContents("/Users/tester/folder"), 1);
}

TEST_F(InstallSettings, AFolderWithAVisibleFolderHasContents) {
  test::makeFolder("/Users/tester/folder/inner");
  EXPECT_EQ(folderExistsAndHasContents("/Users/tester/folder"), 1);
}

TEST_F(InstallSettings, AnEmptyFolderHasNoContents) {
  test::makeFolder("/Users/tester/folder");
  EXPECT_EQ(folderExistsAndHasContents("/Users/tester/folder"), 0);
}

TEST_F(InstallSettings, AFolderWithNothingButHiddenEntriesHasNoContents) {
  test::writeFile("/Users/tester/folder/.DS_Store", "x");
  test::writeFile("/Users/tester/folder/.hidden/file", "x");
  EXPECT_EQ(folderExistsAndHasContents("/Users/tester/folder"), 0);
}

TEST_F(InstallSettings, AFolderThatIsNotThereHasNoContents) {
  EXPECT_EQ(folderExistsAndHasContents("/Users/tester/missing"), 0);
}

TEST_F(InstallSettings, AFileHasNoContentsOfAFolder) {
  test::writeFile("/Users/tester/file", "x");
  EXPECT_EQ(folderExistsAndHasContents("/Users/tester/file"), 0);
}

}  // namespace
}  // namespace tavenhall

#include "tests/faults/gated_install.h"
#include "tests/install/case_files.h"
#include "tests/support/files.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

// Names and files that are unlike others.
namespace tavenhall::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;

void layUpdate(std::vector<Entry> data) {
  data.push_back(textFile(".InstallationAttributes.dat",
                          "Mode = DataUpdater\nRelativePath = .\nTotalSizeMillionsBytes = 1\n"));
  data.push_back(textFile("Installer.pkg", ""));
  layTree(kSet, data);
  makeFolder(kTanvo);
}

const std::vector<std::string> kNames{
    "two  blanks",
    " a blank before and after ",
    "a tab\tin it",
    "a line\nbreak",
    "a \"quoted\" name",
    "it's",
    "back\\slash",
    "back`touch owned`tick",
    "$(touch owned)",
    "; touch owned; #",
    "*",
    "-rf",
    "--help",
    "%s%n%d",
    "bytes \xff\xfe that are no text",
    "caf\xc3\xa9 composed",
    "cafe\xcc\x81 decomposed",
    "Same Name",
    "same name",
    std::string(255, 'n'),
};

TEST(Names, AnyNameOfAFileOrAFolderIsCopiedAndNoneIsReadByAShell) {
  std::vector<Entry> data;
  for (const std::string& name : kNames) {
    data.push_back(file("TANVO/files/" + name, 700));
    data.push_back(file("TANVO/folders/" + name + "/" + name, 700));
  }
  layUpdate(data);

  const GatedRun run = install();

  EXPECT_EQ(run.status, 0) << run.output << run.error;
  EXPECT_THAT(missingFiles(data, "TANVO", kTanvo), IsEmpty());
  EXPECT_EQ(treeOf(kTanvo).size(), 2 + 3 * kNames.size());
  EXPECT_FALSE(exists("/owned"));
}

TEST(Names, APackageMayLieInAFolderOfAnyNameButOneWithALineBreak) {
  for (const std::string& name : kNames) {
    if (name.find('\n') != std::string::npos) {
      continue;
    }
    const std::string set = "/Users/tester/Sets/" + name;
    const std::vector<Entry> data{file("TANVO/a.db", 700)};
    std::vector<Entry> entries = data;
    entries.push_back(textFile(".InstallationAttributes.dat", "Mode = DataUpdater\nRelativePath = .\n"));
    entries.push_back(textFile("Installer.pkg", ""));
    layTree(set, entries);
    fs::remove_all(kTanvo);
    makeFolder(kTanvo);

    const GatedRun run = runGated({kTavinstall, "run", "--ui", "plain", "--package", set + "/Installer.pkg"},
                                  "", [](const FileCall&) { return kPass; });

    EXPECT_EQ(run.status, 0) << name << run.output << run.error;
    EXPECT_THAT(missingFiles(data, "TANVO", kTanvo), IsEmpty()) << name;
  }
  EXPECT_FALSE(exists("/owned"));
}

// A file whose destination's path has exactly so many bytes; its folders' names have 100 or more.
std::string tailForPathOf(std::size_t length) {
  std::string path = kTanvo;
  while (length - path.size() > 301) {
    path += "/" + std::string(100, 'd');
  }
  path += "/" + std::string(100, 'e');
  path += "/" + std::string(length - path.size() - 1, 'f');
  return path.substr(std::string(kTanvo).size() + 1);
}

TEST(Names, APathOfTenTwentyThreeBytesIsCopied) {
  const std::vector<Entry> data{file("TANVO/" + tailForPathOf(1023), 700)};
  layUpdate(data);
  const GatedRun run = install();
  EXPECT_EQ(run.status, 0) << run.output << run.error;
  EXPECT_THAT(missingFiles(data, "TANVO", kTanvo), IsEmpty());
}

TEST(Names, APathOfTenTwentyFourBytesEndsTheInstallBeforeItIsCutShort) {
  const std::vector<Entry> data{file("TANVO/" + tailForPathOf(1024), 700)};
  layUpdate(data);
  const GatedRun run = install();
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.error, "InstallDataPane: a text does not fit its buffer of 1024 bytes; stopping\n");
  EXPECT_THAT(run.output, HasSubstr("! The installer's engine ended unexpectedly.\n"));
  for (const std::string& path : treeOf(kTanvo)) {
    EXPECT_TRUE(path.ends_with("/")) << path;
  }
}

TEST(Names, LinksInACircleAndToFoldersAboveEndNowhereAndAreNamed) {
  const std::vector<Entry> data{file("TANVO/z.db", 700)};
  std::vector<Entry> entries = data;
  entries.push_back(link("TANVO/a-circle", "b-circle"));
  entries.push_back(link("TANVO/b-circle", "a-circle"));
  entries.push_back(link("TANVO/c-itself", "c-itself"));
  entries.push_back(link("TANVO/d-above", ".."));
  layUpdate(entries);

  const GatedRun run = install();

  EXPECT_EQ(run.status, 1) << run.output;
  EXPECT_EQ(countIn(run.output, ": Failed to open input file."), 3);
  EXPECT_EQ(countIn(run.output, ": Failed to copy file.  Perhaps out of disk space"), 1);
  for (const char* name : {"a-circle", "b-circle", "c-itself", "d-above"}) {
    EXPECT_TRUE(isNamedInLog(std::string(kTanvo) + "/" + name)) << name;
  }
  expectInstalled(data, "TANVO", kTanvo);
}

// To nowhere, so that the bytes need no room; the sizes then differ, and both are told.
TEST(Names, AFileOfMoreThanFourGibibytesIsCountedToTheByte) {
  constexpr std::uintmax_t kSize = (std::uintmax_t{1} << 32U) + 1;
  layUpdate({file("TANVO/huge.db", 1)});
  fs::resize_file(std::string(kSet) + "/TANVO/huge.db", kSize);
  ASSERT_EQ(symlink("/dev/null", (std::string(kTanvo) + "/huge.db").c_str()), 0);

  const GatedRun run = install({"--summary", "/tmp/summary.json"});

  EXPECT_EQ(run.status, 1) << run.output;
  EXPECT_EQ(countIn(readFile(kLog),
                    "huge.db (size is 4294967297) " + std::string(kTanvo) + "/huge.db  (size is 0)  "),
            1);
  EXPECT_EQ(nlohmann::json::parse(readFile("/tmp/summary.json"))["kBytesCopied"], 4194304);
  EXPECT_EQ(countIn(readFile(kLog), "Data copy progress "), 42);
}

}  // namespace
}  // namespace tavenhall::test

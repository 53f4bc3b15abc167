#include "host/rehearse/comparison.h"

#include "tests/support/files.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace tavenhall::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kLogFile = "/Users/tester/log.txt";

void writeLog(const std::vector<std::string>& messages) {
  std::string text;
  for (const std::string& message : messages) {
    text += "May 01 2026 10:00:00 studio: " + message + "\n";
  }
  writeFile(kLogFile, text);
}

std::filesystem::path where(const std::string& path, int /*copy*/) { return path; }

std::vector<std::string> fates(const std::vector<FileFate>& files) {
  std::vector<std::string> lines;
  for (const FileFate& file : files) {
    const char* names[] = {"same", "differs", "missing", "replaced", "overwritten"};
    lines.push_back(file.source + " " + names[static_cast<int>(file.fate)] + " " + std::to_string(file.copy));
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

std::vector<FileFate> compareOneFolder() {
  makeFolder("/Users/tester/to");
  writeLog({"Copying folder /Users/tester/from /Users/tester/to\n"});
  return compareFiles(copiedFolders(kLogFile, where));
}

TEST(CopiedFolders, AreReadFromTheLogWithTheirBlanks) {
  makeFolder("/Volumes/A B/T V/x y");
  makeFolder("/Users/tester/Application Support/T V/x y");
  writeLog({"Begin copySingleVolume: copySrcPath /Volumes/A B/T V\n",
            "Copying folder /Volumes/A B/T V /Users/tester/Application Support/T V\n",
            "Copying folder /Volumes/A B/T V/x y /Users/tester/Application Support/T V/x y\n"});
  const auto folders = copiedFolders(kLogFile, where);
  ASSERT_EQ(folders.size(), 2U);
  EXPECT_EQ(folders[0].source, "/Volumes/A B/T V");
  EXPECT_EQ(folders[0].destination, "/Users/tester/Application Support/T V");
  EXPECT_EQ(folders[1].source, "/Volumes/A B/T V/x y");
  EXPECT_EQ(folders[1].copy, 0);
}

TEST(CopiedFolders, EachTopLevelCopyCounts) {
  for (const char* folder : {"/p/Library", "/p/Applications", "/p/data/TANVO", "/d"}) {
    makeFolder(std::string("/Users/tester") + folder);
  }
  const std::string home = "/Users/tester";
  writeLog({"Copying folder " + home + "/p/Library " + home + "/d\n",
            "Copying folder " + home + "/p/Applications " + home + "/d\n",
            "Begin copySingleVolume: copySrcPath " + home + "/p/data/TANVO\n",
            "Copying folder " + home + "/p/data/TANVO " + home + "/d\n",
            "Begin copySingleVolume: copySrcPath " + home + "/p/data/TANVO\n",
            "Copying folder " + home + "/p/data/TANVO " + home + "/d\n"});
  std::vector<int> copies;
  for (const CopiedFolder& folder : copiedFolders(kLogFile, where)) {
    copies.push_back(folder.copy);
  }
  EXPECT_THAT(copies, ElementsAre(0, 1, 2, 3));
}

TEST(CompareFiles, ReportsTheFateOfEachFile) {
  writeFile("/Users/tester/from/same", "abc");
  writeFile("/Users/tester/from/other", "abc");
  writeFile("/Users/tester/from/shorter", "abc");
  writeFile("/Users/tester/from/gone", "abc");
  writeFile("/Users/tester/to/same", "abc");
  writeFile("/Users/tester/to/other", "abd");
  writeFile("/Users/tester/to/shorter", "ab");
  EXPECT_THAT(fates(compareOneFolder()),
              ElementsAre("/Users/tester/from/gone missing 0", "/Users/tester/from/other differs 0",
                          "/Users/tester/from/same same 0", "/Users/tester/from/shorter differs 0"));
}

TEST(CompareFiles, ADifferenceInTheLastByteOfALargeFileIsFound) {
  std::string bytes = someBytes(3'000'000);
  writeFile("/Users/tester/from/large", bytes);
  bytes.back() ^= 1;
  writeFile("/Users/tester/to/large", bytes);
  EXPECT_THAT(fates(compareOneFolder()), ElementsAre("/Users/tester/from/large differs 0"));
}

TEST(CompareFiles, HiddenFilesAndFoldersAreNotAskedFor) {
  writeFile("/Users/tester/from/.DS_Store", "x");
  makeFolder("/Users/tester/from/folder");
  EXPECT_THAT(compareOneFolder(), IsEmpty());
}

TEST(CompareFiles, ALinkToAFolderIsAFileThatDiffers) {
  makeFolder("/Users/tester/elsewhere");
  makeFolder("/Users/tester/from");
  ASSERT_EQ(symlink("/Users/tester/elsewhere", "/Users/tester/from/link"), 0);
  writeFile("/Users/tester/to/link", "");
  EXPECT_THAT(fates(compareOneFolder()), ElementsAre("/Users/tester/from/link differs 0"));
}

TEST(CompareFiles, AFileThatALaterCopyReplacedIsNotAFailure) {
  writeFile("/Users/tester/one/f", "first");
  writeFile("/Users/tester/two/f", "second");
  writeFile("/Users/tester/to/f", "second");
  writeLog({"Copying folder /Users/tester/one /Users/tester/to\n",
            "Copying folder /Users/tester/two /Users/tester/to\n"});
  EXPECT_THAT(fates(compareFiles(copiedFolders(kLogFile, where))),
              ElementsAre("/Users/tester/one/f overwritten 0", "/Users/tester/two/f same 1"));
}

TEST(FilesNotCopied, AreTheOnesThatNoCopyRead) {
  writeFile("/Users/tester/from/taken", "abc");
  const auto files = compareOneFolder();
  writeFile("/Users/tester/from/deep/left", "abc");
  EXPECT_THAT(filesNotCopied("/Users/tester/from", files), ElementsAre("deep/left"));
}

}  // namespace
}  // namespace tavenhall::test

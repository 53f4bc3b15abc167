#include "pane/process_wide.h"
#include "tests/pane/copying_page.h"
#include "tests/pane/event_trace.h"
#include "tests/pane/execution_fixtures.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>

namespace tavenhall::test {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kSignature =
    "/tmp/from/Lumaweave.aaxplugin/Contents/Resources/__Pace_Eden/Signatures/codesign.dsig";

long long sizeOf(const std::string& path) {
  struct stat found {};
  EXPECT_EQ(stat(path.c_str(), &found), 0) << path;
  return found.st_size;
}

// ---- A destination that is the source ----

// The user's data folder may be a link to where the data lies already.
TEST_F(CopyEngine, AFolderThatIsReachedFromBothSidesKeepsItsFiles) {
  const std::string bytes = someBytes(300000);
  writeFile("/tmp/from/TANVO/one.dat", bytes);
  std::filesystem::create_directory_symlink("/tmp/from/TANVO", "/tmp/to");
  CopyingPage page;
  EXPECT_EQ(page.copyFolder("/tmp/from/TANVO", "/tmp/to"), 1);
  EXPECT_TRUE(readFile("/tmp/from/TANVO/one.dat") == bytes);
  EXPECT_EQ(page.pane.kBytesCopied, 292);
  EXPECT_THAT(logMessages(), ElementsAre("Copying folder /tmp/from/TANVO /tmp/to\n"));
}

TEST_F(CopyEngine, ALinkThatLeadsBackToTheSourceKeepsItsBytes) {
  writeFile("/tmp/from/one.dat", "one");
  makeFolder("/tmp/to");
  std::filesystem::create_symlink("/tmp/from/one.dat", "/tmp/to/symbolic.dat");
  std::filesystem::create_hard_link("/tmp/from/one.dat", "/tmp/to/hard.dat");
  CopyingPage page;
  EXPECT_EQ(page.copyFile("/tmp/from/one.dat", "/tmp/to/symbolic.dat"), 1);
  EXPECT_EQ(page.copyFile("/tmp/from/one.dat", "/tmp/to/hard.dat"), 1);
  EXPECT_EQ(readFile("/tmp/from/one.dat"), "one");
}

TEST_F(CopyEngine, AnotherFileIsEmptiedEvenWhereTheSourceIsMissing) {
  writeFile("/tmp/to", "a longer one");
  writeFile("/tmp/from", "one");
  CopyingPage page;
  EXPECT_EQ(page.copyFile("/tmp/from", "/tmp/to"), 1);
  EXPECT_EQ(readFile("/tmp/to"), "one");
  EXPECT_EQ(page.copyFile("/tmp/nowhere", "/tmp/to"), 0);
  EXPECT_EQ(readFile("/tmp/to"), "");
}

// ---- The attributes file ----

// The system makes up such a file when it is read, and says 0 for its size before.
TEST_F(CopyEngine, AFileThatHoldsMoreThanItsSizeSaysIsCopiedToItsEnd) {
  CopyingPage page;
  EXPECT_EQ(page.copyFile("/proc/self/limits", "/tmp/to.dat"), 1);
  EXPECT_EQ(readFile("/tmp/to.dat"), readFile("/proc/self/limits"));
  EXPECT_THAT(readFile("/tmp/to.dat"), HasSubstr("Max open files"));
}

TEST_F(CopyEngine, TheAttributesFileMetAsAFileIsSkippedWithALine) {
  writeFile("/tmp/from/.InstallationAttributes.dat", "Mode = DataUpdater");
  CopyingPage page;
  EXPECT_EQ(page.copyFile("/tmp/from/.InstallationAttributes.dat", "/tmp/to"), 1);
  EXPECT_THAT(logMessages(), ElementsAre("copyDirectoryOrFile: skipping copy of Inst. Attrib file"));
  EXPECT_FALSE(exists("/tmp/to"));
  EXPECT_THAT(page.host.lines(), IsEmpty());
  EXPECT_EQ(sAsteriskAnimationCounter, 0);
}

TEST_F(CopyEngine, AMissingAttributesFileIsSkippedToo) {
  CopyingPage page;
  EXPECT_EQ(page.copyFile("/tmp/from/.InstallationAttributes.dat", "/tmp/to"), 1);
  EXPECT_THAT(logMessages(), ElementsAre("copyDirectoryOrFile: skipping copy of Inst. Attrib file"));
}

TEST_F(CopyEngine, FilesBelowAFolderOfTheAttributesFilesNameAreSkippedToo) {
  writeFile("/tmp/old.InstallationAttributes.dat/TANVO/one.dat", "one");
  CopyingPage page;
  EXPECT_EQ(page.copyFolder("/tmp/old.InstallationAttributes.dat/TANVO", "/tmp/to"), 1);
  EXPECT_THAT(logMessages(),
              ElementsAre("Copying folder /tmp/old.InstallationAttributes.dat/TANVO /tmp/to\n",
                          "mkdir 0 2 /tmp/to", "copyDirectoryOrFile: skipping copy of Inst. Attrib file"));
  EXPECT_THAT(treeOf("/tmp/to"), IsEmpty());
  EXPECT_THAT(page.host.lines(), IsEmpty());
}

TEST_F(CopyEngine, TheAttributesFilesNameInTheDestinationAloneMattersNot) {
  writeFile("/tmp/one.dat", "one");
  CopyingPage page;
  EXPECT_EQ(page.copyFile("/tmp/one.dat", "/tmp/.InstallationAttributes.dat"), 1);
  EXPECT_EQ(readFile("/tmp/.InstallationAttributes.dat"), "one");
}

// ---- The AAX signature ----

TEST_F(CopyEngine, TheAaxSignatureIsCopiedByALoggedShellCommand) {
  writeFile(kSignature, "signature");
  CopyingPage page;
  EventTrace trace(page.host);
  EXPECT_EQ(page.copyFile(kSignature, "/tmp/to here/codesign.dsig"), 1);
  const std::string command =
      "cp  -a  \"/tmp/from/Lumaweave.aaxplugin/Contents/Resources/__Pace_Eden/Signatures/codesign.dsig\" "
      "\"/tmp/to here/codesign.dsig\"";
  EXPECT_THAT(trace.events(),
              ElementsAre("log copying AAX signature with command:  " + command, "system " + command));
}

TEST_F(CopyEngine, TheAaxSignatureIsNeverCopiedByTheByteCopy) {
  writeFile(kSignature, someBytes(20480));
  CopyingPage page;
  EXPECT_EQ(page.copyFile(kSignature, "/tmp/codesign.dsig"), 1);
  EXPECT_FALSE(exists("/tmp/codesign.dsig"));
  EXPECT_EQ(page.pane.kBytesCopied, 0);
  EXPECT_EQ(sAsteriskAnimationCounter, 0);
  EXPECT_THAT(page.host.lines(), IsEmpty());
}

TEST_F(CopyEngine, AFailingSignatureCommandCountsAsCopied) {
  platform().shell = [](const std::string&) { return 256; };
  CopyingPage page;
  EXPECT_EQ(page.copyFile(kSignature, "/tmp/codesign.dsig"), 1);
  EXPECT_THAT(page.host.lines(), IsEmpty());
  EXPECT_EQ(logMessages().size(), 1U);
}

TEST_F(CopyEngine, TheAaxSignatureIsFoundOnTheWayThroughAFolderInEveryMode) {
  for (const std::int32_t mode : {0, 2, 3, 4}) {
    const std::string source = "/tmp/from" + std::to_string(mode) + "/Resources/__Pace_Eden/Signatures";
    writeFile(source + "/codesign.dsig", "signature");
    CopyingPage page;
    page.pane.gInstallMode = mode;
    EXPECT_EQ(page.copyFolder(source, "/tmp/to" + std::to_string(mode)), 1);
  }
  EXPECT_THAT(platform().calls(),
              ElementsAre("system cp  -a  \"/tmp/from0/Resources/__Pace_Eden/Signatures/codesign.dsig\" "
                          "\"/tmp/to0/codesign.dsig\"",
                          "system cp  -a  \"/tmp/from2/Resources/__Pace_Eden/Signatures/codesign.dsig\" "
                          "\"/tmp/to2/codesign.dsig\"",
                          "system cp  -a  \"/tmp/from3/Resources/__Pace_Eden/Signatures/codesign.dsig\" "
                          "\"/tmp/to3/codesign.dsig\"",
                          "system cp  -a  \"/tmp/from4/Resources/__Pace_Eden/Signatures/codesign.dsig\" "
                          "\"/tmp/to4/codesign.dsig\""));
}

TEST_F(CopyEngine, ASignatureOfAnotherFolderIsCopiedAsAnyFile) {
  writeFile("/tmp/from/Resources/Signatures/codesign.dsig", "signature");
  CopyingPage page;
  EXPECT_EQ(page.copyFile("/tmp/from/Resources/Signatures/codesign.dsig", "/tmp/codesign.dsig"), 1);
  EXPECT_EQ(readFile("/tmp/codesign.dsig"), "signature");
  EXPECT_THAT(platform().calls(), IsEmpty());
}

TEST_F(CopyEngine, TheAttributesFilesNameComesBeforeTheSignatures) {
  CopyingPage page;
  EXPECT_EQ(page.copyFile("/tmp/.InstallationAttributes.dat/Resources/__Pace_Eden/Signatures/codesign.dsig",
                          "/tmp/codesign.dsig"),
            1);
  EXPECT_THAT(logMessages(), ElementsAre("copyDirectoryOrFile: skipping copy of Inst. Attrib file"));
  EXPECT_THAT(platform().calls(), IsEmpty());
}

// ---- Links ----

TEST_F(CopyEngine, ALinkToAFileIsFollowed) {
  writeFile("/tmp/elsewhere.dat", "linked");
  makeFolder("/tmp/from");
  std::filesystem::create_symlink("/tmp/elsewhere.dat", "/tmp/from/link.dat");
  CopyingPage page;
  EXPECT_EQ(page.copyFolder("/tmp/from", "/tmp/to"), 1);
  EXPECT_THAT(treeOf("/tmp/to"), ElementsAre("link.dat"));
  EXPECT_EQ(readFile("/tmp/to/link.dat"), "linked");
}

TEST_F(CopyEngine, ALinkToAFolderGivesAnEmptyFileTheSizesLineAndTheSheetAndCountsAsCopied) {
  writeFile("/tmp/elsewhere/one.dat", "one");
  makeFolder("/tmp/from");
  std::filesystem::create_symlink("/tmp/elsewhere", "/tmp/from/link");
  const long long size = sizeOf("/tmp/elsewhere");
  ASSERT_GT(size, 0);
  CopyingPage page;
  EXPECT_EQ(page.copyFolder("/tmp/from", "/tmp/to"), 1);
  EXPECT_THAT(treeOf("/tmp/to"), ElementsAre("link"));
  EXPECT_EQ(readFile("/tmp/to/link"), "");
  EXPECT_EQ(lastLogMessage(), "File copy failure: sizes differ: /tmp/from/link (size is " +
                                  std::to_string(size) + ") /tmp/to/link  (size is 0)  \n");
  EXPECT_THAT(page.host.linesThatBegin("sheet "),
              ElementsAre("sheet OK|Failed to copy file.  Perhaps out of disk space on destination drive?   "
                          "Contact customer support."));
}

TEST_F(CopyEngine, ADanglingLinkIsASourceThatCannotBeOpened) {
  makeFolder("/tmp/from");
  std::filesystem::create_symlink("/tmp/nowhere", "/tmp/from/link");
  CopyingPage page;
  EXPECT_EQ(page.copyFolder("/tmp/from", "/tmp/to"), 0);
  EXPECT_EQ(lastLogMessage(), "Source error /tmp/from/link /tmp/to/link\n");
  EXPECT_EQ(readFile("/tmp/to/link"), "");
}

TEST_F(CopyEngine, ALinkAtTheDestinationIsWrittenThrough) {
  writeFile("/tmp/from/one.dat", "new");
  writeFile("/tmp/elsewhere.dat", "old contents");
  makeFolder("/tmp/to");
  std::filesystem::create_symlink("/tmp/elsewhere.dat", "/tmp/to/one.dat");
  CopyingPage page;
  EXPECT_EQ(page.copyFolder("/tmp/from", "/tmp/to"), 1);
  EXPECT_EQ(readFile("/tmp/elsewhere.dat"), "new");
  EXPECT_THAT(treeOf("/tmp/to"), ElementsAre("one.dat -> /tmp/elsewhere.dat"));
}

// ---- Pipes and devices ----

TEST_F(CopyEngine, ANamedPipeInTheSourceDoesNotHangAndCannotBeOpened) {
  makeFolder("/tmp/from");
  ASSERT_EQ(mkfifo("/tmp/from/pipe", 0666), 0);
  writeFile("/tmp/from/one.dat", "one");
  CopyingPage page;
  EXPECT_EQ(page.copyFolder("/tmp/from", "/tmp/to"), 0);
  EXPECT_THAT(thoseThatBegin(logMessages(), "Source error"),
              ElementsAre("Source error /tmp/from/pipe /tmp/to/pipe\n"));
  EXPECT_THAT(page.host.linesThatBegin("sheet "), ElementsAre("sheet OK|Failed to open input file."));
  EXPECT_EQ(readFile("/tmp/to/pipe"), "");
  EXPECT_EQ(readFile("/tmp/to/one.dat"), "one");
}

TEST_F(CopyEngine, AnEndlessDeviceInTheSourceDoesNotHangAndCannotBeOpened) {
  writeFile("/tmp/from/zero", "");
  ASSERT_EQ(mount("/dev/zero", "/tmp/from/zero", nullptr, MS_BIND, nullptr), 0);
  CopyingPage page;
  EXPECT_EQ(page.copyFolder("/tmp/from", "/tmp/to"), 0);
  EXPECT_EQ(lastLogMessage(), "Source error /tmp/from/zero /tmp/to/zero\n");
  EXPECT_EQ(readFile("/tmp/to/zero"), "");
}

TEST_F(CopyEngine, ALinkToAPipeDoesNotHang) {
  makeFolder("/tmp/from");
  ASSERT_EQ(mkfifo("/tmp/pipe", 0666), 0);
  std::filesystem::create_symlink("/tmp/pipe", "/tmp/from/link");
  CopyingPage page;
  EXPECT_EQ(page.copyFolder("/tmp/from", "/tmp/to"), 0);
  EXPECT_EQ(lastLogMessage(), "Source error /tmp/from/link /tmp/to/link\n");
}

TEST_F(CopyEngine, APipeAtTheDestinationThatNobodyReadsDoesNotHangAndCannotBeOpened) {
  writeFile("/tmp/from/one.dat", "one");
  makeFolder("/tmp/to");
  ASSERT_EQ(mkfifo("/tmp/to/one.dat", 0666), 0);
  CopyingPage page;
  EXPECT_EQ(page.copyFolder("/tmp/from", "/tmp/to"), 0);
  EXPECT_EQ(lastLogMessage(), "Target error /tmp/from/one.dat /tmp/to/one.dat No such device or address\n");
  EXPECT_THAT(page.host.linesThatBegin("sheet "), ElementsAre("sheet OK|Failed to open output file."));
}

}  // namespace

}  // namespace tavenhall::test

#include "tests/pane/copying_page.h"
#include "tests/pane/event_trace.h"
#include "tests/pane/execution_fixtures.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>

namespace tavenhall::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kInputSheet = "sheet OK|Failed to open input file.";
constexpr const char* kOutputSheet = "sheet OK|Failed to open output file.";
constexpr const char* kPluginSheet =
    "sheet OK|Cannot install plugin.  Use Finder to give write permission to all system plugin folders: \n"
    "\n"
    "/Library/Audio/Plug-Ins/Components \n"
    "/Library/Audio/Plug-Ins/VST \n"
    "/Library/Audio/Plug-Ins/VST3\n"
    "\n"
    "Then re-run this installer.";
constexpr const char* kSizesSheet =
    "sheet OK|Failed to copy file.  Perhaps out of disk space on destination drive?   Contact customer "
    "support.";

void mountOver(const std::string& folder, const char* options) {
  makeFolder(folder);
  ASSERT_EQ(mount("tmpfs", folder.c_str(), "tmpfs", 0, options), 0) << std::strerror(errno);
}

// The folder as it is, but nothing below it can be written; root could get past mere permission bits.
void makeReadOnly(const std::string& folder) {
  makeFolder(folder);
  ASSERT_EQ(mount(folder.c_str(), folder.c_str(), nullptr, MS_BIND, nullptr), 0) << std::strerror(errno);
  ASSERT_EQ(
      mount(nullptr, folder.c_str(), nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY | MS_NOSUID | MS_NODEV, nullptr),
      0)
      << std::strerror(errno);
}

// ---- The source ----

TEST_F(CopyEngine, AMissingSourceFileFailsAndLeavesAnEmptyDestination) {
  CopyingPage page;
  EXPECT_EQ(page.copyFile("/tmp/none.dat", "/tmp/to.dat"), 0);
  EXPECT_THAT(logMessages(), ElementsAre("Source error /tmp/none.dat /tmp/to.dat\n"));
  EXPECT_THAT(page.sheets(), ElementsAre(kInputSheet));
  EXPECT_EQ(readFile("/tmp/to.dat"), "");
}

TEST_F(CopyEngine, AMissingSourceFileEmptiesAnEarlierDestination) {
  writeFile("/tmp/to.dat", "installed before");
  CopyingPage page;
  EXPECT_EQ(page.copyFile("/tmp/none.dat", "/tmp/to.dat"), 0);
  EXPECT_EQ(readFile("/tmp/to.dat"), "");
}

TEST_F(CopyEngine, AMissingSourceComesBeforeADestinationThatCannotBeOpened) {
  CopyingPage page;
  EXPECT_EQ(page.copyFile("/tmp/none.dat", "/tmp/nowhere/to.dat"), 0);
  EXPECT_THAT(logMessages(), ElementsAre("Source error /tmp/none.dat /tmp/nowhere/to.dat\n"));
  EXPECT_THAT(page.sheets(), ElementsAre(kInputSheet));
}

TEST_F(CopyEngine, AFailureIsLoggedThenShownThenTheProgressIsUpdated) {
  CopyingPage page;
  EventTrace trace(page.host);
  EXPECT_EQ(page.copyFile("/tmp/none.dat", "/tmp/to.dat"), 0);
  EXPECT_THAT(trace.events(),
              ElementsAre("log Source error /tmp/none.dat /tmp/to.dat\n", std::string("main: ") + kInputSheet,
                          "main: animation.begin", "main: animation.duration 0", "main: progress.value 0",
                          "main: progress.display", "main: animation.end", "main: status Installing... ",
                          "main: status.needsDisplay"));
}

TEST_F(CopyEngine, ASheetsButtonIsTheLocalisedText) {
  platform().strings["OK_BUTTON"] = "Weiter";
  CopyingPage page;
  EXPECT_EQ(page.copyFile("/tmp/none.dat", "/tmp/to.dat"), 0);
  EXPECT_THAT(page.sheets(), ElementsAre("sheet Weiter|Failed to open input file."));
}

// ---- The destination ----

TEST_F(CopyEngine, AReadOnlyDestinationFailsWithTheErrnosText) {
  writeFile("/tmp/one.dat", "one");
  makeReadOnly("/tmp/to");
  CopyingPage page;
  EXPECT_EQ(page.copyFile("/tmp/one.dat", "/tmp/to/one.dat"), 0);
  EXPECT_THAT(logMessages(), ElementsAre("Target error /tmp/one.dat /tmp/to/one.dat Read-only file system\n"));
  EXPECT_THAT(page.sheets(), ElementsAre(kOutputSheet));
  EXPECT_THAT(treeOf("/tmp/to"), IsEmpty());
}

TEST_F(CopyEngine, ADestinationThatIsAFolderCannotBeOpened) {
  writeFile("/tmp/from/one", "one");
  makeFolder("/tmp/to/one");
  CopyingPage page;
  EXPECT_EQ(page.copyFolder("/tmp/from", "/tmp/to"), 0);
  EXPECT_EQ(lastLogMessage(), "Target error /tmp/from/one /tmp/to/one Is a directory\n");
  EXPECT_THAT(page.sheets(), ElementsAre(kOutputSheet));
}

TEST_F(CopyEngine, AReadOnlyPluginFolderShowsThePluginSheet) {
  writeFile("/tmp/one.dat", "one");
  makeReadOnly("/Library/Audio/Plug-Ins/VST");
  CopyingPage page;
  EXPECT_EQ(page.copyFile("/tmp/one.dat", "/Library/Audio/Plug-Ins/VST/one.dat"), 0);
  EXPECT_THAT(logMessages(), ElementsAre("Target error /tmp/one.dat /Library/Audio/Plug-Ins/VST/one.dat "
                                         "Read-only file system\n"));
  EXPECT_THAT(page.sheets(), ElementsAre(kPluginSheet));
}

TEST_F(CopyEngine, ThePluginSheetIsShownInEveryModeAndForEveryPathWithAudioPlugIns) {
  writeFile("/tmp/one.dat", "one");
  for (const std::int32_t mode : {0, 2, 3, 4}) {
    CopyingPage page;
    page.pane.gInstallMode = mode;
    EXPECT_EQ(page.copyFile("/tmp/one.dat", "/tmp/Audio/Plug-Ins-old/one.dat"), 0);
    EXPECT_THAT(page.sheets(), ElementsAre(kPluginSheet)) << mode;
  }
}

TEST_F(CopyEngine, APluginPathOfTheSourceAloneShowsTheOrdinarySheet) {
  writeFile("/tmp/Audio/Plug-Ins/one.dat", "one");
  CopyingPage page;
  EXPECT_EQ(page.copyFile("/tmp/Audio/Plug-Ins/one.dat", "/tmp/nowhere/one.dat"), 0);
  EXPECT_THAT(page.sheets(), ElementsAre(kOutputSheet));
}

TEST_F(CopyEngine, AMissingSourceBelowThePluginFoldersShowsTheInputSheet) {
  CopyingPage page;
  EXPECT_EQ(page.copyFile("/tmp/none.dat", "/Library/Audio/Plug-Ins/VST/one.dat"), 0);
  EXPECT_THAT(page.sheets(), ElementsAre(kInputSheet));
}

// ---- Sizes ----

TEST_F(CopyEngine, AFullDestinationIsReportedBySizeAndStillCountsAsCopied) {
  writeFile("/tmp/one.dat", someBytes(20000));
  mountOver("/tmp/to", "size=8k");
  CopyingPage page;
  EXPECT_EQ(page.copyFile("/tmp/one.dat", "/tmp/to/one.dat"), 1);
  EXPECT_THAT(logMessages(), ElementsAre("File copy failure: sizes differ: /tmp/one.dat (size is 20000) "
                                         "/tmp/to/one.dat  (size is 8192)  \n"));
  EXPECT_THAT(page.sheets(), ElementsAre(kSizesSheet));
  EXPECT_EQ(readFile("/tmp/to/one.dat"), someBytes(20000).substr(0, 8192));
}

TEST_F(CopyEngine, BytesThatDidNotFitAreCountedAllTheSame) {
  writeFile("/tmp/one.dat", someBytes(300 * 1024));
  mountOver("/tmp/to", "size=8k");
  CopyingPage page;
  EXPECT_EQ(page.copyFile("/tmp/one.dat", "/tmp/to/one.dat"), 1);
  EXPECT_EQ(page.pane.kBytesCopied, 300);
}

TEST_F(CopyEngine, ADifferenceOfSizesIsShownBeforeTheProgressIsUpdated) {
  writeFile("/tmp/one.dat", someBytes(20000));
  mountOver("/tmp/to", "size=8k");
  CopyingPage page;
  EXPECT_EQ(page.copyFile("/tmp/one.dat", "/tmp/to/one.dat"), 1);
  EXPECT_THAT(page.host.lines(),
              ElementsAre(std::string("main: ") + kSizesSheet, "main: animation.begin",
                          "main: animation.duration 0", "main: progress.value 19", "main: progress.display",
                          "main: animation.end", "main: status Installing... ", "main: status.needsDisplay"));
}

TEST_F(CopyEngine, EqualSizesAreNotMentioned) {
  writeFile("/tmp/one.dat", someBytes(8192));
  mountOver("/tmp/to", "size=8k");
  CopyingPage page;
  EXPECT_EQ(page.copyFile("/tmp/one.dat", "/tmp/to/one.dat"), 1);
  EXPECT_THAT(logMessages(), IsEmpty());
  EXPECT_THAT(page.sheets(), IsEmpty());
}

// ---- A failure among others ----

TEST_F(CopyEngine, OneFileThatFailsDeepInTheTreeFailsTheWholeWhileAllOthersAreCopied) {
  for (const char* path : {"a.dat", "Samples/b.dat", "Samples/Deep/c.dat", "Samples/Deep/e.dat", "z.dat"}) {
    writeFile(std::string("/tmp/from/") + path, path);
  }
  std::filesystem::create_symlink("/tmp/nowhere", "/tmp/from/Samples/Deep/d.dat");
  CopyingPage page;
  EXPECT_EQ(page.copyFolder("/tmp/from", "/tmp/to"), 0);
  EXPECT_THAT(treeOf("/tmp/to"),
              ElementsAre("Samples/", "Samples/Deep/", "Samples/Deep/c.dat", "Samples/Deep/d.dat",
                          "Samples/Deep/e.dat", "Samples/b.dat", "a.dat", "z.dat"));
  EXPECT_EQ(readFile("/tmp/to/Samples/Deep/e.dat"), "Samples/Deep/e.dat");
}

TEST_F(CopyEngine, EveryFailureShowsASheetOfItsOwn) {
  makeFolder("/tmp/from");
  for (const char* name : {"/tmp/from/a", "/tmp/from/b", "/tmp/from/c"}) {
    std::filesystem::create_symlink("/tmp/nowhere", name);
  }
  CopyingPage page;
  EXPECT_EQ(page.copyFolder("/tmp/from", "/tmp/to"), 0);
  EXPECT_THAT(page.sheets(), ElementsAre(kInputSheet, kInputSheet, kInputSheet));
}

TEST_F(CopyEngine, ACopyAfterAFailureStartsAfresh) {
  writeFile("/tmp/one.dat", "one");
  CopyingPage page;
  EXPECT_EQ(page.copyFile("/tmp/none.dat", "/tmp/to.dat"), 0);
  EXPECT_EQ(page.copyFile("/tmp/one.dat", "/tmp/nowhere/to.dat"), 0);
  EXPECT_EQ(page.copyFile("/tmp/one.dat", "/tmp/to.dat"), 1);
  EXPECT_EQ(readFile("/tmp/to.dat"), "one");
}

TEST_F(CopyEngine, FailuresLeaveNoDescriptorOpen) {
  writeFile("/tmp/one.dat", "one");
  CopyingPage page;
  const auto before = openDescriptors();
  EXPECT_EQ(page.copyFile("/tmp/none.dat", "/tmp/to.dat"), 0);
  EXPECT_EQ(page.copyFile("/tmp/one.dat", "/tmp/nowhere/to.dat"), 0);
  EXPECT_EQ(page.copyFile("/tmp/none.dat", "/tmp/nowhere/to.dat"), 0);
  EXPECT_EQ(page.copyFile("/tmp", "/tmp/to.dat"), 1);
  EXPECT_EQ(openDescriptors(), before);
}

TEST_F(CopyEngine, FailuresOfACopyOnAPageThreadAreShownByTheMainThread) {
  CopyingPage page;
  std::int32_t result = -1;
  page.host.serve([&] { result = page.copyFile("/tmp/none.dat", "/tmp/to.dat"); });
  EXPECT_EQ(result, 0);
  EXPECT_EQ(page.host.lines().front(), std::string("main: ") + kInputSheet);
}

}  // namespace

}  // namespace tavenhall::test

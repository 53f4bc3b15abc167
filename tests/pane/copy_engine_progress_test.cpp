#include "pane/process_wide.h"
#include "tests/pane/copying_page.h"
#include "tests/pane/event_trace.h"
#include "tests/pane/execution_fixtures.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavenhall::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A file that takes no room.
void writeHoles(const std::string& path, std::uintmax_t size) {
  writeFile(path, "");
  std::filesystem::resize_file(path, size);
}

std::int64_t kBytesCopiedFor(std::size_t size) {
  writeFile("/tmp/one.dat", someBytes(size));
  CopyingPage page;
  EXPECT_EQ(page.copyFile(), 1);
  EXPECT_EQ(readFile("/tmp/to.dat"), someBytes(size)) << size;
  return page.pane.kBytesCopied;
}

std::vector<std::string> progressMessages() { return thoseThatBegin(logMessages(), "Data copy progress"); }

// ---- Counting ----

TEST_F(CopyEngine, EveryChunkIsCountedInWholeKibibytes) {
  EXPECT_EQ(kBytesCopiedFor(0), 0);
  EXPECT_EQ(kBytesCopiedFor(500), 0);
  EXPECT_EQ(kBytesCopiedFor(1023), 0);
  EXPECT_EQ(kBytesCopiedFor(1024), 1);
  EXPECT_EQ(kBytesCopiedFor(10239), 9);
  EXPECT_EQ(kBytesCopiedFor(10240), 10);
  EXPECT_EQ(kBytesCopiedFor(10241), 10);
  EXPECT_EQ(kBytesCopiedFor(11263), 10);
  EXPECT_EQ(kBytesCopiedFor(11264), 11);
  EXPECT_EQ(kBytesCopiedFor(20480), 20);
  EXPECT_EQ(kBytesCopiedFor(300001), 292);
}

TEST_F(CopyEngine, ManySmallFilesAddNothing) {
  for (int i = 0; i < 20; ++i) {
    writeFile("/tmp/from/" + std::to_string(i), someBytes(1000));
  }
  CopyingPage page;
  EXPECT_EQ(page.pane.copyDirectoryOrFile("/tmp/from", "/tmp/to", "", true), 1);
  EXPECT_EQ(page.pane.kBytesCopied, 0);
}

TEST_F(CopyEngine, TheCountGrowsFromWhatItWas) {
  writeFile("/tmp/one.dat", someBytes(20480));
  CopyingPage page;
  page.pane.kBytesCopied = 5000000000;
  EXPECT_EQ(page.copyFile(), 1);
  EXPECT_EQ(page.copyFile(), 1);
  EXPECT_EQ(page.pane.kBytesCopied, 5000000040);
}

// ---- Updates of the display ----

TEST_F(CopyEngine, AFileOfOneChunkUpdatesTheProgressOnce) {
  writeFile("/tmp/one.dat", someBytes(5000));
  CopyingPage page;
  EXPECT_EQ(page.copyFile(), 1);
  EXPECT_THAT(page.host.linesThatBegin("progress."), ElementsAre("progress.value 4", "progress.display"));
  EXPECT_EQ(sAsteriskAnimationCounter, 1);
}

TEST_F(CopyEngine, AnEmptyFileUpdatesTheProgressOnce) {
  writeFile("/tmp/one.dat", "");
  CopyingPage page;
  EXPECT_EQ(page.copyFile(), 1);
  EXPECT_EQ(sAsteriskAnimationCounter, 1);
}

TEST_F(CopyEngine, AFileOf99ChunksUpdatesTheProgressOnce) {
  writeFile("/tmp/one.dat", someBytes(99 * 10240));
  CopyingPage page;
  EXPECT_EQ(page.copyFile(), 1);
  EXPECT_THAT(page.host.linesThatBegin("progress.value"), ElementsAre("progress.value 990"));
}

TEST_F(CopyEngine, AFileOf100ChunksUpdatesTheProgressTwice) {
  writeFile("/tmp/one.dat", someBytes(1024000));
  CopyingPage page;
  EXPECT_EQ(page.copyFile(), 1);
  EXPECT_THAT(page.host.linesThatBegin("progress.value"),
              ElementsAre("progress.value 1000", "progress.value 1000"));
  EXPECT_EQ(sAsteriskAnimationCounter, 2);
}

TEST_F(CopyEngine, EveryHundredthChunkAndTheEndUpdateTheProgress) {
  writeFile("/tmp/one.dat", someBytes(250 * 10240));
  CopyingPage page;
  EXPECT_EQ(page.copyFile(), 1);
  EXPECT_THAT(page.host.linesThatBegin("progress.value"),
              ElementsAre("progress.value 1000", "progress.value 2000", "progress.value 2500"));
}

TEST_F(CopyEngine, ChunksAreNumberedAnewInEveryFile) {
  writeFile("/tmp/from/one.dat", someBytes(60 * 10240));
  writeFile("/tmp/from/two.dat", someBytes(60 * 10240));
  CopyingPage page;
  EXPECT_EQ(page.pane.copyDirectoryOrFile("/tmp/from", "/tmp/to", "", true), 1);
  EXPECT_THAT(page.host.linesThatBegin("progress.value"),
              ElementsAre("progress.value 600", "progress.value 1200"));
}

TEST_F(CopyEngine, AFolderAloneUpdatesNothing) {
  makeFolder("/tmp/from/Samples");
  CopyingPage page;
  EXPECT_EQ(page.pane.copyDirectoryOrFile("/tmp/from", "/tmp/to", "", true), 1);
  EXPECT_THAT(page.host.lines(), IsEmpty());
}

TEST_F(CopyEngine, TheUpdatesStandInTheOrderOfTheCopy) {
  writeFile("/tmp/from/Samples/one.dat", someBytes(3000));
  CopyingPage page;
  EventTrace trace(page.host);
  EXPECT_EQ(page.pane.copyDirectoryOrFile("/tmp/from", "/tmp/to", "TANVO", true), 1);
  EXPECT_THAT(trace.events(), ElementsAre("log Copying folder /tmp/from /tmp/to\n", "log mkdir 0 2 /tmp/to",
                                          "log Copying folder /tmp/from/Samples /tmp/to/Samples\n",
                                          "log mkdir 0 2 /tmp/to/Samples", "main: animation.begin",
                                          "main: animation.duration 0", "main: progress.value 2",
                                          "main: progress.display", "main: animation.end",
                                          "main: status Installing... Samples", "main: status.needsDisplay"));
}

// ---- The progress lines of the log ----

TEST_F(CopyEngine, ExactlyAHundredMillionBytesWriteNoProgressLine) {
  writeHoles("/tmp/one.dat", 100000000);
  CopyingPage page;
  EXPECT_EQ(page.copyFile(), 1);
  EXPECT_THAT(progressMessages(), IsEmpty());
  EXPECT_EQ(progressSizeForLoggingUnitBytes, 100000000.0F);
  EXPECT_EQ(progressCounterForLogging, 0);
  EXPECT_EQ(page.pane.kBytesCopied, 97656);
}

TEST_F(CopyEngine, TheChunkThatLiftsTheCountAboveAHundredMillionBytesWritesALine) {
  writeHoles("/tmp/one.dat", 210000000);
  CopyingPage page;
  EXPECT_EQ(page.copyFile(), 1);
  EXPECT_THAT(progressMessages(),
              ElementsAre("Data copy progress 0 (x 100MB)", "Data copy progress 1 (x 100MB)"));
  EXPECT_EQ(progressCounterForLogging, 2);
  EXPECT_EQ(progressSizeForLoggingUnitBytes, 9992320.0F);  // 210000000 - 2 * 9766 chunks
}

TEST_F(CopyEngine, BytesBeyondTheThresholdAreNotCarriedOver) {
  writeFile("/tmp/one.dat", someBytes(10240));
  CopyingPage page;
  progressSizeForLoggingUnitBytes = 99999000.0F;
  EXPECT_EQ(page.copyFile(), 1);
  EXPECT_THAT(progressMessages(), ElementsAre("Data copy progress 0 (x 100MB)"));
  EXPECT_EQ(progressSizeForLoggingUnitBytes, 0.0F);
}

TEST_F(CopyEngine, TheLineTellsTheNumberOfLinesBeforeIt) {
  writeFile("/tmp/one.dat", someBytes(10240));
  CopyingPage page;
  progressCounterForLogging = 41;
  progressSizeForLoggingUnitBytes = 99999999.0F;
  EXPECT_EQ(page.copyFile(), 1);
  EXPECT_THAT(progressMessages(), ElementsAre("Data copy progress 41 (x 100MB)"));
  EXPECT_EQ(progressCounterForLogging, 42);
}

TEST_F(CopyEngine, TheCountRunsOnThroughSeveralFiles) {
  writeFile("/tmp/from/one.dat", someBytes(500));
  writeFile("/tmp/from/two.dat", someBytes(500));
  writeFile("/tmp/from/three.dat", someBytes(500));
  CopyingPage page;
  progressSizeForLoggingUnitBytes = 99999000.0F;
  EXPECT_EQ(page.pane.copyDirectoryOrFile("/tmp/from", "/tmp/to", "", true), 1);
  EXPECT_THAT(progressMessages(), ElementsAre("Data copy progress 0 (x 100MB)"));
  EXPECT_EQ(progressSizeForLoggingUnitBytes, 0.0F);
}

// A 32-bit float holds only every eighth number there, so four bytes more are not seen.
TEST_F(CopyEngine, FourBytesAboveAHundredMillionAreLostInTheFloat) {
  writeFile("/tmp/one.dat", someBytes(10004));
  CopyingPage page;
  progressSizeForLoggingUnitBytes = 99990000.0F;
  EXPECT_EQ(page.copyFile(), 1);
  EXPECT_THAT(progressMessages(), IsEmpty());
  EXPECT_EQ(progressSizeForLoggingUnitBytes, 100000000.0F);
}

TEST_F(CopyEngine, FiveBytesAboveAHundredMillionWriteALine) {
  writeFile("/tmp/one.dat", someBytes(10005));
  CopyingPage page;
  progressSizeForLoggingUnitBytes = 99990000.0F;
  EXPECT_EQ(page.copyFile(), 1);
  EXPECT_THAT(progressMessages(), ElementsAre("Data copy progress 0 (x 100MB)"));
}

TEST_F(CopyEngine, SmallFilesAddNothingToALargeFloat) {
  for (int i = 0; i < 20; ++i) {
    writeFile("/tmp/from/" + std::to_string(i), "abc");
  }
  CopyingPage page;
  progressSizeForLoggingUnitBytes = 100000000.0F;
  EXPECT_EQ(page.pane.copyDirectoryOrFile("/tmp/from", "/tmp/to", "", true), 1);
  EXPECT_THAT(progressMessages(), IsEmpty());
  EXPECT_EQ(progressSizeForLoggingUnitBytes, 100000000.0F);
}

TEST_F(CopyEngine, TheLineStandsBeforeTheUpdateOfTheSameChunk) {
  writeFile("/tmp/one.dat", someBytes(1024000));
  CopyingPage page;
  EventTrace trace(page.host);
  progressSizeForLoggingUnitBytes = 98980000.0F;  // the hundredth chunk lifts it above
  EXPECT_EQ(page.copyFile(), 1);
  const auto events = trace.events();
  ASSERT_GE(events.size(), 2U);
  EXPECT_EQ(events[0], "log Data copy progress 0 (x 100MB)");
  EXPECT_EQ(events[1], "main: animation.begin");
}

}  // namespace

}  // namespace tavenhall::test

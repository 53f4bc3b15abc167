#include "pane/install_data_pane.h"
#include "tests/pane/event_trace.h"
#include "tests/pane/execution_fixtures.h"

#include <cerrno>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace tavenhall::test {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

std::int32_t copyFolder(const std::string& source, const std::string& dest) {
  RecordingHost host;
  InstallDataPane pane(host);
  return pane.copyDirectoryOrFile(source.c_str(), dest.c_str(), "TANVO", true);
}

TEST_F(CopyEngine, ATreeIsCopiedWithAllBelowIt) {
  writeFile("/tmp/from/one.dat", "one");
  writeFile("/tmp/from/Samples/two.dat", someBytes(30000));
  writeFile("/tmp/from/Samples/Deep/three.dat", "");
  EXPECT_EQ(copyFolder("/tmp/from", "/tmp/to"), 1);
  EXPECT_THAT(treeOf("/tmp/to"),
              ElementsAre("Samples/", "Samples/Deep/", "Samples/Deep/three.dat", "Samples/two.dat", "one.dat"));
  EXPECT_EQ(readFile("/tmp/to/one.dat"), "one");
  EXPECT_EQ(readFile("/tmp/to/Samples/two.dat"), someBytes(30000));
  EXPECT_EQ(readFile("/tmp/to/Samples/Deep/three.dat"), "");
}

TEST_F(CopyEngine, TheSourceStaysAsItIs) {
  writeFile("/tmp/from/Samples/two.dat", "two");
  EXPECT_EQ(copyFolder("/tmp/from", "/tmp/to"), 1);
  EXPECT_THAT(treeOf("/tmp/from"), ElementsAre("Samples/", "Samples/two.dat"));
  EXPECT_EQ(readFile("/tmp/from/Samples/two.dat"), "two");
}

TEST_F(CopyEngine, AFolderLogsItselfThenItsCreationThenItsEntries) {
  makeFolder("/tmp/from/Samples");
  EXPECT_EQ(copyFolder("/tmp/from", "/tmp/to"), 1);
  EXPECT_THAT(logMessages(),
              ElementsAre("Copying folder /tmp/from /tmp/to\n", "mkdir 0 2 /tmp/to",
                          "Copying folder /tmp/from/Samples /tmp/to/Samples\n", "mkdir 0 2 /tmp/to/Samples"));
}

TEST_F(CopyEngine, AFileIsCopiedWithoutALogLine) {
  writeFile("/tmp/one.dat", "one");
  RecordingHost host;
  InstallDataPane pane(host);
  EXPECT_EQ(pane.copyDirectoryOrFile("/tmp/one.dat", "/tmp/two.dat", "", false), 1);
  EXPECT_EQ(readFile("/tmp/two.dat"), "one");
  EXPECT_THAT(logMessages(), IsEmpty());
}

TEST_F(CopyEngine, HiddenFilesAreNotCopiedAtAnyLevelAndNotLogged) {
  writeFile("/tmp/from/.InstallationAttributes.dat", "Mode = DataUpdater");
  writeFile("/tmp/from/.DS_Store", "x");
  writeFile("/tmp/from/..odd", "x");
  writeFile("/tmp/from/.Trashes/inside.dat", "x");
  writeFile("/tmp/from/Samples/.hidden", "x");
  writeFile("/tmp/from/Samples/.Spotlight/deep.dat", "x");
  writeFile("/tmp/from/Samples/seen.dat", "x");
  EXPECT_EQ(copyFolder("/tmp/from", "/tmp/to"), 1);
  EXPECT_THAT(treeOf("/tmp/to"), ElementsAre("Samples/", "Samples/seen.dat"));
  EXPECT_THAT(logMessages(),
              ElementsAre("Copying folder /tmp/from /tmp/to\n", "mkdir 0 2 /tmp/to",
                          "Copying folder /tmp/from/Samples /tmp/to/Samples\n", "mkdir 0 2 /tmp/to/Samples"));
}

TEST_F(CopyEngine, AnEmptyFolderIsCreatedAndCountsAsCopied) {
  makeFolder("/tmp/from");
  EXPECT_EQ(copyFolder("/tmp/from", "/tmp/to"), 1);
  EXPECT_TRUE(std::filesystem::is_directory("/tmp/to"));
  EXPECT_THAT(treeOf("/tmp/to"), IsEmpty());
  EXPECT_THAT(logMessages(), ElementsAre("Copying folder /tmp/from /tmp/to\n", "mkdir 0 2 /tmp/to"));
}

TEST_F(CopyEngine, ACreatedFolderOrFileHasTheModeThatTheUmaskLeaves) {
  writeFile("/tmp/from/one.dat", "one");
  const mode_t before = umask(0027);
  EXPECT_EQ(copyFolder("/tmp/from", "/tmp/to"), 1);
  umask(0);
  EXPECT_EQ(copyFolder("/tmp/from", "/tmp/open"), 1);
  umask(before);
  EXPECT_EQ(modeOf("/tmp/to"), 0750U);
  EXPECT_EQ(modeOf("/tmp/to/one.dat"), 0640U);
  EXPECT_EQ(modeOf("/tmp/open"), 0777U);
  EXPECT_EQ(modeOf("/tmp/open/one.dat"), 0666U);
}

TEST_F(CopyEngine, ASourceFolderThatCannotBeOpenedStillMakesItsDestinationAndCountsAsCopied) {
  EXPECT_EQ(copyFolder("/tmp/none", "/tmp/to"), 1);
  EXPECT_TRUE(std::filesystem::is_directory("/tmp/to"));
  EXPECT_THAT(logMessages(), ElementsAre("Copying folder /tmp/none /tmp/to\n", "mkdir 0 2 /tmp/to"));
}

TEST_F(CopyEngine, AFileHandedOverAsAFolderCountsAsAFolderThatCannotBeOpened) {
  writeFile("/tmp/from", "a file");
  RecordingHost host;
  InstallDataPane pane(host);
  EXPECT_EQ(pane.copyDirectoryOrFile("/tmp/from", "/tmp/to", "TANVO", true), 1);
  EXPECT_TRUE(std::filesystem::is_directory("/tmp/to"));
  EXPECT_THAT(host.lines(), IsEmpty());
}

TEST_F(CopyEngine, AnExistingDestinationFolderIsNotMadeAndNotLogged) {
  writeFile("/tmp/from/one.dat", "one");
  makeFolder("/tmp/to");
  EXPECT_EQ(copyFolder("/tmp/from", "/tmp/to"), 1);
  EXPECT_THAT(logMessages(), ElementsAre("Copying folder /tmp/from /tmp/to\n"));
  EXPECT_EQ(readFile("/tmp/to/one.dat"), "one");
}

TEST_F(CopyEngine, AnExistingFolderKeepsWhatTheSourceDoesNotHave) {
  writeFile("/tmp/from/one.dat", "one");
  writeFile("/tmp/to/two.dat", "two");
  EXPECT_EQ(copyFolder("/tmp/from", "/tmp/to"), 1);
  EXPECT_THAT(treeOf("/tmp/to"), ElementsAre("one.dat", "two.dat"));
}

TEST_F(CopyEngine, ALongerFileAtTheDestinationIsOverwrittenWhole) {
  writeFile("/tmp/from/one.dat", "new");
  writeFile("/tmp/to/one.dat", someBytes(50000));
  EXPECT_EQ(copyFolder("/tmp/from", "/tmp/to"), 1);
  EXPECT_EQ(readFile("/tmp/to/one.dat"), "new");
}

TEST_F(CopyEngine, AFolderThatCannotBeMadeIsMadeByAnUnquotedPrivilegedCommand) {
  makeFolder("/tmp/from");
  RecordingHost host;
  EventTrace trace(host);
  trace.shell = [](const std::string&) {
    errno = EIO;
    return 256;
  };
  InstallDataPane pane(host);
  EXPECT_EQ(pane.copyDirectoryOrFile("/tmp/from", "/tmp/no where/to", "", true), 1);
  EXPECT_THAT(trace.events(),
              ElementsAre("log Copying folder /tmp/from /tmp/no where/to\n", "log mkdir -1 2 /tmp/no where/to",
                          "system sudo mkdir /tmp/no where/to",
                          "log mkdir2 sudo mkdir /tmp/no where/to 256 5 /tmp/no where/to"));
}

TEST_F(CopyEngine, AFileInTheWayOfTheDestinationsFolderIsReportedByItsErrno) {
  makeFolder("/tmp/from");
  writeFile("/tmp/file", "in the way");
  platform().shell = [](const std::string&) {
    errno = EACCES;
    return 0;
  };
  EXPECT_EQ(copyFolder("/tmp/from", "/tmp/file/to"), 1);
  EXPECT_THAT(logMessages(), ElementsAre("Copying folder /tmp/from /tmp/file/to\n", "mkdir -1 20 /tmp/file/to",
                                         "mkdir2 sudo mkdir /tmp/file/to 0 13 /tmp/file/to"));
}

TEST_F(CopyEngine, ADanglingLinkAtTheDestinationIsAFolderThatCannotBeMade) {
  makeFolder("/tmp/from");
  std::filesystem::create_symlink("/tmp/nowhere", "/tmp/to");
  EXPECT_EQ(copyFolder("/tmp/from", "/tmp/to"), 1);
  EXPECT_THAT(logMessages(), Contains("mkdir -1 17 /tmp/to"));
  EXPECT_THAT(platform().calls(), ElementsAre("system sudo mkdir /tmp/to"));
}

TEST_F(CopyEngine, WhatThePrivilegedCommandMadeIsFilled) {
  writeFile("/tmp/from/one.dat", "one");
  platform().shell = [](const std::string& command) {
    EXPECT_EQ(command, "sudo mkdir /tmp/parent/to");
    makeFolder("/tmp/parent/to");
    return 0;
  };
  EXPECT_EQ(copyFolder("/tmp/from", "/tmp/parent/to"), 1);
  EXPECT_EQ(readFile("/tmp/parent/to/one.dat"), "one");
}

TEST_F(CopyEngine, AFolderThatNobodyCouldMakeFailsByItsFiles) {
  writeFile("/tmp/from/one.dat", "one");
  RecordingHost host;
  InstallDataPane pane(host);
  EXPECT_EQ(pane.copyDirectoryOrFile("/tmp/from", "/tmp/none/to", "", true), 0);
  EXPECT_EQ(lastLogMessage(),
            "Target error /tmp/from/one.dat /tmp/none/to/one.dat No such file or directory\n");
  EXPECT_THAT(host.linesThatBegin("sheet "), ElementsAre("sheet OK|Failed to open output file."));
}

TEST_F(CopyEngine, ATrailingSlashOfTheDestinationDoublesInTheJoinedPaths) {
  writeFile("/tmp/from/Audio/one.dat", "one");
  makeFolder("/Library");
  EXPECT_EQ(copyFolder("/tmp/from", "/Library/"), 1);
  EXPECT_THAT(logMessages(),
              ElementsAre("Copying folder /tmp/from /Library/\n",
                          "Copying folder /tmp/from/Audio /Library//Audio\n", "mkdir 0 2 /Library//Audio"));
  EXPECT_EQ(readFile("/Library/Audio/one.dat"), "one");
}

TEST_F(CopyEngine, TheItemBeingInstalledIsTheFolderEnteredLast) {
  makeFolder("/tmp/from/Samples/Deep");
  RecordingHost host;
  InstallDataPane pane(host);
  EXPECT_EQ(pane.copyDirectoryOrFile("/tmp/from", "/tmp/to", "TANVO", true), 1);
  EXPECT_EQ(pane.gItemCurrentlyBeingInstalled.view(), "Deep");
}

TEST_F(CopyEngine, ATailNameIsShownAsItIsGiven) {
  writeFile("/tmp/from/one.dat", "one");
  RecordingHost host;
  InstallDataPane pane(host);
  EXPECT_EQ(pane.copyDirectoryOrFile("/tmp/from", "/tmp/to", "Some %s name", true), 1);
  EXPECT_EQ(pane.gItemCurrentlyBeingInstalled.view(), "Some %s name");
  EXPECT_THAT(host.linesThatBegin("status "), ElementsAre("status Installing... Some %s name"));
}

TEST_F(CopyEngine, AFileLeavesTheItemBeingInstalledAlone) {
  writeFile("/tmp/one.dat", "one");
  RecordingHost host;
  InstallDataPane pane(host);
  pane.gItemCurrentlyBeingInstalled.assign("Before");
  EXPECT_EQ(pane.copyDirectoryOrFile("/tmp/one.dat", "/tmp/two.dat", "one.dat", false), 1);
  EXPECT_EQ(pane.gItemCurrentlyBeingInstalled.view(), "Before");
}

TEST_F(CopyEngine, NoDestinationGivesOneLineAndTouchesNothing) {
  writeFile("/tmp/from/one.dat", "one");
  RecordingHost host;
  InstallDataPane pane(host);
  pane.gInstallMode = 4;
  pane.gItemCurrentlyBeingInstalled.assign("Before");
  EXPECT_EQ(pane.copyDirectoryOrFile("/tmp/from", nullptr, "TANVO", true), 0);
  EXPECT_EQ(pane.copyDirectoryOrFile("/tmp/from/one.dat", nullptr, "one.dat", false), 0);
  EXPECT_THAT(logMessages(), ElementsAre("copyDirectoryOrFile: no destination for /tmp/from",
                                         "copyDirectoryOrFile: no destination for /tmp/from/one.dat"));
  EXPECT_THAT(host.lines(), IsEmpty());
  EXPECT_THAT(platform().calls(), IsEmpty());
  EXPECT_EQ(pane.kBytesCopied, 0);
  EXPECT_EQ(pane.gItemCurrentlyBeingInstalled.view(), "Before");
}

TEST_F(CopyEngine, NamesOfAnyBytesAreCopied) {
  for (const char* name :
       {"with blank", "Klänge", "100% %s %n", "\"quoted\" 'n $(x)", "back\\slash", "\xff\xfe"}) {
    writeFile(std::string("/tmp/from/") + name, name);
  }
  EXPECT_EQ(copyFolder("/tmp/from", "/tmp/to"), 1);
  EXPECT_EQ(treeOf("/tmp/to"), treeOf("/tmp/from"));
  EXPECT_EQ(readFile("/tmp/to/100% %s %n"), "100% %s %n");
}

}  // namespace

}  // namespace tavenhall::test

#include "tests/install/case_files.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>

// Sources that cannot be read and destinations that cannot be written.
namespace tavenhall::test {
namespace {

constexpr const char* kAttributes = "Mode = DataUpdater\nRelativePath = .\nTotalSizeMillionsBytes = 1\n";

// A data updater with this data.
void layUpdate(std::vector<Entry> data) {
  data.push_back(textFile(".InstallationAttributes.dat", kAttributes));
  data.push_back(textFile("Installer.pkg", ""));
  layTree(kSet, data);
}

void makeReadOnly(const std::string& folder) {
  ASSERT_EQ(mount(folder.c_str(), folder.c_str(), nullptr, MS_BIND, nullptr), 0) << std::strerror(errno);
  ASSERT_EQ(mount(nullptr, folder.c_str(), nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr), 0)
      << std::strerror(errno);
}

std::string sizeOf(const std::string& path) {
  struct stat found {};
  EXPECT_EQ(stat(path.c_str(), &found), 0) << path;
  return std::to_string(found.st_size);
}

TEST(CopyFaults, LinksAreCopiedAsWhatTheyLeadToAndADanglingOneIsReported) {
  layUpdate({file("TANVO/a-file.db", 2048), link("TANVO/b-link.db", "a-file.db"),
             file("TANVO/c-folder/inner.db", 1024), link("TANVO/d-linked-folder", "c-folder"),
             link("TANVO/e-dangling", "nowhere"),
             link("TANVO/f-outside.db", "/Users/tester/Downloads/Set/g.db"), file("g.db", 3072)});
  layTree(kTanvo, {});

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  const std::string folderSize = sizeOf(std::string(kSet) + "/TANVO/c-folder");
  expectCase("links_in_source", installer,
             {.masks = {{"d-linked-folder (size is " + folderSize + ")",
                         "d-linked-folder (size is <size of a folder>)"}}});
}

TEST(CopyFaults, ANamedPipeInTheSourceIsReportedAndTheRestIsCopied) {
  layUpdate({pipe("TANVO/Tessaphon/a-pipe"), file("TANVO/Tessaphon/b.db", 1024)});
  layTree(kTanvo, {});

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("named_pipe", installer);
}

TEST(CopyFaults, FilesThatCannotBeWrittenAreReportedAndTheRestIsCopied) {
  layUpdate({file("TANVO/Locked/a.db", 1024), file("TANVO/b.db", 1024), file("TANVO/c.db", 2048)});
  layTree(kTanvo, {file("Locked/a.db", 100), folder("b.db")});
  makeReadOnly(std::string(kTanvo) + "/Locked");

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("write_errors", installer);
}

TEST(CopyFaults, APluginThatCannotBeWrittenIsReportedWithTheFoldersToOpenUp) {
  layTree(kSet, {textFile(".InstallationAttributes.dat", "Mode = TavenhallUpdater\n"),
                 textFile("Installer.pkg", ""), file("Library/Audio/Plug-Ins/VST/Tessaphon.vst/plugin", 1024)});
  layTree(kTanvo, {});
  layTree("/Library", {file("Audio/Plug-Ins/VST/Tessaphon.vst/plugin", 100)});
  makeReadOnly("/Library/Audio/Plug-Ins/VST");

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("plugin_write_error", installer);
}

TEST(CopyFaults, WhereThereIsNoRoomTheSizesDifferAndTheCopyStillCounts) {
  layUpdate({file("TANVO/a.db", 300000), file("TANVO/b.db", 5000)});
  layTree(kTanvo, {});
  ASSERT_EQ(mount("tmpfs", kTanvo, "tmpfs", 0, "size=200k,mode=755"), 0) << std::strerror(errno);

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("out_of_space", installer);
}

// The command's path is not quoted, so its blank makes two of it: one folder that nobody asked for, and one
// that cannot be made.
TEST(CopyFaults, AFolderThatCannotBeMadeIsTriedWithSudoAndItsFilesThenFail) {
  layUpdate({file("TANVO/Tessaphon/a.db", 1024)});
  layTree(kTanvo, {link("Tessaphon", "nowhere")});

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("mkdir_fails", installer);
  EXPECT_TRUE(std::filesystem::is_directory("/Users/tester/Library/Application"));
}

TEST(CopyFaults, AFolderThatSudoMakesIsFilled) {
  layUpdate({file("TANVO/Tessaphon/a.db", 1024)});
  layTree("/Volumes/Data", {link("TANVO/Tessaphon", "nowhere")});
  layTree(kMakersFolder, {link("TANVO", "/Volumes/Data/TANVO")});
  // One that gets its way. It comes first on the PATH, as a real one would.
  writeFile("/tmp/bin/sudo", "#!/bin/sh\n[ \"$1\" = mkdir ] && rm -f \"$2\"\nexec \"$@\"\n");
  ASSERT_EQ(chmod("/tmp/bin/sudo", 0755), 0);

  JsonInstaller installer({"--package", kPackage}, {{"PATH", "/tmp/bin:" + usualPath()}});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("mkdir_with_sudo", installer, {.folders = {"/Volumes/Data"}});
}

// Six folders of 200 bytes each: the fifth one's path still fits.
void layTooLongPath() {
  std::string path = "TANVO";
  for (char letter = 'a'; letter <= 'f'; ++letter) {
    path += "/" + std::string(200, letter);
  }
  layUpdate({file(path + "/x.db", 1024)});
  layTree(kTanvo, {});
}

TEST(CopyFaults, APathThatDoesNotFitStopsTheProgramInsteadOfBeingCut) {
  layTooLongPath();

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 128 + SIGABRT);
  EXPECT_EQ(installer.program().standardError(),
            "InstallDataPane: a text does not fit its buffer of 1024 bytes; stopping\n");
  for (const std::string& path : treeOf(kTanvo)) {
    EXPECT_TRUE(path.ends_with("/")) << path << " was copied to a place that nobody named";
  }
}

// Events that come with each file are held back for a moment; a stop in that moment must not lose them.
TEST(CopyFaults, ReportsOutputFromBeforeTheStop) {
  layTooLongPath();
  for (int i = 0; i < 50; ++i) {
    writeFile(std::string(kSet) + "/TANVO/" + std::to_string(i) + ".db", "x");
  }

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});
  ASSERT_EQ(installer.finish(), 128 + SIGABRT);

  const std::vector<std::string> copied = treeOf(kTanvo);
  const auto files = std::ranges::count_if(copied, [](const auto& path) { return path.ends_with(".db"); });
  ASSERT_GT(files, 0) << "the long path was met first: nothing is proved";
  const auto moves = std::ranges::count_if(
      installer.events(), [](const auto& line) { return line.starts_with(R"({"event":"progress.value")"); });
  EXPECT_EQ(moves, files + 1);  // the first is the empty bar's
}

TEST(CopyFaults, AProgramThatHadToStopIsReportedByThePlainFrontend) {
  layTooLongPath();

  const Outcome outcome = runThrough({kTavinstall, "run", "--ui", "plain", "--package", kPackage});

  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.output, testing::HasSubstr("! The installer's engine ended unexpectedly.\n"));
  EXPECT_EQ(outcome.error, "InstallDataPane: a text does not fit its buffer of 1024 bytes; stopping\n");
}

}  // namespace
}  // namespace tavenhall::test

#include "pane/install_data_pane.h"
#include "tests/pane/event_trace.h"
#include "tests/pane/execution_fixtures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace tavenhall::test {

namespace {

constexpr const char* kLooseSignature = "/tmp/Resources/__Pace_Eden/Signatures/codesign.dsig";

std::int32_t copy(const std::string& source, const std::string& dest, const std::string& tailName,
                  bool isADir) {
  RecordingHost host;
  InstallDataPane pane(host);
  return pane.copyDirectoryOrFile(source.c_str(), dest.c_str(), tailName.c_str(), isADir);
}

TEST_F(CopyEngine, AJoinedSourcePathOf1023BytesIsCopied) {
  const std::string folder = pathOfLength(1015);
  writeFile(folder + "/one.dat", "one");
  EXPECT_EQ(copy(folder, "/tmp/to", "", true), 1);
  EXPECT_EQ(readFile("/tmp/to/one.dat"), "one");
}

TEST_F(CopyEngine, AJoinedSourcePathOf1024BytesEndsTheProcess) {
  const std::string folder = pathOfLength(1016);
  writeFile(folder + "/one.dat", "one");
  EXPECT_DEATH(copy(folder, "/tmp/to", "", true), "does not fit its buffer of 1024 bytes");
}

TEST_F(CopyEngine, AJoinedDestinationPathOf1023BytesIsCopied) {
  const std::string folder = pathOfLength(1015);
  writeFile("/tmp/from/one.dat", "one");
  makeFolder(folder);
  EXPECT_EQ(copy("/tmp/from", folder, "", true), 1);
  EXPECT_EQ(readFile(folder + "/one.dat"), "one");
}

TEST_F(CopyEngine, AJoinedDestinationPathOf1024BytesEndsTheProcess) {
  const std::string folder = pathOfLength(1016);
  writeFile("/tmp/from/one.dat", "one");
  makeFolder(folder);
  EXPECT_DEATH(copy("/tmp/from", folder, "", true), "does not fit its buffer of 1024 bytes");
  EXPECT_TRUE(treeOf(folder).empty());
}

TEST_F(CopyEngine, APathThatWouldNotFitIsPassedOverWhereItsNameIsHidden) {
  const std::string folder = pathOfLength(1016);
  writeFile(folder + "/.hidden.dat", "one");
  EXPECT_EQ(copy(folder, "/tmp/to", "", true), 1);
}

// A folder for each level is listed at a time; 256 descriptors are what a system may give a process.
TEST_F(CopyEngine, ATreeOf180LevelsIsCopiedWith256Descriptors) {
  std::string way;
  for (int level = 0; level < 180; ++level) {
    way += "/f";
  }
  writeFile("/tmp/from" + way + "/one.dat", "one");
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit few{256, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
  const std::int32_t result = copy("/tmp/from", "/tmp/to", "", true);
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_EQ(result, 1);
  EXPECT_EQ(readFile("/tmp/to" + way + "/one.dat"), "one");
}

TEST_F(CopyEngine, APrivilegedCommandOf2047BytesIsRun) {
  const std::string dest = pathOfLength(2036);
  EXPECT_EQ(copy("/tmp/none", dest, "", true), 1);
  EXPECT_THAT(platform().calls(), testing::ElementsAre("system sudo mkdir " + dest));
}

TEST_F(CopyEngine, APrivilegedCommandOf2048BytesEndsTheProcess) {
  EXPECT_DEATH(copy("/tmp/none", pathOfLength(2037), "", true), "does not fit its buffer of 2048 bytes");
}

TEST_F(CopyEngine, ASignatureCommandOf2047BytesIsRun) {
  const std::string dest = pathOfLength(2047 - 13 - std::string(kLooseSignature).size());
  EXPECT_EQ(copy(kLooseSignature, dest, "", false), 1);
  EXPECT_THAT(platform().calls(),
              testing::ElementsAre("system cp  -a  \"" + std::string(kLooseSignature) + "\" \"" + dest + "\""));
}

TEST_F(CopyEngine, ASignatureCommandOf2048BytesEndsTheProcess) {
  EXPECT_DEATH(copy(kLooseSignature, pathOfLength(2048 - 13 - std::string(kLooseSignature).size()), "", false),
               "does not fit its buffer of 2048 bytes");
}

TEST_F(CopyEngine, ATailNameOf511BytesIsShownWhole) {
  makeFolder("/tmp/from");
  RecordingHost host;
  InstallDataPane pane(host);
  const std::string name(511, 'n');
  EXPECT_EQ(pane.copyDirectoryOrFile("/tmp/from", "/tmp/to", name.c_str(), true), 1);
  EXPECT_EQ(pane.gItemCurrentlyBeingInstalled.view(), name);
}

TEST_F(CopyEngine, ATailNameOf512BytesEndsTheProcess) {
  makeFolder("/tmp/from");
  EXPECT_DEATH(copy("/tmp/from", "/tmp/to", std::string(512, 'n'), true),
               "does not fit its buffer of 512 bytes");
}

}  // namespace

}  // namespace tavenhall::test

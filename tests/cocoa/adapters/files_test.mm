#include "tests/support/files.h"
#include "platform/system.h"
#include "tests/cocoa/stand-ins/file_manager.h"
#include "tests/cocoa/stand-ins/recorded_calls.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tavenhall {
namespace {

using test::exists;
using test::recordedCalls;
using test::writeFile;
using Calls = std::vector<std::string>;

constexpr const char* kPlugin = "/Library/Audio/Plug-Ins/VST/Tessaphon.vst";

mode_t permissionsOf(const std::string& path) {
  struct stat found {};
  EXPECT_EQ(stat(path.c_str(), &found), 0);
  return found.st_mode & 07777U;
}

TEST(Removal, IsDoneByTheDefaultManagerWithTheErrorStartingAsNone) {
  test::recordFileManager();
  writeFile(std::string(kPlugin) + "/Contents/plugin", "stale");

  const RemovalError removal = removeItem(kPlugin);

  EXPECT_FALSE(removal.failed);
  EXPECT_EQ(removal.localizedDescription, "");
  EXPECT_EQ(removal.localizedFailureReason, "");
  EXPECT_FALSE(exists(kPlugin));
  EXPECT_EQ(recordedCalls(),
            (Calls{std::string("the default manager: removeItemAtPath: ") + kPlugin + " error: none yet"}));
}

TEST(Removal, OfWhatIsNotThereFailsWithItsDescription) {
  const RemovalError removal = removeItem(kPlugin);

  EXPECT_TRUE(removal.failed);
  EXPECT_EQ(removal.localizedDescription, "No such file or directory");
  EXPECT_EQ(removal.localizedFailureReason, "");
}

TEST(Removal, LogsTheDescriptionAndTheReasonOfItsError) {
  test::recordFileManager();
  NSDictionary* texts =
      [NSDictionary dictionaryWithObjectsAndKeys:@"\u201CTessaphon\u201D couldn\u2019t be removed.",
                                                 NSLocalizedDescriptionKey, @"It is in use.",
                                                 NSLocalizedFailureReasonErrorKey, nil];
  test::failRemovals([NSError errorWithDomain:NSCocoaErrorDomain code:513 userInfo:texts]);

  const RemovalError removal = removeItem(kPlugin);

  EXPECT_TRUE(removal.failed);
  EXPECT_EQ(removal.localizedDescription, "\xE2\x80\x9CTessaphon\xE2\x80\x9D couldn\xE2\x80\x99t be removed.");
  EXPECT_EQ(removal.localizedFailureReason, "It is in use.");
}

TEST(Removal, RemovesALinkAndNotItsTarget) {
  writeFile("/Library/target/file", "kept");
  ASSERT_EQ(symlink("/Library/target", "/Library/link"), 0);

  EXPECT_FALSE(removeItem("/Library/link").failed);
  EXPECT_FALSE(exists("/Library/link"));
  EXPECT_TRUE(exists("/Library/target/file"));
}

TEST(Removal, APathThatIsNoUtf8IsEitherRemovedOrFails) {
  writeFile("/Library/\xE4", "stale");
  const RemovalError removal = removeItem("/Library/\xE4");
  EXPECT_EQ(removal.failed, exists("/Library/\xE4"));
}

TEST(Permissions, AreSetOnTheItemAloneByAManagerOfTheirOwn) {
  test::recordFileManager();
  writeFile("/Library/Audio/Plug-Ins/VST/inner", "");
  chmod("/Library/Audio/Plug-Ins/VST", 0700);
  chmod("/Library/Audio/Plug-Ins/VST/inner", 0600);

  setPosixPermissions("/Library/Audio/Plug-Ins/VST", 511);

  EXPECT_EQ(permissionsOf("/Library/Audio/Plug-Ins/VST"), 0777U);
  EXPECT_EQ(permissionsOf("/Library/Audio/Plug-Ins/VST/inner"), 0600U);
  EXPECT_EQ(recordedCalls(), (Calls{"a new manager: setAttributes: 777 among others ofItemAtPath: "
                                    "/Library/Audio/Plug-Ins/VST error: NULL"}));
}

TEST(Permissions, AMissingFileIsIgnored) {
  setPosixPermissions("/Library/nothing", 511);
  EXPECT_EQ(recordedCalls(), Calls{});
}

}  // namespace
}  // namespace tavenhall

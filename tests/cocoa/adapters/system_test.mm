#include "platform/system.h"
#include "tests/cocoa/stand-ins/aliases.h"
#include "tests/cocoa/stand-ins/power_assertions.h"
#include "tests/cocoa/stand-ins/recorded_calls.h"
#include "tests/support/files.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace tavenhall {
namespace {

using test::layAlias;
using test::recordedCalls;
using test::writeFile;
using Calls = std::vector<std::string>;

// ---- Aliases ----

TEST(Aliases, AreResolvedThroughTheirWholeChain) {
  writeFile("/Library/alias", "");
  layAlias("/Library/alias", "/Library/second");
  layAlias("/Library/second", "/Volumes/Store/TANVO");

  std::string target = "untouched";
  EXPECT_TRUE(resolveAlias("/Library/alias", target));

  EXPECT_EQ(target, "/Volumes/Store/TANVO");
  EXPECT_EQ(recordedCalls(),
            (Calls{"FSPathMakeRef /Library/alias", "FSResolveAliasFile /Library/alias, with chains",
                   "CFURLCreateFromFSRef default, /Volumes/Store/TANVO", "CFURLCopyFileSystemPath style 0",
                   "CFStringGetCString 1024, UTF-8", "CFRelease /Volumes/Store/TANVO",
                   "CFRelease /Volumes/Store/TANVO"}));
}

TEST(Aliases, WhatIsNoneIsLeftAsItIs) {
  writeFile("/Library/folder/file", "");
  std::string target = "untouched";

  EXPECT_FALSE(resolveAlias("/Library/folder", target));

  EXPECT_EQ(target, "untouched");
  EXPECT_EQ(recordedCalls(),
            (Calls{"FSPathMakeRef /Library/folder", "FSResolveAliasFile /Library/folder, with chains"}));
}

TEST(Aliases, AreNotLookedForWhereNothingLies) {
  std::string target = "untouched";
  EXPECT_FALSE(resolveAlias("/Library/nothing", target));
  EXPECT_EQ(target, "untouched");
  EXPECT_EQ(recordedCalls(), Calls{"FSPathMakeRef /Library/nothing"});
}

TEST(Aliases, ThatLeadNowhereAreLeftAsTheyAre) {
  writeFile("/Library/alias", "");
  layAlias("/Library/alias", "");
  std::string target = "untouched";
  EXPECT_FALSE(resolveAlias("/Library/alias", target));
  EXPECT_EQ(target, "untouched");
}

TEST(Aliases, ATargetThatIsTooLongLeavesThemAsTheyAreAndReleasesEverything) {
  writeFile("/Library/alias", "");
  const std::string longPath = "/Volumes/" + std::string(1024 - 9, 'x');
  layAlias("/Library/alias", longPath);
  std::string target = "untouched";

  EXPECT_FALSE(resolveAlias("/Library/alias", target));

  EXPECT_EQ(target, "untouched");
  ASSERT_EQ(recordedCalls().size(), 7U);
  EXPECT_EQ(recordedCalls()[5], "CFRelease " + longPath);
  EXPECT_EQ(recordedCalls()[6], "CFRelease " + longPath);
}

TEST(Aliases, ATargetThatJustFitsIsTaken) {
  writeFile("/Library/alias", "");
  const std::string longPath = "/Volumes/" + std::string(1023 - 9, 'x');
  layAlias("/Library/alias", longPath);
  std::string target;
  EXPECT_TRUE(resolveAlias("/Library/alias", target));
  EXPECT_EQ(target, longPath);
}

// ---- Power assertions ----

TEST(PowerAssertions, AreTakenByTypeLevelAndNameAndGivenBackByIdentifier) {
  std::uint32_t display = 0;
  std::uint32_t idle = 0;
  createPowerAssertion("NoDisplaySleepAssertion", 255, "Tavenhall installation in progress", display);
  createPowerAssertion("NoIdleSleepAssertion", 255, "Tavenhall installation in progress", idle);
  releasePowerAssertion(display);
  releasePowerAssertion(idle);

  EXPECT_EQ(
      recordedCalls(),
      (Calls{"IOPMAssertionCreateWithName NoDisplaySleepAssertion, 255, Tavenhall installation in progress",
             "IOPMAssertionCreateWithName NoIdleSleepAssertion, 255, Tavenhall installation in progress",
             "IOPMAssertionRelease 101", "IOPMAssertionRelease 102"}));
}

TEST(PowerAssertions, ThatAreNotGrantedHaveNoIdentifier) {
  test::grantPowerAssertions(false);
  std::uint32_t identifier = 7;
  createPowerAssertion("NoDisplaySleepAssertion", 255, "name", identifier);
  EXPECT_EQ(identifier, 0U);
}

// ---- Folders ----

TEST(SearchPaths, AreTheOnesOfTheUsersHome) {
  std::string path;
  EXPECT_TRUE(firstUserSearchPath(SearchPath::caches, path));
  EXPECT_EQ(path, "/Users/tester/Library/Caches");
  EXPECT_TRUE(firstUserSearchPath(SearchPath::applicationSupport, path));
  EXPECT_EQ(path, "/Users/tester/Library/Application Support");
}

TEST(SearchPaths, FollowTheHomeAndItsLetters) {
  setenv("HOME", "/Users/J\xC3\xBCrgen", 1);
  std::string path;
  EXPECT_TRUE(firstUserSearchPath(SearchPath::caches, path));
  EXPECT_EQ(path, "/Users/J\xC3\xBCrgen/Library/Caches");
}

}  // namespace
}  // namespace tavenhall

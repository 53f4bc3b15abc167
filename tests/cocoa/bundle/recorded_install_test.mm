#import "platform/cocoa/gnustep/installer_plugins.h"
#include "tests/cocoa/main_loop.h"
#include "tests/cocoa/stand-ins/aliases.h"
#import "tests/cocoa/stand-ins/controls.h"
#include "tests/cocoa/stand-ins/dialogs.h"
#include "tests/cocoa/stand-ins/file_manager.h"
#include "tests/cocoa/stand-ins/recorded_calls.h"
#include "tests/cocoa/stand-ins/thread_starts.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

// Whole installs by the built bundle, with every call of the platform recorded.

using tavenhall::test::recordCall;

@interface RecordingInstaller : NSObject <SectionInstaller>
@end

@implementation RecordingInstaller
- (void)pane:(InstallerPane*)pane setNextEnabled:(BOOL)flag {
  recordCall(flag ? "setNextEnabled: YES" : "setNextEnabled: NO");
}

- (void)pane:(InstallerPane*)pane setPreviousEnabled:(BOOL)flag {
  recordCall(flag ? "setPreviousEnabled: YES" : "setPreviousEnabled: NO");
}

- (BOOL)leavePane:(InstallerPane*)pane direction:(InstallerSectionDirection)direction {
  return [pane shouldExitPane:direction];
}
@end

namespace tavenhall::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using Calls = std::vector<std::string>;

// Takes the sheets out of the calls.
Calls takeSheets(Calls& calls) {
  const auto isSheet = [](const std::string& call) {
    return call.starts_with("NSBeginInformationalAlertSheet");
  };
  Calls sheets;
  std::ranges::copy_if(calls, std::back_inserter(sheets), isSheet);
  std::erase_if(calls, isSheet);
  return sheets;
}

class RecordedInstall : public testing::Test {
 protected:
  void SetUp() override {
    recordAlerts([this] { return answer_(); });
    recordAnimations();
    recordFileManager();
    recordThreadStarts();
    makeFolder("/Users/tester/Library/Caches");
  }

  // Makes the bundle's page, with controls that record.
  void makePane() {
    NSBundle* bundle = [NSBundle bundleWithPath:@TAVINSTALL_BINARY_DIR "/InstallDataPane.bundle"];
    section_ = [[InstallerSection alloc] initWithBundle:bundle installer:[[RecordingInstaller alloc] init]];
    pane_ = [[[bundle classNamed:@"InstallDataPane"] alloc] init];
    [section_ setFirstPane:pane_];
    for (NSString *outlet in [NSArray arrayWithObjects:@"instructions", @"status", @"progressIndicator", nil]) {
      [pane_ setValue:[RecordingControl controlNamed:outlet] forKey:outlet];
    }
  }

  void installToTheEnd() {
    [pane_ didEnterPane:InstallerDirectionForward];
    ASSERT_TRUE(runMainLoopUntil([] {
      const auto log = logMessages();
      return !log.empty() && log.back().starts_with("Installation complete");
    }));
  }

  NSAutoreleasePool* pool_ = [[NSAutoreleasePool alloc] init];
  std::function<long()> answer_ = [] { return 1000L; };
  InstallerSection* section_ = nil;
  InstallerPane* pane_ = nil;
};

TEST_F(RecordedInstall, AnUpdateCallsThePlatformInThisOrder) {
  layTree(
      kSet,
      {textFile(".InstallationAttributes.dat",
                "Mode = TavenhallUpdater\nRelativePath = Part 1\nRelativePath2 = Part 2\n"
                "InstallingData = Keys & pads go to %s & nowhere else.\nInstalledData = 100 % in %s.\n"
                "TotalSizeMillionsBytes = 1\nComponent1SizeMillionsBytes = 2\n"),
       textFile("Installer.pkg", ""), file("Library/Audio/Plug-Ins/VST/Tessaphon.vst/Contents/plugin", 1024),
       file("Part 1/DOVA/engine.db", 10240), link("Part 1/TANVO/lost.db", "nowhere"),
       folder("Part 2/TANVO/Tessaphon")});
  setPackage(std::string(kSet) + "/Installer.pkg");
  layTree("/Library", {file("Audio/Plug-Ins/VST/Tessaphon.vst/stale", 10)});
  // The user's data folder is a link to an alias.
  layTree("/Volumes/Store", {textFile("TANVO alias", ""), folder("TANVO")});
  layTree("/Users/tester/Library/Application Support/Tavenhall",
          {folder("DOVA"), link("TANVO", "/Volumes/Store/TANVO alias")});
  layAlias("/Volumes/Store/TANVO alias", "/Volumes/Store/TANVO");
  makePane();

  installToTheEnd();
  Calls calls = recordedCalls();

  // A sheet is begun when the run loop comes to it.
  const Calls sheets = takeSheets(calls);
  EXPECT_THAT(
      sheets,
      ElementsAre("NSBeginInformationalAlertSheet title nil, buttons OK nil nil, window instructions's, "
                  "delegate InstallDataPane, selectors NULL NULL, context NULL, "
                  "message Failed to open input file."));
  EXPECT_THAT(
      calls,
      ElementsAreArray(
          {"setPreviousEnabled: NO",
           "setNextEnabled: NO",
           "FSPathMakeRef /Volumes/Store/TANVO alias",
           "FSResolveAliasFile /Volumes/Store/TANVO alias, with chains",
           "CFURLCreateFromFSRef default, /Volumes/Store/TANVO",
           "CFURLCopyFileSystemPath style 0",
           "CFStringGetCString 1024, UTF-8",
           "CFRelease /Volumes/Store/TANVO",
           "CFRelease /Volumes/Store/TANVO",
           "instructions setTitleWithMnemonic: Keys & pads go to /Volumes/Store/TANVO & nowhere else.",
           "IOPMAssertionCreateWithName NoDisplaySleepAssertion, 255, Tavenhall installation in progress",
           "IOPMAssertionCreateWithName NoIdleSleepAssertion, 255, Tavenhall installation in progress",
           "NSAlert init",
           "NSAlert addButtonWithTitle: Continue",
           "NSAlert setMessageText: Detected Installation Type",
           "NSAlert setInformativeText: Lite installation detected for Tessaphon. Performing a Lite data "
           "update.",
           "NSAlert setAlertStyle: 1",
           "NSAlert runModal",
           "NSThread initWithTarget: InstallDataPane selector: doEntireInstall object: nil",
           "NSThread start, stackSize: 8388608",
           "progressIndicator setDoubleValue: 0",
           "progressIndicator displayIfNeeded",
           "a new manager: setAttributes: 777 among others ofItemAtPath: /Library/Audio/Plug-Ins/VST error: "
           "NULL",
           "the default manager: removeItemAtPath: /Library//Audio/Plug-Ins/VST/Tessaphon.vst error: none yet",
           "progressIndicator maxValue",
           "beginGrouping",
           "setDuration: 0",
           "progressIndicator setDoubleValue: 1",
           "progressIndicator displayIfNeeded",
           "endGrouping",
           "progressIndicator doubleValue",
           "progressIndicator maxValue",
           "status setTitleWithMnemonic: Installing... Contents",
           "status setNeedsDisplay",
           "FSPathMakeRef /Volumes/Store/TANVO alias",
           "FSResolveAliasFile /Volumes/Store/TANVO alias, with chains",
           "CFURLCreateFromFSRef default, /Volumes/Store/TANVO",
           "CFURLCopyFileSystemPath style 0",
           "CFStringGetCString 1024, UTF-8",
           "CFRelease /Volumes/Store/TANVO",
           "CFRelease /Volumes/Store/TANVO",
           "status setTitleWithMnemonic:  ",
           "instructions setTitleWithMnemonic: Keys & pads go to /Volumes/Store/TANVO & nowhere else.",
           "beginGrouping",
           "setDuration: 0",
           "progressIndicator setMinValue: 0",
           "progressIndicator setMaxValue: 1953.12",
           "endGrouping",
           "NSThread initWithTarget: InstallDataPane selector: copySingleVolume object: nil",
           "NSThread start, stackSize: 8388608",
           "progressIndicator maxValue",
           "beginGrouping",
           "setDuration: 0",
           "progressIndicator setDoubleValue: 1",
           "progressIndicator displayIfNeeded",
           "endGrouping",
           "progressIndicator doubleValue",
           "progressIndicator maxValue",
           "status setTitleWithMnemonic: Installing... TANVO",
           "status setNeedsDisplay",
           "status setTitleWithMnemonic:  ",
           "FSPathMakeRef /Users/tester/Library/Application Support/Tavenhall/DOVA",
           "FSResolveAliasFile /Users/tester/Library/Application Support/Tavenhall/DOVA, with chains",
           "status setTitleWithMnemonic:  ",
           "instructions setTitleWithMnemonic: Keys & pads go to /Users/tester/Library/Application "
           "Support/Tavenhall/DOVA & nowhere else.",
           "beginGrouping",
           "setDuration: 0",
           "progressIndicator setMinValue: 0",
           "progressIndicator setMaxValue: 1953.12",
           "endGrouping",
           "NSThread initWithTarget: InstallDataPane selector: copySingleVolume object: nil",
           "NSThread start, stackSize: 8388608",
           "progressIndicator maxValue",
           "beginGrouping",
           "setDuration: 0",
           "progressIndicator setDoubleValue: 11",
           "progressIndicator displayIfNeeded",
           "endGrouping",
           "progressIndicator doubleValue",
           "progressIndicator maxValue",
           "status setTitleWithMnemonic: Installing... DOVA",
           "status setNeedsDisplay",
           "status setTitleWithMnemonic:  ",
           "beginGrouping",
           "setDuration: 0",
           "progressIndicator setMinValue: 0",
           "progressIndicator setMaxValue: 1",
           "progressIndicator setDoubleValue: 1",
           "progressIndicator displayIfNeeded",
           "endGrouping",
           "setPreviousEnabled: NO",
           "setNextEnabled: YES",
           "instructions setTitleWithMnemonic: 100 % in /Users/tester/Library/Application "
           "Support/Tavenhall/DOVA.",
           "setNextEnabled: YES",
           "IOPMAssertionRelease 101",
           "IOPMAssertionRelease 102",
           "setNextEnabled: YES",
           "setPreviousEnabled: NO"}));
}

TEST_F(RecordedInstall, TheLogHasTheReasonWhyAnOldPluginWasNotRemoved) {
  layTree(kSet,
          {textFile(".InstallationAttributes.dat", "Mode = TavenhallUpdater\n"), textFile("Installer.pkg", ""),
           file("Library/Audio/Plug-Ins/VST/Tessaphon.vst/Contents/plugin", 1024)});
  setPackage(std::string(kSet) + "/Installer.pkg");
  layTree("/Library", {file("Audio/Plug-Ins/VST/Tessaphon.vst/stale", 10)});
  makeFolder("/Users/tester/Library/Application Support/Tavenhall/TANVO");
  NSDictionary* texts = [NSDictionary
      dictionaryWithObjectsAndKeys:@"\u201CTessaphon.vst\u201D is in use.", NSLocalizedDescriptionKey,
                                   @"Quit it & try again.", NSLocalizedFailureReasonErrorKey, nil];
  failRemovals([NSError errorWithDomain:NSCocoaErrorDomain code:513 userInfo:texts]);
  makePane();

  installToTheEnd();

  const Calls log = logMessages();
  const auto unable =
      std::ranges::find(log, "Unable to delete existing p/w/a at /Library//Audio/Plug-Ins/VST/Tessaphon.vst");
  ASSERT_NE(unable, log.end());
  EXPECT_EQ(*std::next(unable), " ...  \xE2\x80\x9CTessaphon.vst\xE2\x80\x9D is in use. Quit it & try again.");
}

TEST_F(RecordedInstall, WithoutAThreadShowsASheetAndReleasesTheAssertions) {
  setAttributes("Mode = DataUpdater\n");
  makeFolder("/Users/tester/Library/Application Support/Tavenhall/TANVO");
  makePane();
  setThreadStarts(ThreadStarts::refused);

  [pane_ didEnterPane:InstallerDirectionForward];

  ASSERT_TRUE(runMainLoopUntil([] { return recordedCalls().back().starts_with("NSBegin"); }));
  EXPECT_THAT(recordedCalls(), Contains("IOPMAssertionRelease 101"));
  EXPECT_THAT(recordedCalls(), Contains("IOPMAssertionRelease 102"));
  EXPECT_TRUE(
      recordedCalls().back().ends_with("message The installation of the Tessaphon data has not finished."));
}

TEST_F(RecordedInstall, TwoSheetsOfTheMainThreadComeInOrder) {
  setAttributes("Mode = DataUpdater\n");
  makePane();

  [pane_ didEnterPane:InstallerDirectionForward];
  EXPECT_FALSE([pane_ shouldExitPane:InstallerDirectionForward]);

  Calls sheets;
  ASSERT_TRUE(runMainLoopUntil([&sheets] {
    Calls calls = recordedCalls();
    sheets = takeSheets(calls);
    return sheets.size() == 2;
  }));
  EXPECT_TRUE(
      sheets[0].ends_with("message The folder for the Tessaphon data was not found. Please install Tessaphon "
                          "first, then run this installer again."));
  EXPECT_TRUE(sheets[1].ends_with("message The installation of the Tessaphon data has not finished."));
}

}  // namespace
}  // namespace tavenhall::test

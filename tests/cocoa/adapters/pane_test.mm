#import <InstallerPlugins/InstallerPlugins.h>
#include <gtest/gtest.h>

// The pane class that plays the installer's.
namespace tavenhall {
namespace {

// A layout that was made from the public template connects it.
TEST(Pane, HasTheOutletParentSection) {
  @autoreleasepool {
    InstallerSection* section = [[[InstallerSection alloc] init] autorelease];
    InstallerPane* pane = [[[InstallerPane alloc] init] autorelease];
    [pane setValue:section forKey:@"parentSection"];
    EXPECT_EQ([pane section], section);
  }
}

}  // namespace
}  // namespace tavenhall

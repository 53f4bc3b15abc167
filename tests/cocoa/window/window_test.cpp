#include "tests/cocoa/window/virtual_display.h"
#include "tests/install/case_files.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

// The page in a window: the bundle's layout, real controls, real alerts.
namespace tavenhall::test {
namespace {

class Window : public testing::Test {
 protected:
  static JsonInstaller::CommandLine playedInstaller() {
    return {{"unshare", "--pid", "--mount-proc", "--fork", "--kill-child",
             TAVINSTALL_BINARY_DIR "/bin/played_installer"}};
  }
  [[nodiscard]] ChildProgram::Environment environment() const {
    return {{"DISPLAY", display_.name()}, {"BUNDLE", TAVINSTALL_BINARY_DIR "/InstallDataPane.bundle"}};
  }

  VirtualDisplay display_;
};

TEST_F(Window, AnInstallFromTwoDiscsIsTheSameAsInTheTerminal) {
  layPackage(
      "Mode = InstallFromVolumes\n"
      "InstallDataTitle = Installing Tessaphon Data\n"
      "InstallingData = Installing to:\\n\\n%s\\n\\nPlease wait.\n"
      "InstalledData = All is in %s.\n"
      "NumberOfVolumes = 2\n"
      "TotalSizeMillionsBytes = 3\n");
  setPackage(kPackage);
  makeFolder("/Users/tester/Library/Caches");
  layTree(kDiscA, {file("TANVO/Settings/a.db", 30000), file("TANVO/Tessaphon/Patches/one.prt", 500),
                   file("TANVO/Tessaphon/Patches/two.prt", 10241), file("TANVO/Tessaphon/big.db", 1100000)});

  JsonInstaller installer(playedInstaller(), environment());
  installer.send({kTitle, kEnter, kWait, kForward});
  installer.await("alert");
  installer.send(kFirstButton);  // without a disc
  installer.await("alert");
  layTree(kDiscB, {file("TANVO/Voices/v.db", 20480)});
  installer.send(kFirstButton);

  EXPECT_EQ(installer.finish(), 0) << installer.program().standardError();
  expectCase("two_discs", installer);
}

}  // namespace
}  // namespace tavenhall::test

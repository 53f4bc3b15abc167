#include "tests/cocoa/window/font_retry.h"
#include "tests/cocoa/window/virtual_display.h"
#include "tests/install/case_files.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>

// The page in a window: the bundle's layout, real controls, real alerts and sheets.
namespace tavenhall::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kNoFontsFile = "/tmp/no-fonts.conf";

class Window : public testing::Test {
 protected:
  // In a process namespace of its own, so that no daemon of AppKit's outlives it.
  static std::vector<std::string> commandLine(const std::string& program) {
    return {"unshare", "--pid",        "--mount-proc",
            "--fork",  "--kill-child", TAVINSTALL_BINARY_DIR "/bin/" + program};
  }

  ChildProgram::Environment environment() {
    ChildProgram::Environment environment{{"DISPLAY", display_.name()},
                                          {"BUNDLE", TAVINSTALL_BINARY_DIR "/InstallDataPane.bundle"}};
    if (startsWithoutFonts_ > 0) {
      --startsWithoutFonts_;
      environment["FONTCONFIG_FILE"] = kNoFontsFile;
    }
    return environment;
  }

  // Starts it and asks for the title.
  std::unique_ptr<JsonInstaller> startInstaller() {
    return startWithFonts([this] {
      auto installer = std::make_unique<JsonInstaller>(
          JsonInstaller::CommandLine{commandLine("played_installer")}, environment());
      try {
        installer->send(kTitle);
        installer->await("title");
      } catch (const std::exception&) {
        if (const std::string error = installer->program().standardError(); NoFont::isReportedIn(error)) {
          throw NoFont(error);
        }
        throw;
      }
      return installer;
    });
  }

  Outcome run(const std::string& program) {
    return startWithFonts([&] {
      Outcome outcome = runThrough(commandLine(program), environment());
      if (outcome.status != 0 && NoFont::isReportedIn(outcome.error)) {
        throw NoFont(outcome.error);
      }
      return outcome;
    });
  }

  // So many starts from now on find no fonts.
  void hideFonts(int starts) {
    writeFile(kNoFontsFile, "<fontconfig></fontconfig>\n");
    startsWithoutFonts_ = starts;
  }

 private:
  VirtualDisplay display_;
  int startsWithoutFonts_ = 0;
};

// What is written on standard output while this is there has one retry in it.
class OneRetry {
 public:
  OneRetry() { testing::internal::CaptureStdout(); }
  ~OneRetry() {
    const std::string said = testing::internal::GetCapturedStdout();
    EXPECT_THAT(said, StartsWith(kRetry));
    EXPECT_EQ(said.rfind(kRetry), 0U) << "more than one";
  }

 private:
  static constexpr const char* kRetry = "RETRY: GNUstep had no font at its start:\n";
};

std::vector<std::string> sheetsOf(const JsonInstaller& installer) {
  std::vector<std::string> sheets;
  std::ranges::copy_if(installer.events(), std::back_inserter(sheets),
                       [](const std::string& event) { return event.starts_with(R"({"event":"sheet")"); });
  return sheets;
}

TEST_F(Window, TheLayoutLoadsWithEveryOutletConnected) {
  const Outcome report = run("layout_report");

  EXPECT_EQ(report.status, 0) << report.error;
  EXPECT_EQ(report.output,
            "first pane: InstallDataPane, of its section: yes\n"
            "contentView: NSView, 418x330, inside the page: no, hidden: no\n"
            "instructions: NSTextField, 382x206, inside the page: yes, hidden: no\n"
            "instructions: editable: no, delegate: the pane\n"
            "status: NSTextField, 382x17, inside the page: yes, hidden: no\n"
            "status: editable: no, delegate: the pane\n"
            "uiButton: NSButton, 114x32, inside the page: yes, hidden: yes\n"
            "uiButton: updateText: to the pane\n"
            "progressIndicator: NSProgressIndicator, 378x20, inside the page: yes, hidden: no\n"
            "progressIndicator: 0 of 0 to 100, indeterminate: no, shown when stopped: yes\n");
}

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

  const auto installer = startInstaller();
  installer->send({kEnter, kWait, kForward});
  installer->await("alert");      // the install thread waits for its answer
  installer->send(kFirstButton);  // without a disc
  installer->await("alert");
  layTree(kDiscB, {file("TANVO/Voices/v.db", 20480)});
  installer->send(kFirstButton);

  EXPECT_EQ(installer->finish(), 0) << installer->program().standardError();
  expectCase("two_discs", *installer, {.isWithoutCopyState = true});
}

// The sheet stays up until the install is done, and the next one waits for its end.
TEST_F(Window, ASheetDoesNotStopTheCopy) {
  layTree(kSet, {textFile(".InstallationAttributes.dat",
                          "Mode = DataUpdater\nRelativePath = .\nTotalSizeMillionsBytes = 1\n"),
                 textFile("Installer.pkg", ""), link("TANVO/a.db", "nowhere"), file("TANVO/b.db", 1024),
                 link("TANVO/c.db", "nowhere"), file("TANVO/d.db", 2000000)});
  layTree(kTanvo, {});
  setPackage(kPackage);
  makeFolder("/Users/tester/Library/Caches");
  const std::string sheet =
      R"({"event":"sheet","button":"OK","message":"Failed to open input file.","file":""})";

  const auto installer = startInstaller();
  installer->send({kEnter, kWait});
  installer->await("idle");
  EXPECT_THAT(sheetsOf(*installer), ElementsAre(sheet));
  EXPECT_EQ(readFile(std::string(kTanvo) + "/d.db"), readFile(std::string(kSet) + "/TANVO/d.db"));
  EXPECT_THAT(logMessages(), Contains("Installation complete\n"
                                      "*********************************************************\n"));

  installer->send(kFirstButton);
  EXPECT_EQ(installer->await("sheet"), sheet);
  installer->send({kFirstButton, kForward});
  EXPECT_THAT(installer->await("sheet"), HasSubstr("The installation of the Tessaphon data has not finished."));
  EXPECT_EQ(installer->finish(), 0) << installer->program().standardError();
}

TEST_F(Window, ASecondDispatchIsServedWhileAnAlertIsUp) {
  const Outcome outcome = run("dispatches");

  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_EQ(outcome.output,
            "the alert begins\n"
            "the second dispatch is served while the alert is up\n"
            "the alert was answered: 1000\n"
            "both threads have ended\n");
}

TEST_F(Window, RepeatsAndReportsAStartWithoutFonts) {
  hideFonts(1);
  const OneRetry retry;
  const Outcome outcome = run("dispatches");

  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_THAT(outcome.output, StartsWith("the alert begins\n"));
}

TEST_F(Window, RepeatsAndReportsAnInstallersStartWithoutFonts) {
  hideFonts(1);
  const OneRetry retry;
  const auto installer = startInstaller();

  EXPECT_THAT(installer->events(), ElementsAre(HasSubstr(R"({"event":"title")")));
}

TEST_F(Window, ASecondStartThatFoundNoFontsFails) {
  hideFonts(2);
  const OneRetry retry;
  EXPECT_THROW(run("dispatches"), NoFont);
}

TEST_F(Window, AnInstallersSecondStartThatFoundNoFontsFails) {
  hideFonts(2);
  const OneRetry retry;
  EXPECT_THROW(startInstaller(), NoFont);
}

}  // namespace
}  // namespace tavenhall::test

// Whole installs, by the real page, in a terminal.
#include "tests/support/files.h"
#include "tests/terminal/in_utf8.h"
#include "tests/terminal/kept_screens.h"
#include "tests/terminal/page_in_terminal.h"
#include "tests/terminal/tmux_terminal.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <string>

namespace tavenhall::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using TerminalInstall = InUtf8;

void swapDiscs() {
  makeFolder("/Volumes/.out");
  std::filesystem::rename(kFirstDisc, "/Volumes/.out/A");
  std::filesystem::rename("/Volumes/.discs/Tessaphon B", kSecondDisc);
}

TEST_F(TerminalInstall, TwoDiscsAreInstalledWithASwapBetweenThem) {
  layTwoDiscSet();
  TmuxTerminal terminal(80, 24, runCommand());
  terminal.waitFor("Press Continue to begin.");
  expectScreen(terminal, "introduction");
  terminal.press({"Enter"});

  terminal.waitFor("Please insert Tessaphon B");
  expectScreen(terminal, "second-disc");
  swapDiscs();
  terminal.press({"Enter"});

  terminal.waitFor("[ Continue ]");
  expectScreen(terminal, "installed");
  terminal.press({"c"});
  terminal.waitFor("The installation was successful.");
  expectScreen(terminal, "successful");

  terminal.press({"Enter"});
  EXPECT_THAT(terminal.waitFor("[ended with"), HasSubstr("Installed 3.0 MB in "));
  EXPECT_THAT(terminal.screen(), HasSubstr("[ended with 0]"));
  EXPECT_EQ(terminal.ask("#{alternate_on} #{cursor_flag} #{mouse_any_flag}"), "0 1 0");
  EXPECT_THAT(treeOf(kTanvo),
              ElementsAre("Tessaphon/", "Tessaphon/Keyboards/", "Tessaphon/Keyboards/001.db",
                          "Tessaphon/Keyboards/002.db", "Tessaphon/Keyboards/003.db", "Tessaphon/Voices/",
                          "Tessaphon/Voices/001.db", "Tessaphon/Voices/002.db", "Tessaphon/Voices/003.db"));
  EXPECT_EQ(readFile(std::string(kTanvo) + "/Tessaphon/Voices/002.db"),
            readFile(std::string(kSecondDisc) + "/TANVO/Tessaphon/Voices/002.db"));
}

// One disc alone, which holds three files.
void layOneDiscSet() {
  layTwoDiscSet();
  setAttributes(
      "Mode = InstallFromVolumes\nInstallDataTitle = Installing Tessaphon Data\nTotalSizeMillionsBytes = 2\n");
}

TEST_F(TerminalInstall, TheWindowsTitleTellsWhatAPersonIsNeededFor) {
  const auto command = runScript("instructions Now installing.\nalert Next disc|Please insert B|OK\n");
  for (const bool isQuiet : {false, true}) {
    auto arguments = command;
    if (isQuiet) {
      arguments.emplace_back("--no-notify");
    }
    TmuxTerminal terminal(80, 24, arguments);
    const std::string before = terminal.ask("#{pane_title}");
    terminal.waitFor("Press Continue to begin.");
    terminal.press({"Enter"});
    terminal.waitFor("Please insert B");
    EXPECT_EQ(terminal.ask("#{pane_title}"), isQuiet ? before : "Please insert B - Tessaphon");
    terminal.press({"Enter"});
    terminal.waitFor("The installation failed.");  // it has copied nothing
    EXPECT_EQ(terminal.ask("#{pane_title}"),
              isQuiet ? before : "The installation is not complete. - Tessaphon");
  }
}

TEST_F(TerminalInstall, AFailureIsASheetAndIsNamedOnTheLastPage) {
  layOneDiscSet();
  makeFolder(std::string(kTanvo) + "/Tessaphon/Keyboards/002.db");
  TmuxTerminal terminal(80, 24, runCommand());
  terminal.waitFor("Press Continue to begin.");
  terminal.press({"Enter"});
  terminal.waitFor("Failed to open output file.");
  terminal.press({"Enter"});
  terminal.waitFor("[ Continue ]");
  expectScreen(terminal, "installed-with-failure");
  terminal.press({"Enter"});

  // The copy gave 0, so the page refuses to be left, and says so.
  terminal.waitFor("has not finished.");
  terminal.press({"Enter"});
  terminal.waitFor("The installation is not complete.");
  expectScreen(terminal, "not-complete");
  terminal.press({"Enter"});
  EXPECT_THAT(terminal.waitFor("[ended with"), HasSubstr("[ended with 1]"));
}

TEST_F(TerminalInstall, ReportsAMissingDataFolderOnTheLastPage) {
  layOneDiscSet();
  std::filesystem::remove_all(kTanvo);
  TmuxTerminal terminal(80, 24, runCommand());
  terminal.waitFor("Press Continue to begin.");
  expectScreen(terminal, "introduction-without-folder");
  terminal.press({"Enter"});
  terminal.waitFor("install Tessaphon first");
  terminal.press({"Enter"});
  terminal.waitFor("The installation failed.");
  terminal.press({"Enter"});
  EXPECT_THAT(terminal.waitFor("[ended with"), HasSubstr("[ended with 1]"));
}

TEST_F(TerminalInstall, TooLittleRoomIsAWarningWithAChoice) {
  layTwoDiscSet();
  setAttributes("Mode = InstallFromVolumes\nTotalSizeMillionsBytes = 900000000\n");
  TmuxTerminal terminal(80, 24, runCommand());
  EXPECT_THAT(terminal.waitFor("Press Continue to begin."), HasSubstr("There may not be enough space."));
  terminal.press({"Enter"});
  terminal.waitFor("[ Install Anyway ]");
  terminal.press({"Enter"});
  terminal.waitUntilGone("[ Install Anyway ]");
  terminal.waitFor("Welcome to the Tessaphon installer");
  EXPECT_FALSE(exists(std::string(kTanvo) + "/Tessaphon"));
  terminal.press({"Enter"});
  terminal.waitFor("[ Install Anyway ]");
  terminal.press({"Right", "Enter"});
  terminal.waitFor("100 %");
  EXPECT_TRUE(exists(std::string(kTanvo) + "/Tessaphon/Keyboards/003.db"));
}

}  // namespace
}  // namespace tavenhall::test

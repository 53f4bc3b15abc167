// What the page shows, and how it is worked, in a terminal.
#include "tests/support/files.h"
#include "tests/terminal/in_utf8.h"
#include "tests/terminal/kept_screens.h"
#include "tests/terminal/page_in_terminal.h"
#include "tests/terminal/tmux_terminal.h"

#include <functional>
#include <gmock/gmock.h>
#include <string>

namespace tavenhall::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

using TerminalPageTest = InUtf8;

// A copy that stands still at 43 %; "/tmp/go" lets it end well.
constexpr const char* kCopy =
    "thread\n"
    "instructions Now installing the Tessaphon library to:\\n\\n/Users/tester/Library/Application Support/"
    "Tavenhall/TANVO\\n\\nPlease have both discs at hand.\n"
    "max 1953125\n"
    "value 840000\n"
    "status Installing... Keyboards\n";
constexpr const char* kEnd =
    "wait /tmp/go\n"
    "max 1\n"
    "value 1\n"
    "status  \n"
    "ready 1\n"
    "next 1\n";

// Enters the page of that script, and waits for a text on it.
void enter(TmuxTerminal& terminal, const std::string& text) {
  terminal.waitFor("Press Continue to begin.");
  terminal.press({"Enter"});
  terminal.waitFor(text);
}

TEST_F(TerminalPageTest, ShowsASheetWithoutStoppingTheCopy) {
  TmuxTerminal terminal(80, 24,
                        runScript(std::string(kCopy) +
                                  "sheet Failed to open input file.\nwait /tmp/more\n"
                                  "value 1250000\n" +
                                  kEnd));
  enter(terminal, "Failed to open input file.");
  expectScreen(terminal, "sheet-during-copy");
  let("more");
  EXPECT_THAT(terminal.waitFor("64 %"), HasSubstr("Failed to open input file."));
  terminal.press({"Enter"});
  terminal.waitUntilGone("Failed to open input file.");
}

TEST_F(TerminalPageTest, FiftyThousandFailuresAreOneSheetThatGrows) {
  TmuxTerminal terminal(80, 24,
                        runScript(std::string(kCopy) + "sheets 50000 Failed to open input file.\n" + kEnd));
  enter(terminal, "50 000 problems");
  expectScreen(terminal, "fifty-thousand-failures");
  terminal.press({"Enter"});
  terminal.waitUntilGone("problems");
  terminal.waitFor("43 %");
}

constexpr const char* kQuestion =
    "alert Ready for next volume|Insert Northfield Outrider disc. Press Skip if you do not have this "
    "disc.|OK|Skip\n";

void expectAnswers(const std::string& answers) {
  EXPECT_TRUE(comesTrue([&answers] {
    return exists("/tmp/page-answers") && readFile("/tmp/page-answers") == answers;
  })) << "never "
      << answers;
}

TEST_F(TerminalPageTest, AnAlertWithTwoButtonsIsAnsweredByTabAndEnter) {
  TmuxTerminal terminal(80, 24, runScript(std::string(kCopy) + kQuestion + kEnd));
  enter(terminal, "[ Skip ]");
  expectScreen(terminal, "two-button-alert");
  terminal.press({"Tab", "Enter"});
  terminal.waitUntilGone("[ Skip ]");
  expectAnswers("1001\n");
}

TEST_F(TerminalPageTest, AnAlertIsAnsweredByItsHotKeyAndByArrows) {
  TmuxTerminal terminal(80, 24,
                        runScript(std::string(kCopy) + kQuestion + "wait /tmp/more\n" + kQuestion + kEnd));
  enter(terminal, "[ Skip ]");
  terminal.press({"s"});
  terminal.waitUntilGone("[ Skip ]");
  let("more");
  terminal.waitFor("[ Skip ]");
  terminal.press({"Right", "Left", "Enter"});
  terminal.waitUntilGone("[ Skip ]");
  expectAnswers("1001\n1000\n");
}

// Begins the install and answers its question, each by a button.
void expectSkippedByClicks(const std::function<void(TmuxTerminal&, TmuxTerminal::Place)>& click) {
  TmuxTerminal terminal(80, 24, runScript(std::string(kCopy) + kQuestion + kEnd));
  terminal.waitFor("Press Continue to begin.");
  click(terminal, terminal.find("[ Continue ]"));
  terminal.waitFor("[ Skip ]");
  click(terminal, terminal.find("[ Skip ]"));
  terminal.waitUntilGone("[ Skip ]");
  expectAnswers("1001\n");
}

TEST_F(TerminalPageTest, ButtonsAreClicked) {
  expectSkippedByClicks(
      [](TmuxTerminal& terminal, auto button) { terminal.click(button.column + 3, button.row); });
}

TEST_F(TerminalPageTest, AClickCountsAlsoWhereAllOfItComesAtOnce) {
  expectSkippedByClicks([](TmuxTerminal& terminal, auto button) { terminal.clickAtOnce({button}); });
}

TEST_F(TerminalPageTest, SeveralClicksAtOnceCountOneByOne) {
  expectSkippedByClicks([](TmuxTerminal& terminal, auto button) {
    terminal.clickAtOnce({{0, 0}, button, button, {0, 0}});
  });
}

TEST_F(TerminalPageTest, EscapeClosesASheet) {
  TmuxTerminal terminal(80, 24, runScript(std::string(kCopy) + "sheet Failed to copy file.\n" + kEnd));
  enter(terminal, "Failed to copy file.");
  terminal.press({"Escape"});
  terminal.waitUntilGone("Failed to copy file.");
  EXPECT_THAT(terminal.screen(), Not(HasSubstr("Leave the installer?")));
}

TEST_F(TerminalPageTest, TheWindowMayBeResizedDuringTheCopy) {
  TmuxTerminal terminal(80, 24, runScript(std::string(kCopy) + kEnd));
  enter(terminal, "43 %");
  expectScreen(terminal, "copy-80x24");
  terminal.resize(120, 40);
  terminal.waitFor("Tavenhall/TANVO\n");
  expectScreen(terminal, "copy-120x40");
  terminal.resize(60, 20);
  expectScreen(terminal, "copy-60x20");
  terminal.resize(50, 10);
  terminal.waitFor("Make this window larger (60x20).");
  terminal.resize(80, 24);
  expectScreen(terminal, "copy-80x24");
}

TEST_F(TerminalPageTest, AnySizeIsOutlivedAlsoManyInARow) {
  TmuxTerminal terminal(80, 24, runScript(std::string(kCopy) + "sheet Failed to copy file.\n" + kEnd));
  enter(terminal, "Failed to copy file.");
  for (int i = 0; i < 40; ++i) {
    terminal.resize(1 + i * 37 % 140, 1 + i * 23 % 50);
  }
  terminal.resize(80, 24);
  terminal.press({"Enter"});
  expectScreen(terminal, "copy-80x24");
}

TEST_F(TerminalPageTest, AWindowAboveThePageIsResizedWithIt) {
  TmuxTerminal terminal(120, 40, runScript(std::string(kCopy) + kQuestion + kEnd));
  enter(terminal, "[ Skip ]");
  expectScreen(terminal, "two-button-alert-120x40");
  terminal.resize(60, 20);
  expectScreen(terminal, "two-button-alert-60x20");
}

TEST_F(TerminalPageTest, WithColoursThePageIsColoured) {
  TmuxTerminal terminal(80, 24, runScript(std::string(kCopy) + kEnd), {{"TERM", "tmux-256color"}});
  enter(terminal, "43 %");
  terminal.waitForColoured("\033[38;5;32m");
}

TEST_F(TerminalPageTest, WithEightColoursThoseAreUsed) {
  TmuxTerminal terminal(80, 24, runScript(std::string(kCopy) + kEnd), {{"TERM", "screen"}});
  enter(terminal, "43 %");
  EXPECT_THAT(terminal.waitForColoured("\033[36m"), Not(HasSubstr("38;5")));
}

TEST_F(TerminalPageTest, WithSixteenColoursTheFirstOfThemAreUsed) {
  writeFile("/tmp/sixteen.ti", "sixteen|a terminal of sixteen colours,\n\tcolors#16, pairs#256, use=screen,\n");
  ASSERT_EQ(runThrough({"tic", "-o", "/tmp/terminfo", "/tmp/sixteen.ti"}).status, 0);
  TmuxTerminal terminal(80, 24, runScript(std::string(kCopy) + kEnd),
                        {{"TERM", "sixteen"}, {"TERMINFO", "/tmp/terminfo"}});
  enter(terminal, "43 %");
  EXPECT_THAT(terminal.waitForColoured("\033[36m"), Not(HasSubstr("38;5")));
}

TEST_F(TerminalPageTest, HonoursNoColor) {
  TmuxTerminal terminal(80, 24, runScript(std::string(kCopy) + kQuestion + kEnd), {{"NO_COLOR", "1"}});
  enter(terminal, "[ Skip ]");
  // Where the focus is shows all the same.
  const std::string shown = terminal.waitForColoured("\033[7m[ ");
  EXPECT_THAT(shown, Not(testing::ContainsRegex("\033\\[([34][0-7]|[34]8;|9[0-7])")));
}

TEST_F(TerminalPageTest, WideAndCombiningCharactersKeepEverythingInItsPlace) {
  writeFile("/tmp/page-title", "音源をインストール");
  TmuxTerminal terminal(
      80, 24,
      runScript("thread\n"
                "instructions 音源データをインストールしています。このディスクは取り出さないでください。終わる"
                "までしばらくお待ちください。\\n\\nPlease wait, cafe\u0301 au lait\n"
                "max 1953125\nvalue 840000\n"
                "status Installing... 鍵盤楽器\n"
                "alert 次のディスク|「音源 B」を入れてください。|はい|いいえ\n"));
  enter(terminal, "はい");
  expectScreen(terminal, "wide-characters");
}

TEST_F(TerminalPageTest, WithoutUtf8ThePageIsAscii) {
  TmuxTerminal terminal(80, 24, runScript(std::string(kCopy) + "sheet Grüße\n" + kEnd), {{"LC_ALL", "C"}});
  enter(terminal, "Gr??e");
  expectScreen(terminal, "ascii");
}

TEST_F(TerminalPageTest, WhatCommandsSayNeverWritesOverThePage) {
  TmuxTerminal terminal(
      80, 24, runScript(std::string(kCopy) + "run echo 'sudo: a password is required' >&2; echo out\n" + kEnd));
  enter(terminal, "43 %");
  expectScreen(terminal, "notice");
  let("go");
  terminal.waitFor("[ Continue ]");
  terminal.press({"Enter"});
  EXPECT_THAT(terminal.waitFor("The installation was successful."),
              AllOf(HasSubstr("Output of commands"), HasSubstr("sudo: a password is required")));
}

TEST_F(TerminalPageTest, ALongTextIsScrolled) {
  std::string text = "thread\ninstructions first line";
  for (int i = 2; i <= 40; ++i) {
    text += "\\nline " + std::to_string(i);
  }
  TmuxTerminal terminal(80, 24, runScript(text + "\n" + kEnd));
  enter(terminal, "first line");
  terminal.press({"PageDown"});
  terminal.waitUntilGone("first line");
  terminal.press({"End"});
  terminal.waitFor("line 40");
  terminal.press({"Home"});
  terminal.waitFor("first line");
  terminal.turnWheel(true, 40, 8);
  terminal.waitUntilGone("first line");
  terminal.turnWheel(false, 40, 8);
  terminal.waitFor("first line");
}

// An update's bar starts again from the left each time it is full, so it says nothing of the whole.
TEST_F(TerminalPageTest, ABarThatWrapsComesWithTheAmountButNoTotal) {
  const auto command = runScript(
      "thread\ninstructions Now updating.\nmax 1000000\nvalue 900000\nvalue 400000\n"
      "status Installing... Keyboards\n" +
      std::string(kEnd));
  setAttributes("Mode = TavenhallUpdater\nRelativePath = .\nTotalSizeMillionsBytes = 2000\n");
  TmuxTerminal terminal(80, 24, command);
  enter(terminal, "Installing... Keyboards");
  expectScreen(terminal, "copy-wrapping");
  let("go");
  terminal.waitFor("100 %");
}

}  // namespace
}  // namespace tavenhall::test

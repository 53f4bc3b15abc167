#include "tests/cocoa/desktop/desktop_program.h"
#include "tests/cocoa/window/virtual_display.h"
#include "tests/install/child_program.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <chrono>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <thread>

// The built program on a display, with a mouse: what the user sees and does, and what is there afterwards.
namespace tavenhall::test {
namespace {

using testing::Contains;
using testing::HasSubstr;

constexpr const char* kProgram = TAVINSTALL_BINARY_DIR "/bin/tavinstall-desktop";

struct Geometry {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;
};

void waitUntil(const char* what, const std::function<bool()>& isSo) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (!isSo()) {
    ASSERT_LT(std::chrono::steady_clock::now(), end) << "waited too long for " << what;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
}

class DesktopWindow : public testing::Test {
 protected:
  // In a process namespace of its own, so that no daemon of AppKit's outlives it.
  void start() {
    program_.emplace(
        std::vector<std::string>{"unshare", "--pid", "--mount-proc", "--fork", "--kill-child", kProgram},
        ChildProgram::Environment{{"DISPLAY", display_.name()}, {"TAVINSTALL_PACKAGE", kPackage}});
    waitUntil("the window", [this] { return !windowNumber().empty(); });
  }

  // Clicks at a place in the window, counted from its right edge and from its top.
  void press(int fromRight, int fromTop) {
    const std::string number = windowNumber();
    if (number.empty()) {
      return;  // it has just gone
    }
    const Geometry window = geometry(number);
    xdotool({"mousemove", std::to_string(window.left + window.width - fromRight),
             std::to_string(window.top + fromTop), "sleep", "0.2", "mousedown", "1", "sleep", "0.2", "mouseup",
             "1"});
  }

  void pressContinue() { press(70, geometry(windowNumber()).height - 34); }
  void pressClose() { press(16, 15); }

  std::string windowNumber() {
    std::string found = xdotool({"search", "--onlyvisible", "--name", "^Install Tessaphon$"});
    return found.substr(0, found.find('\n'));
  }

  Geometry geometry(const std::string& number) {
    std::istringstream lines(xdotool({"getwindowgeometry", "--shell", number}));
    Geometry window;
    for (std::string line; std::getline(lines, line);) {
      const std::size_t equals = line.find('=');
      const std::string name = line.substr(0, equals);
      int* const field = name == "X"        ? &window.left
                         : name == "Y"      ? &window.top
                         : name == "WIDTH"  ? &window.width
                         : name == "HEIGHT" ? &window.height
                                            : nullptr;
      if (field != nullptr) {
        *field = std::stoi(line.substr(equals + 1));
      }
    }
    return window;
  }

  VirtualDisplay display_;
  std::optional<ChildProgram> program_;

 private:
  std::string xdotool(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "xdotool");
    return runThrough(arguments, {{"DISPLAY", display_.name()}}).output;
  }
};

TEST_F(DesktopWindow, AWholeInstallFromTheIntroductionToTheSummary) {
  layTree(kSet, {textFile(".InstallationAttributes.dat",
                          "Mode = DataUpdater\nRelativePath = .\nTotalSizeMillionsBytes = 3\n"),
                 textFile("Installer.pkg", ""), file("TANVO/Tessaphon/a.db", 1000000),
                 file("TANVO/Tessaphon/b.db", 2000)});
  makeFolder(kTanvo);

  start();
  pressContinue();
  waitUntil("the end of the installation",
            [] { return exists(kLog) && readFile(kLog).find("Installation complete") != std::string::npos; });
  pressContinue();
  waitUntil("the summary's Close to be pressed", [this] {
    pressContinue();
    return windowNumber().empty();
  });

  EXPECT_EQ(program_->waitForEnd(), 0) << program_->standardError();
  EXPECT_EQ(readFile("/tmp/TavInstallLoc"), std::string(kPackage) + "\n");
  EXPECT_EQ(describeTree({kTanvo}),
            (std::vector<std::string>{
                "drwxr-xr-x " + std::string(kTanvo) + "/Tessaphon",
                "-rw-r--r-- " + std::string(kTanvo) + "/Tessaphon/a.db = " + kSet + "/TANVO/Tessaphon/a.db",
                "-rw-r--r-- " + std::string(kTanvo) + "/Tessaphon/b.db = " + kSet + "/TANVO/Tessaphon/b.db"}));
}

TEST_F(DesktopWindow, ClosedAtTheIntroductionItHasTouchedNothing) {
  layTree(kSet, {textFile(".InstallationAttributes.dat", "Mode = DataUpdater\nRelativePath = .\n"),
                 textFile("Installer.pkg", "")});

  start();
  waitUntil("the window to close", [this] {
    pressClose();
    return windowNumber().empty();
  });

  EXPECT_EQ(program_->waitForEnd(), 4) << program_->standardError();
  EXPECT_FALSE(exists("/tmp/TavInstallLoc"));
  EXPECT_FALSE(exists(kLog));
}

TEST(DesktopProgram, ReportsThatThereIsNoFontAndEnds) {
  writeFile("/tmp/no-fonts.conf", "<fontconfig></fontconfig>\n");
  writeFile(kPackage, "");
  const VirtualDisplay display;
  const Outcome outcome = runThrough(
      {"unshare", "--pid", "--mount-proc", "--fork", "--kill-child", kProgram, "--package", kPackage},
      {{"DISPLAY", display.name()}, {"FONTCONFIG_FILE", "/tmp/no-fonts.conf"}});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("tavinstall: no font is found; install one, such as Liberation Sans\n"));
}

TEST(DesktopProgram, ReportsABadArgumentBeforeAnyWindow) {
  const Outcome outcome = runThrough({kProgram, "--package", "/Users/tester/none.pkg"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("no package at /Users/tester/none.pkg"));
}

}  // namespace
}  // namespace tavenhall::test

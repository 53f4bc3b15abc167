#include "tests/install/case_files.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>

// The frontends that see an install through by themselves.
namespace tavenhall::test {
namespace {

using testing::Contains;
using testing::HasSubstr;

Outcome run(const std::string& frontend, std::string_view input = "",
            const std::string& summary = "/tmp/summary.json") {
  return runThrough({kTavinstall, "run", "--ui", frontend, "--package", kPackage, "--summary", summary}, {},
                    input);
}

bool isProgressLine(const std::string& line) { return std::regex_match(line, std::regex(" *[0-9]+ %.*")); }

// The lines of the output; how long it took is the machine's. Which progress lines there are depends on the
// machine's pace, so they are left out.
std::string steadyLines(const std::string& output) {
  std::istringstream lines(output);
  std::string text;
  for (std::string line; std::getline(lines, line);) {
    if (!isProgressLine(line)) {
      line = std::regex_replace(line, std::regex(" in [0-9]+ s\\.$"), " in <time>.");
      text += std::regex_replace(
                  line, std::regex("^  [0-9]+ s copying, 1[0-9] s waiting for discs, 1[0-9] s in all$"),
                  "  <its parts>") +
              "\n";
    }
  }
  return text;
}

std::vector<std::string> progressLines(const std::string& output) {
  std::istringstream lines(output);
  std::vector<std::string> found;
  for (std::string line; std::getline(lines, line);) {
    if (isProgressLine(line)) {
      found.push_back(line);
    }
  }
  return found;
}

void layTwoDiscs() {
  layPackage(
      "Mode = InstallFromVolumes\nInstallDataTitle = Tessaphon\nInstallingData = Installing into:\\n%s\n"
      "InstalledData = All is in:\\n%s\nNumberOfVolumes = 2\nTotalSizeMillionsBytes = 1\n");
  layTree(kDiscA, {file("TANVO/Tessaphon/a.db", 12288)});
}

TEST(PlainFrontend, AGoodInstallIsReportedInLinesAndAnAlertIsAnsweredByNumber) {
  layTwoDiscs();

  ChildProgram program({kTavinstall, "run", "--ui", "plain", "--package", kPackage});
  std::string output;
  for (std::string line; line != "  1) OK";) {
    line = program.readLine().value();
    output += line + "\n";
  }
  layTree(kDiscB, {file("TANVO/Tessaphon/b.db", 10240)});
  program.write("2\nno\n 1 \n");
  for (const std::string& line : program.readLines()) {
    output += line + "\n";
  }

  EXPECT_EQ(program.waitForEnd(), 0);
  EXPECT_EQ(steadyLines(output),
            "Tessaphon\n  Installing into:\n  /Users/tester/Library/Application Support/Tavenhall/TANVO\n"
            "- Disc 1 of 2: Tavenhall Tessaphon A - copying\n- Disc 1 of 2: Tavenhall Tessaphon A - checking\n"
            "- Disc 1 of 2: Tavenhall Tessaphon A - ejecting\n- Disc 2 of 2: Tessaphon B - waiting for you\n"
            "? Ready for next volume\n  Please insert Tessaphon B\n  1) OK\n  Press Return.\n  Press Return.\n"
            "- Disc 2 of 2: Tessaphon B - looking for it: 10 s\n- Disc 2 of 2: Tessaphon B - copying\n- Disc "
            "2 of 2: Tessaphon B - checking\n- Disc 2 of 2: Tessaphon B - ejecting\n"
            "  All is in:\n  /Users/tester/Library/Application Support/Tavenhall/TANVO\nInstalled 22.5 kB in "
            "<time>.\n  <its parts>\nThe log is /Users/tester/Library/Caches/Tavenhall/installationLog.txt.\n");
  EXPECT_EQ(program.standardError(), "");
  EXPECT_EQ(progressLines(output).front(), "  0 %");
  EXPECT_EQ(progressLines(output).back(), "100 %");
}

TEST(PlainFrontend, AFailedInstallExitsWithOneAndNamesWhatIsMissing) {
  layPackage("Mode = DataUpdater\nInstalledData = Done.\nInstallingData = Going on.\nRelativePath = Nowhere\n");

  const Outcome outcome = run("plain");

  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(
      steadyLines(outcome.output),
      "Installing Data\n  Going on.\n! Files to be installed not found.\n  Done.\n! The installation of the "
      "Tessaphon data has not finished.\n! Not installed completely: see the lines that begin with \"!\". "
      "Copied 0 bytes in <time>.\nThe log is /Users/tester/Library/Caches/Tavenhall/installationLog.txt.\n");
  EXPECT_EQ(outcome.error, "");
}

TEST(PlainFrontend, WithoutTheCentralFolderThePageIsNotLeft) {
  layPackage("Mode = DataUpdater\nInstallingData = Going on.\n", {});

  const Outcome outcome = run("plain");

  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(steadyLines(outcome.output),
            "Installing Data\n  Going on.\n! The folder for the Tessaphon data was not found. Please install "
            "Tessaphon first, then run this installer again.\n! Not installed completely: see the lines that "
            "begin with \"!\". Copied 0 bytes in <time>.\nThe log is "
            "/Users/tester/Library/Caches/Tavenhall/installationLog.txt.\n");
  EXPECT_THAT(readFile("/tmp/summary.json"), HasSubstr(R"("left":false)"));
}

void layTwoEditions() {
  layTree(kSet, {textFile(".InstallationAttributes.dat",
                          "Mode = SupportHub\nInstalledData = Done.\nInstallingData = Going on.\n"
                          "RelativePath = .\nRelativePath2 = Full\n"),
                 folder("Full/TANVO/Choirs"), folder("Full/TANVO/Tessaphon"), textFile("Installer.pkg", ""),
                 file("TANVO/a.db", 2048)});
  layTree(kTanvo, {});
}

TEST(PlainFrontend, AnswersMayBeTypedAhead) {
  layTwoEditions();

  const Outcome outcome = run("plain", "\n1\n");

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(steadyLines(outcome.output),
            "Installing Data\n"
            "  Going on.\n"
            "? Detected Installation Type\n"
            "  Full installation detected for Choirs. Performing a Full data update.\n"
            "  1) Continue\n"
            "? Detected Installation Type\n"
            "  Lite installation detected for Tessaphon. Performing a Lite data update.\n"
            "  1) Continue\n"
            "  Done.\n"
            "Installed 2.0 kB in <time>.\n"
            "The log is /Users/tester/Library/Caches/Tavenhall/installationLog.txt.\n");
}

TEST(PlainFrontend, InputThatIsClosedAtAQuestionEndsWithStatusThree) {
  layTwoEditions();

  const Outcome outcome = run("plain", "1\n");

  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(steadyLines(outcome.output),
            "Installing Data\n  Going on.\n? Detected Installation Type\n  Full installation detected for "
            "Choirs. Performing a Full data update.\n  1) Continue\n? Detected Installation Type\n  Lite "
            "installation detected for Tessaphon. Performing a Lite data update.\n  1) Continue\n! Stopped: a "
            "prompt needs an answer, but standard input is closed. Copied 0 bytes in <time>.\nThe log is "
            "/Users/tester/Library/Caches/Tavenhall/installationLog.txt.\n");
  EXPECT_FALSE(exists(std::string(kTanvo) + "/a.db"));
}

TEST(PlainFrontend, ControlCharactersOfAFileDoNotReachTheReader) {
  layTree(kSet, {textFile(".InstallationAttributes.dat",
                          "Mode = DataUpdater\nInstallDataTitle = Red \x1b[31m and \a\n"
                          "InstallingData = A\tB\x7f\nInstalledData = C\bD\nRelativePath = .\n"
                          "TotalSizeMillionsBytes = 1\n"),
                 textFile("Installer.pkg", ""), file("TANVO/E\x1b]0;F/a.db", 2048)});
  layTree(kTanvo, {});

  const Outcome outcome = run("plain");

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(steadyLines(outcome.output),
            "Red ?[31m and ?\n"
            "  A?B?\n"
            "  C?D\n"
            "Installed 2.0 kB in <time>.\n"
            "The log is /Users/tester/Library/Caches/Tavenhall/installationLog.txt.\n");
  EXPECT_EQ(outcome.output.find('\x1b'), std::string::npos);
}

TEST(PlainFrontend, IsTheFrontendWhereThereIsNoTerminal) {
  layPackage("Mode = DataUpdater\nInstallDataTitle = Plain\nRelativePath = Nowhere\n");

  const Outcome outcome = runThrough({kTavinstall, "run", "--package", kPackage});

  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.output, testing::StartsWith("Plain\n"));
  EXPECT_THAT(outcome.output, HasSubstr("! Files to be installed not found.\n"));
}

TEST(PlainFrontend, ReportsAnInstallStoppedByAnInterrupt) {
  layTwoDiscs();

  ChildProgram program({kTavinstall, "run", "--ui", "plain", "--package", kPackage});
  while (program.readLine().value() != "  1) OK") {
  }
  kill(program.pid(), SIGINT);

  EXPECT_EQ(program.readAll(),
            "! Stopped. The files copied so far are kept. Run the installer again to complete the "
            "installation.\nThe log is /Users/tester/Library/Caches/Tavenhall/installationLog.txt.\n");
  EXPECT_EQ(program.waitForEnd(), 4);
  EXPECT_TRUE(exists(std::string(kTanvo) + "/Tessaphon/a.db"));
}

TEST(QuietFrontend, PrintsNothingAndAnswersEveryAlertWithItsFirstButton) {
  layTwoEditions();

  const Outcome outcome = run("quiet");

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.error, "");
  EXPECT_EQ(treeOf(kTanvo), (std::vector<std::string>{"Choirs/", "a.db"}));
  const std::string summary = readFile("/tmp/summary.json");
  EXPECT_THAT(summary, HasSubstr(R"({"left":true,"ready":1,"mode":4,)"));
  EXPECT_THAT(summary, HasSubstr(R"("buttons":["Continue"],"answer":1000},{"message")"));
  EXPECT_THAT(logMessages(), Contains("Displaying Lite Vs Full Informational Prompt 1"));
}

TEST(QuietFrontend, AnInstallThatFailsEndsWithStatusOne) {
  layPackage("Mode = DataUpdater\nRelativePath = Nowhere\n");

  const Outcome outcome = run("quiet");

  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, "");
  EXPECT_THAT(readFile("/tmp/summary.json"), HasSubstr(R"({"left":false,"ready":0,"mode":0,)"));
}

TEST(QuietFrontend, AnUpdateThatIsLeftForwardsButShowedASheetEndsWithStatusOne) {
  layTree(kSet, {textFile(".InstallationAttributes.dat", "Mode = TavenhallUpdater\nRelativePath = .\n"),
                 pipe("Applications/pipe"), textFile("Installer.pkg", ""), file("TANVO/a.db", 1024)});
  layTree(kTanvo, {});

  const Outcome outcome = run("quiet");

  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(readFile("/tmp/summary.json"), HasSubstr(R"({"left":true,"ready":1,"mode":4,)"));
  EXPECT_THAT(readFile("/tmp/summary.json"), HasSubstr("Failed to open input file."));
}

// The first volume's copy fails and the last one's succeeds, so the page may be left.
TEST(QuietFrontend, AnInstallOfWhichOneVolumeFailedEndsWithStatusOne) {
  layTree(kSet, {textFile(".InstallationAttributes.dat",
                          "Mode = Downloaded\nNumberOfVolumes = 2\nRelativePath = 1\nRelativePath2 = 2\n"),
                 link("1/TANVO/a.db", "nowhere"), file("2/TANVO/b.db", 1024), textFile("Installer.pkg", "")});
  layTree(kTanvo, {});

  const Outcome outcome = run("quiet");

  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(readFile("/tmp/summary.json"), HasSubstr(R"({"left":true,"ready":1,"mode":3,)"));
}

TEST(QuietFrontend, ReportsASummaryThatCannotBeWrittenOnStandardError) {
  layPackage("Mode = DataUpdater\nRelativePath = Nowhere\n");

  const Outcome outcome = run("quiet", "", "/dev/full");

  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.error,
            "tavinstall: Files to be installed not found.\ntavinstall: cannot write the summary /dev/full: No "
            "space left on device\n");
}

TEST(QuietFrontend, NothingIsInstalledWhereTheSummaryCouldNotBeWritten) {
  layPackage("Mode = DataUpdater\nRelativePath = Nowhere\n");

  const Outcome outcome = run("quiet", "", "/nowhere/summary.json");

  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error, "tavinstall: cannot write /nowhere/summary.json: No such file or directory\n");
  EXPECT_FALSE(exists("/tmp/TavInstallLoc"));
}

// ---- What a run claims ----

// An install that cannot write one of its two files.
void laySetWithAFailure() {
  layPackage("Mode = DataUpdater\nRelativePath = .\nTotalSizeMillionsBytes = 1\n", {"TANVO"});
  writeFile(std::string(kSet) + "/TANVO/one.db", "one");
  writeFile(std::string(kSet) + "/TANVO/two.db", "two");
  makeFolder(std::string(kTanvo) + "/one.db");
}

std::vector<std::string> runWith(const std::vector<std::string>& wrapper, const std::string& frontend) {
  std::vector<std::string> command = wrapper;
  command.insert(command.end(), {kTavinstall, "run", "--ui", frontend, "--package", kPackage});
  return command;
}

TEST(QuietFrontend, NamesEachFileThatIsNotInstalledOnStandardError) {
  laySetWithAFailure();
  const Outcome outcome = runThrough(runWith({}, "quiet"));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, "");
  EXPECT_THAT(outcome.error,
              HasSubstr("tavinstall: not installed: " + std::string(kSet) + "/./TANVO/one.db (type)\n"));
}

// With SIGCHLD ignored, the system keeps no exit status of a child process.
TEST(PlainFrontend, AParentThatIgnoresTheEndOfChildrenChangesNothing) {
  laySetWithAFailure();
  const std::vector<std::string> ignoring{"/bin/sh", "-c", "trap '' CHLD; exec \"$@\"", "sh"};
  EXPECT_EQ(runThrough(runWith(ignoring, "plain")).status, 1);
  std::filesystem::remove_all(std::string(kTanvo) + "/one.db");
  EXPECT_EQ(runThrough(runWith(ignoring, "plain")).status, 0);
}

TEST(PlainFrontend, TooFewDescriptorsAreAnError) {
#ifdef TAVINSTALL_SANITIZED
  GTEST_SKIP() << "the sanitizer examines exceptions through descriptors of its own";
#endif
  laySetWithAFailure();
  std::filesystem::remove_all(std::string(kTanvo) + "/one.db");
  for (const char* frontend : {"plain", "quiet", "json"}) {
    const Outcome outcome = runThrough(runWith({"/bin/sh", "-c", "ulimit -n 8; exec \"$@\"", "sh"}, frontend));
    EXPECT_NE(outcome.status, 0) << frontend;
    EXPECT_NE(outcome.error, "") << frontend;
  }
}

TEST(PlainFrontend, AMissingAttributesFileIsRefusedUnlessTheUserKnows) {
  writeFile(kPackage, "");
  makeFolder(kTanvo);
  writeFile("/Volumes/Tavenhall Tessaphon A/TANVO/one.db", "one");
  for (const char* frontend : {"plain", "quiet"}) {
    const Outcome outcome = runThrough(runWith({}, frontend));
    EXPECT_EQ(outcome.status, 6);
    EXPECT_EQ(outcome.error,
              "tavinstall: there is no .InstallationAttributes.dat beside the package in " + std::string(kSet) +
                  " or one folder above; use --without-attributes to install one disc without it\n");
    EXPECT_FALSE(exists(kLog));
  }
  std::vector<std::string> command = runWith({}, "plain");
  command.emplace_back("--without-attributes");
  EXPECT_EQ(runThrough(command).status, 0);
  EXPECT_EQ(readFile(std::string(kTanvo) + "/one.db"), "one");
}

}  // namespace
}  // namespace tavenhall::test

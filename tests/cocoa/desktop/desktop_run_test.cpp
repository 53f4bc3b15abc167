#include "host/cli/desktop_program.h"

#include "tests/support/files.h"

#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

// What the installer's window has to say, without a window.
namespace tavenhall::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kPackageArgument = "--package=/Users/tester/Downloads/Set/Installer.pkg";
constexpr const char* kDiscA = "/Volumes/Tavenhall Tessaphon A";
constexpr const char* kDiscB = "/Volumes/Tessaphon B";

std::optional<ExitStatus> readArguments(DesktopProgram& run, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "tavinstall-desktop");
  std::vector<char*> pointers;
  for (std::string& argument : arguments) {
    pointers.push_back(argument.data());
  }
  return run.read(static_cast<int>(pointers.size()), pointers.data());
}

std::vector<std::string> textOf(const DesktopText& text) {
  std::vector<std::string> lines;
  for (const Line& line : text.lines) {
    lines.emplace_back();
    for (const Span& span : line) {
      lines.back() += span.text;
    }
  }
  return lines;
}

class DesktopRuns : public testing::Test {
 protected:
  void SetUp() override {
    setAttributes(
        "Mode = InstallFromVolumes\n"
        "NumberOfVolumes = 2\n"
        "TotalSizeMillionsBytes = 100\n");
    writeFile(std::string(kSet) + "/Installer.pkg", "");
    makeFolder(kTanvo);
    std::filesystem::remove("/tmp/TavInstallLoc");
    // A test program lies where the bundles are looked for, so the usual one is found.
    ASSERT_EQ(
        readArguments(run_, {kPackageArgument, "--bundle=" TAVINSTALL_BINARY_DIR "/InstallDataPane.bundle"}),
        std::nullopt);
  }

  DesktopProgram run_;
};

TEST_F(DesktopRuns, TheIntroductionNamesContentSourceAndDestination) {
  EXPECT_EQ(run_.productName(), "Tessaphon");
  EXPECT_EQ(run_.introduction().heading.text, "Welcome to the Tessaphon installer");
  const std::vector<std::string> lines = textOf(run_.introduction());
  EXPECT_EQ(lines.front(), "This installs the sample data of Tessaphon.");
  EXPECT_THAT(lines, Contains("From    Disc Tavenhall Tessaphon A"));
  EXPECT_THAT(lines, Contains("        Disc Tessaphon B"));
  EXPECT_THAT(lines, Contains("To      " + std::string(kTanvo)));
  EXPECT_THAT(lines, Contains("Size    100.0 MB"));
  EXPECT_FALSE(exists("/tmp/TavInstallLoc"));
}

TEST_F(DesktopRuns, WhatIsNotAnArgumentIsTakenFromTheEnvironment) {
  setenv("TAVINSTALL_PACKAGE", "/Users/tester/Downloads/Set/Installer.pkg", 1);
  setenv("TAVINSTALL_PRODUCT", "Lumaweave", 1);
  DesktopProgram run;
  ASSERT_EQ(readArguments(run, {}), std::nullopt);
  EXPECT_EQ(run.productName(), "Lumaweave");
}

TEST_F(DesktopRuns, APackageThatIsNotThereCannotBeUsed) {
  DesktopProgram run;
  testing::internal::CaptureStderr();
  EXPECT_EQ(readArguments(run, {"--package=/Users/tester/none.pkg"}), ExitStatus::badUsage);
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("no package at /Users/tester/none.pkg"));
}

TEST_F(DesktopRuns, ThereAreNoPositionalArguments) {
  DesktopProgram run;
  testing::internal::CaptureStderr();
  EXPECT_EQ(readArguments(run, {kPackageArgument, "/Users/tester/x"}), ExitStatus::badUsage);
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("/Users/tester/x"));
}

TEST_F(DesktopRuns, PreparingDoesThePreInstallStepAndKeepsASecondInstallOut) {
  EXPECT_EQ(run_.prepare(), "");
  EXPECT_EQ(readFile("/tmp/TavInstallLoc"), "/Users/tester/Downloads/Set/Installer.pkg\n");

  DesktopProgram second;
  ASSERT_EQ(readArguments(second, {kPackageArgument}), std::nullopt);
  EXPECT_NE(second.prepare(), "");
}

TEST_F(DesktopRuns, TheWindowTellsWhatTheInstallDoesAndHowFarItIs) {
  ASSERT_EQ(run_.prepare(), "");
  run_.begin();
  EXPECT_EQ(run_.phaseText(), "");
  run_.beginDisc("/Volumes/Tessaphon B", 1, 2);
  run_.setAsking(true);
  EXPECT_EQ(run_.phaseText(), "Disc 2 of 2: Tessaphon B - waiting for you");
  run_.awaitDisc(10);
  EXPECT_EQ(run_.phaseText(), "Disc 2 of 2: Tessaphon B - looking for it: 10 s");
  run_.setAsking(true);
  EXPECT_EQ(run_.phaseText(), "Disc 2 of 2: Tessaphon B - not found, waiting for you");
  run_.setAsking(false);
  run_.beginCopy(2, 2);
  run_.setProgress({0.0, 97656.25, 24414.0625, 25000000});
  EXPECT_EQ(run_.phaseText(), "Disc 2 of 2: Tessaphon B - copying");
  EXPECT_THAT(run_.progressText(), StartsWith("25 %, 25.0 MB of 100.0 MB"));
  run_.beginEject();
  EXPECT_EQ(run_.phaseText(), "Disc 2 of 2: Tessaphon B - ejecting");
  EXPECT_EQ(run_.progressText(), "25 %, 25.0 MB of 100.0 MB") << "nothing is copied, so there is no rate";
}

// Two discs, each with a file that the page has copied.
class DesktopAudit : public DesktopRuns {
 protected:
  void SetUp() override {
    DesktopRuns::SetUp();
    ASSERT_EQ(run_.prepare(), "");
    run_.begin();
    for (const char* disc : {kDiscA, kDiscB}) {
      const std::string name = disc == std::string(kDiscA) ? "/a.db" : "/b.db";
      writeFile(disc + ("/TANVO" + name), std::string(600, 'x'));
      writeFile(kTanvo + name, std::string(600, 'x'));
    }
  }

  void auditDisc(const char* disc, int volume) {
    run_.auditCopy({disc + std::string("/TANVO"), kTanvo, volume}, true);
  }

  void expectFailure(const std::string& line) {
    run_.end();
    EXPECT_NE(run_.summary().heading.text, "The installation was successful.");
    EXPECT_THAT(textOf(run_.summary()), Contains(HasSubstr(line)));
    EXPECT_EQ(run_.exitStatus(), ExitStatus::failure);
  }
};

TEST_F(DesktopAudit, ACompleteInstallIsASuccessOfAsManyBytesAsAreThere) {
  auditDisc(kDiscA, 1);
  auditDisc(kDiscB, 2);
  run_.end();
  EXPECT_EQ(run_.summary().heading.text, "The installation was successful.");
  EXPECT_THAT(textOf(run_.summary()),
              ElementsAre(StartsWith("Installed  1.2 kB in "), "In         " + std::string(kTanvo)));
  EXPECT_EQ(run_.exitStatus(), ExitStatus::success);
}

TEST_F(DesktopAudit, AFileThatIsMissingIsNamedThoughTheLogDoesNot) {
  std::filesystem::remove(std::string(kTanvo) + "/b.db");
  auditDisc(kDiscA, 1);
  auditDisc(kDiscB, 2);
  expectFailure("b.db");
}

TEST_F(DesktopAudit, AFileThatThePageCouldNotWriteIsNamedThoughAnOlderOneIsThere) {
  run_.addFailure(kDiscA + std::string("/TANVO/a.db"));
  auditDisc(kDiscA, 1);
  auditDisc(kDiscB, 2);
  expectFailure("a.db");
}

TEST_F(DesktopAudit, ADiscThatWasNotCopiedIsNamed) {
  auditDisc(kDiscA, 1);
  expectFailure(kDiscB);
}

TEST_F(DesktopAudit, WhatThePageReportsIsAFailureEvenIfNoFileIs) {
  run_.addFailure("");
  auditDisc(kDiscA, 1);
  auditDisc(kDiscB, 2);
  expectFailure("Run the installer again");
}

TEST_F(DesktopRuns, AnInstallThatCopiedNothingIsNoSuccess) {
  run_.begin();
  run_.setProgress({0.0, 1.0, 1.0, 51234567});
  run_.end();
  EXPECT_EQ(run_.summary().heading.style, Style::bad);
  EXPECT_EQ(run_.exitStatus(), ExitStatus::failure);
}

TEST_F(DesktopRuns, WithoutAnAttributesFileTheInstallIsRefused) {
  std::filesystem::remove(std::string(kSet) + "/.InstallationAttributes.dat");
  EXPECT_THAT(run_.prepare(), StartsWith("there is no .InstallationAttributes.dat beside the package in "));
}

TEST_F(DesktopRuns, AFailureInTheLogIsReportedAndMakesTheExitStatus) {
  run_.begin();
  writeFile(kLog,
            "May 01 2026 10:00:00 studio: \n\n" + std::string(94, '*') +
                "\n  Install Data Pane Enter: Version 7.7\n"
                "May 01 2026 10:00:00 studio: Source error /Volumes/A/TANVO/1.db /Users/tester/TANVO/1.db\n\n");
  run_.end();
  EXPECT_EQ(run_.summary().heading.style, Style::bad);
  EXPECT_THAT(textOf(run_.summary()), Contains(HasSubstr("1.db")));
  EXPECT_EQ(run_.exitStatus(), ExitStatus::failure);
}

}  // namespace
}  // namespace tavenhall::test

#include "pane/install_data_pane.h"
#include "tests/support/files.h"
#include "tests/support/recording_host.h"
#include "tests/support/recording_platform.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavenhall::test {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kChoiceFile = "/tmp/TavInstallType";
constexpr const char* kTwoVolumes = "Mode = DataUpdater\nNumberOfVolumes = 2\n";

constexpr std::int32_t kUntouchedChoice = 7;

class InstallChoiceFile : public testing::Test {
 protected:
  InstallChoiceFile() { makeFolder("/Users/tester/Library/Caches"); }  // where the log goes
};

// ---- The choice file ----

struct Choice {
  std::string contents;
  std::string logged;  // what the log shows of it
  std::int32_t isLite;
};

void PrintTo(const Choice& row, std::ostream* out) {
  *out << testing::PrintToString(row.contents.substr(0, 20)) << " of " << row.contents.size() << " bytes";
}

class InstallChoice : public InstallChoiceFile, public testing::WithParamInterface<Choice> {};

TEST_P(InstallChoice, IsLiteOnlyForTheExactWordOnceTheLastCharacterIsGone) {
  const Choice& row = GetParam();
  writeFile(kChoiceFile, row.contents);
  RecordingHost host;
  InstallDataPane pane(host);
  pane.gTwoComponentInstallChoicesAreLite[0] = kUntouchedChoice;

  pane.readEditionChoiceFile();

  EXPECT_EQ(pane.gTwoComponentInstallChoicesAreLite[0], row.isLite);
  EXPECT_THAT(logMessages(), ElementsAre("contentsOfTavInstallTypeFile = " + row.logged,
                                         row.isLite == 1 ? "Install Type = Lite" : "Install Type = Full"));
  EXPECT_EQ(readFile(kChoiceFile), row.contents);
}

INSTANTIATE_TEST_SUITE_P(Rows, InstallChoice,
                         testing::Values(Choice{"Lite\n", "Lite", 1}, Choice{"Full\n", "Full", 0},
                                         Choice{"Lite", "Lit", 0}, Choice{"LiteX", "Lite", 1},
                                         Choice{"lite\n", "lite", 0}, Choice{"LITE\n", "LITE", 0},
                                         Choice{"Lite \n", "Lite ", 0}, Choice{" Lite\n", " Lite", 0},
                                         Choice{"Lite\r\n", "Lite\r", 0}, Choice{"Lite\nFull\n", "Lite", 1},
                                         Choice{"\nLite\n", "", 0}, Choice{"", "", 0}, Choice{"\n", "", 0},
                                         Choice{"%s%n\n", "%s%n", 0}));

INSTANTIATE_TEST_SUITE_P(EndAtANul, InstallChoice,
                         testing::Values(Choice{std::string("Lite\0\n", 6), "Lit", 0},
                                         Choice{std::string("LiteX\0more\n", 11), "Lite", 1},
                                         Choice{std::string("\0Lite\n", 6), "", 0}));

INSTANTIATE_TEST_SUITE_P(LongLines, InstallChoice,
                         testing::Values(Choice{std::string(2000, 'L') + "\n", std::string(1022, 'L'), 0},
                                         Choice{std::string(1023, 'L') + "\n", std::string(1022, 'L'), 0},
                                         Choice{std::string(1022, 'L') + "\n", std::string(1022, 'L'), 0}));

TEST_F(InstallChoiceFile, AMissingFileLeavesTheChoiceAndSaysSo) {
  RecordingHost host;
  InstallDataPane pane(host);
  pane.gTwoComponentInstallChoicesAreLite[0] = kUntouchedChoice;
  pane.readEditionChoiceFile();
  EXPECT_EQ(pane.gTwoComponentInstallChoicesAreLite[0], kUntouchedChoice);
  EXPECT_THAT(logMessages(), ElementsAre("Could not open install type file  /tmp/TavInstallType"));
}

TEST_F(InstallChoiceFile, AFolderOfThatNameIsAnEmptyChoice) {
  makeFolder(kChoiceFile);
  RecordingHost host;
  InstallDataPane pane(host);
  pane.readEditionChoiceFile();
  EXPECT_THAT(logMessages(), ElementsAre("contentsOfTavInstallTypeFile = ", "Install Type = Full"));
}

TEST_F(InstallChoiceFile, IsReadAnewAtEachEntry) {
  setAttributes(kTwoVolumes);
  makeFolder("/Users/tester/Library/Application Support/Tavenhall/TANVO");
  platform().canStartThreads = false;
  RecordingHost host;
  InstallDataPane pane(host);
  writeFile(kChoiceFile, "Lite\n");
  pane.didEnterPane(0);
  EXPECT_EQ(pane.gTwoComponentInstallChoicesAreLite[0], 1);
  std::filesystem::remove(kChoiceFile);
  pane.didEnterPane(0);
  EXPECT_EQ(pane.gTwoComponentInstallChoicesAreLite[0], 0);
}

TEST_F(InstallChoiceFile, ALiteChoiceInstallsOneVolumeAndAFullOneTwo) {
  setAttributes(kTwoVolumes);
  platform().canStartThreads = false;
  RecordingHost host;
  InstallDataPane pane(host);
  writeFile(kChoiceFile, "Lite\n");
  pane.spawnBackgroundInstallJob();
  EXPECT_EQ(pane.gVolumeCount, 1);
  EXPECT_EQ(pane.gAllTwoComponentInstallChoicesAreLite, 1);
  writeFile(kChoiceFile, "Full\n");
  pane.spawnBackgroundInstallJob();
  EXPECT_EQ(pane.gVolumeCount, 2);
  EXPECT_EQ(pane.gAllTwoComponentInstallChoicesAreLite, 0);
}

// ---- Whether there is a choice ----

struct Prompt {
  std::string attributes;
  std::vector<std::string> lines;  // of the log, about the prompt
  std::int32_t option;
};

void PrintTo(const Prompt& row, std::ostream* out) { *out << testing::PrintToString(row.attributes); }

// Plans a job beside a choice file that says Lite; the log's lines that name the prompt.
std::vector<std::string> planWithLiteChoice(InstallDataPane& pane, const std::string& attributes) {
  setAttributes(attributes);
  writeFile(kChoiceFile, "Lite\n");
  platform().canStartThreads = false;
  pane.spawnBackgroundInstallJob();
  std::vector<std::string> lines = logMessages();
  std::erase_if(lines,
                [](const std::string& line) { return line.find("LiteVsFullPrompt") == std::string::npos; });
  return lines;
}

class InstallPrompt : public InstallChoiceFile, public testing::WithParamInterface<Prompt> {};

TEST_P(InstallPrompt, DecidesInMode2AloneWhetherTheChoiceIsRead) {
  const Prompt& row = GetParam();
  RecordingHost host;
  InstallDataPane pane(host);
  EXPECT_EQ(planWithLiteChoice(pane, "Mode = InstallFromVolumes\n" + row.attributes), row.lines);
  EXPECT_EQ(pane.gInstallationHasLiteVsFullOption, row.option);
  EXPECT_EQ(pane.gTwoComponentInstallChoicesAreLite[0], row.option);
  if (row.option == 0) {
    EXPECT_THAT(logMessages(), Not(Contains(HasSubstr("Install Type"))));
    EXPECT_THAT(logMessages(), Not(Contains(HasSubstr("TavInstallType"))));
  }
}

constexpr const char* kNoPrompt = "Did not find LiteVsFullPrompt string in attributes file ";

std::string promptLine(const std::string& value) {
  return "Data from attributes file::  LiteVsFullPrompt =" + value + " ";
}

INSTANTIATE_TEST_SUITE_P(
    WithTwoVolumes, InstallPrompt,
    testing::Values(Prompt{"NumberOfVolumes = 2\nLiteVsFullPrompt = Yes\n", {promptLine("Yes")}, 1},
                    Prompt{"NumberOfVolumes = 2\nLiteVsFullPrompt = YES\n", {promptLine("YES")}, 1},
                    Prompt{"NumberOfVolumes = 2\nLiteVsFullPrompt = yes\r\n", {promptLine("yes")}, 1},
                    Prompt{"NumberOfVolumes = 2\nlitevsfullprompt = Yes\n", {promptLine("Yes")}, 1},
                    Prompt{"NumberOfVolumes = 2\nLiteVsFullPrompt = No\n", {promptLine("No")}, 0},
                    Prompt{"NumberOfVolumes = 2\nLiteVsFullPrompt = Yes \n", {promptLine("Yes ")}, 0},
                    Prompt{
                        "NumberOfVolumes = 2\nLiteVsFullPrompt = Yes please\n", {promptLine("Yes please")}, 0},
                    Prompt{"NumberOfVolumes = 2\nLiteVsFullPrompt = Y\n", {promptLine("Y")}, 0},
                    Prompt{"NumberOfVolumes = 2\n", {kNoPrompt}, 0},
                    Prompt{"NumberOfVolumes = 2\nOther = Yes\n", {kNoPrompt}, 0}));

INSTANTIATE_TEST_SUITE_P(WithAnotherNumberOfVolumes, InstallPrompt,
                         testing::Values(Prompt{"LiteVsFullPrompt = Yes\n", {}, 0},
                                         Prompt{"NumberOfVolumes = 1\nLiteVsFullPrompt = Yes\n", {}, 0},
                                         Prompt{"NumberOfVolumes = 3\nLiteVsFullPrompt = Yes\n", {}, 0},
                                         Prompt{"numberofvolumes = 2\nLiteVsFullPrompt = Yes\n", {}, 0},
                                         Prompt{
                                             "NumberOfVolumes = 4294967298\nLiteVsFullPrompt = Yes\n", {}, 0}));

TEST_F(InstallChoiceFile, Modes0And3ReadTheChoiceWhateverThePromptSays) {
  for (const char* mode : {"DataUpdater", "Downloaded"}) {
    for (const char* prompt : {"", "LiteVsFullPrompt = No\n", "LiteVsFullPrompt = Yes\n"}) {
      RecordingHost host;
      InstallDataPane pane(host);
      const std::string attributes = std::string("Mode = ") + mode + "\nNumberOfVolumes = 2\n" + prompt;
      EXPECT_THAT(planWithLiteChoice(pane, attributes), testing::IsEmpty());
      EXPECT_EQ(pane.gInstallationHasLiteVsFullOption, 1) << attributes;
      EXPECT_EQ(pane.gTwoComponentInstallChoicesAreLite[0], 1) << attributes;
    }
  }
}

TEST_F(InstallChoiceFile, WithoutTwoVolumesModes0And3DoNotReadTheChoice) {
  for (const char* mode : {"DataUpdater", "Downloaded"}) {
    RecordingHost host;
    InstallDataPane pane(host);
    planWithLiteChoice(pane, std::string("Mode = ") + mode + "\nNumberOfVolumes = 1\nLiteVsFullPrompt = Yes\n");
    EXPECT_EQ(pane.gTwoComponentInstallChoicesAreLite[0], 0) << mode;
  }
  EXPECT_THAT(logMessages(), Not(Contains(HasSubstr("Install Type"))));
}

}  // namespace

}  // namespace tavenhall::test

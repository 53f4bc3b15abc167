#include "host/base/display_text.h"
#include "host/base/text.h"
#include "host/rehearse/findings.h"

#include <clocale>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

// Every row of a report, in every language.
namespace tavenhall::test {
namespace {

// Findings that have something for each row and for most sentences.
RehearsalFindings manyFindings() {
  RehearsalFindings findings;
  findings.set = "/sets/Update";
  findings.sandbox = "/box";
  findings.logText = "one\ntwo\n";
  findings.plan.mode = 4;
  findings.plan.editions.isOffered = true;
  findings.plan.editions.libraries = {{"Tessaphon", true, true}};
  findings.plan.systemFolders = {{"/sets/Update/Library", "/Library/"}};
  findings.plan.passes.resize(1);
  findings.plan.passes[0].folderName = "TANVO";
  findings.plan.passes[0].destination = "/box/Users/TANVO";
  findings.plan.passes[0].volumeCount = 2;
  findings.plan.announced.totalMillions = 12;
  findings.realSizes.whole = 10'000'000;
  findings.realSizes.component = 5'000'000;
  findings.record.prompts = {{"A", "inserted"}, {"B", "late"}, {"C", "not accepted"}, {"D", "no such disc"}};
  findings.record.alerts = {{"Message", "Text", 1000}};
  findings.record.sheets = {"One", "Other", "One"};
  findings.record.bars = {{1000.0, 500.0}, {1.0, 1.0}};
  findings.pageWasEntered = true;
  findings.run.outcome = RunEnd::complete;
  findings.systemFolders = {{0, "/Library/", std::nullopt, 14, 2, 9}};
  findings.volumes = {{0, "/Volumes/A", 2.0, 1'500'000, 3, 1},
                      {1, "/Volumes/B", 0.0, 5, 1, 2},
                      {2, "/Volumes/C", std::nullopt, 7, 1, 1},
                      {3, "", std::nullopt, 0, 0, 0}};
  findings.files = {{"/a", "/b", {}, 1, 0, Fate::same},
                    {"/c", "/d", {}, 1, 0, Fate::same},
                    {"/e", "/f", {}, 1, 0, Fate::differs},
                    {"/g", "/h", {}, 1, 0, Fate::missing},
                    {"/i", "/j", {}, 1, 0, Fate::replaced}};
  findings.leftFiles = {{"lost.db", true, false}, {"full.db", true, true}, {"1.txt", false, false},
                        {"2.txt", false, false},  {"3.txt", false, false}, {"4.txt", false, false}};
  findings.unusedDiscs = {"discs/3 Spare"};
  return findings;
}

std::string reportIn(const char* language) {
  setenv("LC_ALL", "C.UTF-8", 1);
  setenv("LANGUAGE", language, 1);
  EXPECT_NE(std::setlocale(LC_CTYPE, ""), nullptr);
  speakUsersLanguage(TAVINSTALL_BINARY_DIR "/share/locale");
  const RehearsalFindings findings = manyFindings();
  return reportText(findings, judge(findings));
}

// A label that does not fit its column would move what stands behind it.
class EveryLanguagesReport : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Each, EveryLanguagesReport,
                         testing::Values("en", "de", "es", "fr", "it", "ja", "zh_CN"),
                         [](const auto& tested) { return std::string(tested.param); });

TEST_P(EveryLanguagesReport, KeepsTheColumnOfItsRows) {
  std::istringstream report(reportIn(GetParam()));
  std::string line;
  std::getline(report, line);
  std::getline(report, line);
  int rows = 0;
  while (std::getline(report, line) && !line.empty()) {
    std::size_t at = 0;
    while (at < line.size() && displayWidth(line.substr(0, at)) < 15) {
      ++at;
    }
    EXPECT_EQ(displayWidth(line.substr(0, at)), 15U) << line;
    EXPECT_EQ(line[at - 1], ' ') << line;
    EXPECT_NE(line[at], ' ') << line;
    ++rows;
  }
  EXPECT_EQ(rows, 24);
}

TEST_P(EveryLanguagesReport, IsEnglishForPrograms) {
  const std::string report = reportIn(GetParam());
  const nlohmann::ordered_json told = reportJson(manyFindings());
  EXPECT_THAT(told["failures"],
              testing::ElementsAre("the page refused Continue", "a sheet appeared 2 times: One",
                                   "a sheet appeared: Other", "content differs: /e", "not installed: /g"));
  EXPECT_THAT(told["remarks"],
              testing::ElementsAre(
                  "nothing installs lost.db", "the page never asked for discs/3 Spare",
                  "the total size is announced as 12.0 MB but is 10.0 MB: the bar will end early or late",
                  "the size of the first component is not announced (it is 5.0 MB)"));
  EXPECT_EQ(told["prompts"][1]["reply"], "late");
  EXPECT_EQ(reportText(manyFindings(), judge(manyFindings())), report) << "it is the user's language again";
}

}  // namespace
}  // namespace tavenhall::test

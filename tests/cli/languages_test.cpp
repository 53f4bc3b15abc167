#include "host/base/display_text.h"
#include "tests/cli/in_language.h"

#include <clocale>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>
#include <string>

// When the built program uses which language, and what it leaves in English.
namespace tavenhall::test {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

// ---- Every language ----

struct Language {
  const char* name;
  const char* usage;  // how the help shows the arguments
};

void PrintTo(const Language& language, std::ostream* out) { *out << language.name; }

class EveryLanguage : public testing::TestWithParam<Language> {};
INSTANTIATE_TEST_SUITE_P(Each, EveryLanguage,
                         testing::Values(Language{"de", "\nAufruf: tavinstall log [OPTION]... [FILE]\n"},
                                         Language{"es", "\nUso: tavinstall log [OPCIÓN]... [FILE]\n"},
                                         Language{"fr", "\nUsage : tavinstall log [OPTION]... [FILE]\n"},
                                         Language{"it", "\nUso: tavinstall log [OPZIONE]... [FILE]\n"},
                                         Language{"ja", "\n使い方: tavinstall log [オプション]... [FILE]\n"},
                                         Language{"zh_CN", "\n用法：tavinstall log [选项]... [FILE]\n"}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(EveryLanguage, PrintsHelpThatFitsAScreen) {
  ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
  EXPECT_THAT(inLanguage(GetParam().name, {"log", "--help"}).output, HasSubstr(GetParam().usage));
  for (const char* command :
       {"run", "status", "attach", "stop", "new", "split", "rehearse", "check", "manifest", "verify", "log"}) {
    std::istringstream lines(inLanguage(GetParam().name, {command, "--help"}).output);
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
      EXPECT_LT(displayWidth(line), 80U) << line;
    }
    EXPECT_LE(count, 24) << command;
  }
}

// The columns before each of these texts in the output.
std::vector<std::size_t> columnsOf(const std::string& output, const std::vector<const char*>& texts) {
  std::vector<std::size_t> columns;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    for (const char* text : texts) {
      if (const std::size_t at = line.find(text); at != std::string::npos) {
        columns.push_back(displayWidth(line.substr(0, at)));
      }
    }
  }
  return columns;
}

// Labels of any length, in letters of any width, leave the column where it is.
TEST_P(EveryLanguage, AlignsTheRowsOfALogAndOfAPlan) {
  ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
  writeShortLog();
  EXPECT_THAT(columnsOf(inLanguage(GetParam().name, {"log"}).output, {"/the/folder"}),
              testing::ElementsAre(19));
  makeDiscSet();
  EXPECT_THAT(columnsOf(inLanguage(GetParam().name, kCheckLumaweave).output,
                        {"Installing Lumaweave", "Now installing to", "Installed in"}),
              testing::ElementsAre(17, 17, 17));
}

TEST_P(EveryLanguage, LeavesJsonInEnglish) {
  writeShortLog();
  makeFaultyDiscSet();
  Arguments check = kCheckLumaweave;
  check.insert(check.end(), {"--format", "json"});
  for (const Arguments& command : {Arguments{"log", "--format", "json"}, check}) {
    const Outcome outcome = inLanguage(GetParam().name, command);
    EXPECT_TRUE(nlohmann::json::accept(outcome.output)) << outcome.output;
    EXPECT_EQ(outcome.output, inLanguage("en", command).output);
  }
}

// ---- Which language ----

TEST(Languages, AreUsedWithoutTheUsersLocale) {
  const Outcome outcome = runThrough({kTavinstall, "log"}, {{"LC_ALL", "de_DE.UTF-8"}, {"LANGUAGE", ""}});
  EXPECT_THAT(outcome.error,
              StartsWith("tavinstall: es gibt noch kein Protokoll unter /Users/tester/Library/"));
}

TEST(Languages, AlignRowsWithoutTheUsersLocale) {
  ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
  writeShortLog();
  const Outcome outcome = runThrough({kTavinstall, "log"}, {{"LC_ALL", "ja_XX.UTF-8"}, {"LANGUAGE", ""}});
  EXPECT_THAT(outcome.output, HasSubstr("\n    設定           属性ファイルなし\n"));
}

TEST(Languages, DefaultToEnglish) {
  const std::string english = "tavinstall: no installation log at ";
  EXPECT_THAT(runThrough({kTavinstall, "log"}, {{"LC_ALL", "C"}, {"LANGUAGE", "de"}}).error,
              StartsWith(english));
  EXPECT_THAT(inLanguage("tlh", {"log"}).error, StartsWith(english));
}

// The page says that its folder is missing; the program says where the log is.
Outcome withoutFolder(const ChildProgram::Environment& environment) {
  writeFile("/Users/tester/set/Installer.pkg", "");
  return runThrough({kTavinstall, "run", "--ui", "plain", "--without-attributes", "--package",
                     "/Users/tester/set/Installer.pkg"},
                    environment);
}

TEST(Languages, AreTheSameForThePageAndTheProgram) {
  const auto inEnglish = AllOf(HasSubstr("The folder for the Tessaphon data was not found."),
                               HasSubstr("\nThe log is /Users/tester/"));
  const auto inGerman = AllOf(HasSubstr("Der Ordner für die Daten von Tessaphon wurde nicht gefunden."),
                              HasSubstr("\nDas Protokoll ist /Users/tester/"));
  const auto inChinese =
      AllOf(HasSubstr("未找到 Tessaphon 数据的文件夹。"), HasSubstr("\n日志位于 /Users/tester/"));

  EXPECT_THAT(withoutFolder({{"LC_ALL", "C"}, {"LANGUAGE", "de"}}).output, inEnglish);
  EXPECT_THAT(withoutFolder({{"LANGUAGE", "de"}}).output, inEnglish);
  EXPECT_THAT(withoutFolder({{"LC_ALL", "C.UTF-8"}, {"LANGUAGE", ""}}).output, inEnglish);
  EXPECT_THAT(withoutFolder({{"LC_ALL", "C.UTF-8"}, {"LANGUAGE", "en_GB:de"}}).output, inEnglish);
  EXPECT_THAT(withoutFolder({{"LC_ALL", "C.UTF-8"}, {"LANGUAGE", "nl:de:en"}}).output, inGerman);
  EXPECT_THAT(withoutFolder({{"LC_ALL", "C.UTF-8"}, {"LANGUAGE", "de-AT"}}).output, inGerman);
  EXPECT_THAT(withoutFolder({{"LC_ALL", "de_AT.UTF-8"}, {"LANGUAGE", ""}}).output, inGerman);
  EXPECT_THAT(withoutFolder({{"LC_ALL", "zh_SG.UTF-8"}, {"LANGUAGE", ""}}).output, inChinese);
  EXPECT_THAT(withoutFolder({{"LC_ALL", "C.UTF-8"}, {"LANGUAGE", "zh_Hans"}}).output, inChinese);
  EXPECT_THAT(withoutFolder({{"LC_ALL", "zh_TW.UTF-8"}, {"LANGUAGE", ""}}).output, inEnglish);
}

TEST(Languages, LeaveTheEventsInEnglish) {
  const std::vector<std::string> arguments{"run", "--ui", "json", "--no-preinstall"};
  const auto said = [&arguments](const std::string& language) {
    std::vector<std::string> command{kTavinstall};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runThrough(command, {{"LC_ALL", "C.UTF-8"}, {"LANGUAGE", language}},
                      "{\"do\":\"something\"}\n{\"do\":\"quit\"}\n")
        .output.substr(0, 200);  // the error; the summary behind it has times
  };
  EXPECT_THAT(said("de"), HasSubstr("\"event\":\"error\""));
  EXPECT_EQ(said("de"), said("en"));
}

// The page writes the system's error texts into the log, which support reads.
TEST(Languages, LeaveTheLogInEnglish) {
  writeFile("/Users/tester/set/Installer.pkg", "");
  writeFile("/Users/tester/set/.InstallationAttributes.dat",
            "Mode = Downloaded\nRelativePath = .\nTotalSizeMillionsBytes = 1\n");
  writeFile("/Users/tester/set/TANVO/a.db", "data");
  makeFolder("/Users/tester/Library/Application Support/Tavenhall/TANVO/a.db");  // in the file's way
  const std::vector<std::string> run{"run", "--ui", "plain", "--package", "/Users/tester/set/Installer.pkg"};

  const Outcome english = inLanguage("en", run);
  const std::vector<std::string> messages = logMessages();
  std::filesystem::remove(kLog);
  const Outcome german = inLanguage("de", run);

  EXPECT_EQ(english.status, 1);
  EXPECT_EQ(german.status, 1);
  EXPECT_EQ(logMessages(), messages);
  EXPECT_THAT(english.output, EndsWith("The log is " + std::string(kLog) + ".\n"));
  EXPECT_THAT(german.output, EndsWith("Das Protokoll ist " + std::string(kLog) + ".\n"));
}

// The engine reports in English, and so does the report of the same rehearsal.
TEST(Languages, LeaveARehearsalsJsonInEnglish) {
  makeFaultyDataUpdateSet();
  const auto reportIn = [](const std::string& language) {
    const Outcome outcome =
        inLanguage(language, rehearsal({"--installed", "/Users/tester/had", "--report", "/tmp/report.json"}));
    EXPECT_EQ(outcome.status, 1) << outcome.error;
    return nlohmann::json::parse(readFile("/tmp/report.json"), nullptr, false);
  };
  const nlohmann::json english = reportIn("en");
  const nlohmann::json german = reportIn("de");
  EXPECT_EQ(german["remarks"], nlohmann::json({"nothing installs First/DOVA/Bassoria/lost.db"}));
  EXPECT_EQ(german["failures"].back(),
            "content differs: /Users/rehearsal/Downloads/Installer/First/TANVO/Tessaphon/one.db");
  EXPECT_EQ(german["plan"], english["plan"]);
  EXPECT_EQ(german["prompts"], english["prompts"]);
}

}  // namespace
}  // namespace tavenhall::test

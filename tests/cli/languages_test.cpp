#include "host/base/display_text.h"
#include "host/base/text.h"
#include "tests/install/child_program.h"
#include "tests/support/files.h"

#include <clocale>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <utility>

// The program's words in the languages that there are.
namespace tavenhall::test {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

Outcome inLanguage(const std::string& language, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), kTavinstall);
  return runThrough(std::move(arguments), {{"LC_ALL", "C.UTF-8"}, {"LANGUAGE", language}});
}

struct Language {
  const char* name;
  const char* usage;  // how the help begins to tell of the arguments
};

class EveryLanguage : public testing::TestWithParam<Language> {};
INSTANTIATE_TEST_SUITE_P(Each, EveryLanguage,
                         testing::Values(Language{"de", "\nAufruf: tavinstall log [OPTION]... [FILE]\n"},
                                         Language{"es", "\nUso: tavinstall log [OPCIÓN]... [FILE]\n"},
                                         Language{"fr", "\nUsage : tavinstall log [OPTION]... [FILE]\n"},
                                         Language{"it", "\nUso: tavinstall log [OPZIONE]... [FILE]\n"},
                                         Language{"ja", "\n使い方: tavinstall log [オプション]... [FILE]\n"},
                                         Language{"zh_CN", "\n用法：tavinstall log [选项]... [FILE]\n"}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(EveryLanguage, IsSpokenInTheHelpWhichFitsAScreen) {
  ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
  EXPECT_THAT(inLanguage(GetParam().name, {"log", "--help"}).output, HasSubstr(GetParam().usage));
  for (const char* command : {"run", "rehearse", "check", "log"}) {
    std::istringstream lines(inLanguage(GetParam().name, {command, "--help"}).output);
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
      EXPECT_LT(displayWidth(line), 80U) << line;
    }
    EXPECT_LE(count, 24) << command;
  }
}

// Labels of any length, in letters of any width, leave the column where it is.
TEST_P(EveryLanguage, KeepsTheColumnOfALogsRows) {
  ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
  writeFile(kLog, "May 01 2026 10:00:00 studio: \n\n" + std::string(94, '*') +
                      "\n  Install Data Pane Enter: Version 7.7\n"
                      "May 01 2026 10:00:01 studio: After resolve 1 /the/folder\n"
                      "May 01 2026 10:00:02 studio: Installation complete\n");
  std::istringstream lines(inLanguage(GetParam().name, {"log"}).output);
  std::string line;
  while (std::getline(lines, line) && line.find("/the/folder") == std::string::npos) {
  }
  EXPECT_EQ(displayWidth(line.substr(0, line.find("/the/folder"))), 19U) << line;
}

TEST_P(EveryLanguage, IsNotSpokenToPrograms) {
  writeFile(kLog, "May 01 2026 10:00:00 studio: \n\n" + std::string(94, '*') +
                      "\n  Install Data Pane Enter: Version 7.7\n");
  EXPECT_EQ(inLanguage(GetParam().name, {"log", "--format", "json"}).output,
            inLanguage("en", {"log", "--format", "json"}).output);
}

TEST(Languages, TheSystemNeedNotHaveTheUsersLocale) {
  const Outcome outcome = runThrough({kTavinstall, "log"}, {{"LC_ALL", "de_DE.UTF-8"}, {"LANGUAGE", ""}});
  EXPECT_THAT(outcome.error,
              StartsWith("tavinstall: es gibt noch kein Protokoll unter /Users/tester/Library/"));
}

TEST(Languages, WithoutTheUsersLocaleTheColumnsAreStillThoseOfLetters) {
  ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
  writeFile(kLog, "May 01 2026 10:00:00 studio: \n\n" + std::string(94, '*') +
                      "\n  Install Data Pane Enter: Version 7.7\n");
  const Outcome outcome = runThrough({kTavinstall, "log"}, {{"LC_ALL", "ja_XX.UTF-8"}, {"LANGUAGE", ""}});
  EXPECT_THAT(outcome.output, HasSubstr("\n    設定           属性ファイルなし\n"));
}

TEST(Languages, WithoutOneOrWithAnUnknownOneItIsEnglish) {
  const std::string english = "tavinstall: no installation log at ";
  EXPECT_THAT(runThrough({kTavinstall, "log"}, {{"LC_ALL", "C"}, {"LANGUAGE", "de"}}).error,
              StartsWith(english));
  EXPECT_THAT(inLanguage("tlh", {"log"}).error, StartsWith(english));
}

// The page says that its folder is missing; the program says where the log is.
Outcome withoutFolder(const ChildProgram::Environment& environment) {
  writeFile("/tmp/set/Installer.pkg", "");
  return runThrough({kTavinstall, "run", "--ui", "plain", "--package", "/tmp/set/Installer.pkg"}, environment);
}

TEST(Languages, ThePageAndTheProgramSpeakTheSame) {
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

TEST(Languages, TheLinesForProgramsStayEnglish) {
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
TEST(Languages, TheLogIsTheSameInEveryLanguage) {
  writeFile("/tmp/set/Installer.pkg", "");
  writeFile("/tmp/set/.InstallationAttributes.dat",
            "Mode = Downloaded\nRelativePath = .\nTotalSizeMillionsBytes = 1\n");
  writeFile("/tmp/set/TANVO/a.db", "data");
  makeFolder("/Users/tester/Library/Application Support/Tavenhall/TANVO/a.db");  // in the file's way
  const std::vector<std::string> run{"run", "--ui", "plain", "--package", "/tmp/set/Installer.pkg"};

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

// ---- What cannot be used ----

void expectRefusal(const std::vector<std::string>& arguments, const std::string& english,
                   const std::string& german, const std::string& japanese) {
  for (const auto& [language, text] : {std::pair("en", english), {"de", german}, {"ja", japanese}}) {
    const Outcome outcome = inLanguage(language, arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.error, "tavinstall: " + text + "\n");
  }
}

TEST(Languages, ArgumentsThatAreMissingOrTooManyAreNamedInThem) {
  expectRefusal({}, "A subcommand is required", "ein Befehl fehlt", "コマンドが必要です");
  expectRefusal({"instal"}, "The following argument was not expected: instal", "unerwartetes Argument: instal",
                "余分な引数があります: instal");
  expectRefusal({"log", "a", "b", "--c"}, "The following arguments were not expected: b --c",
                "unerwartete Argumente: b --c", "余分な引数があります: b --c");
  expectRefusal({"check"}, "SET is required", "SET fehlt", "SET が必要です");
}

TEST(Languages, OptionsThatDoNotGoTogetherAreNamedInThem) {
  expectRefusal({"run", "--bundle", "/x", "--product", "Bassoria"},
                "--product cannot be combined with --bundle", "--product schließt --bundle aus",
                "--product と --bundle は同時に指定できません");
  expectRefusal({"run", "--ui", "plain", "--ui", "json"}, "--ui can be given only once",
                "--ui kann nur einmal angegeben werden", "--ui は 1 回しか指定できません");
}

TEST(Languages, ValuesThatAreMissingOrNotAllowedAreNamedInThem) {
  expectRefusal({"run", "--trusted", "--package"}, "--package requires a value", "--package braucht einen Wert",
                "--package には値が必要です");
  expectRefusal({"run", "--package="}, "--package requires a value", "--package braucht einen Wert",
                "--package には値が必要です");
  expectRefusal({"run", "--trusted=perhaps"}, "--trusted takes no value", "--trusted nimmt keinen Wert",
                "--trusted に値は指定できません");
  expectRefusal({"run", "--ui", "loud"}, "--ui: loud not in {json,plain,quiet,terminal}",
                "--ui: loud ist nicht in {json,plain,quiet,terminal}",
                "--ui: loud は {json,plain,quiet,terminal} のどれでもありません");
  for (const std::string number : {"-1", "often", "1.5", "99999999999"}) {
    expectRefusal({"rehearse", "/x", "--late", number}, "--late: " + number + " is not an integer from 0 up",
                  "--late: " + number + " ist keine ganze Zahl ab 0",
                  "--late: " + number + " は 0 以上の整数ではありません");
  }
}

TEST(Languages, WhatOtherUsersCanChangeIsRefusedInThem) {
  writeFile("/tmp/open/Installer.pkg", "");
  ASSERT_EQ(chmod("/tmp/open", 0777), 0);
  expectRefusal(
      {"run", "--ui", "plain", "--package", "/tmp/open/Installer.pkg"},
      "other users can change /tmp/open and thereby what is installed; use --trusted to install anyway",
      "andere Benutzer können /tmp/open ändern und damit, was installiert wird; --trusted installiert "
      "trotzdem",
      "他のユーザーが /tmp/open を変更でき、インストールされるものも変わります。--trusted を付ければイン"
      "ストールします");
}

// The engine speaks English by then.
TEST(Languages, ASummaryThatCouldNotBeWrittenIsNamedInThem) {
  writeFile("/tmp/set/Installer.pkg", "");
  writeFile("/tmp/set/.InstallationAttributes.dat", "Mode = DataUpdater\nRelativePath = Nowhere\n");
  const std::vector<std::string> run{"run",       "--ui",     "quiet", "--package", "/tmp/set/Installer.pkg",
                                     "--summary", "/dev/full"};
  EXPECT_EQ(
      inLanguage("de", run).error,
      "tavinstall: die Zusammenfassung /dev/full kann nicht geschrieben werden: No space left on device\n");
  EXPECT_EQ(inLanguage("ja", run).error,
            "tavinstall: 要約 /dev/full に書き込めません: No space left on device\n");
}

TEST(Text, ValuesTakeTheirPlacesInAnyOrder) {
  EXPECT_EQ(format("{0} and {1}", {"a", "b"}), "a and b");
  EXPECT_EQ(format("{1}{0}{1}", {"a", "b"}), "bab");
  EXPECT_EQ(format("{{0} {2} {x} {", {"{0}"}), "{0} {2} {x} {");
  EXPECT_EQ(format("{0}", {"{0}"}), "{0}");
}

TEST(Text, CountsOneAndSeveral) {
  EXPECT_EQ(plural("{0} file of {1}", "{0} files of {1}", 1, {"x"}), "1 file of x");
  EXPECT_EQ(plural("{0} file of {1}", "{0} files of {1}", 0, {"x"}), "0 files of x");
}

TEST(Text, IsPaddedByItsColumns) {
  ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
  EXPECT_EQ(padRight("日本", 6), "日本  ");
  EXPECT_EQ(padRight("e\xCC\x81", 3), "e\xCC\x81  ");
  EXPECT_EQ(padRight("\xFF", 3), "\xFF  ");
  EXPECT_EQ(padRight("longer", 3), "longer ");
}

}  // namespace
}  // namespace tavenhall::test

#include "tests/cocoa/desktop/desktop_program.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

// The window's words in the user's language: the page's own, and those of the installer around it.
namespace tavenhall::test {
namespace {

using testing::Contains;
using testing::Each;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;
using testing::StartsWith;

void laySet() {
  layTree(kSet, {textFile(".InstallationAttributes.dat",
                          "Mode = DataUpdater\nRelativePath = .\nTotalSizeMillionsBytes = 3\n"),
                 textFile("Installer.pkg", ""), file("TANVO/Tessaphon/a.db", 1000),
                 file("TANVO/Tessaphon/b.db", 2000000)});
}

void waitForLog(const std::string& text) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (!exists(kLog) || readFile(kLog).find(text) == std::string::npos) {
    ASSERT_LT(std::chrono::steady_clock::now(), end) << "waited too long for " << text;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
}

struct Install {
  std::vector<std::string> lines;  // of the windows
  std::vector<std::string> log;
  std::vector<std::string> tree;
};

// Up to the end of the copy, with the button pressed that goes on then.
void goThrough(DesktopProgram& program, const std::string& goOn) {
  program.clickOn(goOn);
  waitForLog("Installation complete");
  program.clickOn(goOn);
}

Install installIn(const char* language, const char* goOn, const char* close) {
  std::filesystem::remove_all(kTanvo);
  std::filesystem::remove(kLog);
  makeFolder(kTanvo);
  DesktopProgram program({{"LANGUAGE", language}});
  goThrough(program, goOn);
  program.clickOn(close);
  EXPECT_EQ(program.waitForEnd(), 0) << program.standardError();
  return {program.lines(), logMessages(), describeTree({kTanvo})};
}

TEST(DesktopLanguage, AnInstallInGermanIsTheSameButForItsWords) {
  laySet();

  const Install english = installIn("en", "Continue", "Close");
  const Install german = installIn("de", "Fortfahren", "Schließen");

  EXPECT_THAT(english.log, Contains(HasSubstr("Installation complete")));
  EXPECT_EQ(german.log, english.log);
  EXPECT_EQ(german.tree, english.tree);
  EXPECT_THAT(
      english.lines,
      IsSupersetOf({"window: Install Tessaphon", "step: Introduction", "step: Installation",
                    "step: Data Installation", "step: Summary", "text: Welcome to the Tessaphon installer",
                    "line: Press Continue to begin.", "text: The installation was successful.",
                    "button: Go Back, off", "button: Continue", "button: Continue, off", "button: Close"}));
  EXPECT_THAT(german.lines,
              IsSupersetOf({"window: Tessaphon installieren", "step: Einführung", "step: Installation",
                            "step: Installation der Daten", "step: Zusammenfassung",
                            "text: Willkommen beim Installer von Tessaphon",
                            "line: Mit Fortfahren beginnt die Installation.",
                            "text: Die Installation war erfolgreich.", "button: Zurück, off",
                            "button: Fortfahren", "button: Fortfahren, off", "button: Schließen"}));
  EXPECT_THAT(german.lines, Each(Not(EndsWith("(cut)"))));
}

// The system's own words for what failed are in the log.
std::vector<std::string> logOfAFailureIn(const char* language, const char* goOn, const char* notFinished) {
  std::filesystem::remove_all(kTanvo);
  std::filesystem::remove(kLog);
  makeFolder(std::string(kTanvo) + "/Tessaphon/a.db");  // in the file's way
  DesktopProgram program({{"LANGUAGE", language}});
  program.clickOn(goOn);
  program.await("text: Failed to open output file.");
  program.clickOn("OK");
  waitForLog("Installation complete");
  program.clickOn(goOn);
  program.await(notFinished);
  return logMessages();
}

TEST(DesktopLanguage, AFailureInGermanIsTheSameInTheLog) {
  laySet();

  const std::vector<std::string> english =
      logOfAFailureIn("en", "Continue", "text: The installation of the Tessaphon data has not finished.");
  const std::vector<std::string> german = logOfAFailureIn(
      "de", "Fortfahren", "text: Die Installation der Daten von Tessaphon ist noch nicht abgeschlossen.");

  EXPECT_THAT(english, Contains(HasSubstr("/Tessaphon/a.db Is a directory")));
  EXPECT_EQ(german, english);
}

TEST(DesktopLanguage, TheHelpIsInGermanAndNamesTheVariables) {
  const Outcome help =
      runThrough({TAVINSTALL_BINARY_DIR "/bin/tavinstall-desktop", "--help"}, {{"LANGUAGE", "de"}});
  EXPECT_EQ(help.status, 0) << help.error;
  EXPECT_THAT(help.output, StartsWith("Spielt in einem Fenster den Installer um die Datenseite herum.\n"
                                      "Aufruf: tavinstall-desktop [OPTION]...\n"
                                      "\n"
                                      "  -h, --help            Diese Hilfe zeigen\n"));
  for (const char* name : {"PACKAGE", "INSTALL_TYPE", "PRODUCT", "BUNDLE"}) {
    EXPECT_THAT(help.output, HasSubstr("$TAVINSTALL_" + std::string(name) + ")"));
  }
}

TEST(DesktopLanguage, ReportsARefusalInJapanese) {
  laySet();
  makeFolder(kTanvo);
  const int other = open("/Users/tester/Library/Application Support", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ASSERT_EQ(flock(other, LOCK_EX | LOCK_NB), 0);  // as another installation does

  DesktopProgram program({{"LANGUAGE", "ja"}});
  program.clickOn("続ける");
  program.await("text: インストールを開始できません。");
  program.await("text: 別のインストールが実行中です。「tavinstall status」を見てください");
  program.clickOn("OK");
  EXPECT_FALSE(exists("/tmp/TavInstallLoc"));
  close(other);
}

TEST(DesktopLanguage, WhatIsSetForAllProgramsGoesBeforeTheEnvironment) {
  laySet();
  // GNUstep takes the home from the system's list of users, so that without this it would be the tester's own.
  const ChildProgram::Environment ownDefaults{{"GNUSTEP_CONFIG_FILE", "/tmp/GNUstep.conf"}};
  writeFile("/tmp/GNUstep.conf",
            readFile("/etc/GNUstep/GNUstep.conf") + "GNUSTEP_USER_DEFAULTS_DIR=/tmp/Defaults\n");
  ASSERT_EQ(
      runThrough({"defaults", "write", "NSGlobalDomain", "NSLanguages", R"(("Japanese"))"}, ownDefaults).status,
      0);
  ASSERT_TRUE(exists("/tmp/Defaults/NSGlobalDomain.plist"));

  DesktopProgram program({{"LANGUAGE", "de"}, *ownDefaults.begin()});
  program.await("button: 続ける");
  EXPECT_THAT(program.lines(), IsSupersetOf({"window: Tessaphon のインストール", "step: はじめに",
                                             "step: データのインストール", "button: 戻る, off"}));
}

TEST(DesktopLanguage, ReportsAMissingFontOnStandardError) {
  laySet();
  writeFile("/tmp/latin.conf", "<fontconfig><dir>/usr/share/fonts/truetype/liberation</dir></fontconfig>\n");

  DesktopProgram japanese({{"LANGUAGE", "ja"}, {"FONTCONFIG_FILE", "/tmp/latin.conf"}});
  EXPECT_THAT(japanese.standardError(), HasSubstr("tavinstall: この言語の文字を持つフォントがありません。"));
  DesktopProgram german({{"LANGUAGE", "de"}, {"FONTCONFIG_FILE", "/tmp/latin.conf"}});
  EXPECT_THAT(german.standardError(), Not(HasSubstr("tavinstall: ")));
}

struct Language {
  const char* name;
  std::vector<std::string> lines;
};

void PrintTo(const Language& language, std::ostream* out) { *out << language.name; }

class EveryDesktopLanguage : public testing::TestWithParam<Language> {};
INSTANTIATE_TEST_SUITE_P(
    Each, EveryDesktopLanguage,
    testing::Values(Language{"de_AT",
                             {"window: Tessaphon installieren", "step: Einführung", "step: Installation",
                              "step: Installation der Daten", "step: Zusammenfassung", "button: Zurück, off",
                              "button: Fortfahren"}},
                    Language{"es",
                             {"window: Instalación de Tessaphon", "step: Introducción", "step: Instalación",
                              "step: Resumen", "button: Volver, off", "button: Continuar"}},
                    Language{"sv:fr",
                             {"window: Installation de Tessaphon", "step: Introduction", "step: Installation",
                              "step: Résumé", "button: Retour, off", "button: Continuer"}},
                    Language{"it",
                             {"window: Installazione di Tessaphon", "step: Introduzione", "step: Installazione",
                              "step: Riepilogo", "button: Indietro, off", "button: Continua"}},
                    Language{"ja",
                             {"window: Tessaphon のインストール", "step: はじめに", "step: インストール",
                              "step: 概要", "button: 戻る, off", "button: 続ける"}},
                    Language{"zh_CN",
                             {"window: 安装 Tessaphon", "step: 简介", "step: 安装", "step: 摘要",
                              "button: 返回, off", "button: 继续"}},
                    Language{"en_GB:de",
                             {"window: Install Tessaphon", "step: Introduction", "step: Data Installation",
                              "button: Go Back, off", "button: Continue"}}),
    [](const auto& tested) {
      std::string name = tested.param.name;
      std::erase_if(name, [](char character) { return character == '_' || character == ':'; });
      return name;
    });

TEST_P(EveryDesktopLanguage, HasRoomOnTheFirstPage) {
  laySet();
  makeFolder(kTanvo);

  DesktopProgram program({{"LANGUAGE", GetParam().name}});
  program.await(GetParam().lines.back());
  EXPECT_THAT(program.lines(), IsSupersetOf(GetParam().lines));
  EXPECT_THAT(program.lines(), Each(Not(EndsWith("(cut)"))));
}

}  // namespace
}  // namespace tavenhall::test

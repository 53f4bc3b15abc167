#include "tests/rehearse/rehearsals.h"

#include <csignal>
#include <filesystem>
#include <regex>
#include <sys/mount.h>

// What a rehearsal says to people in their language, and to programs in English.
namespace tavenhall::test {
namespace {

using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

Outcome inLanguage(const std::string& language, const std::vector<std::string>& commandLine) {
  return runThrough(commandLine, {{"LC_ALL", "C.UTF-8"}, {"LANGUAGE", language}});
}

Outcome rehearseIn(const std::string& language, const std::vector<std::string>& arguments = {}) {
  std::vector<std::string> commandLine = rehearseCommand({"--ui", "quiet"});
  commandLine.insert(commandLine.end(), arguments.begin(), arguments.end());
  return inLanguage(language, commandLine);
}

// ---- Whole rehearsals ----

// A report without why the mode and the edition are what they are.
std::string withoutReasons(const std::string& text) {
  return std::regex_replace(text, std::regex("(\n  (Modus|Ausgabe) +)[^\n]+"), "$1...");
}

TEST(RehearseLanguage, TheReportIsInTheUsersLanguage) {
  makeDiscSet();
  const Outcome outcome = rehearseIn("de", {"--product", "Lumaweave"});
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  const std::string sameTime =
      std::regex_replace(outcome.output, std::regex("in (weniger als 1|[0-9]+) s"), "in TIME");
  EXPECT_EQ(withoutReasons(sameTime), R"(
Probelauf von /Users/tester/Installer

  Modus        ...
  Ausgabe      ...
  Plan         DOVA nach /Users/rehearsal/Library/Application Support/Tavenhall/DOVA, 2 Volumes
  Anfrage      Tavenhall Lumaweave: eingelegt
  Anfrage      Tavenhall Lumaweave: eingelegt
  Volume       1: /Volumes/Tavenhall Lumaweave/DOVA, 3 bytes in TIME, 1 Datei in 2 Ordnern
  Volume       2: /Volumes/Tavenhall Lumaweave/DOVA, 3 bytes in TIME, 1 Datei in 2 Ordnern
  Dateien      2 Dateien gleich, 0 anders, 0 fehlend, 0 von einer späteren Kopie ersetzt
  Größe        1.0 MB angekündigt, 6 bytes wirklich
  Balken       höchstens 0 bytes von 1.0 MB
  Protokoll    nicht behalten; --keep DIR behält es

Alles ist installiert, und nichts ist zu bemerken.
)");
}

TEST(RehearseLanguage, WithoutOneTheReportIsEnglish) {
  makeDownloadSet();
  std::vector<std::string> command{"env", "-u", "LANGUAGE", "LC_ALL=C.UTF-8"};
  const std::vector<std::string> rehearsal = rehearseCommand({"--ui", "quiet"});
  command.insert(command.end(), rehearsal.begin(), rehearsal.end());
  const Outcome outcome = runThrough(command);
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_THAT(outcome.output,
              StartsWith("\nRehearsal of /Users/tester/Installer\n\n  mode         3: The Mode in"));
  EXPECT_THAT(outcome.output, EndsWith("\nRehearsal passed: everything was installed, no problems found.\n"));
}

TEST(RehearseLanguage, TheJsonOfTheSameRunStaysEnglish) {
  makeDataUpdateSet();
  writeFile(inSet("First/DOVA/Bassoria/lost.db"), "x");
  makeFolder("/Users/tester/had/TANVO/Tessaphon/one.db");
  const std::vector<std::string> arguments{"--installed", "/Users/tester/had"};
  EXPECT_EQ(rehearseIn("en", arguments).status, 1);
  const json english = report();
  const Outcome outcome = rehearseIn("de", arguments);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.output, EndsWith("  Warnung: First/DOVA/Bassoria/lost.db wird von nichts installiert\n"
                                       "Die Installation schlug fehl.\n"));
  const json german = report();
  EXPECT_EQ(german["remarks"], json({"nothing installs First/DOVA/Bassoria/lost.db"}));
  EXPECT_EQ(german["failures"].back(),
            "content differs: /Users/rehearsal/Downloads/Installer/First/TANVO/Tessaphon/one.db");
  EXPECT_EQ(german["plan"]["modeReason"],
            "The Mode in line 1 of .InstallationAttributes.dat reads \"DataUpdater\".");
  EXPECT_EQ(german["plan"], english["plan"]);
  EXPECT_EQ(german["prompts"], english["prompts"]);
}

TEST(RehearseLanguage, TheRepliesToPromptsInTheJsonStayEnglish) {
  makeDiscSet();
  EXPECT_EQ(rehearseIn("ja", {"--product", "Lumaweave"}).status, 0);
  const json japanese = steadyFields(report());
  EXPECT_EQ(japanese["prompts"][0]["reply"], "inserted");
  EXPECT_EQ(rehearseIn("en", {"--product", "Lumaweave"}).status, 0);
  EXPECT_EQ(japanese, steadyFields(report()));
}

TEST(RehearseLanguage, AMissingDiscIsNamedInTheUsersLanguage) {
  makeDiscSet("Mode = InstallFromVolumes\nNumberOfVolumes = 1\nTotalSizeMillionsBytes = 1\n");
  Outcome outcome = rehearseIn("de", {"--product", "Bassoria"});
  EXPECT_EQ(outcome.error,
            "tavinstall: das Set hat keine Disc Tavenhall Bassoria, daher endet der Probelauf hier\n");
  EXPECT_THAT(outcome.output,
              HasSubstr("\n  FEHLER: die Seite verlangt eine Disc, die das Set nicht hat: Tavenhall "
                        "Bassoria\n  FEHLER: keine einzige Datei wurde kopiert\n"));
  writeFile(inSet("discs/3 Tavenhall Bassoria/Dova/one.db"), "one");
  outcome = rehearseIn("zh_CN", {"--product", "Bassoria"});
  EXPECT_EQ(outcome.error, "tavinstall: 页面在光盘 Tavenhall Bassoria 上找不到数据文件夹，演练到此结束\n");
  EXPECT_THAT(outcome.output,
              HasSubstr("\n  失败：页面在光盘上找不到数据文件夹，再次请求该光盘：Tavenhall Bassoria\n"));
}

TEST(RehearseLanguage, WhatIsSaidAtItsStopIsInTheUsersLanguage) {
  makeDiscSet();
  std::vector<std::string> command = rehearseCommand({"--product", "Lumaweave", "--ui", "plain"});
  ChildProgram program(command, {{"LC_ALL", "C.UTF-8"}, {"LANGUAGE", "de"}});
  while (const auto line = program.readLine()) {
    if (*line == "? Ready for next volume") {
      break;
    }
  }
  kill(program.pid(), SIGTERM);
  EXPECT_THAT(program.readAll(), HasSubstr("! Angehalten. Nichts davon ist geblieben.\n"));
  EXPECT_EQ(program.waitForEnd(), 1);
  EXPECT_THAT(program.standardError(),
              HasSubstr("tavinstall: der Probelauf wurde angehalten, daher gibt es keinen Bericht\n"));
}

// ---- What cannot be used ----

void expectRefusal(const std::vector<std::string>& command, const std::string& german,
                   const std::string& japanese) {
  for (const auto& [language, text] : {std::pair("de", german), std::pair("ja", japanese)}) {
    const Outcome outcome = inLanguage(language, command);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.error, "tavinstall: " + text + "\n");
  }
}

TEST(RehearseLanguage, AFolderThatCannotBeKeptIsRefusedInTheUsersLanguage) {
  makeDownloadSet();
  writeFile("/Users/tester/kept/mine", "x");
  expectRefusal(
      rehearseCommand({"--keep", "/Users/tester/kept"}),
      "der Ordner /Users/tester/kept ist nicht leer; --keep nimmt einen neuen oder leeren",
      "フォルダ /Users/tester/kept は空ではありません。--keep には新しいフォルダか空のフォルダを指定します");
  expectRefusal(
      rehearseCommand({"--keep", "/Users/tester/kept/mine/deep"}),
      "der Ordner /Users/tester/kept/mine/deep kann nicht angelegt werden; --keep nimmt einen "
      "beschreibbaren",
      "フォルダ /Users/tester/kept/mine/deep を作れません。--keep には書き込めるフォルダを指定します");
}

TEST(RehearseLanguage, ToolsThatAreMissingAreNamedInTheUsersLanguage) {
  makeDiscSet();
  turnDiscsIntoImages();
  makeFolder("/tmp/bin");
  for (const char* tool : {"setpriv", "fusermount3", "fusermount"}) {
    std::filesystem::create_symlink(std::string("/usr/bin/") + tool, std::string("/tmp/bin/") + tool);
  }
  const std::string image = "/Users/tester/Installer/discs/1 Tavenhall Lumaweave.squashfs";
  expectRefusal({"env", "PATH=/tmp/bin", kTavinstall, "rehearse", kSetFolder, "--product", "Lumaweave"},
                "das Disc-Abbild " + image +
                    " kann nicht geöffnet werden: squashfuse fehlt; installieren Sie das Paket squashfuse",
                "ディスクイメージ " + image +
                    " を開けません: squashfuse がありません。パッケージ squashfuse をインストールしてください");
  std::filesystem::remove_all(inSet("discs"));
  expectRefusal({"env", "PATH=/tmp/bin", kTavinstall, "rehearse", kSetFolder},
                "ein Probelauf braucht bubblewrap; installieren Sie das Paket bubblewrap",
                "リハーサルには bubblewrap が必要です。パッケージ bubblewrap をインストールしてください");
}

TEST(RehearseLanguage, AnImageThatIsNoneIsNamedInTheUsersLanguage) {
  makeDiscSet();
  std::filesystem::remove_all(inSet("discs/2 Tavenhall Lumaweave"));
  writeFile(inSet("discs/2 Tavenhall Lumaweave.squashfs"), "this is no image");
  const Outcome outcome = rehearseIn("de", {"--product", "Lumaweave"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, StartsWith("tavinstall: das Disc-Abbild /Users/tester/Installer/discs/2 Tavenhall "
                                        "Lumaweave.squashfs kann nicht geöffnet werden: "));
}

TEST(RehearseLanguage, NoPlaceForATemporaryFolderIsSaidInTheUsersLanguage) {
  makeDownloadSet();
  expectRefusal(
      {"env", "TMPDIR=/Users/tester/none", kTavinstall, "rehearse", kSetFolder},
      "in /Users/tester/none kann kein temporärer Ordner angelegt werden; TMPDIR kann einen anderen Ort "
      "dafür nennen",
      "/Users/tester/none に一時フォルダを作れません。TMPDIR で別の場所を指定できます");
}

TEST(RehearseLanguage, AFolderThatCannotBeWrittenIsNamedInTheUsersLanguage) {
  makeDownloadSet();
  makeFolder("/Users/tester/kept");
  ASSERT_EQ(mount("tmpfs", "/Users/tester/kept", "tmpfs", MS_RDONLY, nullptr), 0);
  const Outcome english = rehearse({"--keep", "/Users/tester/kept"});
  EXPECT_EQ(english.status, 2);
  EXPECT_EQ(english.error, "tavinstall: cannot use /Users/tester/kept/tmp: Read-only file system\n");
  const Outcome german = rehearseIn("de", {"--keep", "/Users/tester/kept"});
  EXPECT_THAT(german.error, StartsWith("tavinstall: /Users/tester/kept/tmp ist nicht brauchbar: "));
}

TEST(RehearseLanguage, TooLittleRoomIsSaidInTheUsersLanguage) {
  makeDownloadSet();
  writeFile(inSet("TANVO/Tessaphon/huge.db"), "x");
  std::filesystem::resize_file(inSet("TANVO/Tessaphon/huge.db"), 8'000'000'000'000);
  const Outcome outcome = rehearseIn("de");
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, StartsWith("tavinstall: die Installation braucht 8.0 TB, und in /tmp/rehearsal-"));
  EXPECT_THAT(outcome.error, EndsWith(" frei; --keep DIR nimmt einen anderen Ort\n"));
}

}  // namespace
}  // namespace tavenhall::test

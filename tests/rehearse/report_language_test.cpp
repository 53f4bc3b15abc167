#include "host/base/display_text.h"
#include "host/base/text.h"
#include "host/rehearse/rehearsal_report.h"

#include <clocale>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>
#include <string>

// Every row of a report, in the languages that there are.
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

// Without why the mode and the edition are what they are.
std::string withoutPlanReasons(const std::string& text) {
  return std::regex_replace(text, std::regex("(\n  (Modus|Ausgabe|モード|エディション) +)[^\n]*"), "$1...");
}

TEST(RehearsalReportText, IsGermanForGermans) {
  EXPECT_EQ(withoutPlanReasons(reportIn("de")), R"(Probelauf von /sets/Update

  Modus        ...
  Ausgabe      ...
  Bibliothek   Tessaphon: Lite
  Plan         /Library/ von neben dem Paket
  Plan         TANVO nach /Users/TANVO, 2 Volumes
  Anfrage      A: eingelegt
  Anfrage      B: verspätet
  Anfrage      C: nicht angenommen
  Anfrage      D: keine solche Disc
  Hinweis      Message: Text
  Meldung      One (2-mal)
  Meldung      Other
  daneben      /Library/, 14 bytes, 2 Dateien in 9 Ordnern
  Volume       1: /Volumes/A, 1.5 MB in 2 s, 3 Dateien in 1 Ordner
  Volume       2: /Volumes/B, 5 bytes in weniger als 1 s, 1 Datei in 2 Ordnern
  Volume       3: /Volumes/C, 7 bytes in unbekannter Zeit, 1 Datei in 1 Ordner
  Volume       4: nichts kopiert
  Dateien      2 Dateien gleich, 1 anders, 1 fehlend, 1 von einer späteren Kopie ersetzt
  ausgelassen  1 Datei der Full-Ausgabe
  keine Daten  4 Dateien neben den Datenordnern: 1.txt, 2.txt, 3.txt, ...
  Größe        12.0 MB angekündigt, 10.0 MB wirklich
  Komponente   nicht angekündigt, 5.0 MB wirklich
  Balken       höchstens 512.0 kB von 1.0 MB
  Protokoll    nicht behalten; --keep DIR behält es

Das Protokoll endet mit:
  one
  two

  FEHLER: die Seite ließ sich nicht vorwärts verlassen
  FEHLER: eine Meldung erschien 2-mal: One
  FEHLER: eine Meldung erschien: Other
  FEHLER: Inhalt weicht ab: /e
  FEHLER: nicht installiert: /g
  Warnung: lost.db wird von nichts installiert
  Warnung: die Seite hat discs/3 Spare nie verlangt
  Warnung: das Ganze ist mit 12.0 MB angekündigt und hat 10.0 MB: der Balken endet zu früh oder zu spät
  Warnung: die Größe der ersten Komponente ist nicht angekündigt (es sind 5.0 MB)
Die Installation schlug fehl.
)");
}

TEST(RehearsalReportText, IsJapaneseForTheJapanese) {
  EXPECT_EQ(withoutPlanReasons(reportIn("ja")), R"(/sets/Update のリハーサル

  モード       ...
  エディション ...
  ライブラリ   Tessaphon: Lite
  計画         パッケージの横から /Library/ へ
  計画         TANVO を /Users/TANVO へ、ボリューム 2 個
  要求         A: 挿入済み
  要求         B: 遅延
  要求         C: 受け付けられず
  要求         D: 該当ディスクなし
  アラート     Message: Text
  メッセージ   One（2 回）
  メッセージ   Other
  パッケージ横 /Library/, 14 bytes, ファイル 2 個（フォルダ 9 個）
  ボリューム   1: /Volumes/A, 1.5 MB（2 s）, ファイル 3 個（フォルダ 1 個）
  ボリューム   2: /Volumes/B, 5 bytes（1 s 未満）, ファイル 1 個（フォルダ 2 個）
  ボリューム   3: /Volumes/C, 7 bytes（時間不明）, ファイル 1 個（フォルダ 1 個）
  ボリューム   4: コピーなし
  ファイル     一致 2 個、相違 1 個、欠落 1 個、後のコピーによる置換 1 個
  除外         Full エディションのファイル 1 個
  データ以外   データフォルダの横のファイル 4 個: 1.txt, 2.txt, 3.txt, ...
  サイズ       公称 12.0 MB、実際 10.0 MB
  構成要素     公称なし、実際 5.0 MB
  バー         最高で 1.0 MB 中 512.0 kB
  ログ         保存していません。--keep DIR で残せます

ログの末尾:
  one
  two

  失敗: ページから先へ進めませんでした
  失敗: メッセージが 2 回表示されました: One
  失敗: メッセージが表示されました: Other
  失敗: 内容が異なります: /e
  失敗: インストールされていません: /g
  警告: lost.db をインストールするものがありません
  警告: ページは discs/3 Spare を一度も要求しませんでした
  警告: 全体は公称 12.0 MB、実際は 10.0 MB です。バーの終わりが早すぎるか遅すぎます
  警告: 最初の構成要素の公称サイズがありません（実際は 5.0 MB）
インストールに失敗しました。
)");
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
  const nlohmann::ordered_json json = reportJson(manyFindings());
  EXPECT_THAT(json["failures"],
              testing::ElementsAre("the page refused Continue", "a sheet appeared 2 times: One",
                                   "a sheet appeared: Other", "content differs: /e", "not installed: /g"));
  EXPECT_THAT(json["remarks"],
              testing::ElementsAre(
                  "nothing installs lost.db", "the page never asked for discs/3 Spare",
                  "the total size is announced as 12.0 MB but is 10.0 MB: the bar will end early or late",
                  "the size of the first component is not announced (it is 5.0 MB)"));
  EXPECT_EQ(json["prompts"][1]["reply"], "late");
  EXPECT_EQ(reportText(manyFindings(), judge(manyFindings())), report) << "it is the user's language again";
}

}  // namespace
}  // namespace tavenhall::test

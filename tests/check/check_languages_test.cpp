#include "host/base/display_text.h"
#include "host/base/text.h"
#include "tests/check/sets.h"
#include "tests/install/child_program.h"

#include <clocale>
#include <nlohmann/json.hpp>
#include <sstream>

// What the built program says of a set in the languages that there are.
namespace tavenhall::test {

namespace {

using testing::EndsWith;
using testing::HasSubstr;

using Arguments = std::vector<std::string>;

Outcome checkIn(const std::string& language, const Arguments& arguments) {
  Arguments command{kTavinstall, "check"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return runThrough(std::move(command), {{"LC_ALL", "C.UTF-8"}, {"LANGUAGE", language}});
}

const Arguments kLumaweave{kSetFolder, "--product", "Lumaweave"};

void makeFaultyDiscSet() {
  makeDiscSet("Publisher = Tavenhall\n" + kDiscLines);
  std::filesystem::create_symlink("nothing", inSet("discs/1 Tavenhall Lumaweave/DOVA/broken"));
}

}  // namespace

TEST(CheckLanguages, GermanOfDiscsWithFaults) {
  makeFaultyDiscSet();
  const Outcome outcome = checkIn("de", kLumaweave);
  EXPECT_EQ(outcome.status, 1) << outcome.error;
  EXPECT_EQ(
      outcome.output,
      "Das Set /Users/tester/Installer\n"
      "  Installer.pkg für Lumaweave, mit dem Datenordner DOVA\n"
      "\n"
      "Was die Seite täte\n"
      "  Modus          2, Installation von Discs. Der Mode in Zeile 2 von .InstallationAttributes.dat lautet "
      "\"InstallFromVolumes\".\n"
      "  Titel          Installing Lumaweave\n"
      "  Text           Now installing to\n"
      "\n"
      "                 ~/Library/Application Support/Tavenhall/DOVA\n"
      "  Ausgabe        Es gibt eine Ausgabe.\n"
      "  Größe          1.0 MB angekündigt durch TotalSizeMillionsBytes; vorhanden sind 0.0 MB\n"
      "  DOVA           nach ~/Library/Application Support/Tavenhall/DOVA, 2 Volumes\n"
      "    1            /Volumes/Tavenhall Lumaweave (discs/1 Tavenhall Lumaweave): DOVA, 2 Dateien, 0.0 MB\n"
      "    2            /Volumes/Tavenhall Lumaweave (discs/2 Tavenhall Lumaweave): DOVA, 1 Datei, 0.0 MB\n"
      "  Am Ende        Installed in\n"
      "\n"
      "                 ~/Library/Application Support/Tavenhall/DOVA\n"
      "\n"
      "Bemerkungen\n"
      "  .InstallationAttributes.dat:1: Warnung: Kein Teil des Installers kennt den Schlüssel \"Publisher\", "
      "daher sieht niemand diese Zeile. [key-unknown]\n"
      "      docs/attributes.md#key-unknown\n"
      "  discs/1 Tavenhall Lumaweave/DOVA/broken: Fehler: Der Link führt ins Leere, daher meldet die Seite "
      "\"Failed to open input file.\" und erklärt die Installation nicht für fertig. [link-broken]\n"
      "      docs/attributes.md#link-broken\n"
      "\n"
      "1 Fehler, 1 Warnung, 0 Hinweise\n");
}

TEST(CheckLanguages, JapaneseOfDiscsWithFaults) {
  makeFaultyDiscSet();
  const Outcome outcome = checkIn("ja", kLumaweave);
  EXPECT_EQ(outcome.status, 1) << outcome.error;
  EXPECT_EQ(
      outcome.output,
      "セット /Users/tester/Installer\n"
      "  Installer.pkg、製品は Lumaweave、データフォルダは DOVA\n"
      "\n"
      "ページの動作\n"
      "  モード         2、ディスクからのインストール。.InstallationAttributes.dat の 2 行目の Mode は "
      "\"InstallFromVolumes\" です。\n"
      "  タイトル       Installing Lumaweave\n"
      "  テキスト       Now installing to\n"
      "\n"
      "                 ~/Library/Application Support/Tavenhall/DOVA\n"
      "  エディション   エディションは 1 つです。\n"
      "  サイズ         TotalSizeMillionsBytes の指定 1.0 MB、実際は 0.0 MB\n"
      "  DOVA           ~/Library/Application Support/Tavenhall/DOVA へ、ボリューム 2 個\n"
      "    1            /Volumes/Tavenhall Lumaweave（discs/1 Tavenhall Lumaweave）: DOVA、ファイル 2 個、0.0 "
      "MB\n"
      "    2            /Volumes/Tavenhall Lumaweave（discs/2 Tavenhall Lumaweave）: DOVA、ファイル 1 個、0.0 "
      "MB\n"
      "  終了時         Installed in\n"
      "\n"
      "                 ~/Library/Application Support/Tavenhall/DOVA\n"
      "\n"
      "指摘事項\n"
      "  .InstallationAttributes.dat:1: 警告: キー \"Publisher\" "
      "を知る部分はインストーラのどこにもないため、この行は誰にも見られません。 [key-unknown]\n"
      "      docs/attributes.md#key-unknown\n"
      "  discs/1 Tavenhall Lumaweave/DOVA/broken: エラー: リンク先がないため、ページには \"Failed to open "
      "input file.\" と表示され、インストールは完了とされません。 [link-broken]\n"
      "      docs/attributes.md#link-broken\n"
      "\n"
      "エラー 1 件、警告 1 件、注記 0 件\n");
}

TEST(CheckLanguages, GermanOfAnUpdateWithoutFaults) {
  makeUpdateSet();
  writeFile("/Users/tester/Has/TANVO/Mirel Packs/Velmora/Soundsources/Factory/Velmora Library/Keys/a.db",
            std::string(2000, 'x'));
  makeFolder("/Users/tester/Has/DOVA");
  const Outcome outcome =
      checkIn("de", {kSetFolder, "--product", "Tessaphon", "--installed", "/Users/tester/Has"});
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  for (const char* line :
       {"  Modus          4, Produkt-Update. Der Mode in Zeile 1 von .InstallationAttributes.dat lautet "
        "\"TavenhallUpdater\".\n",
        "  Ausgabe        Das Update enthält 2 Bibliotheken, jede installiert in der Ausgabe, die der Benutzer "
        "hat.\n",
        "                 Mirel Packs/Velmora: Full, erkannt\n", "                 Tessaphon: Lite, erkannt\n",
        "  Größe          1.0 MB angekündigt durch TotalSizeMillionsBytes; vorhanden sind 0.0 MB, davon 0.0 MB "
        "in der ersten Komponente\n",
        "  /Library/      von /Users/tester/Installer/Library\n",
        "  TANVO          nach /Users/tester/Has/TANVO, 2 Volumes\n",
        "    1            /Users/tester/Installer/First: TANVO, 2 Dateien, 0.0 MB\n",
        "    2            /Users/tester/Installer/Second: TANVO, 2 Dateien, 0.0 MB, die Bibliotheken, die "
        "nicht "
        "Lite sind\n",
        "    1            /Users/tester/Installer/First: kein Datenordner\n", "\n\nNichts zu bemerken.\n"}) {
    EXPECT_THAT(outcome.output, HasSubstr(line));
  }
}

TEST(CheckLanguages, ChineseOfTwoEditions) {
  makeDataUpdateSet();
  const Outcome outcome = checkIn("zh_CN", {kSetFolder, "--product", "Tessaphon", "--install-type", "Lite"});
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  for (const char* line :
       {"  模式           0，数据更新。.InstallationAttributes.dat 第 1 行的 Mode 为 \"DataUpdater\"。\n",
        "  版本           NumberOfVolumes 为 2，因此有 Lite 和 Full 两个版本。指定了 Lite。\n",
        "  大小           Component1SizeMillionsBytes 声明 1.0 MB；实有 0.0 MB，其中第一组件有 0.0 MB\n",
        "  TANVO          到 ~/Library/Application Support/Tavenhall/TANVO，1 个卷\n",
        "    1            /Users/tester/Installer/First：TANVO，1 个文件，0.0 MB\n", "\n\n没有检查意见。\n"}) {
    EXPECT_THAT(outcome.output, HasSubstr(line));
  }
}

// The effect of a missing key ends a sentence of any diagnostic on keys.
TEST(CheckLanguages, SentencesInSentences) {
  makeDiscSet("Mode=InstallFromVolumes\nTotalSizeMillionBytes = 1\n");
  EXPECT_THAT(checkIn("de", kLumaweave).output,
              HasSubstr(": Fehler: Ohne Leerzeichen hinter Mode kennt die Seite den Schlüssel nicht: die Seite "
                        "installiert von Discs. [key-joined]\n"));
  EXPECT_THAT(checkIn("zh_CN", kLumaweave).output,
              HasSubstr(": 错误：\"TotalSizeMillionBytes\" 可能本应为 TotalSizeMillionsBytes，而 "
                        "TotalSizeMillionsBytes "
                        "缺失，因此页面不知道有多少数据，进度条显示的内容不真实。 [key-misspelt]\n"));
}

TEST(CheckLanguages, GermanTellsOneFromSeveral) {
  makeDiscSet("Mode = InstallFromVolumes\nNumberOfVolumes = 1\nTotalSizeMillionsBytes = 1\n");
  std::filesystem::remove_all(inSet("discs/1 Tavenhall Lumaweave/DOVA"));
  const Outcome outcome = checkIn("de", kLumaweave);
  EXPECT_THAT(outcome.output, HasSubstr("Tavenhall/DOVA, 1 Volume\n"));
  EXPECT_THAT(outcome.output, HasSubstr("(discs/1 Tavenhall Lumaweave): kein Datenordner\n"));
  EXPECT_THAT(outcome.output,
              HasSubstr("discs/2 Tavenhall Lumaweave: Warnung: Die Seite installiert 1 Volume und verlangt "
                        "diese Disc nie, daher werden ihre Daten nicht installiert. [disc-surplus]\n"));
  EXPECT_THAT(outcome.output, EndsWith("\n1 Fehler, 1 Warnung, 0 Hinweise\n"));
}

TEST(CheckLanguages, GermanOfDiagnosticsThatAreNotKept) {
  makeDiscSet();
  for (int i = 0; i < 22; ++i) {
    std::filesystem::create_symlink("nothing", inSet("discs/1 Tavenhall Lumaweave/DOVA/" + std::to_string(i)));
  }
  EXPECT_THAT(checkIn("de", kLumaweave).output,
              EndsWith("\n  und 2 weitere von link-broken\n\n22 Fehler, 0 Warnungen, 0 Hinweise\n"));
}

TEST(CheckLanguages, RefusalsAreInTheUsersLanguage) {
  const Outcome outcome = checkIn("de", {"/Users/tester/none"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error,
            "tavinstall: kein Set unter /Users/tester/none; es ist ein Ordner mit einem Paket\n");
}

TEST(CheckLanguages, JsonIsEnglish) {
  makeFaultyDiscSet();
  Arguments arguments = kLumaweave;
  arguments.insert(arguments.end(), {"--format", "json"});
  const Outcome outcome = checkIn("de", arguments);
  EXPECT_EQ(outcome.status, 1) << outcome.error;
  EXPECT_EQ(outcome.output, checkIn("en", arguments).output);
  const nlohmann::json json = nlohmann::json::parse(outcome.output, nullptr, false);
  ASSERT_TRUE(json.is_object()) << outcome.output;
  EXPECT_EQ(json["plan"]["modeReason"],
            "The Mode in line 2 of .InstallationAttributes.dat reads \"InstallFromVolumes\".");
  EXPECT_EQ(json["plan"]["edition"]["reason"], "There is one edition.");
  EXPECT_EQ(json["remarks"][0]["severity"], "warning");
  EXPECT_EQ(json["remarks"][0]["text"], "The key \"Publisher\" is unknown, so this line is ignored.");
}

TEST(CheckLanguages, WithoutOneItIsEnglish) {
  makeFaultyDiscSet();
  Arguments command{kTavinstall, "check"};
  command.insert(command.end(), kLumaweave.begin(), kLumaweave.end());
  const Outcome outcome = runThrough(command, {{"LC_ALL", "C.UTF-8"}, {"LANGUAGE", ""}});
  EXPECT_THAT(outcome.output, HasSubstr("\n  Mode           2, install from discs. The Mode in line 2 of "
                                        ".InstallationAttributes.dat reads \"InstallFromVolumes\".\n"));
  EXPECT_THAT(outcome.output, EndsWith("\n1 error, 1 warning, 0 notes\n"));
}

// Labels of any length, in letters of any width, leave the column where it is.
class CheckInEveryLanguage : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Each, CheckInEveryLanguage, testing::Values("de", "es", "fr", "it", "ja", "zh_CN"),
                         [](const auto& tested) { return std::string(tested.param); });

TEST_P(CheckInEveryLanguage, KeepsTheColumnOfThePlan) {
  ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
  makeDiscSet();
  std::istringstream lines(checkIn(GetParam(), kLumaweave).output);
  int found = 0;
  for (std::string line; std::getline(lines, line);) {
    for (const char* text : {"Installing Lumaweave", "Now installing to", "Installed in"}) {
      if (const std::size_t at = line.find(text); at != std::string::npos) {
        EXPECT_EQ(displayWidth(line.substr(0, at)), 17U) << line;
        ++found;
      }
    }
  }
  EXPECT_EQ(found, 3);
}

}  // namespace tavenhall::test

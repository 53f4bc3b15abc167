#include "tests/cli/in_language.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <sys/stat.h>

// What the built program prints in other languages. Whether a catalogue is complete, and has the placeholders
// of the English, is checked where catalogues are built.
namespace tavenhall::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct Printed {
  const char* name;
  const char* language;
  void (*prepare)();
  Arguments arguments;
  int status;
  std::vector<const char*> texts;  // each in its output or on its standard error
};

void PrintTo(const Printed& printed, std::ostream* out) { *out << printed.name; }

const Printed kPrinted[] = {
    {"ACheckWithProblems",
     "de",
     makeFaultyDiscSet,
     kCheckLumaweave,
     1,
     {"Das Set /Users/tester/Installer\n  Installer.pkg für Lumaweave, mit dem Datenordner DOVA\n",
      "  Modus          2, Installation von Discs. Der Mode in Zeile 2 von .InstallationAttributes.dat lautet "
      "\"InstallFromVolumes\".\n",
      "  Größe          1,0 MB angekündigt durch TotalSizeMillionsBytes; vorhanden sind 0,0 MB\n",
      "    1            /Volumes/Tavenhall Lumaweave (discs/1 Tavenhall Lumaweave): DOVA, 2 Dateien, 0,0 MB\n",
      "    2            /Volumes/Tavenhall Lumaweave (discs/2 Tavenhall Lumaweave): DOVA, 1 Datei, 0,0 MB\n",
      "  .InstallationAttributes.dat:1:1: Warnung: Kein Teil des Installers kennt den Schlüssel \"Publisher\", "
      "daher sieht niemand diese Zeile. [key-unknown]\n",
      "\n1 Fehler, 1 Warnung, 0 Hinweise\n"}},
    {"ACheckWithProblems",
     "ja",
     makeFaultyDiscSet,
     kCheckLumaweave,
     1,
     {"  Installer.pkg、製品は Lumaweave、データフォルダは DOVA\n",
      "  サイズ         TotalSizeMillionsBytes の指定 1.0 MB、実際は 0.0 MB\n",
      "  DOVA           ~/Library/Application Support/Tavenhall/DOVA へ、ボリューム 2 個\n",
      "\nエラー 1 件、警告 1 件、注記 0 件\n"}},
    {"ACheckOfTwoEditions",
     "zh_CN",
     [] { makeDataUpdateSet(); },
     {"check", kSetFolder, "--product", "Tessaphon", "--install-type", "Lite"},
     0,
     {"  版本           NumberOfVolumes 为 2，因此有 Lite 和 Full 两个版本。指定了 Lite。\n",
      "    1            /Users/tester/Installer/First：TANVO，1 个文件，0.0 MB\n", "\n\n没有检查意见。\n"}},
    // The effect of a missing key ends a sentence of any diagnostic on keys.
    {"ASentenceInASentence",
     "de",
     [] { makeDiscSet("Mode=InstallFromVolumes\nTotalSizeMillionsBytes = 1\n"); },
     kCheckLumaweave,
     1,
     {": Fehler: Ohne Leerzeichen hinter Mode kennt die Seite den Schlüssel nicht: die Seite installiert von "
      "Discs. [key-joined]\n"}},
    {"MoreDiagnosticsThanAreShown",
     "de",
     [] {
       makeDiscSet();
       makeBrokenLinks(22);
     },
     kCheckLumaweave,
     1,
     {"\n  und 2 weitere von link-broken\n\n22 Fehler, 0 Warnungen, 0 Hinweise\n"}},
    {"ASetThatIsMissing",
     "de",
     [] {},
     {"check", "/Users/tester/none"},
     2,
     {"tavinstall: kein Set unter /Users/tester/none; es ist ein Ordner mit einem Paket\n"}},
    {"ARehearsal",
     "de",
     [] { makeDiscSet(); },
     rehearsal({"--product", "Lumaweave"}),
     0,
     {"\nProbelauf von /Users/tester/Installer\n",
      "\n  Plan         DOVA nach /Users/rehearsal/Library/Application Support/Tavenhall/DOVA, 2 Volumes\n",
      "\n  Anfrage      Tavenhall Lumaweave: eingelegt\n",
      "\n  Dateien      2 Dateien gleich, 0 anders, 0 fehlend, 0 von einer späteren Kopie ersetzt\n",
      "\nDer Probelauf ist gelungen: Alles wurde installiert, keine Probleme gefunden.\n"}},
    {"ARehearsalThatFails",
     "de",
     makeFaultyDataUpdateSet,
     rehearsal({"--installed", "/Users/tester/had"}),
     1,
     {"  Warnung: First/DOVA/Bassoria/lost.db wird von nichts installiert\nDer Probelauf ist "
      "fehlgeschlagen.\n"}},
    {"ADiscThatIsMissing",
     "de",
     [] { makeDiscSet("Mode = InstallFromVolumes\nNumberOfVolumes = 1\nTotalSizeMillionsBytes = 1\n"); },
     rehearsal({"--product", "Bassoria"}),
     1,
     {"tavinstall: das Set hat keine Disc Tavenhall Bassoria, daher endet der Probelauf hier\n",
      "\n  FEHLER: die Seite verlangt eine Disc, die das Set nicht hat: Tavenhall Bassoria\n  FEHLER: keine "
      "einzige Datei wurde kopiert\n"}},
    {"ADiscWithoutADataFolder",
     "zh_CN",
     [] {
       makeDiscSet("Mode = InstallFromVolumes\nNumberOfVolumes = 1\nTotalSizeMillionsBytes = 1\n");
       writeFile(inSet("discs/3 Tavenhall Bassoria/Dova/one.db"), "one");
     },
     rehearsal({"--product", "Bassoria"}),
     1,
     {"tavinstall: 页面在光盘 Tavenhall Bassoria 上找不到数据文件夹，演练到此结束\n",
      "\n  失败：页面在光盘上找不到数据文件夹，再次请求该光盘：Tavenhall Bassoria\n"}},
    {"TooLittleRoom",
     "de",
     [] {
       makeDownloadSet();
       writeFile(inSet("TANVO/Tessaphon/huge.db"), "x");
       std::filesystem::resize_file(inSet("TANVO/Tessaphon/huge.db"), 8'000'000'000'000);
     },
     rehearsal(),
     2,
     {"tavinstall: die Installation braucht 8,0 TB, und in /tmp/tavinstall-",
      " frei; --keep DIR nimmt einen anderen Ort\n"}},
    {"AFolderThatCannotBeKept",
     "ja",
     [] {
       makeDownloadSet();
       writeFile("/Users/tester/kept/mine", "x");
     },
     rehearsal({"--keep", "/Users/tester/kept"}),
     2,
     {"フォルダ /Users/tester/kept は空ではありません。--keep には新しいフォルダか空のフォルダを指定します\n"}},
    // The engine prints in English by then.
    {"ASummaryThatCannotBeWritten",
     "de",
     [] {
       writeFile("/Users/tester/set/Installer.pkg", "");
       writeFile("/Users/tester/set/.InstallationAttributes.dat",
                 "Mode = DataUpdater\nRelativePath = Nowhere\n");
     },
     {"run", "--ui", "json", "--package", "/Users/tester/set/Installer.pkg", "--summary", "/dev/full"},
     0,
     {"tavinstall: die Zusammenfassung /dev/full kann nicht geschrieben werden: No space left on device\n"}},
};

class PrintedInALanguage : public testing::TestWithParam<Printed> {};
INSTANTIATE_TEST_SUITE_P(Each, PrintedInALanguage, testing::ValuesIn(kPrinted), [](const auto& tested) {
  return std::string(tested.param.name) + "_" + tested.param.language;
});

TEST_P(PrintedInALanguage, IsTranslated) {
  GetParam().prepare();
  const Outcome outcome = inLanguage(GetParam().language, GetParam().arguments);
  EXPECT_EQ(outcome.status, GetParam().status);
  for (const char* text : GetParam().texts) {
    EXPECT_THAT(outcome.output + outcome.error, HasSubstr(text));
  }
}

// ---- Arguments that are refused ----

struct Refused {
  const char* name;
  Arguments arguments;
  const char* english;
  const char* german;
  const char* japanese;
};

void PrintTo(const Refused& refused, std::ostream* out) { *out << refused.name; }

const Refused kRefused[] = {
    {"NoCommand", {}, "A subcommand is required", "ein Befehl fehlt", "コマンドが必要です"},
    {"UnknownCommand",
     {"instal"},
     "The following argument was not expected: instal",
     "unerwartetes Argument: instal",
     "余分な引数があります: instal"},
    {"SuperfluousArguments",
     {"log", "a", "b", "--c"},
     "The following arguments were not expected: b --c",
     "unerwartete Argumente: b --c",
     "余分な引数があります: b --c"},
    {"MissingArgument", {"check"}, "SET is required", "SET fehlt", "SET が必要です"},
    {"ExcludedOption",
     {"run", "--bundle", "/x", "--product", "Bassoria"},
     "--product cannot be combined with --bundle",
     "--product schließt --bundle aus",
     "--product と --bundle は同時に指定できません"},
    {"RepeatedOption",
     {"run", "--ui", "plain", "--ui", "json"},
     "--ui can be given only once",
     "--ui kann nur einmal angegeben werden",
     "--ui は 1 回しか指定できません"},
    {"MissingValue",
     {"run", "--trusted", "--package"},
     "--package requires a value",
     "--package braucht einen Wert",
     "--package には値が必要です"},
    {"EmptyValue",
     {"run", "--package="},
     "--package requires a value",
     "--package braucht einen Wert",
     "--package には値が必要です"},
    {"ValueForAFlag",
     {"run", "--trusted=perhaps"},
     "--trusted takes no value",
     "--trusted nimmt keinen Wert",
     "--trusted に値は指定できません"},
    {"UnknownValue",
     {"run", "--ui", "loud"},
     "--ui: loud not in {json,plain,quiet,terminal}",
     "--ui: loud ist nicht in {json,plain,quiet,terminal}",
     "--ui: loud は {json,plain,quiet,terminal} のどれでもありません"},
    {"NegativeNumber",
     {"rehearse", "/x", "--late", "-1"},
     "--late: -1 is not an integer from 0 up",
     "--late: -1 ist keine ganze Zahl ab 0",
     "--late: -1 は 0 以上の整数ではありません"},
    {"NoNumber",
     {"rehearse", "/x", "--late", "often"},
     "--late: often is not an integer from 0 up",
     "--late: often ist keine ganze Zahl ab 0",
     "--late: often は 0 以上の整数ではありません"},
    {"FractionalNumber",
     {"rehearse", "/x", "--late", "1.5"},
     "--late: 1.5 is not an integer from 0 up",
     "--late: 1.5 ist keine ganze Zahl ab 0",
     "--late: 1.5 は 0 以上の整数ではありません"},
    {"NumberOutOfRange",
     {"rehearse", "/x", "--late", "99999999999"},
     "--late: 99999999999 is not an integer from 0 up",
     "--late: 99999999999 ist keine ganze Zahl ab 0",
     "--late: 99999999999 は 0 以上の整数ではありません"},
};

class RefusedArguments : public testing::TestWithParam<Refused> {};
INSTANTIATE_TEST_SUITE_P(Each, RefusedArguments, testing::ValuesIn(kRefused),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(RefusedArguments, AreNamedInTheUsersLanguage) {
  for (const auto& [language, text] :
       {std::pair("en", GetParam().english), {"de", GetParam().german}, {"ja", GetParam().japanese}}) {
    const Outcome outcome = inLanguage(language, GetParam().arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.error, StartsWith(std::string("tavinstall: ") + text));
  }
}

// Where the help is, and what was probably meant.
TEST(Hints, FollowAnArgumentThatIsRefused) {
  const auto refusalOf = [](const char* language, const Arguments& arguments) {
    return inLanguage(language, arguments).error;
  };
  EXPECT_EQ(refusalOf("en", {}), "tavinstall: A subcommand is required; see tavinstall --help\n");
  EXPECT_EQ(refusalOf("en", {"run", "--package"}),
            "tavinstall: --package requires a value; see tavinstall run --help\n");
  EXPECT_EQ(refusalOf("de", {"check"}), "tavinstall: SET fehlt; siehe tavinstall check --help\n");
  EXPECT_EQ(refusalOf("en", {"run", "--packge=a"}),
            "tavinstall: The following argument was not expected: --packge=a (did you mean --package?); see "
            "tavinstall "
            "run --help\n");
  EXPECT_EQ(
      refusalOf("en", {"rehearsal"}),
      "tavinstall: The following argument was not expected: rehearsal (did you mean rehearse?); see tavinstall "
      "--help\n");
  EXPECT_EQ(refusalOf("en", {"foo"}),
            "tavinstall: The following argument was not expected: foo; see tavinstall --help\n");
}

TEST(Refusal, ForSafetyIsInTheUsersLanguageAndHasAStatusOfItsOwn) {
  writeFile("/Users/tester/open/Installer.pkg", "");
  ASSERT_EQ(chmod("/Users/tester/open", 0777), 0);
  const Arguments arguments{"run", "--ui", "plain", "--package", "/Users/tester/open/Installer.pkg"};
  for (const auto& [language, text] :
       {std::pair("en",
                  "other users can change /Users/tester/open and thereby what is installed; use --trusted to "
                  "install anyway"),
        {"de",
         "andere Benutzer können /Users/tester/open ändern und damit, was installiert wird; --trusted "
         "installiert trotzdem"}}) {
    const Outcome outcome = inLanguage(language, arguments);
    EXPECT_EQ(outcome.status, 6);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.error, std::string("tavinstall: ") + text + "\n");
  }
}

}  // namespace
}  // namespace tavenhall::test

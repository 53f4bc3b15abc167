// The page in a terminal, in other languages than English.
#include "tests/support/files.h"
#include "tests/terminal/in_utf8.h"
#include "tests/terminal/kept_screens.h"
#include "tests/terminal/page_in_terminal.h"
#include "tests/terminal/tmux_terminal.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <ostream>
#include <string>

namespace tavenhall::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

struct Language {
  const char* name;
  const char* introduction;  // the last line of the first page
  const char* button;        // that goes on
  const char* refused;       // what the page says when it is not to be left yet
  const char* leave;         // the question's heading
  const char* stopped;
  const char* missing;  // what the page itself, not the program, says of a missing data folder
  const char* failed;
  const char* lastWord;
};

void PrintTo(const Language& language, std::ostream* out) { *out << language.name; }

class TerminalInLanguage : public InUtf8, public testing::WithParamInterface<Language> {
 protected:
  static std::string screenOf(const char* name) { return std::string(GetParam().name) + "-" + name; }
  static TmuxTerminal::Environment language() { return {{"LANGUAGE", GetParam().name}}; }
};
INSTANTIATE_TEST_SUITE_P(
    Each, TerminalInLanguage,
    testing::Values(
        Language{"de", "Mit Fortfahren beginnt die Installation.", "[ Fortfahren ]", "abgeschlossen.",
                 "Den Installer verlassen?",
                 "Angehalten. Was bisher kopiert wurde, bleibt; ein neuer Lauf vervollständigt es.\n"
                 "Das Protokoll ist /Users/tester/Library/Caches/Tavenhall/installationLog.txt.\n",
                 "wurde nicht gefunden.", "Die Installation ist fehlgeschlagen.",
                 "Die Installation ist fehlgeschlagen. Kopiert: 0 bytes in "},
        Language{"ja", "「続ける」を押すと始まります。", "[ 続ける(C) ]", "完了していません。",
                 "インストーラを終了しますか？",
                 "中止しました。コピー済みのものは残ります。完了するには再度インストールしてください。\n"
                 "ログは /Users/tester/Library/Caches/Tavenhall/installationLog.txt です。\n",
                 "が見つかりません。", "インストールに失敗しました。",
                 "インストールに失敗しました。コピー: 0 bytes（"}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(TerminalInLanguage, ItsLanguageFromTheFirstPageToTheLast) {
  layTwoDiscSet();
  setAttributes(
      "Mode = InstallFromVolumes\nInstallDataTitle = Installing Tessaphon Data\nTotalSizeMillionsBytes = 2\n");
  makeFolder(std::string(kTanvo) + "/Tessaphon/Keyboards/002.db");  // in a file's way
  TmuxTerminal terminal(80, 24, runCommand(), language());
  terminal.waitFor(GetParam().introduction);
  expectScreen(terminal, screenOf("introduction"));
  terminal.press({"Enter"});
  terminal.waitFor("Failed to open output file.");
  terminal.press({"Enter"});
  terminal.waitFor(GetParam().button);
  terminal.press({"Enter"});
  terminal.waitFor(GetParam().refused);
  terminal.press({"Enter"});
  terminal.waitFor("002.db");
  expectScreen(terminal, screenOf("not-complete"));
}

constexpr const char* kShortCopy =
    "thread\ninstructions Now installing.\nmax 1953125\nvalue 840000\nstatus Installing... Keyboards\n"
    "wait /tmp/go\nready 1\nnext 1\n";

TEST_P(TerminalInLanguage, ItsLanguageWhileItCopiesAndWhenItIsLeft) {
  TmuxTerminal terminal(60, 20, runScript(kShortCopy), language());
  terminal.waitFor(GetParam().button);
  terminal.press({"Enter"});
  terminal.waitFor("43 %");
  expectScreen(terminal, screenOf("copy-60x20"));
  terminal.press({"C-c"});
  terminal.waitFor(GetParam().leave);
  expectScreen(terminal, screenOf("leave-60x20"));
  terminal.resize(120, 40);
  expectScreen(terminal, screenOf("leave-120x40"));
  terminal.press({"Tab", "Enter"});
  EXPECT_THAT(terminal.waitFor("[ended with"), AllOf(HasSubstr(GetParam().stopped), HasSubstr("with 4]")));
}

TEST_P(TerminalInLanguage, ItsLanguageWhenAllIsInstalled) {
  TmuxTerminal terminal(
      80, 24, runScript("thread\nmax 1953125\nvalue 1953125\ninstructions All done.\nready 1\nnext 1\n"),
      language());
  terminal.waitFor(GetParam().introduction);
  terminal.press({"Enter"});
  terminal.waitFor("All done.");
  terminal.waitFor(GetParam().button);
  terminal.press({"Enter"});
  terminal.waitFor("installationLog.txt");
  expectScreen(terminal, screenOf("successful"));
}

// What the page says and what the program says of it come in one language.
TEST_P(TerminalInLanguage, TheLanguageOfThePage) {
  layTwoDiscSet();
  std::filesystem::remove_all(kTanvo);
  TmuxTerminal terminal(80, 24, runCommand(), language());
  terminal.waitFor(GetParam().introduction);
  terminal.press({"Enter"});
  terminal.waitFor(GetParam().missing);
  terminal.press({"Enter"});
  terminal.waitFor(GetParam().failed);
  terminal.press({"Enter"});
  EXPECT_THAT(terminal.waitFor("[ended with"), HasSubstr(GetParam().lastWord));
}

using TerminalLanguage = InUtf8;

TEST_F(TerminalLanguage, IsEnglishWhereTheEnvironmentNamesNone) {
  std::vector<std::string> command{"/usr/bin/env", "-u", "LANGUAGE"};
  const std::vector<std::string> run = runScript(kShortCopy);
  command.insert(command.end(), run.begin(), run.end());
  TmuxTerminal terminal(80, 24, command);
  terminal.waitFor("Press Continue to begin.");
  terminal.press({"Enter"});
  EXPECT_THAT(terminal.waitFor("43 %"),
              AllOf(HasSubstr("✓ Introduction"), HasSubstr("860.2 MB of 2.0 GB copied"), HasSubstr("q leave")));
}

TEST_F(TerminalLanguage, IsAHotKeysToo) {
  TmuxTerminal terminal(80, 24, runScript(kShortCopy), {{"LANGUAGE", "ja"}});
  terminal.waitFor("[ 続ける(C) ]");
  terminal.press({"c"});
  terminal.waitFor("43 %");
}

}  // namespace
}  // namespace tavenhall::test

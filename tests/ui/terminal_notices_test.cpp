#include "host/ui/terminal_notices.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace tavenhall::test {
namespace {

using End = TerminalNotice::End;

constexpr NoticeAbilities kAll{true, true, true, true};

TEST(TerminalNotices, TellOnlyWhatHasChanged) {
  TerminalNotices notices(kAll);
  EXPECT_EQ(notices.begin(), "\033[22;2t");
  EXPECT_EQ(notices.update({"Tessaphon", {}, "", End::none}), "\033]2;Tessaphon\a");
  EXPECT_EQ(notices.update({"Tessaphon", {}, "", End::none}), "");
  EXPECT_EQ(notices.update({"Tessaphon", 12, "", End::none}), "\033]2;12 % - Tessaphon\a\033]9;4;1;12\a");
  EXPECT_EQ(notices.update({"Tessaphon", 12, "", End::none}), "");
  EXPECT_EQ(notices.update({"Tessaphon", 12, "Insert B", End::none}),
            "\033]2;Insert B - Tessaphon\a\033]9;4;4;12\a\033]9;Tessaphon: Insert B\a\a");
  EXPECT_EQ(notices.update({"Tessaphon", 12, "Insert B", End::none}), "");
  EXPECT_EQ(notices.update({"Tessaphon", 12, "", End::none}), "\033]2;12 % - Tessaphon\a\033]9;4;1;12\a");
  EXPECT_EQ(notices.update({"Tessaphon", 12, "Insert B", End::none}),
            "\033]2;Insert B - Tessaphon\a\033]9;4;4;12\a\033]9;Tessaphon: Insert B\a\a")
      << "the same need again calls again";
  EXPECT_EQ(notices.update({"Tessaphon", 100, "", End::success}),
            "\033]2;The installation was successful. - Tessaphon\a\033]9;4;0\a"
            "\033]9;Tessaphon: The installation was successful.\a\a");
  EXPECT_EQ(notices.end(), "\033]9;4;0\a\033[23;2t");
}

TEST(TerminalNotices, AFailureStaysInTheWindowsIcon) {
  TerminalNotices notices({false, false, false, true});
  EXPECT_EQ(notices.update({"Tessaphon", 50, "", End::failure}), "\033]9;4;2;100\a");
}

TEST(TerminalNotices, ATextOfAFileCannotEndItsSequence) {
  TerminalNotices notices({false, true, true, false});
  const std::string sequences = notices.update({"T\a\033[2Jx", {}, "Insert\033]0;B\n\x9d", End::none});
  EXPECT_EQ(sequences.find("\033[2J"), std::string::npos);
  EXPECT_EQ(sequences.find("\033]0;"), std::string::npos);
  EXPECT_EQ(std::count(sequences.begin(), sequences.end(), '\a'), 2);
  EXPECT_EQ(sequences.find('\n'), std::string::npos);
}

TEST(TerminalNotices, ATerminalWithoutAbilitiesGetsNothing) {
  TerminalNotices notices({});
  EXPECT_EQ(notices.begin() + notices.update({"Tessaphon", 5, "Insert B", End::none}) +
                notices.update({"Tessaphon", 5, "", End::failure}) + notices.end(),
            "");
}

struct TerminalCase {
  const char* name;
  std::map<std::string, const char*> variables;
  NoticeAbilities abilities;
};

void PrintTo(const TerminalCase& terminal, std::ostream* stream) { *stream << terminal.name; }

class TerminalAbilities : public testing::TestWithParam<TerminalCase> {};

TEST_P(TerminalAbilities, AreThoseThatTheTerminalIsKnownToHave) {
  const auto& variables = GetParam().variables;
  const auto variable = [&variables](const char* name) -> const char* {
    const auto found = variables.find(name);
    return found != variables.end() ? found->second : nullptr;
  };
  EXPECT_EQ(noticeAbilities(variable), GetParam().abilities);
}

INSTANTIATE_TEST_SUITE_P(
    Each, TerminalAbilities,
    testing::Values(
        TerminalCase{"Unknown", {}, {true, false, false, false}},
        TerminalCase{"Dumb", {{"TERM", "dumb"}}, {true, false, false, false}},
        TerminalCase{"LinuxConsole", {{"TERM", "linux"}}, {true, false, false, false}},
        TerminalCase{"Xterm", {{"TERM", "xterm-256color"}}, {true, true, false, false}},
        TerminalCase{
            "Iterm", {{"TERM", "xterm-256color"}, {"TERM_PROGRAM", "iTerm.app"}}, {true, true, true, false}},
        TerminalCase{"Kitty", {{"TERM", "xterm-kitty"}, {"KITTY_WINDOW_ID", "1"}}, {true, true, true, false}},
        TerminalCase{
            "Ghostty", {{"TERM", "xterm-ghostty"}, {"TERM_PROGRAM", "ghostty"}}, {true, true, true, true}},
        TerminalCase{
            "WindowsTerminal", {{"TERM", "xterm-256color"}, {"WT_SESSION", "a"}}, {true, true, false, true}},
        TerminalCase{
            "OldVte", {{"TERM", "xterm-256color"}, {"VTE_VERSION", "7006"}}, {true, true, false, false}},
        TerminalCase{"Vte", {{"TERM", "xterm-256color"}, {"VTE_VERSION", "8000"}}, {true, true, false, true}},
        TerminalCase{
            "TmuxInVte", {{"TERM", "tmux-256color"}, {"VTE_VERSION", "8000"}}, {true, true, false, false}}),
    [](const testing::TestParamInfo<TerminalCase>& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace tavenhall::test

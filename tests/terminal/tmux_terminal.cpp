#include "tests/terminal/tmux_terminal.h"

#include "host/base/display_text.h"
#include "tests/install/child_program.h"
#include "tests/support/children.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <thread>
#include <utility>

namespace tavenhall::test {

namespace {

int serverCount = 0;

constexpr auto kPatience = std::chrono::seconds(60);

std::string quoted(const std::string& word) {
  std::string text = "'";
  for (const char character : word) {
    text += character == '\'' ? "'\\''" : std::string(1, character);
  }
  return text + "'";
}

}  // namespace

TmuxTerminal::TmuxTerminal(int columns, int rows, const std::vector<std::string>& command,
                           const Environment& environment)
    : server_("terminal-test-" + std::to_string(++serverCount)) {
  // The leak check at exit stops all threads by ptrace, and hangs when the terminal is closed meanwhile.
  std::string line = "exec 2>&1; trap : INT; env -u TMUX LC_ALL=C.UTF-8 ASAN_OPTIONS=detect_leaks=0";
  for (const auto& [name, value] : environment) {
    line += " " + name + "=" + quoted(value);
  }
  for (const std::string& word : command) {
    line += " " + quoted(word);
  }
  // The shell outlives the program, so that its status can be read and nothing of the screen is lost.
  line += "; echo \"[ended with $?]\"; sleep 3600";
  tmux({"new-session", "-d", "-x", std::to_string(columns), "-y", std::to_string(rows), line, ";", "set-option",
        "-g", "status", "off"});
}

TmuxTerminal::~TmuxTerminal() { close(); }

std::string TmuxTerminal::tmux(std::vector<std::string> arguments) const {
  std::vector<std::string> line{"tmux", "-u", "-L", server_, "-f", "/dev/null"};
  line.insert(line.end(), arguments.begin(), arguments.end());
  return runThrough(line, {{"LC_ALL", "C.UTF-8"}, {"SHELL", "/bin/sh"}}).output;
}

void TmuxTerminal::press(std::initializer_list<const char*> keys) {
  std::vector<std::string> arguments{"send-keys"};
  arguments.insert(arguments.end(), keys.begin(), keys.end());
  tmux(arguments);
}

namespace {

// What a terminal says of its mouse: the button, then where it is.
std::string mouseReport(char button, int column, int row) {
  return std::string("\033[M") + button + static_cast<char>(33 + column) + static_cast<char>(33 + row);
}

}  // namespace

void TmuxTerminal::click(int column, int row) {
  tmux({"send-keys", "-l", mouseReport(' ', column, row)});
  tmux({"send-keys", "-l", mouseReport('#', column, row)});
}

void TmuxTerminal::clickAtOnce(const std::vector<Place>& places) {
  std::string reports;
  for (const auto& [column, row] : places) {
    reports += mouseReport(' ', column, row) + mouseReport('#', column, row);
  }
  tmux({"send-keys", "-l", reports});
}

void TmuxTerminal::turnWheel(bool down, int column, int row) {
  tmux({"send-keys", "-l", mouseReport(down ? 'a' : '`', column, row)});
}

void TmuxTerminal::resize(int columns, int rows) {
  tmux({"resize-window", "-x", std::to_string(columns), "-y", std::to_string(rows)});
}

void TmuxTerminal::close() { tmux({"kill-server"}); }

std::string TmuxTerminal::screen() { return tmux({"capture-pane", "-p"}); }

std::string TmuxTerminal::waitUntil(const std::function<bool(const std::string& shown)>& isRight) {
  std::string shown;
  static_cast<void>(comesTrue([&] {
    shown = screen();
    return isRight(shown);
  }));
  return shown;
}

std::string TmuxTerminal::waitFor(const std::string& text) {
  const auto hasCome = [&text](const std::string& shown) { return shown.find(text) != std::string::npos; };
  const std::string shown = waitUntil(hasCome);
  EXPECT_TRUE(hasCome(shown)) << "\"" << text << "\" never came; there is\n" << shown;
  return shown;
}

std::string TmuxTerminal::waitForColoured(const std::string& text) {
  std::string shown;
  EXPECT_TRUE(comesTrue([&] {
    shown = tmux({"capture-pane", "-p", "-e"});
    return shown.find(text) != std::string::npos;
  })) << text
      << " never came";
  return shown;
}

void TmuxTerminal::waitUntilGone(const std::string& text) {
  EXPECT_TRUE(comesTrue([&] { return screen().find(text) == std::string::npos; })) << text << " never went";
}

TmuxTerminal::Place TmuxTerminal::find(const std::string& text) {
  std::istringstream shown(screen());
  int row = 0;
  for (std::string line; std::getline(shown, line); ++row) {
    if (const std::size_t at = line.find(text); at != std::string::npos) {
      return {displayWidth(line.substr(0, at)), row};
    }
  }
  ADD_FAILURE() << text << " is not on the screen";
  return {};
}

std::string TmuxTerminal::ask(const std::string& format) {
  const std::string answer = tmux({"display-message", "-p", format});
  return answer.substr(0, answer.find('\n'));
}

pid_t TmuxTerminal::program() {
  const std::vector<pid_t> children = childrenOf(std::stoi(ask("#{pane_pid}")));
  EXPECT_EQ(children.size(), 1U);
  return children.empty() ? -1 : children[0];
}

namespace {

// The line of a file below /proc, from the first field after the program's name on.
std::istringstream statFields(const std::string& path) {
  std::ifstream file(path);
  std::string text;
  std::getline(file, text);
  const std::size_t name = text.rfind(')');
  return std::istringstream(name == std::string::npos ? std::string() : text.substr(name + 2));
}

long ticksIn(const std::string& statPath) {
  std::istringstream fields = statFields(statPath);
  std::string skipped;
  for (int field = 3; field < 14; ++field) {
    fields >> skipped;
  }
  long user = 0;
  long system = 0;
  fields >> user >> system;
  return user + system;
}

long switchesIn(const std::string& statusPath) {
  std::ifstream file(statusPath);
  long sum = 0;
  for (std::string line; std::getline(file, line);) {
    if (const std::size_t name = line.find("ctxt_switches:"); name != std::string::npos) {
      sum += std::stol(line.substr(line.find(':') + 1));
    }
  }
  return sum;
}

}  // namespace

ProcessorUse processorUseOf(pid_t process) {
  const std::string folder = "/proc/" + std::to_string(process);
  ProcessorUse use{ticksIn(folder + "/stat"), 0};
  for (const auto& thread : std::filesystem::directory_iterator(folder + "/task")) {
    use.switches += switchesIn(thread.path().string() + "/status");
  }
  return use;
}

void waitForIdle(pid_t one, pid_t other, int seconds) {
  const auto both = [=] { return std::pair(processorUseOf(one), processorUseOf(other)); };
  auto latest = both();
  auto since = std::chrono::steady_clock::now();
  EXPECT_TRUE(comesTrue([&] {
    const auto now = std::chrono::steady_clock::now();
    if (const auto use = both(); use != latest) {
      latest = use;
      since = now;
    }
    return now - since >= std::chrono::seconds(seconds);
  })) << "they never rest";
}

void waitUntilStopped(pid_t process) {
  const std::string stat = "/proc/" + std::to_string(process) + "/stat";
  EXPECT_TRUE(comesTrue([&stat] { return statFields(stat).get() == 'T'; })) << "never stopped";
}

}  // namespace tavenhall::test

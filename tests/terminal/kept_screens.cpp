#include "tests/terminal/kept_screens.h"

#include "tests/support/files.h"

#include <chrono>
#include <cstdlib>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

namespace tavenhall::test {

namespace {

struct Mask {
  std::regex pattern;
  const char* text;
};

// In this order. The rate and the time left come and go with the time that a test takes.
const std::vector<Mask>& masks() {
  static const std::vector<Mask> kMasks = {
      {std::regex(R"((Free|Frei|空き容量)( +)[0-9.,]+ [a-zA-Z]+)"), "$1$2<free>"},
      {std::regex(R"( +[0-9.,]+ (bytes|[kMGT]B)/s)"), ""},
      {std::regex(R"(([0-9]+ h )?([0-9]+ min )?[0-9]+ (s|min) (passed|vergangen))"), "<time> $4"},
      {std::regex(R"(経過 ([0-9]+ h )?([0-9]+ min )?[0-9]+ (s|min))"), "経過 <time>"},
      {std::regex(R"( +(about [0-9a-z ]+|less than a minute) left)"), ""},
      {std::regex(R"( +(noch etwa|noch unter|残り約|残り) [0-9a-z ]+( 未満)?)"), ""},
      {std::regex(R"(( in |（)([0-9]+ h )?([0-9]+ min )?[0-9]+ (s|min))"), "$1<time>"},
      {std::regex("[0-9]+ s copying, [0-9]+ s waiting for discs, [0-9]+ s"),
       "<time> copying, <time> waiting for discs, <time>"},
  };
  return kMasks;
}

std::string masked(const std::string& shown) {
  std::istringstream lines(shown);
  std::string text;
  for (std::string line; std::getline(lines, line);) {
    for (const Mask& mask : masks()) {
      line = std::regex_replace(line, mask.pattern, mask.text);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + "\n";
  }
  return text;
}

// What shows when it has not changed for a second.
std::string settledScreen(TmuxTerminal& terminal) {
  using Clock = std::chrono::steady_clock;
  std::string latest;
  Clock::time_point since;
  return terminal.waitUntil([&](const std::string& shown) {
    if (std::string text = masked(shown); text != latest) {
      latest = std::move(text);
      since = Clock::now();
    }
    return Clock::now() - since > std::chrono::seconds(1);
  });
}

}  // namespace

void expectScreen(TmuxTerminal& terminal, const std::string& name) {
  const std::string path = std::string(TAVINSTALL_SOURCE_DIR) + "/tests/terminal/screens/" + name + ".txt";
  const char* renew = std::getenv("TAVINSTALL_RENEW");
  if (renew != nullptr && std::string_view(renew) == "1") {
    writeFile(path, masked(settledScreen(terminal)));
    return;
  }
  const std::string kept = readFile(path);
  const std::string shown =
      terminal.waitUntil([&kept](const std::string& screen) { return masked(screen) == kept; });
  EXPECT_EQ(masked(shown), kept) << "as in " << path;
}

}  // namespace tavenhall::test

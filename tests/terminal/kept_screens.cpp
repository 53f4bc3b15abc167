#include "tests/terminal/kept_screens.h"

#include "tests/support/files.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>
#include <string_view>

namespace tavenhall::test {

namespace {

struct Mask {
  const char* pattern;
  const char* text;
};

// In this order. The rate and the time left come and go with the time that a test takes.
constexpr Mask kMasks[] = {
    {R"(Free +[0-9.]+ [a-zA-Z]+ on that disk)", "Free    <free> on that disk"},
    {R"( +[0-9.]+ (bytes|[kMGT]B)/s)", ""},
    {R"(([0-9]+ h )?([0-9]+ min )?[0-9]+ (s|min) passed)", "<time> passed"},
    {R"( +(about [0-9a-z ]+|less than a minute) left)", ""},
    {R"( in ([0-9]+ h )?([0-9]+ min )?[0-9]+ (s|min))", " in <time>"},
};

std::string masked(const std::string& shown) {
  std::istringstream lines(shown);
  std::string text;
  for (std::string line; std::getline(lines, line);) {
    for (const Mask& mask : kMasks) {
      line = std::regex_replace(line, std::regex(mask.pattern), mask.text);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + "\n";
  }
  return text;
}

}  // namespace

void expectScreen(const std::string& shown, const std::string& name) {
  const std::string path = std::string(TAVINSTALL_SOURCE_DIR) + "/tests/terminal/screens/" + name + ".txt";
  const char* renew = std::getenv("TAVINSTALL_RENEW");
  if (renew != nullptr && std::string_view(renew) == "1") {
    writeFile(path, masked(shown));
    return;
  }
  EXPECT_EQ(masked(shown), readFile(path)) << "as in " << path;
}

}  // namespace tavenhall::test

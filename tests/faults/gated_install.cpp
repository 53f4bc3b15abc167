#include "tests/faults/gated_install.h"

#include "tests/install/case_files.h"
#include "tests/support/files.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace tavenhall::test {

namespace {

constexpr int kMostAnswers = 100;

}  // namespace

GatedRun install(const std::vector<std::string>& arguments, const Judge& judge) {
  std::vector<std::string> line{kTavinstall, "run", "--ui", "plain", "--package", kPackage};
  line.insert(line.end(), arguments.begin(), arguments.end());
  std::string answers;
  for (int i = 0; i < kMostAnswers; ++i) {
    answers += "1\n";
  }
  GatedRun run = runGated(line, answers, judge);
  EXPECT_FALSE(run.isHung) << run.output << run.error;
  EXPECT_EQ(run.error.find("Sanitizer"), std::string::npos) << run.error;
  EXPECT_EQ(run.error.find("runtime error:"), std::string::npos) << run.error;
  return run;
}

GatedRun installWith(const Judge& judge) { return install({}, judge); }

std::vector<std::string> missingFiles(const std::vector<Entry>& entries, const std::string& from,
                                      const std::string& to) {
  std::vector<std::string> missing;
  for (const Entry& entry : entries) {
    if (entry.kind != Entry::Kind::file || !entry.path.starts_with(from + "/")) {
      continue;
    }
    const std::string tail = entry.path.substr(from.size() + 1);
    const std::string destination = to + "/" + tail;
    if (!exists(destination) || readFile(destination) != entry.text) {
      missing.push_back(tail);
    }
  }
  return missing;
}

void expectInstalled(const std::vector<Entry>& entries, const std::string& from, const std::string& to,
                     const std::vector<std::string>& except) {
  EXPECT_EQ(missingFiles(entries, from, to), except);
  for (const std::string& tail : except) {
    EXPECT_TRUE(isNamedInLog(to + "/" + tail)) << tail;
  }
}

bool isNamedInLog(const std::string& destination) {
  return std::ranges::any_of(logMessages(), [&](const std::string& message) {
    return (message.starts_with("Source error ") || message.starts_with("Target error ") ||
            message.starts_with("File copy failure: sizes differ: ")) &&
           message.find(destination) != std::string::npos;
  });
}

std::string lastWord(const GatedRun& run) {
  const std::size_t end = run.output.find("\nThe log is ");
  if (end == std::string::npos) {
    return "";
  }
  const std::size_t start = run.output.rfind('\n', end - 1);
  return run.output.substr(start == std::string::npos ? 0 : start + 1, end - start - 1);
}

int countIn(const std::string& text, const std::string& piece) {
  int count = 0;
  for (std::size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + piece.size())) {
    ++count;
  }
  return count;
}

}  // namespace tavenhall::test

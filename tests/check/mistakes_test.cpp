#include "tests/check/mistakes.h"

#include <cstdlib>

// What the check says of sets with a mistake, as a gallery: docs/mistakes.md is the expectation.
// TAVINSTALL_RENEW=1 writes it.
namespace tavenhall::test {
namespace {

std::string gallery() {
  std::string text =
      "# Mistakes, and what the check says\n\nEach set has one mistake. Below it is what `tavinstall check` "
      "prints "
      "after the plan. Made by a test.\n";
  for (const Mistake& mistake : allMistakes()) {
    makeSetWith(mistake);
    const CheckResult result = checkFor(productOf(mistake), "");
    EXPECT_FALSE(result.diagnostics.all().empty()) << mistake.title;
    std::string shown = diagnosticsText(result, {});
    shown = shown.substr(0, shown.rfind("For an explanation"));
    text += std::string("\n## ") + mistake.title + "\n\n```\n" + shown + "```\n";
  }
  return text;
}

TEST(Mistakes, AreExplainedAsInTheGallery) {
  const std::string file = std::string(TAVINSTALL_SOURCE_DIR) + "/docs/mistakes.md";
  const std::string made = gallery();
  if (std::getenv("TAVINSTALL_RENEW") != nullptr) {
    writeFile(file, made);
  }
  EXPECT_EQ(made, readFile(file));
  EXPECT_GE(allMistakes().size(), 40U);
}

}  // namespace
}  // namespace tavenhall::test

#include "context/install_rules.h"
#include "host/check/diagnostics.h"
#include "tests/check/sets.h"

#include <algorithm>
#include <cstdlib>

namespace tavenhall::test {

namespace {

std::string source(const std::string& path) {
  return readFile(std::string(TAVINSTALL_SOURCE_DIR) + "/" + path);
}

std::size_t timesIn(const std::string& text, const std::string& part) {
  std::size_t times = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++times;
  }
  return times;
}

}  // namespace

// The document is made from the table: TAVINSTALL_RENEW=1 writes it.
TEST(Reference, OfTheDiagnosticsIsTheirTable) {
  if (std::getenv("TAVINSTALL_RENEW") != nullptr) {
    writeFile(std::string(TAVINSTALL_SOURCE_DIR) + "/docs/diagnostics.md", diagnosticsDocument());
  }
  EXPECT_EQ(source("docs/diagnostics.md"), diagnosticsDocument());
  for (const DiagnosticKind& kind : diagnosticKinds()) {
    EXPECT_FALSE(kind.wrong.empty() || kind.right.empty() || kind.explanation.empty()) << kind.name;
  }
}

TEST(Reference, ExplainsEveryKeyWithAnExample) {
  const std::string reference = source("docs/attributes.md");
  for (const AttributesKey& key : attributesKeys()) {
    const std::string name = key.name;
    EXPECT_EQ(timesIn(reference, "\n### " + name + "\n"), 1U) << name;
    EXPECT_GE(timesIn(reference, "\n    " + name + " = "), 1U) << name;
  }
}

TEST(Reference, StatesTheShortBuiltInTexts) {
  const std::string reference = source("docs/attributes.md");
  for (const AttributesKey& key : attributesKeys()) {
    if (key.fallback != nullptr && std::string(key.fallback).find('\n') == std::string::npos) {
      EXPECT_GE(timesIn(reference, "| `" + std::string(key.fallback) + "` |"), 1U) << key.name;
    }
  }
}

TEST(Reference, StatesWhatEachDiscIsCalled) {
  const std::string reference = source("docs/attributes.md");
  for (const char* product : {"Tessaphon", "Lumaweave", "Bassoria", "TemporaQX"}) {
    std::string row = "| " + std::string(product) + " ";
    std::string last;
    for (std::int32_t number = 0; number < 3; ++number) {
      BoundedText<kPathSize> path;
      volumeMountPath(product, number, path);
      const std::string name(path.view().substr(9));
      row += name == last ? "| the same " : "| `" + name + "` ";
      last = name;
    }
    EXPECT_EQ(timesIn(reference, row + "|\n"), 1U) << row;
  }
}

// The reference is what a diagnostic links to.
TEST(Reference, IsLinkedFromDiagnostics) {
  makeDiscSet("Publisher = Tavenhall\n" + kDiscLines);
  const CheckResult result = checkFor("Lumaweave");
  ASSERT_EQ(result.diagnostics.all().size(), 1U);
  EXPECT_EQ(result.diagnostics.all()[0].reference(), "docs/diagnostics.md#key-unknown");
}

TEST(Reference, EveryDiagnosticIsProvokedByATest) {
  std::string tests;
  for (const char* topic : {"attributes", "value", "setting", "disc", "file", "boundary", "update"}) {
    tests += source("tests/check/" + std::string(topic) + "_diagnostics_test.cpp");
  }
  for (const DiagnosticKind& kind : diagnosticKinds()) {
    const std::string expected =
        "{\"" + std::string(kind.name) + "\", \"" + severityWord(kind.severity) + "\", ";
    EXPECT_GE(timesIn(tests, expected), 1U) << expected;
  }
}

TEST(Reference, NoTwoDiagnosticsHaveOneName) {
  std::vector<std::string_view> names;
  for (const DiagnosticKind& kind : diagnosticKinds()) {
    names.push_back(kind.name);
  }
  std::sort(names.begin(), names.end());
  EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end());
}

}  // namespace tavenhall::test

#include "tests/check/random_attributes.h"
#include "tests/check/sets.h"

#include <nlohmann/json.hpp>

namespace tavenhall::test {

namespace {

// Everything that a check does; its JSON must be some, and what it says must fit its end.
void expectAnAnswer(const std::string& product) {
  const CheckResult result = checkFor(product, "");
  ASSERT_TRUE(nlohmann::json::accept(checkJson({&result, 1})));
  const bool isSound = checkText(result).ends_with("No problems found.\n");
  ASSERT_EQ(isSound, result.diagnostics.all().empty());
}

}  // namespace

TEST(AnyInput, AnyBytesInTheAttributesFileGetAnAnswer) {
  std::mt19937 random(7);
  makeDiscSet();
  for (int round = 0; round < 40 && !HasFatalFailure(); ++round) {
    writeAttributes(randomBytes(random));
    expectAnAnswer("Lumaweave");
  }
}

TEST(AnyInput, AnyLinesInTheAttributesFileGetAnAnswer) {
  std::mt19937 random(8);
  makeUpdateSet();
  static const std::vector<std::string> kModes{"DataUpdater", "InstallFromVolumes", "SupportHub", "Downloaded"};
  for (int round = 0; round < 60 && !HasFatalFailure(); ++round) {
    writeAttributes("Mode = " + kModes[random() % kModes.size()] + "\n" + randomLines(random));
    expectAnAnswer("Tessaphon");
  }
}

}  // namespace tavenhall::test

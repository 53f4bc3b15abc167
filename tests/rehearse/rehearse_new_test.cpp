#include "tests/install/child_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace tavenhall::test {
namespace {

using testing::HasSubstr;

// Sets with discs take the page's waits; `tavinstall check` finds no problem in them either
// (tests/cli/new_test.cpp).
TEST(RehearseNew, ASetWithPlaceholdersPasses) {
  for (const char* mode : {"download", "data-update", "product-update"}) {
    SCOPED_TRACE(mode);
    const std::string set = std::string("/tmp/new ") + mode;
    ASSERT_EQ(
        runThrough({kTavinstall, "new", set, "--product", "Tessaphon", "--mode", mode, "--editions"}).status,
        0);
    const Outcome outcome = runThrough({kTavinstall, "rehearse", set, "--ui", "quiet"});
    EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.error;
    EXPECT_THAT(outcome.output, HasSubstr("Rehearsal passed: everything was installed, no problems found."));
  }
}

}  // namespace
}  // namespace tavenhall::test

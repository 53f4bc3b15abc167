#include "host/base/text.h"

#include "host/base/display_text.h"

#include <clocale>
#include <gtest/gtest.h>

namespace tavenhall::test {
namespace {

TEST(Text, ValuesTakeTheirPlacesInAnyOrder) {
  EXPECT_EQ(format("{0} and {1}", {"a", "b"}), "a and b");
  EXPECT_EQ(format("{1}{0}{1}", {"a", "b"}), "bab");
  EXPECT_EQ(format("{{0} {2} {x} {", {"{0}"}), "{0} {2} {x} {");
  EXPECT_EQ(format("{0}", {"{0}"}), "{0}");
}

TEST(Text, CountsOneAndSeveral) {
  EXPECT_EQ(plural("{0} file of {1}", "{0} files of {1}", 1, {"x"}), "1 file of x");
  EXPECT_EQ(plural("{0} file of {1}", "{0} files of {1}", 0, {"x"}), "0 files of x");
}

TEST(Text, IsPaddedByItsColumns) {
  ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
  EXPECT_EQ(padRight("日本", 6), "日本  ");
  EXPECT_EQ(padRight("e\xCC\x81", 3), "e\xCC\x81  ");
  EXPECT_EQ(padRight("\xFF", 3), "\xFF  ");
  EXPECT_EQ(padRight("longer", 3), "longer ");
}

}  // namespace
}  // namespace tavenhall::test

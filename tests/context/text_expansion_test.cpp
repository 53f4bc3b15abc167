#include "context/text_expansion.h"

#include <gtest/gtest.h>

namespace tavenhall {
namespace {

TEST(ExpandFormat, ATextWithoutPercentSignsStandsAsItIs) {
  EXPECT_EQ(expandFormat("Step 1 finished.\n\nDone.", "/data"), "Step 1 finished.\n\nDone.");
  EXPECT_EQ(expandFormat("", "/data"), "");
}

TEST(ExpandFormat, TheFirstPlaceholderTakesTheArgument) {
  EXPECT_EQ(expandFormat("to: \n\n%s\n\nwait", "/data/TANVO"), "to: \n\n/data/TANVO\n\nwait");
  EXPECT_EQ(expandFormat("%s", "/data"), "/data");
}

TEST(ExpandFormat, ASecondPlaceholderStandsAsItIs) {
  EXPECT_EQ(expandFormat("%s and %s", "one"), "one and %s");
}

TEST(ExpandFormat, ANullArgumentReadsAsNull) { EXPECT_EQ(expandFormat("to %s.", nullptr), "to (null)."); }

TEST(ExpandFormat, ADoubledPercentSignIsOne) {
  EXPECT_EQ(expandFormat("100%% of %s", "it"), "100% of it");
  EXPECT_EQ(expandFormat("%%%%", "it"), "%%");
}

TEST(ExpandFormat, ADoubledPercentSignBeforeALetterIsNoPlaceholder) {
  EXPECT_EQ(expandFormat("%%s %s", "it"), "%s it");
  EXPECT_EQ(expandFormat("%%%s", "it"), "%it");
}

TEST(ExpandFormat, OtherConversionsStandAsTheyAre) {
  EXPECT_EQ(expandFormat("%d %n %x %5s %1$s %lld %-s %", "it"), "%d %n %x %5s %1$s %lld %-s %");
}

TEST(ExpandFormat, ThePercentSignAtTheEndStandsAsItIs) { EXPECT_EQ(expandFormat("50%", "it"), "50%"); }

TEST(ExpandFormat, TheArgumentIsNotExpandedItself) {
  EXPECT_EQ(expandFormat("%s %s", "/a%s/%%/%n"), "/a%s/%%/%n %s");
}

}  // namespace
}  // namespace tavenhall

#include "platform/strings_text.h"

#include <gtest/gtest.h>

// What is no UTF-8 becomes U+FFFD, "\xEF\xBF\xBD".
namespace tavenhall {
namespace {

TEST(ValidUtf8, LeavesWhatIsValidAsItIs) {
  for (const std::string text :
       {"", "plain", "\xC3\xBC", "\xE6\x97\xA5", "\xF0\x9F\x8E\xB9", "\xF4\x8F\xBF\xBF"}) {
    EXPECT_EQ(validUtf8(text), text);
  }
}

TEST(ValidUtf8, ReplacesEachByteThatStartsNoCharacter) {
  EXPECT_EQ(validUtf8("a\x80\xFF"
                      "b"),
            "a\xEF\xBF\xBD\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(validUtf8("\xC0\xAF"), "\xEF\xBF\xBD\xEF\xBF\xBD");                  // written longer than need be
  EXPECT_EQ(validUtf8("\xED\xA0\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");  // a surrogate
  EXPECT_EQ(validUtf8("\xF5"), "\xEF\xBF\xBD");
}

TEST(ValidUtf8, ReplacesTheStartOfACharacterOnceAndGoesOnAfterIt) {
  EXPECT_EQ(validUtf8("\xE6\x97"), "\xEF\xBF\xBD");
  EXPECT_EQ(validUtf8("\xE6\x97"
                      "a"),
            "\xEF\xBF\xBD"
            "a");
  EXPECT_EQ(validUtf8("\xF0\x9F\x8E\xC3\xBC"), "\xEF\xBF\xBD\xC3\xBC");
  EXPECT_EQ(validUtf8("Gr\xFC\xDF"
                      "e"),
            "Gr\xEF\xBF\xBD\xEF\xBF\xBD"
            "e");
}

}  // namespace
}  // namespace tavenhall

#include "host/base/text.h"
#include "host/base/unicode.h"
#include "host/check/spelling.h"

#include <gtest/gtest.h>

namespace tavenhall::test {

TEST(Words, CountTheLettersThatAreDifferent) {
  EXPECT_EQ(editDistance("Mode", "mode"), 0);
  EXPECT_EQ(editDistance("Mod", "Mode"), 1);
  EXPECT_EQ(editDistance("Moed", "Mode"), 1);
  EXPECT_EQ(editDistance("Mood", "Mode"), 2);
  EXPECT_EQ(editDistance("", "Mode"), 4);
}

TEST(Words, TellAMisspeltWordFromAnother) {
  EXPECT_TRUE(isMisspellingOf("NumberOfVolume", "NumberOfVolumes"));
  EXPECT_TRUE(isMisspellingOf("Number_Of_Volumes", "NumberOfVolumes"));
  EXPECT_TRUE(isMisspellingOf("Moed", "Mode"));
  EXPECT_FALSE(isMisspellingOf("Name", "Mode"));
  EXPECT_FALSE(isMisspellingOf("Publisher", "RelativePath"));
  EXPECT_FALSE(isMisspellingOf(std::string(100000, 'x'), "RelativePath"));
}

TEST(Words, KnowUtf8) {
  EXPECT_TRUE(isValidUtf8("plain"));
  EXPECT_TRUE(isValidUtf8("\xC3\xBC \xE2\x99\xAB \xF0\x9F\x8E\xB9"));
  EXPECT_FALSE(isValidUtf8("\xFC"));
  EXPECT_FALSE(isValidUtf8("\xC3"));
  EXPECT_FALSE(isValidUtf8("\xC0\x80"));
  EXPECT_FALSE(isValidUtf8("\xED\xA0\x80"));
  EXPECT_FALSE(isValidUtf8("\xF5\x80\x80\x80"));
}

TEST(Words, QuoteWithoutControlCharacters) {
  EXPECT_EQ(quotedText("a\x1b[2Jb"), "\"a\xEF\xBF\xBD[2Jb\"");
  EXPECT_EQ(quotedText("\xFCx"), "\"\xEF\xBF\xBDx\"");
  EXPECT_EQ(quotedText(""), "\"\"");
}

TEST(Words, QuoteALongTextByItsStart) {
  EXPECT_EQ(quotedText(std::string(60, 'x')), "\"" + std::string(60, 'x') + "\"");
  EXPECT_EQ(quotedText(std::string(61, 'x')), "\"" + std::string(60, 'x') + "...\"");
}

TEST(Words, FoldTheCaseOfLettersBeyondAscii) {
  EXPECT_EQ(foldCase("\xC3\x9C Kits"), "\xC3\xBC kits");
  EXPECT_EQ(foldCase("\xD0\x96"), "\xD0\xB6");
  EXPECT_EQ(foldCase("\xFF\xF0"), "\xFF\xF0");
}

TEST(Words, GiveSizesInMillionsOfBytes) { EXPECT_EQ(megabytesText(12345678), "12.3 MB"); }

}  // namespace tavenhall::test

#include "host/check/words.h"

#include <gtest/gtest.h>

namespace tavenhall::test {

TEST(Words, CountTheLettersThatAreDifferent) {
  EXPECT_EQ(lettersApart("Mode", "mode"), 0);
  EXPECT_EQ(lettersApart("Mod", "Mode"), 1);
  EXPECT_EQ(lettersApart("Moed", "Mode"), 1);
  EXPECT_EQ(lettersApart("Mood", "Mode"), 2);
  EXPECT_EQ(lettersApart("", "Mode"), 4);
}

TEST(Words, TellAMisspeltWordFromAnother) {
  EXPECT_TRUE(isMisspeltFor("NumberOfVolume", "NumberOfVolumes"));
  EXPECT_TRUE(isMisspeltFor("Number_Of_Volumes", "NumberOfVolumes"));
  EXPECT_TRUE(isMisspeltFor("Moed", "Mode"));
  EXPECT_FALSE(isMisspeltFor("Name", "Mode"));
  EXPECT_FALSE(isMisspeltFor("Publisher", "RelativePath"));
  EXPECT_FALSE(isMisspeltFor(std::string(100000, 'x'), "RelativePath"));
}

TEST(Words, KnowUtf8) {
  EXPECT_TRUE(isUtf8("plain"));
  EXPECT_TRUE(isUtf8("\xC3\xBC \xE2\x99\xAB \xF0\x9F\x8E\xB9"));
  EXPECT_FALSE(isUtf8("\xFC"));
  EXPECT_FALSE(isUtf8("\xC3"));
  EXPECT_FALSE(isUtf8("\xC0\x80"));
  EXPECT_FALSE(isUtf8("\xED\xA0\x80"));
  EXPECT_FALSE(isUtf8("\xF5\x80\x80\x80"));
}

TEST(Words, QuoteWithoutControlCharacters) {
  EXPECT_EQ(inQuotes("a\x1b[2Jb"), "\"a\xEF\xBF\xBD[2Jb\"");
  EXPECT_EQ(inQuotes("\xFCx"), "\"\xEF\xBF\xBDx\"");
  EXPECT_EQ(inQuotes(""), "\"\"");
}

TEST(Words, QuoteALongTextByItsStart) {
  EXPECT_EQ(inQuotes(std::string(60, 'x')), "\"" + std::string(60, 'x') + "\"");
  EXPECT_EQ(inQuotes(std::string(61, 'x')), "\"" + std::string(60, 'x') + "...\"");
}

TEST(Words, FoldTheCaseOfLettersBeyondAscii) {
  EXPECT_EQ(caseFolded("\xC3\x9C Kits"), "\xC3\xBC kits");
  EXPECT_EQ(caseFolded("\xD0\x96"), "\xD0\xB6");
  EXPECT_EQ(caseFolded("\xFF\xF0"), "\xFF\xF0");
}

TEST(Words, GiveSizesInMillionsOfBytes) { EXPECT_EQ(megabytes(12345678), "12.3 MB"); }

}  // namespace tavenhall::test

#include "host/base/display_text.h"

#include "tests/terminal/in_utf8.h"

#include <gmock/gmock.h>
#include <string>

namespace tavenhall::test {
namespace {

using testing::ElementsAre;

using ShownText = InUtf8;

TEST_F(ShownText, AWideCharacterTakesTwoCells) { EXPECT_EQ(displayWidth("日本 ab"), 7); }

TEST_F(ShownText, ACombiningCharacterTakesNoCell) { EXPECT_EQ(displayWidth("e\u0301a\u0308"), 2); }

TEST_F(ShownText, ControlCharactersBecomeQuestionMarks) {
  EXPECT_EQ(displayText("a\x1b[2Jb\x07\x7f"), "a?[2Jb??");
}

TEST_F(ShownText, EightBitControlCharactersBecomeQuestionMarks) {
  EXPECT_EQ(displayText("a\u009b2Jb"), "a?2Jb");
}

TEST_F(ShownText, CharactersThatTurnTheWritingRoundAreLeftOut) {
  EXPECT_EQ(displayText("abc\u202Edcba\u2066x"), "abcdcbax");
}

TEST_F(ShownText, ATabBecomesABlankAndLineBreaksStay) { EXPECT_EQ(displayText("a\tb\r\nc"), "a b\nc"); }

TEST_F(ShownText, ACombiningCharacterWithNothingToStandOnIsLeftOut) {
  EXPECT_EQ(displayText("\u0301abc"), "abc");
}

TEST_F(ShownText, WhatIsNoUtf8BecomesAReplacementCharacter) {
  EXPECT_EQ(displayText("a\xff\xc3"), "a\uFFFD\uFFFD");
}

TEST(ShownTextInPlainLocale, LettersBeyondAsciiBecomeQuestionMarks) {
  std::setlocale(LC_CTYPE, "C");
  EXPECT_EQ(displayText("Grüße"), "Gr??e");
  EXPECT_FALSE(localeShowsUnicode());
}

TEST(ShownTextInPlainLocale, TheEllipsisIsThreeFullStops) {
  std::setlocale(LC_CTYPE, "C");
  EXPECT_EQ(truncateEnd("Keyboards and more", 12), "Keyboards...");
}

// ---- Wrapping ----

TEST_F(ShownText, LinesAreBrokenAtBlanks) {
  EXPECT_THAT(wrapText("Now installing the library", 14), ElementsAre("Now installing", "the library"));
}

TEST_F(ShownText, BlankLinesStay) {
  EXPECT_THAT(wrapText("one\n\ntwo\n", 10), ElementsAre("one", "", "two", ""));
}

TEST_F(ShownText, AnEmptyTextIsOneEmptyLine) { EXPECT_THAT(wrapText("", 10), ElementsAre("")); }

TEST_F(ShownText, BlanksAtABreakAreDropped) {
  EXPECT_THAT(wrapText("abc    defg   ", 5), ElementsAre("abc", "defg"));
}

TEST_F(ShownText, APathWithoutBlanksIsBrokenAfterASlash) {
  EXPECT_THAT(wrapText("/Users/tester/Library", 16), ElementsAre("/Users/tester/", "Library"));
}

TEST_F(ShownText, AWordThatFitsInNoLineIsBrokenWhereTheLineIsFull) {
  EXPECT_THAT(wrapText("abcdefghij", 4), ElementsAre("abcd", "efgh", "ij"));
}

TEST_F(ShownText, WideCharactersMayBeBrokenApart) {
  EXPECT_THAT(wrapText("日本語の音源", 5), ElementsAre("日本", "語の", "音源"));
}

TEST_F(ShownText, AWideCharacterThatWouldStandHalfBeyondTheLineGoesToTheNext) {
  EXPECT_THAT(wrapText("abc日", 4), ElementsAre("abc", "日"));
}

TEST_F(ShownText, ACombiningCharacterStaysWithItsLetter) {
  EXPECT_THAT(wrapText("aaae\u0301b", 4), ElementsAre("aaae\u0301", "b"));
}

TEST_F(ShownText, NoLineIsWiderThanAskedForWhateverTheText) {
  const std::string text = "A /path/with 日本語/and e\u0301 words-that-go-on/and/on \t\x01 end";
  for (int width = 2; width < 40; ++width) {
    for (const std::string& line : wrapText(text, width)) {
      EXPECT_LE(displayWidth(line), width) << line;
    }
  }
}

TEST_F(ShownText, AWidthOfNothingStillEnds) { EXPECT_THAT(wrapText("ab日", 0), ElementsAre("ab", "日")); }

// ---- Cutting ----

TEST_F(ShownText, ATextThatFitsIsNotCut) {
  EXPECT_EQ(truncateEnd("Keyboards", 9), "Keyboards");
  EXPECT_EQ(truncatePath("Keyboards", 9), "Keyboards");
}

TEST_F(ShownText, CutAtItsEndATextEndsWithAnEllipsis) { EXPECT_EQ(truncateEnd("Keyboards", 6), "Keybo…"); }

TEST_F(ShownText, AShortPathKeepsItsNameAndWholeFolders) {
  EXPECT_EQ(truncatePath("/a/long/path/001.db", 8), "…/001.db");
  EXPECT_EQ(truncatePath("/a/long/path/001.db", 12), "…/001.db");
  EXPECT_EQ(truncatePath("/a/long/path/001.db", 13), "…/path/001.db");
  EXPECT_EQ(truncatePath("/a/long/path/001.db", 19), "/a/long/path/001.db");
}

TEST_F(ShownText, ANameTooLongForItsRoomLosesItsStart) {
  EXPECT_EQ(truncatePath("/a/Keyboards.db", 8), "…ards.db");
}

TEST_F(ShownText, ACutNeverSplitsAWideCharacter) {
  EXPECT_EQ(truncateEnd("日本語", 4), "日…");
  EXPECT_EQ(truncatePath("日本語", 4), "…語");
}

TEST_F(ShownText, LineBreaksOfATextInOneLineBecomeBlanks) { EXPECT_EQ(truncateEnd("a\nb", 10), "a b"); }

TEST_F(ShownText, NoLineBeginsOrEndsWithAMarkOfWhatIsOnTheOtherLine) {
  EXPECT_THAT(wrapText("データです。次です", 10), ElementsAre("データで", "す。次です"));
  EXPECT_THAT(wrapText("音源「ア」です", 6), ElementsAre("音源", "「ア」", "です"));
  EXPECT_THAT(wrapText("終了(L)です", 6), ElementsAre("終了", "(L)で", "す"));
}

TEST_F(ShownText, TheWidestWordIsWhatBlanksAndWideCharactersLeave) {
  EXPECT_EQ(widestWord("Installing Tessaphon Data"), 10);
  EXPECT_EQ(widestWord("Übersicht"), 9);
  EXPECT_EQ(widestWord("データのInstallです"), 7);
  EXPECT_EQ(widestWord(""), 0);
}

}  // namespace
}  // namespace tavenhall::test

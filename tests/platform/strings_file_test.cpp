#include "platform/strings_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>

namespace tavenhall::test {

namespace {

using Entries = std::map<std::string, std::string, std::less<>>;

Entries entriesOf(std::string_view bytes) { return StringTable::parse(bytes).entries(); }

// The text that `quoted`, the inside of a quoted string, stands for.
std::string valueOf(const std::string& quoted) {
  return StringTable::parse("\"key\" = \"" + quoted + "\";").text("key");
}

enum class ByteOrder { little, big };

// UTF-16 with its byte-order mark.
std::string utf16(std::u16string_view text, ByteOrder order) {
  std::string bytes;
  const auto put = [&](char16_t unit) {
    const char low = static_cast<char>(unit & 0xFF);
    const char high = static_cast<char>(unit >> 8);
    bytes.push_back(order == ByteOrder::little ? low : high);
    bytes.push_back(order == ByteOrder::little ? high : low);
  };
  put(0xFEFF);
  for (const char16_t unit : text) {
    put(unit);
  }
  return bytes;
}

}  // namespace

// ---- Entries ----

TEST(StringsFile, AnEmptyFileHasNoEntries) { EXPECT_EQ(entriesOf(""), Entries{}); }

TEST(StringsFile, AQuotedKeyHasItsQuotedText) {
  EXPECT_EQ(entriesOf("\"OK_BUTTON\" = \"Sehr gut\";\n"), (Entries{{"OK_BUTTON", "Sehr gut"}}));
}

TEST(StringsFile, EveryLineIsAnEntry) {
  EXPECT_EQ(entriesOf("\"a\" = \"1\";\n\"b\" = \"2\";\r\n\"c\" = \"3\";\r"),
            (Entries{{"a", "1"}, {"b", "2"}, {"c", "3"}}));
}

TEST(StringsFile, EntriesNeedNoLinesOfTheirOwn) {
  EXPECT_EQ(entriesOf("\"a\"=\"1\";\"b\"=\"2\";"), (Entries{{"a", "1"}, {"b", "2"}}));
}

TEST(StringsFile, AnEntryMaySpanLines) {
  EXPECT_EQ(entriesOf("\"a\"\n\t=\r\n  \"1\"\f\v;"), (Entries{{"a", "1"}}));
}

TEST(StringsFile, ATextMayHoldLineBreaksAndMarks) {
  EXPECT_EQ(entriesOf("\"a\" = \"one;\ntwo = /* three */ // four\";"),
            (Entries{{"a", "one;\ntwo = /* three */ // four"}}));
}

TEST(StringsFile, KeysAndTextsMayStandWithoutQuotes) {
  EXPECT_EQ(entriesOf("OK_BUTTON = Continue2;"), (Entries{{"OK_BUTTON", "Continue2"}}));
}

TEST(StringsFile, AKeyAloneIsItsOwnText) { EXPECT_EQ(entriesOf("\"Go on\";"), (Entries{{"Go on", "Go on"}})); }

TEST(StringsFile, AnEmptyTextIsAText) { EXPECT_EQ(StringTable::parse("\"a\" = \"\";").text("a"), ""); }

TEST(StringsFile, ALaterEntryReplacesAnEarlierOne) {
  EXPECT_EQ(entriesOf("\"a\" = \"1\"; \"a\" = \"2\";"), (Entries{{"a", "2"}}));
}

TEST(StringsFile, TheLastEntryMayLackItsSemicolon) {
  EXPECT_EQ(entriesOf("\"a\" = \"1\";\n\"b\" = \"2\"\n"), (Entries{{"a", "1"}, {"b", "2"}}));
}

TEST(StringsFile, AMissingKeyGivesTheKey) {
  EXPECT_EQ(StringTable::parse("\"a\" = \"1\";").text("InstallError"), "InstallError");
}

TEST(StringsFile, KeysDifferInCase) {
  const StringTable table = StringTable::parse("\"key\" = \"small\"; \"KEY\" = \"large\";");
  EXPECT_EQ(table.text("key"), "small");
  EXPECT_EQ(table.text("KEY"), "large");
  EXPECT_EQ(table.text("Key"), "Key");
}

TEST(StringsFile, PercentSignsStayAsTheyAre) { EXPECT_EQ(valueOf("100% of %s in %1$@"), "100% of %s in %1$@"); }

// ---- Comments ----

TEST(StringsFile, CommentsMayStandBetweenAllTokens) {
  EXPECT_EQ(entriesOf("/* 0 */\"a\"/* 1 */=/* 2 */\"1\"/* 3 */;/* 4 */"), (Entries{{"a", "1"}}));
  EXPECT_EQ(entriesOf("// 0\n\"a\"// 1\n=// 2\r\"1\"// 3\r\n;// 4"), (Entries{{"a", "1"}}));
}

TEST(StringsFile, CommentsMayHoldEntriesAndQuotes) {
  EXPECT_EQ(entriesOf("/* \"a\" = \"1\"; don't \" */ // \"b\" = \"2\"; \"\n\"c\" = \"3\";"),
            (Entries{{"c", "3"}}));
}

TEST(StringsFile, ABlockCommentEndsAtItsFirstEnd) {
  EXPECT_EQ(entriesOf("/* /* */ \"a\" = \"1\"; /***/ \"b\" = \"2\"; /**/ \"c\" = \"3\";"),
            (Entries{{"a", "1"}, {"b", "2"}, {"c", "3"}}));
}

TEST(StringsFile, ABareStringEndsWhereACommentBegins) {
  EXPECT_EQ(entriesOf("a/* 1 */= b// 2\n;"), (Entries{{"a", "b"}}));
}

// ---- Escapes ----

TEST(StringsFile, QuotesAndBackslashesAreEscaped) {
  EXPECT_EQ(valueOf(R"(\"Tessaphon\" \\ it\'s)"), R"("Tessaphon" \ it's)");
}

TEST(StringsFile, ControlCharactersAreEscaped) {
  EXPECT_EQ(valueOf(R"(n\nr\rt\ta\ab\bf\fv\v.)"), "n\nr\rt\ta\ab\bf\fv\v.");
}

TEST(StringsFile, KeysHaveEscapesToo) {
  EXPECT_EQ(StringTable::parse(R"("a\"\u00e9" = "1";)").text("a\"\xC3\xA9"), "1");
}

TEST(StringsFile, AnOctalEscapeTakesUpToThreeDigits) {
  EXPECT_EQ(valueOf(R"(\101\1012\7.\128)"), "AA2\x07.\n8");
  EXPECT_EQ(valueOf(R"(\351)"), "\xC3\xA9");
}

TEST(StringsFile, AUnicodeEscapeTakesFourHexDigits) {
  EXPECT_EQ(valueOf(R"(\U0041\u00e9\U20AC0)"),
            "A\xC3\xA9\xE2\x82\xAC"
            "0");
}

TEST(StringsFile, AUnicodeEscapeMayBeShort) { EXPECT_EQ(valueOf(R"(\U41 \ue9.)"), "A \xC3\xA9."); }

TEST(StringsFile, AUnicodeEscapeWithoutDigitsIsItsLetter) { EXPECT_EQ(valueOf(R"(\Ux \u)"), "Ux u"); }

TEST(StringsFile, ASurrogatePairIsOneCharacter) {
  EXPECT_EQ(valueOf(R"(\UD83C\UDFB9 \ud83c\udfb9 \UD83C\udfb9)"),
            "\xF0\x9F\x8E\xB9 \xF0\x9F\x8E\xB9 \xF0\x9F\x8E\xB9");
}

TEST(StringsFile, HalfASurrogatePairIsAReplacementCharacter) {
  EXPECT_EQ(valueOf(R"(\UD83C.)"), "\xEF\xBF\xBD.");
  EXPECT_EQ(valueOf(R"(\UDFB9.)"), "\xEF\xBF\xBD.");
  EXPECT_EQ(valueOf(R"(\UD83C\U0041)"),
            "\xEF\xBF\xBD"
            "A");
  EXPECT_EQ(valueOf(R"(\UD83C\n)"), "\xEF\xBF\xBD\n");
}

TEST(StringsFile, AnUnknownEscapeIsItsCharacter) { EXPECT_EQ(valueOf(R"(\q\8\/)"), "q8/"); }

TEST(StringsFile, AnEscapedLineBreakIsALineBreak) { EXPECT_EQ(valueOf("one\\\ntwo"), "one\ntwo"); }

// ---- Encodings ----

TEST(StringsFile, Utf8StaysAsItIs) {
  EXPECT_EQ(valueOf("Gr\xC3\xB6\xC3\x9F"
                    "e \xF0\x9F\x8E\xB9"),
            "Gr\xC3\xB6\xC3\x9F"
            "e \xF0\x9F\x8E\xB9");
}

TEST(StringsFile, AUtf8MarkIsNoPartOfTheFirstKey) {
  EXPECT_EQ(entriesOf("\xEF\xBB\xBF\"a\" = \"1\";"), (Entries{{"a", "1"}}));
  EXPECT_EQ(entriesOf("\xEF\xBB\xBF"
                      "a = 1;"),
            (Entries{{"a", "1"}}));
}

TEST(StringsFile, BrokenUtf8IsHandedThrough) { EXPECT_EQ(valueOf("\xC3(\xFF\x80"), "\xC3(\xFF\x80"); }

TEST(StringsFile, DetectsUtf16OfEitherByteOrderByItsMark) {
  const std::u16string_view text =
      u"/* \u00FC */ \"Gr\u00F6\u00DFe\" = \"\u6A02\u5668 \U0001F3B9 \\U00e9\";\r\n";
  const Entries expected = {
      {"Gr\xC3\xB6\xC3\x9F"
       "e",
       "\xE6\xA8\x82\xE5\x99\xA8 \xF0\x9F\x8E\xB9 \xC3\xA9"}};
  EXPECT_EQ(entriesOf(utf16(text, ByteOrder::little)), expected);
  EXPECT_EQ(entriesOf(utf16(text, ByteOrder::big)), expected);
}

TEST(StringsFile, HalfASurrogatePairOfUtf16IsAReplacementCharacter) {
  const std::u16string high = u"\"a\" = \"" + std::u16string(1, 0xD83C) + u"\";";
  const std::u16string low = u"\"a\" = \"" + std::u16string(1, 0xDFB9) + u"\";";
  EXPECT_EQ(entriesOf(utf16(high, ByteOrder::little)), (Entries{{"a", "\xEF\xBF\xBD"}}));
  EXPECT_EQ(entriesOf(utf16(low, ByteOrder::big)), (Entries{{"a", "\xEF\xBF\xBD"}}));
}

TEST(StringsFile, AnOddLastByteOfUtf16IsLeftOut) {
  const std::u16string_view text = u"\"a\" = \"1\";";
  EXPECT_EQ(entriesOf(utf16(text, ByteOrder::little) + "x"), (Entries{{"a", "1"}}));
  EXPECT_EQ(entriesOf(utf16(text, ByteOrder::big) + "x"), (Entries{{"a", "1"}}));
}

}  // namespace tavenhall::test

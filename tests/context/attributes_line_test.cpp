#include "context/attributes_line.h"

#include <gtest/gtest.h>
#include <string>

using namespace std::string_literals;

namespace tavenhall {
namespace {

constexpr std::int64_t kUntouched = 77;

std::int64_t numberIn(std::string_view value) {
  std::int64_t number = kUntouched;
  readAttributesNumber(value, number);
  return number;
}

std::string finished(std::string value) {
  const std::size_t length = value.size();
  value += "\0###"s;
  finishAttributesValue(value.data());
  EXPECT_EQ(value.substr(length), "\0###"s) << "written behind the value's end";
  return value.c_str();
}

TEST(AttributesLine, HasAKeyASeparatorAndAValueUpToTheNewline) {
  const AttributesLine line = parseAttributesLine("Mode = InstallFromVolumes\n");
  EXPECT_EQ(line.key, "Mode");
  EXPECT_EQ(line.separator, "=");
  EXPECT_EQ(line.value, "InstallFromVolumes");
}

TEST(AttributesLine, ValueHoldsBlanksAndKeepsTrailingOnes) {
  EXPECT_EQ(parseAttributesLine("InstallDataTitle = The  data \t \n").value, "The  data \t ");
}

TEST(AttributesLine, SeparatorIsAnyWord) {
  const AttributesLine line = parseAttributesLine("Mode is-set-to= DataUpdater\n");
  EXPECT_EQ(line.separator, "is-set-to=");
  EXPECT_EQ(line.value, "DataUpdater");
}

TEST(AttributesLine, WithoutBlanksAroundTheEqualsSignIsAllKey) {
  const AttributesLine line = parseAttributesLine("Mode=DataUpdater\n");
  EXPECT_EQ(line.key, "Mode=DataUpdater");
  EXPECT_EQ(line.separator, "");
  EXPECT_EQ(line.value, "");
}

TEST(AttributesLine, BlanksAroundThePartsAreOfAnyKindAndNumber) {
  const AttributesLine line = parseAttributesLine(" \t\v\fMode \t = \r\v DataUpdater\n");
  EXPECT_EQ(line.key, "Mode");
  EXPECT_EQ(line.separator, "=");
  EXPECT_EQ(line.value, "DataUpdater");
}

TEST(AttributesLine, WithoutAValueHasTwoParts) {
  for (const char* text : {"Mode =", "Mode =\n", "Mode = \t \n", "Mode =\r\n"}) {
    const AttributesLine line = parseAttributesLine(text);
    EXPECT_EQ(line.key, "Mode") << text;
    EXPECT_EQ(line.separator, "=") << text;
    EXPECT_EQ(line.value, "") << text;
  }
}

TEST(AttributesLine, EmptyOrBlankHasNoParts) {
  for (const char* text : {"", "\n", " \t\r\n"}) {
    const AttributesLine line = parseAttributesLine(text);
    EXPECT_EQ(line.key, "") << text;
    EXPECT_EQ(line.separator, "") << text;
    EXPECT_EQ(line.value, "") << text;
  }
}

TEST(AttributesLine, ValueKeepsItsCarriageReturn) {
  EXPECT_EQ(parseAttributesLine("Mode = DataUpdater\r\n").value, "DataUpdater\r");
}

TEST(AttributesLine, EndsAtItsFirstNulByte) {
  EXPECT_EQ(parseAttributesLine("Mode = Data\0Updater\n"s).value, "Data");
  EXPECT_EQ(parseAttributesLine("Mo\0de = DataUpdater\n"s).key, "Mo");
  EXPECT_EQ(parseAttributesLine("Mo\0de = DataUpdater\n"s).value, "");
}

TEST(AttributesLine, BytesAbove127AreNoBlanks) {
  const AttributesLine line = parseAttributesLine(
      "M\xa0"
      "de \x85 \xc2\xa0x\n");
  EXPECT_EQ(line.key,
            "M\xa0"
            "de");
  EXPECT_EQ(line.separator, "\x85");
  EXPECT_EQ(line.value, "\xc2\xa0x");
}

TEST(AttributesKey, OfATextIsComparedIgnoringCase) {
  EXPECT_TRUE(isStringKey("InstallDataTitle", "InstallDataTitle"));
  EXPECT_TRUE(isStringKey("installdatatitle", "InstallDataTitle"));
  EXPECT_TRUE(isStringKey("INSTALLDATATITLE", "InstallDataTitle"));
}

TEST(AttributesKey, OfATextIsComparedWhole) {
  EXPECT_FALSE(isStringKey("RelativePath", "RelativePath2"));
  EXPECT_FALSE(isStringKey("RelativePath2", "RelativePath"));
  EXPECT_FALSE(isStringKey("", "Mode"));
}

TEST(AttributesKey, OfANumberIsComparedExactly) {
  EXPECT_TRUE(isNumberKey("NumberOfVolumes", "NumberOfVolumes"));
  EXPECT_FALSE(isNumberKey("numberofvolumes", "NumberOfVolumes"));
  EXPECT_FALSE(isNumberKey("NumberOfVolume", "NumberOfVolumes"));
  EXPECT_FALSE(isNumberKey("NumberOfVolumes2", "NumberOfVolumes"));
}

TEST(AttributesNumber, IsDecimalWithAnOptionalSign) {
  EXPECT_EQ(numberIn("0"), 0);
  EXPECT_EQ(numberIn("6000"), 6000);
  EXPECT_EQ(numberIn("+6000"), 6000);
  EXPECT_EQ(numberIn("-6000"), -6000);
  EXPECT_EQ(numberIn("0042"), 42);
}

TEST(AttributesNumber, EndsBeforeTheFirstOtherCharacter) {
  EXPECT_EQ(numberIn("12abc"), 12);
  EXPECT_EQ(numberIn("2\r"), 2);
  EXPECT_EQ(numberIn("3 4"), 3);
  EXPECT_EQ(numberIn("0x10"), 0);
  EXPECT_EQ(numberIn("1.9"), 1);
}

TEST(AttributesNumber, WithoutADigitKeepsTheNumberBefore) {
  for (const char* value : {"", "abc", "-", "+", "+-5", "-+5", "++5", "- 5", "+ 5", ".5", "\xb2"}) {
    EXPECT_EQ(numberIn(value), 77) << value;
  }
}

TEST(AttributesNumber, Of64BitsIsRead) {
  EXPECT_EQ(numberIn("9223372036854775807"), INT64_MAX);
  EXPECT_EQ(numberIn("-9223372036854775808"), INT64_MIN);
}

TEST(AttributesNumber, Beyond64BitsIsTheNearestThatFits) {
  EXPECT_EQ(numberIn("9223372036854775808"), INT64_MAX);
  EXPECT_EQ(numberIn("+9223372036854775808"), INT64_MAX);
  EXPECT_EQ(numberIn("-9223372036854775809"), INT64_MIN);
  EXPECT_EQ(numberIn(std::string(2000, '9')), INT64_MAX);
  EXPECT_EQ(numberIn("-" + std::string(2000, '9')), INT64_MIN);
}

TEST(AttributesValue, EndsAtItsFirstCarriageReturn) {
  EXPECT_EQ(finished("InstallFromVolumes\r"), "InstallFromVolumes");
  EXPECT_EQ(finished("one\rtwo\rthree"), "one");
  EXPECT_EQ(finished("\rone"), "");
}

TEST(AttributesValue, BackslashNBecomesABlankAndANewline) {
  EXPECT_EQ(finished("first\\nsecond"), "first \nsecond");
  EXPECT_EQ(finished("\\n"), " \n");
  EXPECT_EQ(finished("a\\n\\nb"), "a \n \nb");
}

TEST(AttributesValue, BackslashRBecomesABlankAndANewlineToo) {
  EXPECT_EQ(finished("first\\rsecond"), "first \nsecond");
}

TEST(AttributesValue, OtherBackslashesStand) {
  EXPECT_EQ(finished("\\t \\N \\R \\\\ \\"), "\\t \\N \\R \\\\ \\");
}

TEST(AttributesValue, ABackslashBeforeAnEscapeStands) { EXPECT_EQ(finished("\\\\n"), "\\ \n"); }

TEST(AttributesValue, AnEscapeBehindACarriageReturnIsGone) { EXPECT_EQ(finished("a\r\\n"), "a"); }

TEST(AttributesValue, OfOneCharacterStands) { EXPECT_EQ(finished("\\"), "\\"); }

TEST(AttributesValue, ThatIsEmptyStaysEmpty) { EXPECT_EQ(finished(""), ""); }

}  // namespace
}  // namespace tavenhall

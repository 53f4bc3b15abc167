#include "context/bounded_text.h"

#include <array>
#include <csignal>
#include <cstdarg>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace tavenhall {
namespace {

using testing::KilledBySignal;
using testing::MatchesRegex;

// What a text of 8 bytes that does not fit says, and all that it says.
const auto kNoRoomFor8 = MatchesRegex("InstallDataPane: [^\n]* 8 bytes[^\n]*\n");

__attribute__((format(printf, 3, 4))) void cutInto(char* out, std::size_t room, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  formatCut(out, room, format, arguments);
  va_end(arguments);
}

// The text cut to `room` bytes, with a check that no byte behind them was touched.
std::string cutTo(std::size_t room, std::string_view text) {
  std::string buffer(room + 8, '#');
  copyCut(buffer.data(), room, text);
  EXPECT_EQ(buffer.substr(room), "########") << text;
  return buffer.c_str();
}

TEST(BoundedText, StartsEmpty) {
  const BoundedText<8> text;
  EXPECT_TRUE(text.empty());
  EXPECT_STREQ(text.c_str(), "");
  EXPECT_EQ(text.length(), 0U);
}

TEST(BoundedText, AssignReplacesAndAppendAdds) {
  BoundedText<16> text;
  text.assign("first");
  text.assign("one");
  text.append(", two");
  EXPECT_STREQ(text.c_str(), "one, two");
  EXPECT_EQ(text.view(), "one, two");
  EXPECT_EQ(text.length(), 8U);
}

TEST(BoundedText, ClearEmptiesIt) {
  BoundedText<8> text;
  text.assign("full");
  text.clear();
  EXPECT_TRUE(text.empty());
  EXPECT_STREQ(text.c_str(), "");
}

TEST(BoundedText, FormatReplacesTheText) {
  BoundedText<16> text;
  text.assign("before");
  text.format("%s/%d", "a", 12);
  EXPECT_STREQ(text.c_str(), "a/12");
}

TEST(BoundedText, AssignOfOneByteLessThanTheSizeFits) {
  BoundedText<8> text;
  text.assign("1234567");
  EXPECT_STREQ(text.c_str(), "1234567");
}

TEST(BoundedTextDeathTest, AssignOfTheSizeEndsTheProcess) {
  BoundedText<8> text;
  EXPECT_EXIT(text.assign("12345678"), KilledBySignal(SIGABRT), kNoRoomFor8);
}

TEST(BoundedText, AppendUpToOneByteLessThanTheSizeFits) {
  BoundedText<8> text;
  text.assign("123");
  text.append("4567");
  EXPECT_STREQ(text.c_str(), "1234567");
}

TEST(BoundedText, AppendOfNothingFitsAFullText) {
  BoundedText<8> text;
  text.assign("1234567");
  text.append("");
  EXPECT_STREQ(text.c_str(), "1234567");
}

TEST(BoundedTextDeathTest, AppendUpToTheSizeEndsTheProcess) {
  BoundedText<8> text;
  text.assign("123");
  EXPECT_EXIT(text.append("45678"), KilledBySignal(SIGABRT), kNoRoomFor8);
}

TEST(BoundedText, FormatOfOneByteLessThanTheSizeFits) {
  BoundedText<8> text;
  text.format("%s-%s", "123", "567");
  EXPECT_STREQ(text.c_str(), "123-567");
}

TEST(BoundedTextDeathTest, FormatOfTheSizeEndsTheProcess) {
  BoundedText<8> text;
  EXPECT_EXIT(text.format("%s-%s", "1234", "678"), KilledBySignal(SIGABRT), kNoRoomFor8);
}

TEST(BoundedText, AssignCutKeepsWhatFits) {
  BoundedText<8> text;
  text.assignCut("123456789");
  EXPECT_STREQ(text.c_str(), "1234567");
}

TEST(FormatCut, AShortTextStandsWhole) {
  std::array<char, 8> out{};
  cutInto(out.data(), out.size(), "%d-%s", 12, "four");
  EXPECT_STREQ(out.data(), "12-four");
}

TEST(FormatCut, ALongTextIsCutAtAByte) {
  std::array<char, 8> out{};
  cutInto(out.data(), out.size(), "%s", "12345678");
  EXPECT_STREQ(out.data(), "1234567");
}

TEST(CopyCut, ATextThatFitsIsCopiedWhole) {
  EXPECT_EQ(cutTo(8, ""), "");
  EXPECT_EQ(cutTo(8, "1234567"), "1234567");
  EXPECT_EQ(cutTo(4, "a\u00e9"), "a\u00e9");
}

TEST(CopyCut, PlainTextIsCutAtTheLastByteThatFits) {
  EXPECT_EQ(cutTo(8, "12345678"), "1234567");
  EXPECT_EQ(cutTo(2, "12"), "1");
}

TEST(CopyCut, ABufferOfOneByteHoldsTheEmptyText) {
  EXPECT_EQ(cutTo(1, "12"), "");
  EXPECT_EQ(cutTo(1, "\u00e9"), "");
}

TEST(CopyCut, ACharacterOfTwoBytesIsNotSplit) {
  EXPECT_EQ(cutTo(3, "a\u00e9b"), "a");
  EXPECT_EQ(cutTo(4, "a\u00e9b"), "a\u00e9");
}

TEST(CopyCut, ACharacterOfThreeBytesIsNotSplit) {
  EXPECT_EQ(cutTo(3, "a\u20acb"), "a");
  EXPECT_EQ(cutTo(4, "a\u20acb"), "a");
  EXPECT_EQ(cutTo(5, "a\u20acb"), "a\u20ac");
}

TEST(CopyCut, ACharacterOfFourBytesIsNotSplit) {
  EXPECT_EQ(cutTo(3, "a\U0001f3b9b"), "a");
  EXPECT_EQ(cutTo(5, "a\U0001f3b9b"), "a");
  EXPECT_EQ(cutTo(6, "a\U0001f3b9b"), "a\U0001f3b9");
}

TEST(CopyCut, BytesThatAreNoCharactersAreCutAnywhere) {
  EXPECT_EQ(cutTo(6, "\x80\x80\x80\x80\x80\x80\x80\x80"), "\x80\x80\x80\x80\x80");
  EXPECT_EQ(cutTo(3, "\xff\xfe\xfd\xfc"), "\xff\xfe");
}

TEST(StopForWantOfRoomDeathTest, SaysOneLineThatNamesTheLimitAndAborts) {
  EXPECT_EXIT(stopForWantOfRoom(2048), KilledBySignal(SIGABRT),
              MatchesRegex("InstallDataPane: [^\n]* 2048 bytes[^\n]*\n"));
}

}  // namespace
}  // namespace tavenhall

#include "context/first_line.h"

#include "tests/support/files.h"

#include <gtest/gtest.h>
#include <string>

using namespace std::string_literals;

namespace tavenhall {
namespace {

constexpr const char* kFile = "/tmp/line.txt";

// The first line of a file with these contents.
std::string firstLineOf(const std::string& contents) {
  test::writeFile(kFile, contents);
  BoundedText<kFirstLineSize> line;
  EXPECT_TRUE(readFirstLine(kFile, line));
  return line.c_str();
}

TEST(FirstLine, IsReadWithoutItsNewline) { EXPECT_EQ(firstLineOf("Lite\n"), "Lite"); }

TEST(FirstLine, FurtherLinesAreNotRead) { EXPECT_EQ(firstLineOf("Lite\nFull\n"), "Lite"); }

TEST(FirstLine, WithoutANewlineLosesItsLastCharacter) { EXPECT_EQ(firstLineOf("Lite"), "Lit"); }

TEST(FirstLine, WithCarriageReturnAndNewlineKeepsTheCarriageReturn) {
  EXPECT_EQ(firstLineOf("Lite\r\n"), "Lite\r");
}

TEST(FirstLine, OfAnEmptyFileIsEmpty) { EXPECT_EQ(firstLineOf(""), ""); }

TEST(FirstLine, OfANewlineAloneIsEmpty) { EXPECT_EQ(firstLineOf("\nLite\n"), ""); }

TEST(FirstLine, OfOneCharacterIsEmpty) { EXPECT_EQ(firstLineOf("L"), ""); }

TEST(FirstLine, EndsAtANulByteBeforeItsLastCharacterGoes) { EXPECT_EQ(firstLineOf("Lite\0Full\n"s), "Lit"); }

TEST(FirstLine, ThatBeginsWithANulByteIsEmpty) { EXPECT_EQ(firstLineOf("\0Lite\n"s), ""); }

TEST(FirstLine, Of1022BytesFits) {
  const std::string line(1022, 'x');
  EXPECT_EQ(firstLineOf(line + "\n"), line);
}

TEST(FirstLine, IsReadUpTo1023BytesOfWhichTheLastGoes) {
  EXPECT_EQ(firstLineOf(std::string(5000, 'x')), std::string(1022, 'x'));
}

TEST(FirstLine, OfAMissingFileIsRefusedAndEmpty) {
  BoundedText<kFirstLineSize> line;
  line.assign("before");
  EXPECT_FALSE(readFirstLine("/tmp/missing.txt", line));
  EXPECT_STREQ(line.c_str(), "");
}

TEST(FirstLine, OfAFolderIsEmpty) {
  BoundedText<kFirstLineSize> line;
  line.assign("before");
  test::makeFolder("/tmp/folder");
  EXPECT_TRUE(readFirstLine("/tmp/folder", line));
  EXPECT_STREQ(line.c_str(), "");
}

}  // namespace
}  // namespace tavenhall

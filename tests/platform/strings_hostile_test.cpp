#include "platform/strings_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace tavenhall::test {

namespace {

using namespace std::string_literals;
using Entries = std::map<std::string, std::string, std::less<>>;

// Parses a copy that ends where its memory ends, so that a checker of memory sees a step too far.
Entries entriesOfCopy(std::string_view bytes) {
  const std::vector<char> exact(bytes.begin(), bytes.end());
  return StringTable::parse({exact.data(), exact.size()}).entries();
}

std::string repeated(const std::string& text, std::size_t size) {
  std::string all;
  while (all.size() < size) {
    all += text;
  }
  return all;
}

}  // namespace

// ---- One bad line costs one text ----

TEST(HostileStringsFile, AnEntryWithoutAnEqualsSignIsPassedOver) {
  EXPECT_EQ(entriesOfCopy("\"a\" \"1\"; \"b\" = \"2\";"), (Entries{{"b", "2"}}));
}

TEST(HostileStringsFile, AnEntryWithoutATextIsPassedOver) {
  EXPECT_EQ(entriesOfCopy("\"a\" = ; \"b\" = \"2\";"), (Entries{{"b", "2"}}));
}

TEST(HostileStringsFile, AnEntryWithTwoTextsIsPassedOver) {
  EXPECT_EQ(entriesOfCopy("\"a\" = \"1\" \"x\"; \"b\" = \"2\";"), (Entries{{"b", "2"}}));
}

TEST(HostileStringsFile, AnEntryWithoutAKeyIsPassedOver) {
  EXPECT_EQ(entriesOfCopy("= \"1\"; \"b\" = \"2\";"), (Entries{{"b", "2"}}));
}

TEST(HostileStringsFile, SemicolonsAloneAreNoEntries) {
  EXPECT_EQ(entriesOfCopy(";;; \"b\" = \"2\";;;"), (Entries{{"b", "2"}}));
}

TEST(HostileStringsFile, AMissingSemicolonCostsTheTwoEntriesBesideIt) {
  EXPECT_EQ(entriesOfCopy("\"a\" = \"1\"\n\"b\" = \"2\";\n\"c\" = \"3\";"), (Entries{{"c", "3"}}));
}

TEST(HostileStringsFile, TextOfAnotherKindIsPassedOver) {
  EXPECT_EQ(entriesOfCopy("<plist>&\xFF</plist>; \"b\" = \"2\";"), (Entries{{"b", "2"}}));
}

// ---- What nobody closes ----

TEST(HostileStringsFile, AnUnclosedQuoteLosesItsEntry) {
  EXPECT_EQ(entriesOfCopy("\"a\" = \"1;\nb = 2;"), (Entries{{"b", "2"}}));
  EXPECT_EQ(entriesOfCopy("\"a = 1;\nb = 2;"), (Entries{{"b", "2"}}));
}

TEST(HostileStringsFile, ABackslashAtTheEndIsNoText) {
  EXPECT_EQ(entriesOfCopy("\"b\" = \"2\"; \"a\" = \"1\\"), (Entries{{"b", "2"}}));
}

TEST(HostileStringsFile, AnEscapeThatTheEndCutsIsNoText) {
  for (const std::string escape : {"\\U", "\\u12", "\\UD83C\\", "\\UD83C\\U", "\\UD83C\\UDF", "\\1"}) {
    EXPECT_EQ(entriesOfCopy("\"b\" = \"2\"; \"a\" = \"" + escape), (Entries{{"b", "2"}})) << escape;
  }
}

TEST(HostileStringsFile, AnUnclosedCommentReachesToTheEnd) {
  EXPECT_EQ(entriesOfCopy("\"a\" = \"1\"; /* \"b\" = \"2\";"), (Entries{{"a", "1"}}));
  EXPECT_EQ(entriesOfCopy("\"a\" = \"1\"; /*/ \"b\" = \"2\";"), (Entries{{"a", "1"}}));
  EXPECT_EQ(entriesOfCopy("\"a\" = \"1\"; /*"), (Entries{{"a", "1"}}));
}

TEST(HostileStringsFile, ASlashAtTheEndIsNoComment) {
  EXPECT_EQ(entriesOfCopy("\"a\" = \"1\"; /"), (Entries{{"a", "1"}}));
}

// ---- Bytes ----

TEST(HostileStringsFile, ANulInsideATextIsKept) {
  EXPECT_EQ(entriesOfCopy("\"a\" = \"1\0002\";"s), (Entries{{"a", "1\0002"s}}));
}

TEST(HostileStringsFile, ANulBetweenTokensCostsTheEntry) {
  EXPECT_EQ(entriesOfCopy("\"a\" \0= \"1\"; \"b\" = \"2\";"s), (Entries{{"b", "2"}}));
}

TEST(HostileStringsFile, AByteOrderMarkAloneIsAnEmptyFile) {
  for (const std::string mark : {"\xEF\xBB\xBF", "\xFE\xFF", "\xFF\xFE", "\xFE\xFFx", "\xFF\xFEx"}) {
    EXPECT_EQ(entriesOfCopy(mark), Entries{});
  }
}

TEST(HostileStringsFile, Utf16MayEndInHalfASurrogatePair) {
  EXPECT_EQ(entriesOfCopy("\xFF\xFE;\0\x3C\xD8"s), Entries{});
  EXPECT_EQ(entriesOfCopy("\xFE\xFF\0;\xD8\x3C\xDF"s), Entries{});
}

TEST(HostileStringsFile, PartOfAByteOrderMarkIsNoKey) {
  for (const std::string mark : {"\xEF", "\xEF\xBB", "\xFE", "\xFF"}) {
    EXPECT_EQ(entriesOfCopy(mark), Entries{});
  }
}

// A file that is cut anywhere says what the whole file says, or nothing, of each of its keys.
TEST(HostileStringsFile, ACutFileGivesNoOtherTexts) {
  const std::string whole =
      "\xEF\xBB\xBF/* One */ \"a\" = \"1 \\U00e9 \\UD83C\\UDFB9 \\101\"; // Two\n"
      "\"b\" /* Three */ = \"two; \\\"three\\\"\";\n\"c\\\\\" = \"Gr\xC3\xB6\xC3\x9F"
      "e\\\\\";";
  const StringTable all = StringTable::parse(whole);
  ASSERT_EQ(all.entries().size(), 3U);
  for (std::size_t length = 0; length < whole.size(); ++length) {
    for (const auto& [key, text] : entriesOfCopy(whole.substr(0, length))) {
      EXPECT_TRUE(all.entries().contains(key)) << length;
      EXPECT_TRUE(text == all.text(key) || text == key) << length;
    }
  }
}

TEST(HostileStringsFile, RandomBytesGiveAtMostAnEntryForEachSemicolonAndOneMore) {
  std::mt19937 random(20240229);
  const std::string_view likely = "\"\"\"\"\\=;/* \n//ab0U\xD8\xDC\xFF\xFE";
  std::size_t entriesInAll = 0;
  for (int round = 0; round < 20000; ++round) {
    std::string bytes = round % 8 == 0 ? "\xFF\xFE" : round % 8 == 1 ? "\xFE\xFF" : "";
    for (std::size_t length = random() % 120; length > 0; --length) {
      bytes.push_back(random() % 8 == 0 ? static_cast<char>(random()) : likely[random() % likely.size()]);
    }
    const Entries entries = entriesOfCopy(bytes);
    entriesInAll += entries.size();
    ASSERT_LE(entries.size(), static_cast<std::size_t>(std::ranges::count(bytes, ';')) + 1)
        << "round " << round;
  }
  EXPECT_GT(entriesInAll, 100U) << "the bytes are too wild to reach the reading of entries";
}

// Each of these made the reader begin again and again at the same far end, if it looked back too far.
TEST(HostileStringsFile, AMegabyteOfAnythingIsReadInAMoment) {
  const std::clock_t start = std::clock();  // the processor's time, since the machine may have other work
  for (const std::string piece : {"\"", "\\", ";", "/", "/*", "/*;", "\"a\"=/*;", "\"a\"=\"b;", "\"\\\";", "a;",
                                  "a ", "\"a\"", "\\U", "//", "//\r", "\"a\" \"b\" ;", "\0"}) {
    const Entries entries = entriesOfCopy(repeated(piece.empty() ? "\0"s : piece, 1U << 20U));
    EXPECT_LE(entries.size(), 2U) << piece;
  }
  EXPECT_LT((std::clock() - start) / CLOCKS_PER_SEC, 30);
}

}  // namespace tavenhall::test

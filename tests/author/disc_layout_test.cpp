#include "host/author/disc_layout.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <ostream>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace tavenhall::test {
namespace {

using Entries = std::vector<LibraryEntry>;

// "a b | c": the names on each disc.
std::string shown(const DiscLayout& layout, const Entries& entries) {
  std::string text;
  for (const DiscLayout::DiscPart& disc : layout.discs) {
    text += text.empty() ? "" : " |";
    for (const std::size_t index : disc.entries) {
      text += (text.empty() ? "" : " ") + entries[index].path;
    }
  }
  return text;
}

struct LayoutCase {
  const char* name;
  Entries entries;
  std::int64_t capacity;
  const char* discs;
  std::size_t fewest;
  std::vector<std::string> divided;
};

void PrintTo(const LayoutCase& layout, std::ostream* out) { *out << layout.name; }

class Layouts : public testing::TestWithParam<LayoutCase> {};

TEST_P(Layouts, AreThese) {
  const DiscLayout layout = layOut(GetParam().entries, {GetParam().capacity});
  EXPECT_EQ(shown(layout, GetParam().entries), GetParam().discs);
  EXPECT_EQ(layout.fewestPossible, GetParam().fewest);
  EXPECT_EQ(layout.dividedFolders, GetParam().divided);
}

INSTANTIATE_TEST_SUITE_P(
    Each, Layouts,
    testing::Values(LayoutCase{"Nothing", {}, 10, "", 0, {}},
                    LayoutCase{"AllOnOneDisc", {{"b", 4}, {"a/x", 5}}, 10, "a/x b", 1, {}},
                    LayoutCase{"AFolderStaysTogetherForOneDiscMore",
                               {{"a/x", 4}, {"a/y", 3}, {"b/x", 4}, {"b/y", 3}, {"c/x", 4}, {"c/y", 2}},
                               10,
                               "a/x a/y | b/x b/y | c/x c/y",
                               2,
                               {}},
                    LayoutCase{"TheLargestFolderIsDividedForTwoDiscsMore",
                               {{"a/x", 3},
                                {"a/y", 3},
                                {"b/x", 3},
                                {"b/y", 3},
                                {"c/x", 3},
                                {"c/y", 3},
                                {"d/x", 3},
                                {"d/y", 3},
                                {"e/x", 3},
                                {"e/y", 3},
                                {"f/x", 3},
                                {"f/y", 3}},
                               9,
                               "a/x b/x b/y | a/y c/x c/y | d/x d/y | e/x e/y | f/x f/y",
                               4,
                               {"a"}},
                    LayoutCase{"AFolderThatDoesNotFitIsDividedAtItsFolders",
                               {{"a/x/1", 4}, {"a/x/2", 4}, {"a/y/1", 4}, {"a/y/2", 4}, {"z", 2}},
                               10,
                               "a/x/1 a/x/2 z | a/y/1 a/y/2",
                               2,
                               {}},
                    LayoutCase{"LargeFilesAreAlone", {{"a", 6}, {"b", 6}, {"c", 6}}, 10, "a | b | c", 3, {}},
                    LayoutCase{"AnEmptyFolderIsOnADisc", {{"a", 0, true}, {"b", 10}}, 10, "a b", 1, {}}),
    [](const testing::TestParamInfo<LayoutCase>& test) { return test.param.name; });

TEST(DiscLayouts, CountBlocksNamesAndEachFolderOnEachDisc) {
  const DiscSpace space{100, 10, 3, 1, 7};
  const Entries entries{{"folder/one", 11}, {"folder/two", 60}};
  // 20 + 3 + 3, and 60 + 3 + 3; the folder 7 + 3 + 6 on each.
  const DiscLayout layout = layOut(entries, space);
  ASSERT_EQ(layout.discs.size(), 2U);
  EXPECT_EQ(layout.discs[0].bytes, 42);
  EXPECT_EQ(layout.discs[1].bytes, 82);
  EXPECT_TRUE(fitsOnDisc({"folder/one", 70}, space));
  EXPECT_FALSE(fitsOnDisc({"folder/one", 71}, space));
}

// Folders in folders, with files of any size up to that of a disc.
Entries randomLibrary(std::mt19937& random, std::int64_t largest) {
  const auto upTo = [&random](std::int64_t most) {
    return std::uniform_int_distribution<std::int64_t>(0, most)(random);
  };
  std::set<std::string> paths;
  Entries entries;
  constexpr std::int64_t kDiscs = 20;  // about as many as that at most
  const std::int64_t count = 1 + upTo(400);
  const std::int64_t depth = upTo(4);
  const std::int64_t width = 1 + upTo(5);
  const std::int64_t most = 1 + upTo(std::min(largest, 2 * kDiscs * largest / count) - 1);
  for (std::int64_t file = 0; file < count; ++file) {
    std::string path;
    for (std::int64_t level = upTo(depth); level > 0; --level) {
      path += "f" + std::to_string(upTo(width)) + "/";
    }
    entries.push_back({path + "file" + std::to_string(file), upTo(most)});
  }
  return entries;
}

TEST(DiscLayouts, OfAnyLibraryNeedAtMostOneDiscMoreThanTheFewestPossible) {
  std::mt19937 random(20261123);  // NOLINT: the same libraries in each run
  constexpr std::int64_t kCapacity = 100000000;
  const DiscSpace space{kCapacity, 2048, 300, 6, 5000};
  for (int turn = 0; turn < 500; ++turn) {
    Entries entries = randomLibrary(random, kCapacity - 40000);
    const DiscLayout layout = layOut(entries, space);
    EXPECT_LE(layout.discs.size(), layout.fewestPossible + 1) << "library " << turn;

    std::multiset<std::size_t> all;
    for (const DiscLayout::DiscPart& disc : layout.discs) {
      all.insert(disc.entries.begin(), disc.entries.end());
      std::set<std::string> folders;
      std::int64_t bytes = 0;
      for (const std::size_t index : disc.entries) {
        bytes += bytesOnDisc(entries[index], space);
        const std::string& path = entries[index].path;
        for (std::size_t slash = path.find('/'); slash != std::string::npos;
             slash = path.find('/', slash + 1)) {
          if (folders.insert(path.substr(0, slash)).second) {
            bytes += bytesOnDisc({path.substr(0, slash), 0, true}, space);
          }
        }
      }
      EXPECT_EQ(disc.bytes, bytes) << "library " << turn;
      EXPECT_LE(bytes, kCapacity) << "library " << turn;
    }
    ASSERT_EQ(all.size(), entries.size()) << "library " << turn;
    EXPECT_EQ(std::set<std::size_t>(all.begin(), all.end()).size(), entries.size()) << "library " << turn;

    const std::string before = shown(layout, entries);
    std::shuffle(entries.begin(), entries.end(), random);
    ASSERT_EQ(shown(layOut(entries, space), entries), before) << "library " << turn << " in another order";
  }
}

}  // namespace
}  // namespace tavenhall::test

#include "context/install_settings.h"
#include "context/internal_lookups.h"
#include "tests/support/files.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <strings.h>
#include <vector>

// The attributes file comes from outside, so anything may stand in it.
namespace tavenhall {
namespace {

using namespace std::string_literals;
using test::kSet;
using test::setAttributes;

constexpr std::size_t kGuard = 64;

class HostileAttributes : public testing::Test {
 protected:
  void SetUp() override { test::makeFolder("/Users/tester/Library/Caches"); }
};

struct Lookup {
  int found;
  std::string text;

  bool operator==(const Lookup&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Lookup& lookup) {
  return out << lookup.found << " " << testing::PrintToString(lookup.text);
}

// A lookup into a buffer of `size` bytes, with a check of the bytes behind it.
Lookup look(const char* key, std::size_t size = 2048) {
  std::string buffer(size + kGuard, '#');
  buffer[0] = '\0';
  const int found = getStringFromAttributesFile(key, buffer.data(), size);
  EXPECT_EQ(buffer.substr(size), std::string(kGuard, '#')) << key;
  EXPECT_NE(std::memchr(buffer.data(), '\0', size), nullptr) << key;
  return {found, buffer.c_str()};
}

// What the scan formats that define the file's grammar make of it. The buffers are those of a C program.
Lookup scannedText(const std::string& path, const char* key) {
  std::array<char, 2048> value{};
  std::FILE* file = std::fopen(path.c_str(), "r");
  int found = 0;
  for (int turn = 0; turn < 999 && found == 0; ++turn) {
    std::array<char, 2048> line{};
    std::array<char, 2048> name{};
    std::array<char, 2048> separator{};
    if (std::fgets(line.data(), 2048, file) != nullptr) {
      static_cast<void>(
          std::sscanf(line.data(), "%2047s %2047s %2047[^\n]", name.data(), separator.data(), value.data()));
      found = strcasecmp(name.data(), key) == 0 ? 1 : 0;
    }
  }
  std::fclose(file);
  if (found == 0) {
    return {0, value.data()};
  }
  std::string text = value.data();
  text = text.substr(0, text.find('\r'));
  for (std::size_t i = 0; i + 1 < text.size(); ++i) {
    if (text[i] == '\\' && (text[i + 1] == 'n' || text[i + 1] == 'r')) {
      text.replace(i, 2, " \n");
    }
  }
  return {1, text};
}

std::int64_t scannedNumber(const std::string& path, const char* key) {
  long long number = 0;
  std::FILE* file = std::fopen(path.c_str(), "r");
  bool found = false;
  for (int turn = 0; turn < 999 && !found; ++turn) {
    std::array<char, 2048> line{};
    std::array<char, 2048> name{};
    std::array<char, 2048> separator{};
    if (std::fgets(line.data(), 2048, file) != nullptr) {
      static_cast<void>(std::sscanf(line.data(), "%2047s %2047s %lld", name.data(), separator.data(), &number));
      found = std::strcmp(name.data(), key) == 0;
    }
  }
  std::fclose(file);
  return found ? number : 0;
}

std::string randomBytes(std::mt19937& random, std::size_t size) {
  std::string bytes(size, '\0');
  for (char& byte : bytes) {
    byte = static_cast<char>(random() % 256);
  }
  return bytes;
}

// Lines of keys, values and rubbish, of all lengths.
std::string randomLines(std::mt19937& random) {
  static const std::vector<std::string> kPieces = {"Mode",
                                                   "mode",
                                                   "RelativePath",
                                                   "NumberOfVolumes",
                                                   " ",
                                                   " = ",
                                                   "\t",
                                                   "\n",
                                                   "\r\n",
                                                   "\r",
                                                   "\0"s,
                                                   "DataUpdater",
                                                   "\\n",
                                                   "%n%s",
                                                   "42",
                                                   "-7",
                                                   "+9",
                                                   "abc",
                                                   "\xff",
                                                   "\xc3\xa9",
                                                   "99999999999999999999"};
  std::string text;
  for (auto pieces = random() % 200; pieces > 0; --pieces) {
    const auto kind = random() % 60;
    if (kind == 0) {
      text += std::string(random() % 6000, 'x');
    } else if (kind < 4) {
      text += "\nMode = " + kPieces[random() % kPieces.size()];
    } else {
      text += kPieces[random() % kPieces.size()];
    }
  }
  return text;
}

TEST_F(HostileAttributes, RandomBytesAreReadAsTheScanFormatsReadThem) {
  std::mt19937 random(4711);
  const std::string path = std::string(kSet) + "/.InstallationAttributes.dat";
  for (int i = 0; i < 100; ++i) {
    setAttributes(randomBytes(random, random() % 20000));
    ASSERT_EQ(look("Mode"), scannedText(path, "Mode")) << i;
    ASSERT_EQ(getLongLongFromAttributesFile("NumberOfVolumes"), scannedNumber(path, "NumberOfVolumes")) << i;
  }
}

TEST_F(HostileAttributes, RandomLinesAreReadAsTheScanFormatsReadThem) {
  std::mt19937 random(4712);
  const std::string path = std::string(kSet) + "/.InstallationAttributes.dat";
  int found = 0;
  for (int i = 0; i < 150; ++i) {
    setAttributes(randomLines(random));
    for (const char* key : {"Mode", "RelativePath", "NumberOfVolumes", "x"}) {
      const Lookup lookup = look(key);
      found += lookup.found;
      ASSERT_EQ(lookup, scannedText(path, key)) << key << " " << i;
      ASSERT_EQ(getLongLongFromAttributesFile(key), scannedNumber(path, key)) << key << " " << i;
    }
  }
  EXPECT_GT(found, 100) << "too few of the lookups find their key";
}

TEST_F(HostileAttributes, NoLookupWritesBehindASmallBuffer) {
  std::mt19937 random(4713);
  for (int i = 0; i < 100; ++i) {
    setAttributes(randomLines(random));
    for (const std::size_t size : {1U, 2U, 3U, 64U}) {
      const Lookup whole = look("Mode");
      const Lookup cut = look("Mode", size);
      ASSERT_EQ(cut.found, whole.found) << i;
      ASSERT_LT(cut.text.size(), size) << i;
    }
  }
}

TEST_F(HostileAttributes, ALineWithoutANewlineOf5000BytesIsReadInPieces) {
  // The first piece is the line's first 2047 bytes; the second begins with what stands behind them.
  const std::string start = "Title = ";
  setAttributes(start + std::string(2047 - start.size(), 'x') + "Mode = DataUpdater" + std::string(3000, 'y'));
  EXPECT_EQ(look("Title"), (Lookup{1, std::string(2047 - start.size(), 'x')}));
  const Lookup mode = look("Mode");
  EXPECT_EQ(mode.found, 1);
  EXPECT_EQ(mode.text, "DataUpdater" + std::string(2047 - 18, 'y'));
}

TEST_F(HostileAttributes, EveryPieceOfALongLineCountsAsALine) {
  std::string others;
  for (int i = 0; i < 995; ++i) {
    others += "Other = line\n";
  }
  const std::string threePieces = std::string(5000, 'x') + "\n";
  setAttributes(others + threePieces + "Mode = DataUpdater\n");
  EXPECT_EQ(look("Mode").found, 1) << "line 999";
  setAttributes(others + "Other = line\n" + threePieces + "Mode = DataUpdater\n");
  EXPECT_EQ(look("Mode").found, 0) << "line 1000";
}

TEST_F(HostileAttributes, ALineOf2047BytesIsOnePiece) {
  const std::string line = "Title = " + std::string(2047 - 9, 'x') + "\n";
  ASSERT_EQ(line.size(), 2047U);
  setAttributes(line + "Mode = DataUpdater\n");
  EXPECT_EQ(look("Title").text, std::string(2038, 'x'));
  EXPECT_EQ(look("Mode").text, "DataUpdater");
}

TEST_F(HostileAttributes, AKeyAsLongAsALineIsNotTheWantedOne) {
  setAttributes(std::string(2047, 'M') + "\nMode = DataUpdater\n");
  EXPECT_EQ(look("Mode"), (Lookup{1, "DataUpdater"}));
}

TEST_F(HostileAttributes, ALineEndsAtItsFirstNulByte) {
  setAttributes("Title = a\0b\0 Mode = DataUpdater\nRelativePath = c\n"s);
  EXPECT_EQ(look("Title"), (Lookup{1, "a"}));
  EXPECT_EQ(look("Mode").found, 0);
  EXPECT_EQ(look("RelativePath"), (Lookup{1, "c"}));
}

TEST_F(HostileAttributes, AFileOfNulBytesHasNoKeys) {
  setAttributes(std::string(100000, '\0'));
  EXPECT_EQ(look("Mode"), (Lookup{0, ""}));
  EXPECT_EQ(getLongLongFromAttributesFile("NumberOfVolumes"), 0);
}

TEST_F(HostileAttributes, AnEmptyFileHasNoKeys) {
  setAttributes("");
  EXPECT_EQ(look("Mode"), (Lookup{0, ""}));
  EXPECT_EQ(getLongLongFromAttributesFile("NumberOfVolumes"), 0);
}

TEST_F(HostileAttributes, AFolderOfTheFilesNameHasNoKeys) {
  setAttributes("");
  const std::string path = std::string(kSet) + "/.InstallationAttributes.dat";
  ASSERT_EQ(std::remove(path.c_str()), 0);
  test::makeFolder(path);
  EXPECT_EQ(look("Mode"), (Lookup{0, ""}));
  EXPECT_EQ(getLongLongFromAttributesFile("NumberOfVolumes"), 0);
}

TEST_F(HostileAttributes, AValueIsCutToItsCallersBuffer) {
  setAttributes("Title = 123456789\n");
  EXPECT_EQ(look("Title", 10), (Lookup{1, "123456789"}));
  EXPECT_EQ(look("Title", 9), (Lookup{1, "12345678"}));
  EXPECT_EQ(look("Title", 1), (Lookup{1, ""}));
}

TEST_F(HostileAttributes, AValueIsCutAtTheEdgeOfACharacter) {
  setAttributes("Title = 12\u20ac4\n");
  EXPECT_EQ(look("Title", 6), (Lookup{1, "12\u20ac"}));
  EXPECT_EQ(look("Title", 5), (Lookup{1, "12"}));
  EXPECT_EQ(look("Title", 4), (Lookup{1, "12"}));
}

TEST_F(HostileAttributes, AnotherLinesLongValueIsCutToo) {
  setAttributes("Other = 123456789\nTitle = ab\n");
  EXPECT_EQ(look("Title", 4), (Lookup{1, "ab"}));
  EXPECT_EQ(look("Missing", 2), (Lookup{0, "a"}));
}

TEST_F(HostileAttributes, FormatsInAValueReachNoPrintf) {
  const std::string formats = "%n%s%s%s%n%x%99999999d%1$n %%";
  setAttributes("InstallingData = " + formats + "\n");
  std::array<char, 2048> text{};
  getInstallingDataString(text.data());
  EXPECT_EQ(text.data(), formats);
  EXPECT_EQ(test::logMessages().back(), "Data from attributes file::  InstallingData=" + formats + " ");
}

TEST_F(HostileAttributes, TheLongestValueIsGivenAndLoggedWhole) {
  const std::string value(2047 - std::string("InstallDataTitle = ").size(), 'v');
  setAttributes("InstallDataTitle = " + value);
  std::array<char, 2048> text{};
  getInstallDataTitle(text.data());
  EXPECT_EQ(text.data(), value);
  EXPECT_EQ(test::logMessages().back(), "Data from attributes file::  InstallData title=" + value + " ");
}

}  // namespace
}  // namespace tavenhall

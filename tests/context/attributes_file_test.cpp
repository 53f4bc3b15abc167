#include "context/attributes_file.h"

#include "context/internal_lookups.h"
#include "tests/support/files.h"

#include <array>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavenhall {
namespace {

using test::kSet;
using test::logMessages;
using test::setAttributes;
using test::writeFile;
using Messages = std::vector<std::string>;

constexpr const char* kFoundBeside =
    "Found Installation Attribute File at  /Users/tester/Downloads/Set/.InstallationAttributes.dat";
constexpr const char* kFoundAbove =
    "Found Installation Attribute File at  /Users/tester/Downloads/Set/../.InstallationAttributes.dat";
constexpr const char* kNotFound = "Did not find Installation Attribute File.";

class AttributesFile : public testing::Test {
 protected:
  void SetUp() override {
    test::makeFolder("/Users/tester/Library/Caches");
    test::setPackage(std::string(kSet) + "/Installer.pkg");
  }
};

// The whole attributes file as the page opens it; none where it finds none.
std::optional<std::string> contents() {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(getInstallationAttributesFile(), std::fclose);
  if (file == nullptr) {
    return std::nullopt;
  }
  std::string text(4096, '\0');
  text.resize(std::fread(text.data(), 1, text.size(), file.get()));
  return text;
}

// The text for a key; none where the key is missing.
std::optional<std::string> textOf(const char* key) {
  std::array<char, 2048> value{};
  const int found = getStringFromAttributesFile(key, value.data(), value.size());
  EXPECT_TRUE(found == 0 || found == 1) << found;
  return found == 1 ? std::optional<std::string>(value.data()) : std::nullopt;
}

// What a lookup leaves in a buffer that held `before`.
std::string bufferAfter(const char* key, std::string before) {
  before.resize(2048);
  static_cast<void>(getStringFromAttributesFile(key, before.data(), before.size()));
  return before.c_str();
}

std::string otherLines(int count) {
  std::string lines;
  for (int i = 0; i < count; ++i) {
    lines += "Other = line\n";
  }
  return lines;
}

TEST_F(AttributesFile, IsFoundBesideThePackage) {
  setAttributes("Mode = DataUpdater\n");
  EXPECT_EQ(contents(), "Mode = DataUpdater\n");
  EXPECT_EQ(logMessages(), Messages{kFoundBeside});
}

TEST_F(AttributesFile, IsFoundOneFolderAboveThePackage) {
  test::makeFolder(kSet);
  writeFile("/Users/tester/Downloads/.InstallationAttributes.dat", "above\n");
  EXPECT_EQ(contents(), "above\n");
  EXPECT_EQ(logMessages(), Messages{kFoundAbove});
}

TEST_F(AttributesFile, BesideThePackageWinsOverOneFolderAbove) {
  writeFile("/Users/tester/Downloads/.InstallationAttributes.dat", "above\n");
  setAttributes("beside\n");
  EXPECT_EQ(contents(), "beside\n");
}

TEST_F(AttributesFile, IsNotFoundTwoFoldersAbove) {
  test::makeFolder(kSet);
  writeFile("/Users/tester/.InstallationAttributes.dat", "Mode = DataUpdater\n");
  EXPECT_EQ(contents(), std::nullopt);
  EXPECT_EQ(logMessages(), Messages{kNotFound});
}

TEST_F(AttributesFile, FoundIsLoggedOnceAProcess) {
  setAttributes("Mode = DataUpdater\n");
  contents();
  contents();
  textOf("Mode");
  static_cast<void>(getLongLongFromAttributesFile("NumberOfVolumes"));
  EXPECT_EQ(logMessages(), Messages{kFoundBeside});
}

TEST_F(AttributesFile, NotFoundIsLoggedOnceEvenIfItIsFoundLater) {
  EXPECT_EQ(contents(), std::nullopt);
  setAttributes("Mode = DataUpdater\n");
  EXPECT_EQ(contents(), "Mode = DataUpdater\n");
  EXPECT_EQ(logMessages(), Messages{kNotFound});
}

TEST_F(AttributesFile, IsReadAnewByEveryLookup) {
  setAttributes("RelativePath = first\nNumberOfVolumes = 2\n");
  EXPECT_EQ(textOf("RelativePath"), "first");
  EXPECT_EQ(getLongLongFromAttributesFile("NumberOfVolumes"), 2);
  setAttributes("RelativePath = second\nNumberOfVolumes = 3\n");
  EXPECT_EQ(textOf("RelativePath"), "second");
  EXPECT_EQ(getLongLongFromAttributesFile("NumberOfVolumes"), 3);
}

TEST_F(AttributesFile, LookupsLeaveThePackagesFolderAsTheResult) {
  setAttributes("Mode = DataUpdater\n");
  getFolderContainingPKGfile("Data");
  textOf("Mode");
  EXPECT_STREQ(sOutputPathWithCallersSubfolder.c_str(), "/Users/tester/Downloads/Set");
}

TEST_F(AttributesFile, WithoutALocationFileIsLookedForInTheRootFolder) {
  std::remove("/tmp/TavInstallLoc");
  writeFile("/.InstallationAttributes.dat", "RelativePath = root\n");
  EXPECT_EQ(textOf("RelativePath"), "root");
  EXPECT_EQ(logMessages(),
            (Messages{"getFolderContainingPKGfile: could not open preinstall file  /tmp/TavInstallLoc",
                      "Found Installation Attribute File at  /.InstallationAttributes.dat"}));
}

TEST_F(AttributesFile, WithoutALocationFileBothTriesAreLogged) {
  std::remove("/tmp/TavInstallLoc");
  EXPECT_EQ(contents(), std::nullopt);
  EXPECT_EQ(logMessages(),
            (Messages{"getFolderContainingPKGfile: could not open preinstall file  /tmp/TavInstallLoc",
                      "getFolderContainingPKGfile: preinstall file is empty",
                      "Did not find Installation Attribute File."}));
}

TEST_F(AttributesFile, ThatIsMissingHasNoTextAndTouchesNoBuffer) {
  EXPECT_EQ(textOf("Mode"), std::nullopt);
  EXPECT_EQ(bufferAfter("Mode", "the caller's"), "the caller's");
}

TEST_F(AttributesFile, ThatIsMissingHasNoNumber) {
  EXPECT_EQ(getLongLongFromAttributesFile("NumberOfVolumes"), 0);
}

TEST_F(AttributesFile, TextKeyIsComparedIgnoringCase) {
  setAttributes("numberofVOLUMES = 2\n");
  EXPECT_EQ(textOf("NumberOfVolumes"), "2");
}

TEST_F(AttributesFile, NumberKeyIsComparedExactlyWhileATextKeyIsNot) {
  setAttributes("NumberOfVolumes = 2\n");
  EXPECT_EQ(getLongLongFromAttributesFile("NumberOfVolumes"), 2);
  EXPECT_EQ(getLongLongFromAttributesFile("numberofvolumes"), 0);
  EXPECT_EQ(textOf("NumberOfVolumes"), "2");
  EXPECT_EQ(textOf("numberofvolumes"), "2");
}

TEST_F(AttributesFile, TheFirstLineWithTheKeyCounts) {
  setAttributes("RelativePath = first\nRelativePath = second\nNumberOfVolumes = 2\nNumberOfVolumes = 3\n");
  EXPECT_EQ(textOf("RelativePath"), "first");
  EXPECT_EQ(getLongLongFromAttributesFile("NumberOfVolumes"), 2);
}

TEST_F(AttributesFile, AKeyThatBeginsWithTheWantedOneIsAnother) {
  setAttributes("RelativePath2 = second\nRelativePath = first\n");
  EXPECT_EQ(textOf("RelativePath"), "first");
  EXPECT_EQ(textOf("RelativePath2"), "second");
}

TEST_F(AttributesFile, CarriageReturnsAtLineEndsAreNoPartOfAValue) {
  setAttributes("Mode = InstallFromVolumes\r\nNumberOfVolumes = 2\r\n");
  EXPECT_EQ(textOf("Mode"), "InstallFromVolumes");
  EXPECT_EQ(getLongLongFromAttributesFile("NumberOfVolumes"), 2);
}

TEST_F(AttributesFile, BackslashNInAValueBecomesABlankAndANewline) {
  setAttributes("InstalledData = first\\nsecond\n");
  EXPECT_EQ(textOf("InstalledData"), "first \nsecond");
}

TEST_F(AttributesFile, BackslashRInAValueBecomesABlankAndANewline) {
  setAttributes("InstalledData = first\\rsecond\n");
  EXPECT_EQ(textOf("InstalledData"), "first \nsecond");
}

TEST_F(AttributesFile, AValueOfOneCharacterIsFound) {
  setAttributes("RelativePath = .\n");
  EXPECT_EQ(textOf("RelativePath"), ".");
}

TEST_F(AttributesFile, TheLastLineNeedsNoNewline) {
  setAttributes("RelativePath = first\nMode = DataUpdater");
  EXPECT_EQ(textOf("Mode"), "DataUpdater");
  setAttributes("NumberOfVolumes = 4");
  EXPECT_EQ(getLongLongFromAttributesFile("NumberOfVolumes"), 4);
}

TEST_F(AttributesFile, AMissingKeyLeavesTheLastLinesValueInTheBuffer) {
  setAttributes("RelativePath = first\nPreparationTitle = last\\none\r\nMode =\n");
  EXPECT_EQ(textOf("RelativePath2"), std::nullopt);
  EXPECT_EQ(bufferAfter("RelativePath2", "the caller's"), "last\\none\r");
}

TEST_F(AttributesFile, AMissingKeyWithoutAnyValueLeavesTheBufferAlone) {
  setAttributes("RelativePath =\n\nMode\n");
  EXPECT_EQ(bufferAfter("RelativePath2", "the caller's"), "the caller's");
}

TEST_F(AttributesFile, AKeyWithoutAValueIsFoundWithTheValueOfTheLineBefore) {
  setAttributes("RelativePath = first\\nline\nMode =\n");
  EXPECT_EQ(textOf("Mode"), "first \nline");
}

TEST_F(AttributesFile, AKeyWithoutAnyValueBeforeItIsFoundEmpty) {
  setAttributes("Mode =\nRelativePath = behind\n");
  EXPECT_EQ(textOf("Mode"), "");
}

TEST_F(AttributesFile, ANumberThatIsNoneKeepsTheNumberBefore) {
  setAttributes("NumberOfVolumes = 2\nTotalSizeMillionsBytes = abc\n");
  EXPECT_EQ(getLongLongFromAttributesFile("TotalSizeMillionsBytes"), 2);
}

TEST_F(AttributesFile, ANumberThatIsMissingKeepsTheNumberBefore) {
  setAttributes("Anything = 12 GB\nTitle = none\nTotalSizeMillionsBytes =\n");
  EXPECT_EQ(getLongLongFromAttributesFile("TotalSizeMillionsBytes"), 12);
}

TEST_F(AttributesFile, ANumberThatIsNoneWithoutAnyBeforeItIsZero) {
  setAttributes("TotalSizeMillionsBytes = abc\nNumberOfVolumes = 2\n");
  EXPECT_EQ(getLongLongFromAttributesFile("TotalSizeMillionsBytes"), 0);
}

TEST_F(AttributesFile, AMissingNumberKeyIsZeroWhateverStandsElsewhere) {
  setAttributes("NumberOfVolumes = 2\n");
  EXPECT_EQ(getLongLongFromAttributesFile("TotalSizeMillionsBytes"), 0);
}

TEST_F(AttributesFile, ANumberIsSigned64Bits) {
  setAttributes("A = -3\nB = +4\nC = 9000000000\n");
  EXPECT_EQ(getLongLongFromAttributesFile("A"), -3);
  EXPECT_EQ(getLongLongFromAttributesFile("B"), 4);
  EXPECT_EQ(getLongLongFromAttributesFile("C"), 9000000000);
}

TEST_F(AttributesFile, AnAbsurdNumberIsTheNearestThatFits) {
  setAttributes("A = 99999999999999999999999\nB = -99999999999999999999999\n");
  EXPECT_EQ(getLongLongFromAttributesFile("A"), INT64_MAX);
  EXPECT_EQ(getLongLongFromAttributesFile("B"), INT64_MIN);
}

TEST_F(AttributesFile, AKeyOnLine999IsFound) {
  setAttributes(otherLines(998) + "NumberOfVolumes = 2\n");
  EXPECT_EQ(textOf("NumberOfVolumes"), "2");
  EXPECT_EQ(getLongLongFromAttributesFile("NumberOfVolumes"), 2);
}

TEST_F(AttributesFile, AKeyOnLine1000IsNotFound) {
  setAttributes(otherLines(999) + "NumberOfVolumes = 2\n");
  EXPECT_EQ(textOf("NumberOfVolumes"), std::nullopt);
  EXPECT_EQ(getLongLongFromAttributesFile("NumberOfVolumes"), 0);
}

TEST_F(AttributesFile, AValueOnLine1000DoesNotReachTheBuffer) {
  setAttributes(otherLines(999) + "RelativePath = late\n");
  EXPECT_EQ(bufferAfter("RelativePath2", ""), "line");
}

}  // namespace
}  // namespace tavenhall

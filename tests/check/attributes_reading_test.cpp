#include "host/set/attributes_reading.h"

#include "context/install_rules.h"
#include "context/install_settings.h"
#include "context/internal_lookups.h"
#include "host/base/exit_status.h"
#include "tests/check/random_attributes.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

namespace tavenhall::test {

namespace {

AttributesReading readSet() { return AttributesReading::besidePackage(kSet); }

// The page's own lookups in the file beside the package, against those of the reading.
void expectSameAnswers(const std::string& contents) {
  setAttributes(contents);
  const AttributesReading reading = readSet();
  for (const AttributesKey& key : attributesKeys()) {
    for (const std::size_t size : {kAttributesValueSize, std::size_t{64}}) {
      std::vector<char> buffer(size, '\0');
      const int found = getStringFromAttributesFile(key.name, buffer.data(), size);
      const FoundText text = reading.findText(key.name, size);
      ASSERT_EQ(static_cast<bool>(text), found == 1) << key.name << " in:\n" << contents;
      ASSERT_EQ(text.value, buffer.data()) << key.name << " in:\n" << contents;
    }
    ASSERT_EQ(reading.findNumber(key.name).number, getLongLongFromAttributesFile(key.name))
        << key.name << " in:\n"
        << contents;
  }
}

}  // namespace

TEST(AttributesReading, AnswersAsThePageDoes) {
  expectSameAnswers("Mode = InstallFromVolumes\r\nNumberOfVolumes = 2\r\nInstalledData = To:\\n%s\\rDone\r\n");
}

TEST(AttributesReading, LeavesAnotherLinesValueForAMissingKey) {
  const AttributesReading reading = AttributesReading::parse("Mode = DataUpdater\nInstallDataTitle = Hello\n");
  const FoundText found = reading.findText("RelativePath2");
  EXPECT_FALSE(found);
  EXPECT_EQ(found.value, "Hello");
  expectSameAnswers("Mode = DataUpdater\nInstallDataTitle = Hello\n");
}

TEST(AttributesReading, GivesAKeyWithoutAValueTheOneBefore) {
  const std::string contents = "InstallDataTitle = Hello\nMode =\n";
  const AttributesReading reading = AttributesReading::parse(contents);
  const FoundText found = reading.findText("Mode");
  ASSERT_TRUE(found);
  EXPECT_EQ(found.key->line, 2);
  EXPECT_EQ(found.source->line, 1);
  EXPECT_EQ(found.value, "Hello");
  expectSameAnswers(contents);
}

TEST(AttributesReading, NamesTheLineWhoseNumberStandsIn) {
  const std::string contents = "NumberOfVolumes = 2\nInstallDataTitle = Hello\nTotalSizeMillionsBytes = abc\n";
  const AttributesReading reading = AttributesReading::parse(contents);
  const FoundNumber found = reading.findNumber("TotalSizeMillionsBytes");
  ASSERT_TRUE(found);
  EXPECT_EQ(found.number, 2);
  EXPECT_EQ(found.key->line, 3);
  EXPECT_EQ(found.source->line, 1);
  expectSameAnswers(contents);
}

TEST(AttributesReading, FindsANumberKeyInItsExactCaseOnly) {
  const AttributesReading reading = AttributesReading::parse("numberofvolumes = 2\nmode = DataUpdater\n");
  EXPECT_FALSE(reading.findNumber("NumberOfVolumes"));
  EXPECT_EQ(reading.findNumber("NumberOfVolumes").number, 0);
  EXPECT_TRUE(reading.findText("Mode"));
  expectSameAnswers("numberofvolumes = 2\nmode = DataUpdater\n");
}

TEST(AttributesReading, SearchesNineHundredNinetyNineLines) {
  std::string lines;
  for (int line = 1; line < 999; ++line) {
    lines += "Filler = " + std::to_string(line) + "\n";
  }
  expectSameAnswers(lines + "Mode = DataUpdater\n");
  const AttributesReading within = readSet();
  EXPECT_TRUE(within.findText("Mode"));
  expectSameAnswers(lines + "Filler = 999\nMode = DataUpdater\n");
  const AttributesReading beyond = readSet();
  EXPECT_FALSE(beyond.findText("Mode"));
}

TEST(AttributesReading, CountsALongLineOnceInTheFileAndTwiceInTheSearch) {
  const std::string contents = "InstalledData = " + std::string(2100, 'x') + "\nMode = DataUpdater\n";
  const AttributesReading reading = AttributesReading::parse(contents);
  ASSERT_EQ(reading.pieces().size(), 3U);
  EXPECT_TRUE(reading.pieces()[0].isCut);
  EXPECT_TRUE(reading.pieces()[1].continuesLine);
  EXPECT_EQ(reading.pieces()[2].line, 2);
  EXPECT_EQ(reading.pieces()[2].turn, 3);
  expectSameAnswers(contents);
}

TEST(AttributesReading, ALineOfExactly2047BytesIsReadAtOnce) {
  const std::string line = "Mode = " + std::string(2047 - 7 - 1, 'm');
  const AttributesReading reading = AttributesReading::parse(line + "\nNumberOfVolumes = 2\n");
  EXPECT_EQ(reading.pieces().size(), 2U);
  expectSameAnswers(line + "\nNumberOfVolumes = 2\n");
  EXPECT_EQ(AttributesReading::parse(line + "m\nNumberOfVolumes = 2\n").pieces().size(), 3U);
  expectSameAnswers(line + "m\nNumberOfVolumes = 2\n");
}

TEST(AttributesReading, FindsTheFileOneFolderAbove) {
  writeFile("/Users/tester/Downloads/.InstallationAttributes.dat", "Mode = DataUpdater\n");
  makeFolder(kSet);
  const AttributesReading reading = readSet();
  EXPECT_TRUE(reading.isFilePresent());
  EXPECT_EQ(reading.path(), std::string(kSet) + "/../.InstallationAttributes.dat");
}

TEST(AttributesReading, PrefersTheFileBesideThePackage) {
  writeFile("/Users/tester/Downloads/.InstallationAttributes.dat", "InstallDataTitle = Above\n");
  setAttributes("InstallDataTitle = Beside\n");
  EXPECT_EQ(readSet().textOrFallback("InstallDataTitle"), "Beside");
}

TEST(AttributesReading, WithoutAFileEveryTextIsTheBuiltInOne) {
  makeFolder(kSet);
  setPackage(std::string(kSet) + "/Installer.pkg");
  const AttributesReading reading = readSet();
  EXPECT_FALSE(reading.isFilePresent());
  EXPECT_EQ(reading.textOrFallback("InstallDataTitle"), "Installing Data");
  EXPECT_EQ(reading.textOrFallback("RelativePath"), "..");
  EXPECT_EQ(reading.textOrFallback("RelativePath2"), "");
}

TEST(AttributesReading, AFolderInTheFilesPlaceIsAnErrorThoughThePageFindsNoLine) {
  makeFolder(std::string(kSet) + "/.InstallationAttributes.dat");
  setPackage(std::string(kSet) + "/Installer.pkg");
  EXPECT_THROW(static_cast<void>(readSet()), UsageError);
  EXPECT_EQ(getInstallationMode(), 2);
}

// ---- Any bytes ----

TEST(AttributesReading, AnswersAsThePageDoesOnAnyBytes) {
  std::mt19937 random(20260711);
  for (int round = 0; round < 60 && !HasFatalFailure(); ++round) {
    expectSameAnswers(randomBytes(random));
  }
}

TEST(AttributesReading, AnswersAsThePageDoesOnAnyLines) {
  std::mt19937 random(42);
  for (int round = 0; round < 60 && !HasFatalFailure(); ++round) {
    expectSameAnswers(randomLines(random));
  }
}

}  // namespace tavenhall::test

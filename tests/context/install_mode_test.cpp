#include "context/install_settings.h"

#include "tests/support/files.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tavenhall {
namespace {

using test::kFoundLine;
using test::logMessages;
using test::setAttributes;
using Messages = std::vector<std::string>;

class InstallationMode : public testing::Test {
 protected:
  void SetUp() override { test::makeFolder("/Users/tester/Library/Caches"); }
};

int modeFor(const std::string& value) {
  setAttributes("Mode = " + value + "\n");
  return getInstallationMode();
}

TEST_F(InstallationMode, OfEachWordIsLogged) {
  EXPECT_EQ(modeFor("DataUpdater"), 0);
  EXPECT_EQ(modeFor("InstallFromVolumes"), 2);
  EXPECT_EQ(modeFor("Download"), 3);
  EXPECT_EQ(modeFor("TavenhallUpdater"), 4);
  EXPECT_EQ(modeFor("SupportHub"), 4);
  EXPECT_EQ(logMessages(),
            (Messages{kFoundLine, "Installation mode is 0", "Installation mode is 2", "Installation mode is 3",
                      "Installation mode is 4", "Installation mode is 4"}));
}

TEST_F(InstallationMode, WithoutAFileIs2AndSaysSo) {
  test::setPackage("/Users/tester/Downloads/Set/Installer.pkg");
  EXPECT_EQ(getInstallationMode(), 2);
  EXPECT_EQ(logMessages(), (Messages{"Did not find Installation Attribute File.",
                                     "Did not find InstallationAttributes file.  Assuming Flash installation",
                                     "Installation mode is 2"}));
}

TEST_F(InstallationMode, WithoutAFileSaysSoAtEveryCall) {
  test::setPackage("/Users/tester/Downloads/Set/Installer.pkg");
  getInstallationMode();
  getInstallationMode();
  EXPECT_EQ(logMessages(), (Messages{"Did not find Installation Attribute File.",
                                     "Did not find InstallationAttributes file.  Assuming Flash installation",
                                     "Installation mode is 2",
                                     "Did not find InstallationAttributes file.  Assuming Flash installation",
                                     "Installation mode is 2"}));
}

TEST_F(InstallationMode, WithoutAModeKeyIs2) {
  setAttributes("RelativePath = DataUpdater\n");
  EXPECT_EQ(getInstallationMode(), 2);
  EXPECT_EQ(logMessages(), (Messages{kFoundLine, "Installation mode is 2"}));
}

TEST_F(InstallationMode, OfBothUpdatersIsTheDataUpdaters) {
  EXPECT_EQ(modeFor("TavenhallUpdater DataUpdater"), 0);
}

TEST_F(InstallationMode, OfASupportHubWithAnEarlierWordIsTheEarlierWords) {
  EXPECT_EQ(modeFor("SupportHub InstallFromVolumes"), 2);
  EXPECT_EQ(modeFor("MySupportHub Service"), 4);
}

TEST_F(InstallationMode, OfAWordInAnotherCaseIs3) { EXPECT_EQ(modeFor("dataupdater"), 3); }

TEST_F(InstallationMode, KeyIsFoundInAnyCase) {
  setAttributes("mODE = DataUpdater\n");
  EXPECT_EQ(getInstallationMode(), 0);
}

TEST_F(InstallationMode, OfAFileWithCarriageReturnsIsRead) {
  setAttributes("Mode = InstallFromVolumes\r\nNumberOfVolumes = 2\r\n");
  EXPECT_EQ(getInstallationMode(), 2);
}

TEST_F(InstallationMode, AWordWithinTheFirst63CharactersCounts) {
  EXPECT_EQ(modeFor(std::string(63 - 11, 'x') + "DataUpdater"), 0);
}

TEST_F(InstallationMode, AWordBeyondTheFirst63CharactersIsCutOff) {
  EXPECT_EQ(modeFor(std::string(64 - 11, 'x') + "DataUpdater"), 3);
  EXPECT_EQ(modeFor(std::string(1900, 'x') + "DataUpdater"), 3);
}

TEST_F(InstallationMode, IsReadAnewAtEveryCall) {
  EXPECT_EQ(modeFor("DataUpdater"), 0);
  EXPECT_EQ(modeFor("SupportHub"), 4);
}

}  // namespace
}  // namespace tavenhall

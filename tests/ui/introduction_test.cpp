#include "host/ui/introduction.h"
#include "host/base/files.h"
#include "host/cli/run_description.h"

#include "tests/support/files.h"
#include "tests/terminal/in_utf8.h"
#include "tests/terminal/rendered.h"

#include <gmock/gmock.h>
#include <string>

namespace tavenhall::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kDataRoot = "/Users/tester/Library/Application Support/Tavenhall";

class IntroductionPage : public InUtf8 {
 protected:
  Introduction introduceSet(const std::string& attributes, std::optional<std::string> installType = {}) {
    setAttributes(attributes);
    PlanRequest request;
    request.package = std::string(kSet) + "/Installer.pkg";
    request.product = {"Tessaphon", "TANVO"};
    request.dataRoot = kDataRoot;
    request.installType = installType;
    return introduce(planInstall(request), [this](const std::string&) { return free; });
  }

  std::optional<std::int64_t> free = 5000000000;
};

constexpr const char* kTwoDiscs =
    "Mode = InstallFromVolumes\nNumberOfVolumes = 2\nTotalSizeMillionsBytes = 1200\n"
    "InstallDataTitle = Installing Tessaphon\n";

TEST_F(IntroductionPage, DiscsAreListedByName) {
  EXPECT_THAT(introduceSet(kTwoDiscs).from, ElementsAre("Disc Tavenhall Tessaphon A", "Disc Tessaphon B"));
}

TEST_F(IntroductionPage, AFolderIsReportedByItsTidyPath) {
  const Introduction introduction = introduceSet("Mode = DataUpdater\nRelativePath = ../Data\n");
  EXPECT_THAT(introduction.from, ElementsAre("/Users/tester/Downloads/Data"));
}

TEST_F(IntroductionPage, ManyDiscsAreNotAllListed) {
  const Introduction introduction = introduceSet("Mode = InstallFromVolumes\nNumberOfVolumes = 20\n");
  ASSERT_EQ(introduction.from.size(), 8U);
  EXPECT_EQ(introduction.from.back(), "and 13 more");
}

TEST_F(IntroductionPage, TheDataFolderIsTheDestination) {
  EXPECT_THAT(introduceSet(kTwoDiscs).to, ElementsAre(kTanvo));
}

TEST_F(IntroductionPage, AnUpdateNamesAllItsFoldersAndItsBarWraps) {
  makeFolder(std::string(kSet) + "/Library");
  const Introduction introduction = introduceSet("Mode = TavenhallUpdater\nRelativePath = Data\n");
  EXPECT_THAT(introduction.to,
              ElementsAre("/Library", kTanvo, "/Users/tester/Library/Application Support/Tavenhall/DOVA"));
  EXPECT_EQ(introduction.what, "This updates Tessaphon.");
  EXPECT_TRUE(introduction.barWraps);
}

TEST_F(IntroductionPage, TheEditionIsReported) {
  const std::string choice =
      std::string(kTwoDiscs) + "LiteVsFullPrompt = Yes\nComponent1SizeMillionsBytes = 300\n";
  const Introduction lite = introduceSet(choice, "Lite");
  EXPECT_EQ(lite.what, "This installs the sample data of Tessaphon, the Lite edition.");
  EXPECT_EQ(lite.neededBytes, 300000000);
  EXPECT_EQ(introduceSet(choice, "Full").what, "This installs the sample data of Tessaphon, the Full edition.");
}

TEST_F(IntroductionPage, EnoughRoomIsNoWarning) {
  makeFolder(kTanvo);
  const Introduction introduction = introduceSet(kTwoDiscs);
  EXPECT_FALSE(introduction.isRoomShort());
  EXPECT_THAT(textOf(introductionLines(introduction, 52)),
              ElementsAre("This installs the sample data of Tessaphon.", "",
                          "From    Disc Tavenhall Tessaphon A", "        Disc Tessaphon B", "",
                          "To      /Users/tester/Library/Application", "        Support/Tavenhall/TANVO", "",
                          "Size    1.2 GB", "Free    5.0 GB on that disk", "", "Press Continue to begin."));
}

TEST_F(IntroductionPage, TooLittleRoomIsAClearWarning) {
  free = 300000000;
  const Introduction introduction = introduceSet(kTwoDiscs);
  EXPECT_TRUE(introduction.isRoomShort());
  EXPECT_THAT(textOf(introductionLines(introduction, 100)),
              Contains("There may not be enough space. The data needs 1.2 GB; the disk has 300.0 MB free."));
}

TEST_F(IntroductionPage, JustEnoughRoomIsNoWarning) {
  free = 1200000000;
  EXPECT_FALSE(introduceSet(kTwoDiscs).isRoomShort());
}

TEST_F(IntroductionPage, AMissingSizeIsReported) {
  const Introduction introduction = introduceSet("Mode = InstallFromVolumes\n");
  EXPECT_FALSE(introduction.isRoomShort());
  EXPECT_THAT(textOf(introductionLines(introduction, 60)), Contains("Size    not announced"));
}

TEST_F(IntroductionPage, IgnoresADiskWhoseFreeSpaceIsUnknown) {
  free.reset();
  const Introduction introduction = introduceSet(kTwoDiscs);
  EXPECT_FALSE(introduction.isRoomShort());
  EXPECT_THAT(textOf(introductionLines(introduction, 60)), Not(Contains(HasSubstr("Free"))));
}

TEST_F(IntroductionPage, AMissingDataFolderIsReportedBeforeAnythingIsBegun) {
  EXPECT_THAT(textOf(introductionLines(introduceSet(kTwoDiscs), 100)),
              Contains("The folder for the data does not exist yet. Install Tessaphon itself first."));
}

TEST_F(IntroductionPage, TheFreeRoomOfAMissingFolderIsThatOfTheNearestOneAbove) {
  ASSERT_TRUE(freeBytesAt("/tmp/not/there/at all"));
  EXPECT_EQ(freeBytesAt("/tmp/not/there/at all"), freeBytesAt("/tmp"));
}

}  // namespace
}  // namespace tavenhall::test

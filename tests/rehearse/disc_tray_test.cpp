#include "host/rehearse/disc_tray.h"

#include "tests/support/files.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavenhall::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Reply = DiscTray::Reply;

constexpr const char* kDrive = "/Users/tester/drive";

DiscTray trayOf(std::vector<DiscTray::Disc> discs, int late = 0) {
  makeFolder(kDrive);
  return {kDrive, std::move(discs), late};
}

void eject(const std::string& volume) { std::filesystem::remove(std::string(kDrive) + "/" + volume); }

TEST(DiscTray, IsEmptyUntilThePageAsks) {
  const DiscTray tray = trayOf({{"A", "/rehearsal/discs/1"}});
  EXPECT_THAT(treeOf(kDrive), IsEmpty());
  EXPECT_THAT(tray.inserted(), IsEmpty());
}

TEST(DiscTray, ADiscGoesInWhenItsVolumeIsAskedFor) {
  DiscTray tray = trayOf({{"A", "/rehearsal/discs/1"}, {"B", "/rehearsal/discs/2"}});
  EXPECT_EQ(tray.ask("B"), Reply::inserted);
  EXPECT_THAT(treeOf(kDrive), ElementsAre("B -> /rehearsal/discs/2"));
  EXPECT_THAT(tray.inserted(), ElementsAre(1));
}

TEST(DiscTray, ALateDiscIsAskedForInVainFirst) {
  DiscTray tray = trayOf({{"A", "/rehearsal/discs/1"}, {"B", "/rehearsal/discs/2"}}, 2);
  EXPECT_EQ(tray.ask("A"), Reply::notYet);
  EXPECT_EQ(tray.ask("A"), Reply::notYet);
  EXPECT_THAT(treeOf(kDrive), IsEmpty());
  EXPECT_EQ(tray.ask("A"), Reply::inserted);
  EXPECT_EQ(tray.ask("B"), Reply::notYet) << "each disc is late";
}

TEST(DiscTray, DiscsThatShareANameGoInInTheirOrder) {
  DiscTray tray = trayOf({{"L", "/rehearsal/discs/1"}, {"L", "/rehearsal/discs/2"}});
  EXPECT_EQ(tray.ask("L"), Reply::inserted);
  EXPECT_THAT(treeOf(kDrive), ElementsAre("L -> /rehearsal/discs/1"));
  eject("L");
  EXPECT_EQ(tray.ask("L"), Reply::inserted);
  EXPECT_THAT(treeOf(kDrive), ElementsAre("L -> /rehearsal/discs/2"));
  eject("L");
  EXPECT_EQ(tray.ask("L"), Reply::noSuchDisc);
}

TEST(DiscTray, ADiscThatIsInIsNotAcceptedWhenThePageAsksForItAgain) {
  DiscTray tray = trayOf({{"L", "/rehearsal/discs/1"}, {"L", "/rehearsal/discs/2"}});
  EXPECT_EQ(tray.ask("L"), Reply::inserted);
  EXPECT_EQ(tray.ask("L"), Reply::notAccepted);
  EXPECT_THAT(treeOf(kDrive), ElementsAre("L -> /rehearsal/discs/1"));
}

TEST(DiscTray, AVolumeThatTheSetLacksIsNoSuchDisc) {
  DiscTray tray = trayOf({{"A", "/rehearsal/discs/1"}});
  EXPECT_EQ(tray.ask("a"), Reply::noSuchDisc);
}

TEST(VolumeAskedFor, ReadsTheMandatoryPrompt) {
  EXPECT_EQ(volumeAskedFor("Ready for next volume", "Please insert Tavenhall Tessaphon A"),
            "Tavenhall Tessaphon A");
}

TEST(VolumeAskedFor, NamesTheVolumeOfAnOptionalDisc) {
  EXPECT_EQ(volumeAskedFor("Ready for next volume",
                           "Insert Slow Bloom Outrider disc. Press Skip if you do not have this disc."),
            "Slow Bloom DOVA Outrider");
}

TEST(VolumeAskedFor, IsNothingForOtherAlerts) {
  EXPECT_EQ(volumeAskedFor("Detected Installation Type", "Please insert A"), std::nullopt);
  EXPECT_EQ(volumeAskedFor("Ready for next volume", "Something else"), std::nullopt);
}

}  // namespace
}  // namespace tavenhall::test

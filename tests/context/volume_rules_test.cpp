#include "context/install_rules.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace tavenhall {
namespace {

constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();

std::string mountPath(std::string_view pluginName, std::int32_t number) {
  BoundedText<kPathSize> path;
  path.assign("before");
  volumeMountPath(pluginName, number, path);
  return path.c_str();
}

TEST(VolumeCount, BelowTwoIsOne) {
  for (const std::int64_t number : {std::int64_t{0}, std::int64_t{1}, std::int64_t{-5}, kSmallest}) {
    EXPECT_EQ(volumeCountForNumber(number), 1) << number;
  }
}

TEST(VolumeCount, OfTwoAndMoreIsTheNumber) {
  EXPECT_EQ(volumeCountForNumber(2), 2);
  EXPECT_EQ(volumeCountForNumber(5), 5);
  EXPECT_EQ(volumeCountForNumber(2147483647), 2147483647);
}

TEST(VolumeCount, IsComparedIn64BitsAndStoredIn32) {
  EXPECT_EQ(volumeCountForNumber(4294967296), 0);
  EXPECT_EQ(volumeCountForNumber(4294967299), 3);
  EXPECT_EQ(volumeCountForNumber(2147483648), -2147483647 - 1);
  EXPECT_EQ(volumeCountForNumber(kLargest), -1);
}

TEST(VolumeCount, OfExactlyTwoOffersEditions) {
  EXPECT_TRUE(volumesOfferEditions(2));
  for (const std::int64_t number :
       {std::int64_t{0}, std::int64_t{1}, std::int64_t{3}, std::int64_t{4294967298}}) {
    EXPECT_FALSE(volumesOfferEditions(number)) << number;
  }
}

TEST(VolumeMountPath, OfTessaphonsFirstVolumeCarriesTheMakersName) {
  EXPECT_EQ(mountPath("Tessaphon", 0), "/Volumes/Tavenhall Tessaphon A");
}

TEST(VolumeMountPath, OfTessaphonsFurtherVolumesCarriesTheirLettersOnly) {
  EXPECT_EQ(mountPath("Tessaphon", 1), "/Volumes/Tessaphon B");
  EXPECT_EQ(mountPath("Tessaphon", 2), "/Volumes/Tessaphon C");
  EXPECT_EQ(mountPath("Tessaphon", 3), "/Volumes/Tessaphon D");
  EXPECT_EQ(mountPath("Tessaphon", 25), "/Volumes/Tessaphon Z");
}

TEST(VolumeMountPath, TheLetterGoesOnBehindZAndWrapsInEightBits) {
  EXPECT_EQ(mountPath("Tessaphon", 26), "/Volumes/Tessaphon [");
  EXPECT_EQ(mountPath("Tessaphon", 190), "/Volumes/Tessaphon \xff");
  EXPECT_EQ(mountPath("Tessaphon", 191), "/Volumes/Tessaphon ");
  EXPECT_EQ(mountPath("Tessaphon", 192), "/Volumes/Tessaphon \x01");
  EXPECT_EQ(mountPath("Tessaphon", 257), "/Volumes/Tessaphon B");
}

TEST(VolumeMountPath, OfOtherProductsIsTheSameForEveryVolume) {
  for (const std::int32_t number : {0, 1, 6}) {
    EXPECT_EQ(mountPath("Lumaweave", number), "/Volumes/Tavenhall Lumaweave");
    EXPECT_EQ(mountPath("Bassoria", number), "/Volumes/Tavenhall Bassoria");
    EXPECT_EQ(mountPath("TemporaQX", number), "/Volumes/Tavenhall Tempora QX");
  }
}

TEST(VolumeMountPath, AnyNameWithQxIsTemporas) {
  EXPECT_EQ(mountPath("TessaphonQX", 3), "/Volumes/Tavenhall Tempora QX");
  EXPECT_EQ(mountPath("QX", 0), "/Volumes/Tavenhall Tempora QX");
}

TEST(VolumeMountPath, OfAnyOtherNameIsTheVolumesFolder) {
  for (const char* name : {"tessaphon", "Tessaphon ", "lumaweave", "Bassoria2", "Temporaqx", ""}) {
    EXPECT_EQ(mountPath(name, 1), "/Volumes/") << name;
  }
}

TEST(OptionalDiscs, BelongToRootsOfTheDiscSet) {
  EXPECT_TRUE(rootHasOptionalDiscs("/Volumes/Tempora QX Disc"));
  EXPECT_TRUE(rootHasOptionalDiscs("/Volumes/Tempora QX Disc 1"));
  for (const char* root : {"/Volumes/Tempora QX Dis", "/Volumes/Tavenhall Tempora QX",
                           "/volumes/Tempora QX Disc", "x/Volumes/Tempora QX Disc", ""}) {
    EXPECT_FALSE(rootHasOptionalDiscs(root)) << root;
  }
}

struct DiscRow {
  std::int32_t volume;
  const char* title;
  const char* mountPath;
};

TEST(OptionalDiscs, AreTheFiveDocumentedOnesFromVolumeTwoOn) {
  for (const DiscRow& row : {DiscRow{2, "Northfield", "/Volumes/Northfield DOVA Outrider"},
                             DiscRow{3, "Copper Lanes", "/Volumes/Copper Lanes DOVA Outrider"},
                             DiscRow{4, "Glass Rivers", "/Volumes/Glass Rivers DOVA Outrider"},
                             DiscRow{5, "Slow Bloom", "/Volumes/Slow Bloom DOVA Outrider"},
                             DiscRow{6, "Tin Parade", "/Volumes/Tin Parade DOVA Outrider"}}) {
    const OptionalDisc* disc = optionalDiscForVolume(row.volume);
    ASSERT_NE(disc, nullptr) << row.volume;
    EXPECT_STREQ(disc->title, row.title);
    EXPECT_STREQ(disc->mountPath, row.mountPath);
  }
}

TEST(OptionalDiscs, NoOtherVolumeIsOne) {
  for (const std::int32_t number : {-1, 0, 1, 7, 8, 2147483647}) {
    EXPECT_EQ(optionalDiscForVolume(number), nullptr) << number;
  }
}

TEST(AnnouncedSize, IsInMillionsOfBytes) {
  EXPECT_EQ(announcedBytes(0), 0);
  EXPECT_EQ(announcedBytes(6), 6000000);
  EXPECT_EQ(announcedBytes(-6), -6000000);
}

TEST(AnnouncedSize, WrapsWhenItIsAbsurd) {
  EXPECT_EQ(announcedBytes(kLargest), -1000000);
  EXPECT_EQ(announcedBytes(kSmallest), 0);
}

TEST(BarMaximum, CountsUnitsOf1024Bytes) {
  EXPECT_EQ(barMaximumForBytes(0), 0.0);
  EXPECT_EQ(barMaximumForBytes(1024), 1.0);
  EXPECT_EQ(barMaximumForBytes(6000000), 5859.375);
  EXPECT_EQ(barMaximumForBytes(100000000), 97656.25);
}

TEST(WrappedBar, UpToTheMaximumStandsWhereItIs) {
  EXPECT_EQ(wrappedBarValue(0.0, 100.0), 0.0);
  EXPECT_EQ(wrappedBarValue(99.5, 100.0), 99.5);
  EXPECT_EQ(wrappedBarValue(100.0, 100.0), 100.0);
}

TEST(WrappedBar, BeyondTheMaximumStartsAgainFromTheLeft) {
  EXPECT_EQ(wrappedBarValue(101.0, 100.0), 1.0);
  EXPECT_EQ(wrappedBarValue(250.0, 100.0), 50.0);
}

TEST(WrappedBar, AMultipleOfTheMaximumStaysFull) {
  EXPECT_EQ(wrappedBarValue(200.0, 100.0), 100.0);
  EXPECT_EQ(wrappedBarValue(1000000.0, 100.0), 100.0);
}

TEST(WrappedBar, IsWhatRepeatedSubtractionGives) {
  for (double value = 0.0; value < 2000.0; value += 0.75) {
    double expected = value;
    while (expected > 97.5) {
      expected -= 97.5;
    }
    ASSERT_EQ(wrappedBarValue(value, 97.5), expected) << value;
  }
}

TEST(WrappedBar, TakesNoLongerForALargeValue) { EXPECT_EQ(wrappedBarValue(9007199254740991.0, 2.0), 1.0); }

TEST(WrappedBar, AMaximumThatIsNotPositiveLeavesTheValueAlone) {
  EXPECT_EQ(wrappedBarValue(250.0, 0.0), 250.0);
  EXPECT_EQ(wrappedBarValue(250.0, -100.0), 250.0);
}

}  // namespace
}  // namespace tavenhall

#include "host/ui/progress_meter.h"

#include <cmath>
#include <gtest/gtest.h>

namespace tavenhall {
namespace {

using Time = ProgressMeter::Time;

Time at(double seconds) {
  return Time{} + std::chrono::duration_cast<Time::duration>(std::chrono::duration<double>(seconds));
}

// The bar and the bytes as the page moves them together: 1024 bytes a unit.
void setValue(ProgressMeter& meter, double value, Time now) {
  meter.setValue(value);
  meter.setBytes(static_cast<std::int64_t>(value * 1024.0), now);
}

// A meter that was started at 0 with that range, and copies.
ProgressMeter started(double maximum, bool barWraps = false) {
  ProgressMeter meter(barWraps);
  meter.start(at(0));
  meter.setCopying(true, at(0));
  setValue(meter, 0.0, at(0));
  meter.setMinimum(0.0);
  meter.setMaximum(maximum);
  return meter;
}

TEST(ProgressMeter, PercentComesFromTheBarAndBytesFromTheEngine) {
  ProgressMeter meter = started(2000);
  setValue(meter, 860, at(3));
  EXPECT_EQ(meter.percent(), 43);
  EXPECT_EQ(meter.copied(), 860 * 1024.0);
  EXPECT_EQ(meter.total(), 2000 * 1024.0);
}

TEST(ProgressMeter, PercentsAreRoundedDown) {
  ProgressMeter meter = started(1000);
  setValue(meter, 19.9, at(3));
  EXPECT_EQ(meter.percent(), 1);
}

TEST(ProgressMeter, ShowsNoHundredPercentBeforeThePageFillsItsBar) {
  ProgressMeter meter = started(1000);
  setValue(meter, 1000, at(3));
  EXPECT_EQ(meter.percent(), 99);
  setValue(meter, 2500, at(4));
  EXPECT_EQ(meter.percent(), 99);
}

TEST(ProgressMeter, ABarOfOneOfOneIsAHundredPercentAndNoByteMore) {
  ProgressMeter meter = started(1000);
  setValue(meter, 990, at(3));
  meter.setMaximum(1.0);
  EXPECT_NE(meter.percent(), 100);
  meter.setValue(1.0);
  EXPECT_EQ(meter.percent(), 100);
  EXPECT_EQ(meter.copied(), 990 * 1024.0);
}

TEST(ProgressMeter, WithMoreCopiedThanAnnouncedThereIsNoTotalAnyMore) {
  ProgressMeter meter = started(1000);
  setValue(meter, 1200, at(3));
  EXPECT_FALSE(meter.total());
  EXPECT_EQ(meter.part(), 1.0);
}

TEST(ProgressMeter, ABarWhoseRangeThePageHasSetIsMeasuredByIt) {
  ProgressMeter meter;
  meter.start(at(0));
  setValue(meter, 40, at(1));
  EXPECT_EQ(meter.percent(), 40);
}

TEST(ProgressMeter, ValuesBeyondARangeThatWasNeverSetGiveNoPercent) {
  ProgressMeter meter;
  meter.start(at(0));
  setValue(meter, 5000, at(1));
  EXPECT_FALSE(meter.percent());
  EXPECT_EQ(meter.part(), 0.0);
  EXPECT_EQ(meter.copied(), 5000 * 1024.0);
}

TEST(ProgressMeter, TimePassesWhileNothingIsCopied) {
  ProgressMeter meter = started(1000);
  meter.setCopying(false, at(10));
  meter.pause(at(20));
  EXPECT_EQ(meter.passed(at(500)).count(), 500);
  EXPECT_TRUE(meter.isRunning());
}

TEST(ProgressMeter, NoTimePassesAfterTheEnd) {
  ProgressMeter meter = started(1000);
  meter.finish(at(30));
  EXPECT_EQ(meter.passed(at(90)).count(), 30);
  EXPECT_FALSE(meter.isRunning());
}

// Copies steadily, ten updates a second, until the bar stands at `end` of `maximum`.
void copySteadily(ProgressMeter& meter, double unitsASecond, double seconds) {
  for (double now = 0.1; now <= seconds + 0.01; now += 0.1) {
    setValue(meter, now * unitsASecond, at(now));
  }
}

TEST(ProgressMeter, ShowsRateAndTimeLeftOfASteadyCopy) {
  ProgressMeter meter = started(12000);
  copySteadily(meter, 100, 30);
  EXPECT_NEAR(meter.rate(at(30)).value_or(0), 102400, 2000);
  EXPECT_EQ(meter.minutesLeft(at(30)), 2);
}

TEST(ProgressMeter, TheRateKeepsStillForASecond) {
  ProgressMeter meter = started(12000);
  copySteadily(meter, 100, 30);
  const auto rate = meter.rate(at(30));
  setValue(meter, 11000, at(30.5));
  EXPECT_EQ(meter.rate(at(30.9)), rate);
  EXPECT_NE(meter.rate(at(31)), rate);
}

TEST(ProgressMeter, AtTheEndThereIsNoTimeLeftAndNoRate) {
  ProgressMeter meter = started(12000);
  copySteadily(meter, 100, 30);
  meter.finish(at(30));
  EXPECT_FALSE(meter.minutesLeft(at(30)));
  EXPECT_FALSE(meter.rate(at(30)));
}

TEST(ProgressMeter, WhileNothingIsCopiedThereIsNoRateAndNoTimeLeft) {
  ProgressMeter meter = started(12000);
  copySteadily(meter, 100, 30);
  meter.setCopying(false, at(30));
  EXPECT_FALSE(meter.rate(at(31)));
  EXPECT_FALSE(meter.minutesLeft(at(31)));
  meter.setCopying(true, at(130));
  meter.pause(at(130));  // a command asks for a password
  EXPECT_FALSE(meter.rate(at(131)));
  EXPECT_FALSE(meter.minutesLeft(at(131)));
}

TEST(ProgressMeter, TheNextDiscBeginsWithTheMeasuredThroughputAndARateOfItsOwn) {
  ProgressMeter meter = started(12000);
  copySteadily(meter, 100, 30);
  meter.setCopying(false, at(30));
  meter.setCopying(true, at(630));
  EXPECT_EQ(meter.minutesLeft(at(630)), 2);  // 9000 of 12000 units at 100 a second
  EXPECT_FALSE(meter.rate(at(631)));
  for (double now = 630.1; now <= 634.01; now += 0.1) {
    setValue(meter, 3000 + (now - 630) * 50, at(now));
  }
  EXPECT_NEAR(meter.rate(at(634)).value_or(0), 51200, 1000);
}

// ---- A bar that wraps ----

TEST(ProgressMeter, ABarThatWrapsGivesBytesRateAndTimeButNoTotal) {
  ProgressMeter meter = started(2000, true);
  for (double now = 0.1; now <= 30.01; now += 0.1) {
    meter.setValue(std::fmod(now * 1000, 2000));
    meter.setBytes(static_cast<std::int64_t>(now * 1024000), at(now));
  }
  EXPECT_NEAR(meter.rate(at(30)).value_or(0), 1024000, 20000);
  EXPECT_NEAR(meter.copied().value_or(0), 30 * 1024000.0, 1024);
  EXPECT_EQ(meter.passed(at(30)).count(), 30);
  EXPECT_FALSE(meter.percent());
  EXPECT_FALSE(meter.total());
  EXPECT_FALSE(meter.minutesLeft(at(30)));
}

TEST(ProgressMeter, ABarThatWrapsIsFullForGoodAtTheEnd) {
  ProgressMeter meter = started(2000, true);
  meter.setMaximum(1.0);
  meter.setValue(1.0);
  EXPECT_EQ(meter.percent(), 100);
}

}  // namespace
}  // namespace tavenhall

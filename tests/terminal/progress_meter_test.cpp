#include "host/ui/progress_meter.h"

#include <gtest/gtest.h>

namespace tavenhall {
namespace {

using Time = ProgressMeter::Time;

Time at(double seconds) {
  return Time{} + std::chrono::duration_cast<Time::duration>(std::chrono::duration<double>(seconds));
}

// A meter that was started at 0 with that range.
ProgressMeter started(double maximum, bool barWraps = false) {
  ProgressMeter meter(barWraps);
  meter.start(at(0));
  meter.setValue(0.0, at(0));
  meter.setMinimum(0.0);
  meter.setMaximum(maximum, at(0));
  return meter;
}

TEST(ProgressMeter, PercentAndBytesComeFromTheBarsValues) {
  ProgressMeter meter = started(2000);
  meter.setValue(860, at(3));
  EXPECT_EQ(meter.percent(), 43);
  EXPECT_EQ(meter.copied(), 860 * 1024.0);
  EXPECT_EQ(meter.total(), 2000 * 1024.0);
}

TEST(ProgressMeter, PercentsAreRoundedDown) {
  ProgressMeter meter = started(1000);
  meter.setValue(19.9, at(3));
  EXPECT_EQ(meter.percent(), 1);
}

TEST(ProgressMeter, ItNeverSaysAHundredBeforeThePageFillsItsBar) {
  ProgressMeter meter = started(1000);
  meter.setValue(1000, at(3));
  EXPECT_EQ(meter.percent(), 99);
  meter.setValue(2500, at(4));
  EXPECT_EQ(meter.percent(), 99);
}

TEST(ProgressMeter, ABarOfOneOfOneIsAHundredPercentAndNoByteMore) {
  ProgressMeter meter = started(1000);
  meter.setValue(990, at(3));
  meter.setMaximum(1.0, at(4));
  EXPECT_NE(meter.percent(), 100);
  meter.setValue(1.0, at(4));
  EXPECT_EQ(meter.percent(), 100);
  EXPECT_EQ(meter.copied(), 990 * 1024.0);
}

TEST(ProgressMeter, WithMoreCopiedThanAnnouncedThereIsNoTotalAnyMore) {
  ProgressMeter meter = started(1000);
  meter.setValue(1200, at(3));
  EXPECT_FALSE(meter.total());
  EXPECT_EQ(meter.part(), 1.0);
}

TEST(ProgressMeter, ABarWhoseRangeThePageHasSetIsMeasuredByIt) {
  ProgressMeter meter;
  meter.start(at(0));
  meter.setValue(40, at(1));
  EXPECT_EQ(meter.percent(), 40);
}

TEST(ProgressMeter, ValuesBeyondARangeThatWasNeverSetGiveNoPercent) {
  ProgressMeter meter;
  meter.start(at(0));
  meter.setValue(5000, at(1));
  EXPECT_FALSE(meter.percent());
  EXPECT_EQ(meter.part(), 0.0);
  EXPECT_EQ(meter.copied(), 5000 * 1024.0);
}

TEST(ProgressMeter, TimeThatAQuestionWaitsIsNotCounted) {
  ProgressMeter meter = started(1000);
  meter.pause(at(10));
  EXPECT_EQ(meter.passed(at(500)).count(), 10);
  EXPECT_FALSE(meter.isRunning());
  meter.resume(at(500));
  EXPECT_EQ(meter.passed(at(505)).count(), 15);
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
    meter.setValue(now * unitsASecond, at(now));
  }
}

TEST(ProgressMeter, RateAndTimeLeftAreToldOfASteadyCopy) {
  ProgressMeter meter = started(12000);
  copySteadily(meter, 100, 30);
  EXPECT_NEAR(meter.rate(at(30)).value_or(0), 102400, 2000);
  EXPECT_EQ(meter.minutesLeft(at(30)), 2);
}

TEST(ProgressMeter, TheRateKeepsStillForASecond) {
  ProgressMeter meter = started(12000);
  copySteadily(meter, 100, 30);
  const auto rate = meter.rate(at(30));
  meter.setValue(11000, at(30.5));
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

// ---- A bar that wraps ----

// Adds `step` units ten times a second, as the page shows them.
void copyWrapping(ProgressMeter& meter, double maximum, double step, double seconds) {
  double value = 0.0;
  for (double now = 0.1; now <= seconds + 0.01; now += 0.1) {
    value += step;
    if (value > maximum) {
      value -= maximum;
    }
    meter.setValue(value, at(now));
  }
}

TEST(ProgressMeter, ABarThatWrapsGivesTheRateAndTheTimePassedOnly) {
  ProgressMeter meter = started(2000, true);
  copyWrapping(meter, 2000, 100, 30);
  EXPECT_NEAR(meter.rate(at(30)).value_or(0), 1024000, 20000);
  EXPECT_EQ(meter.passed(at(30)).count(), 30);
  EXPECT_FALSE(meter.percent());
  EXPECT_FALSE(meter.copied());
  EXPECT_FALSE(meter.total());
  EXPECT_FALSE(meter.minutesLeft(at(30)));
}

TEST(ProgressMeter, ABarThatMayHaveWrappedUnseenGivesNoRate) {
  ProgressMeter meter(true);
  meter.start(at(0));
  copyWrapping(meter, 100, 90, 30);
  EXPECT_FALSE(meter.rate(at(30)));
}

TEST(ProgressMeter, TheRateOfABarThatWrapsCountsFromItsRangeOn) {
  ProgressMeter meter(true);
  meter.start(at(0));
  copyWrapping(meter, 100, 90, 30);
  meter.setMaximum(100000, at(30));
  for (double now = 30.1; now < 40.05; now += 0.1) {
    meter.setValue((now - 30) * 1000, at(now));
  }
  EXPECT_NEAR(meter.rate(at(40)).value_or(0), 1024000, 20000);
}

TEST(ProgressMeter, ABarThatWrapsIsFullForGoodAtTheEnd) {
  ProgressMeter meter = started(2000, true);
  copyWrapping(meter, 2000, 100, 3);
  meter.setMaximum(1.0, at(4));
  meter.setValue(1.0, at(4));
  EXPECT_EQ(meter.percent(), 100);
}

}  // namespace
}  // namespace tavenhall

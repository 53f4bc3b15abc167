#include "host/ui/rate_estimator.h"

#include <gtest/gtest.h>

namespace tavenhall {
namespace {

using Seconds = RateEstimator::Seconds;

constexpr double kMegabyte = 1000000.0;

// Copies at `rate` bytes a second from the one time to the other, ten updates a second; gives the bytes then.
double copy(RateEstimator& estimator, double from, double to, double rate, double bytes) {
  for (double now = from + 0.1; now <= to + 0.01; now += 0.1) {
    estimator.add(Seconds(now), bytes + (now - from) * rate);
  }
  return bytes + (to - from) * rate;
}

TEST(RateEstimator, ASteadyRateIsReported) {
  RateEstimator estimator;
  copy(estimator, 0, 20, 50 * kMegabyte, 0);
  EXPECT_NEAR(estimator.rate(Seconds(20)).value_or(0), 50 * kMegabyte, kMegabyte);
}

TEST(RateEstimator, NoRateIsReportedInTheFirstTwoSeconds) {
  RateEstimator estimator;
  copy(estimator, 0, 1.9, 50 * kMegabyte, 0);
  EXPECT_FALSE(estimator.rate(Seconds(1.9)));
}

TEST(RateEstimator, TheRateFollowsAChangeWithinSeconds) {
  RateEstimator estimator;
  const double bytes = copy(estimator, 0, 60, 50 * kMegabyte, 0);
  copy(estimator, 60, 80, 10 * kMegabyte, bytes);
  EXPECT_NEAR(estimator.rate(Seconds(80)).value_or(0), 10 * kMegabyte, kMegabyte);
}

TEST(RateEstimator, TheRateFallsWhileNothingComes) {
  RateEstimator estimator;
  copy(estimator, 0, 20, 50 * kMegabyte, 0);
  EXPECT_LT(estimator.rate(Seconds(40)).value_or(50 * kMegabyte), 2 * kMegabyte);
}

TEST(RateEstimator, TheTimeLeftIsWhatTheRestTakes) {
  RateEstimator estimator;
  copy(estimator, 0, 60, 10 * kMegabyte, 0);
  EXPECT_NEAR(estimator.remaining(Seconds(60), 1200 * kMegabyte).value_or(Seconds(0)).count(), 60, 2);
}

TEST(RateEstimator, NoTimeLeftIsReportedAtTheStart) {
  RateEstimator estimator;
  copy(estimator, 0, 7, 10 * kMegabyte, 0);
  EXPECT_FALSE(estimator.remaining(Seconds(7), 1200 * kMegabyte));
}

TEST(RateEstimator, NoTimeLeftIsReportedBeforeHalfAPercentIsDone) {
  RateEstimator estimator;
  copy(estimator, 0, 20, kMegabyte, 0);
  EXPECT_FALSE(estimator.remaining(Seconds(20), 5000 * kMegabyte));
}

TEST(RateEstimator, NoTimeLeftIsReportedWhenNothingHasComeForAWhile) {
  RateEstimator estimator;
  copy(estimator, 0, 20, 10 * kMegabyte, 0);
  EXPECT_TRUE(estimator.remaining(Seconds(30), 1200 * kMegabyte));
  EXPECT_FALSE(estimator.remaining(Seconds(36), 1200 * kMegabyte));
}

TEST(RateEstimator, NoTimeLeftIsReportedWhenMoreIsDoneThanWasAnnounced) {
  RateEstimator estimator;
  copy(estimator, 0, 20, 10 * kMegabyte, 0);
  EXPECT_FALSE(estimator.remaining(Seconds(20), 150 * kMegabyte));
}

// ---- The number that is shown ----

Seconds minutes(double count) { return Seconds(count * 60); }

TEST(SteadyTimeLeft, MinutesAreRoundedUp) {
  SteadyTimeLeft left;
  left.set(Seconds(0), minutes(11.2));
  EXPECT_EQ(left.minutes(), 12);
}

TEST(SteadyTimeLeft, LongTimesGoInStepsOfFiveAndTenMinutes) {
  SteadyTimeLeft left;
  left.set(Seconds(0), minutes(41));
  EXPECT_EQ(left.minutes(), 45);
  SteadyTimeLeft longer;
  longer.set(Seconds(0), minutes(143));
  EXPECT_EQ(longer.minutes(), 150);
}

TEST(SteadyTimeLeft, TheLastMinuteIsOne) {
  SteadyTimeLeft left;
  left.set(Seconds(0), Seconds(3));
  EXPECT_EQ(left.minutes(), 1);
}

TEST(SteadyTimeLeft, AnEstimateThatMovesAboutDoesNotMoveTheNumber) {
  SteadyTimeLeft left;
  left.set(Seconds(0), minutes(11.9));
  for (int second = 1; second < 60; ++second) {
    left.set(Seconds(second), minutes(second % 2 == 0 ? 12.4 : 10.9));
    EXPECT_EQ(left.minutes(), 12) << second;
  }
}

TEST(SteadyTimeLeft, TheNumberGoesDownWithTheTime) {
  SteadyTimeLeft left;
  left.set(Seconds(0), minutes(3));
  EXPECT_EQ(left.minutes(), 3);
  left.set(Seconds(80), minutes(1.7));
  EXPECT_EQ(left.minutes(), 2);
}

TEST(SteadyTimeLeft, AShortSlownessDoesNotRaiseTheNumber) {
  SteadyTimeLeft left;
  left.set(Seconds(0), minutes(5));
  left.set(Seconds(1), minutes(20));
  left.set(Seconds(8), minutes(20));
  EXPECT_EQ(left.minutes(), 5);
  left.set(Seconds(9), minutes(5));
  left.set(Seconds(18), minutes(20));
  EXPECT_EQ(left.minutes(), 5);
}

TEST(SteadyTimeLeft, ALastingSlownessRaisesTheNumberByAThirdAtMost) {
  SteadyTimeLeft left;
  left.set(Seconds(0), minutes(9));
  left.set(Seconds(1), minutes(12));
  left.set(Seconds(11), minutes(12));
  EXPECT_EQ(left.minutes(), 12);
  left.set(Seconds(12), minutes(13));
  left.set(Seconds(21), minutes(13));
  EXPECT_EQ(left.minutes(), 12);
  left.set(Seconds(22), minutes(13));
  EXPECT_FALSE(left.minutes());
}

TEST(SteadyTimeLeft, AMuchLowerThroughputHidesTheNumberForHalfAMinute) {
  SteadyTimeLeft left;
  left.set(Seconds(0), minutes(5));
  left.set(Seconds(1), minutes(20));
  left.set(Seconds(11), minutes(20));
  EXPECT_FALSE(left.minutes());
  left.set(Seconds(40), minutes(23));
  EXPECT_FALSE(left.minutes());
  left.set(Seconds(41), minutes(23));
  EXPECT_EQ(left.minutes(), 25);
}

TEST(SteadyTimeLeft, AnUnknownEstimateHidesTheNumber) {
  SteadyTimeLeft left;
  left.set(Seconds(0), minutes(5));
  left.set(Seconds(1), std::nullopt);
  EXPECT_FALSE(left.minutes());
}

TEST(SteadyTimeLeft, ANumberThatVariesTooMuchIsNotShown) {
  SteadyTimeLeft left;
  left.set(Seconds(0), minutes(100 * 60 + 1));
  EXPECT_FALSE(left.minutes());
}

}  // namespace
}  // namespace tavenhall

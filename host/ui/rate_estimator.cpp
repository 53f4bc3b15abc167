#include "host/ui/rate_estimator.h"

#include <algorithm>
#include <cmath>

namespace tavenhall {

namespace {

using Seconds = RateEstimator::Seconds;

constexpr Seconds kShortestSpan{0.2};  // samples that are closer together count as one
constexpr Seconds kShortSilence{1.0};
constexpr Seconds kUntilRate{2.0};
constexpr Seconds kUntilTimeLeft{8.0};
constexpr double kPartUntilTimeLeft = 0.005;  // of the whole
constexpr Seconds kSilence{15.0};             // after so long without a byte nothing can be estimated
constexpr double kMostMinutes = 100 * 60;
constexpr Seconds kPatience{10.0};  // before the number goes up
constexpr double kMostRise = 4.0 / 3.0;
constexpr Seconds kUntilNewNumber{30.0};

// Large numbers of minutes are rounded: 145 rather than 143.
int stepFor(double minutes) { return minutes <= 20 ? 1 : minutes <= 60 ? 5 : 10; }

int inSteps(double minutes) {
  const int step = stepFor(minutes);
  return std::max(static_cast<int>(std::ceil(minutes / step)) * step, 1);
}

}  // namespace

void RateEstimator::Average::add(Seconds span, double bytes) {
  const double keep = std::exp(-(span / memory_));
  bytes_ = bytes_ * keep + bytes;
  seconds_ = seconds_ * keep + span.count();
}

// What came after the last sample is not counted yet, so a short silence is ignored.
double RateEstimator::Average::rate(Seconds sinceThen) const {
  Average now = *this;
  now.add(std::max(sinceThen - kShortSilence, Seconds(0.0)), 0.0);
  return now.seconds_ > 0.0 ? now.bytes_ / now.seconds_ : 0.0;
}

void RateEstimator::beginCopy(Seconds now, double bytes) {
  bytes_ = std::max(bytes, bytes_);
  latest_ = Average(kLatest);
  lastTime_ = now;
  lastProgress_ = now;
  copyStart_ = now;
}

void RateEstimator::add(Seconds now, double bytes) {
  if (bytes > bytes_) {
    lastProgress_ = now;
  }
  if (now - lastTime_ < kShortestSpan) {
    return;  // counted with the next sample
  }
  const double more = std::max(bytes - bytes_, 0.0);
  latest_.add(now - lastTime_, more);
  steady_.add(now - lastTime_, more);
  lastTime_ = now;
  bytes_ = std::max(bytes, bytes_);
}

std::optional<double> RateEstimator::rate(Seconds now) const {
  if (now - copyStart_ < kUntilRate || bytes_ <= 0.0) {
    return std::nullopt;
  }
  return latest_.rate(now - lastTime_);
}

std::optional<RateEstimator::Seconds> RateEstimator::remaining(Seconds now, double total) const {
  const bool isTooEarly = now < kUntilTimeLeft || bytes_ < total * kPartUntilTimeLeft || bytes_ <= 0.0;
  const double rate = steady_.rate(now - lastTime_);
  if (isTooEarly || now - lastProgress_ > kSilence || bytes_ >= total || rate <= 0.0) {
    return std::nullopt;
  }
  return Seconds((total - bytes_) / rate);
}

void SteadyTimeLeft::hide() {
  minutes_.reset();
  tooLowSince_.reset();
}

void SteadyTimeLeft::set(Seconds now, std::optional<Seconds> estimate) {
  const double estimated = estimate ? estimate->count() / 60.0 : 0.0;
  if (!estimate || estimated > kMostMinutes || (hiddenUntil_ && now < *hiddenUntil_)) {
    hide();
    return;
  }
  hiddenUntil_.reset();
  if (!minutes_) {
    minutes_ = inSteps(estimated);
    lowest_ = *minutes_;
    return;
  }
  const int step = stepFor(*minutes_);
  const bool isMuchSooner = estimated < *minutes_ - step * 1.15;
  const bool isLater = estimated > *minutes_ + step * 0.5;
  const bool isLaterForLong = isLater && tooLowSince_ && now - *tooLowSince_ >= kPatience;
  if (isLaterForLong && inSteps(estimated) > lowest_ * kMostRise) {
    hide();
    hiddenUntil_ = now + kUntilNewNumber;
    return;
  }
  if (isMuchSooner || isLaterForLong) {
    minutes_ = inSteps(estimated);
    lowest_ = std::min(lowest_, *minutes_);
  }
  if (!isLater || isLaterForLong) {
    tooLowSince_.reset();
  } else if (!tooLowSince_) {
    tooLowSince_ = now;
  }
}

}  // namespace tavenhall

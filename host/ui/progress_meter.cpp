#include "host/ui/progress_meter.h"

#include "host/base/text.h"

#include <algorithm>
#include <cmath>

namespace tavenhall {

namespace {

constexpr double kBytesPerUnit = 1024.0;  // of the bar

// The page fills its bar with 1 of 1 at the end; such a range announces no bytes.
constexpr double kClosingMaximum = 1.0;

}  // namespace

void ProgressMeter::start(Time now) {
  *this = ProgressMeter(barWraps_);
  isStarted_ = true;
  startTime_ = now;
}

void ProgressMeter::pause(Time now) {
  if (isRunning()) {
    pausedAt_ = now;
  }
}

void ProgressMeter::resume(Time now) {
  if (pausedAt_) {
    pausedTime_ += now - *pausedAt_;
    pausedAt_.reset();
  }
}

void ProgressMeter::finish(Time now) {
  resume(now);
  if (isStarted_ && !isFinished_) {
    isFinished_ = true;
    finishedAt_ = now;
  }
}

void ProgressMeter::setMaximum(double value) {
  maximum_ = value;
  if (value > kClosingMaximum) {
    hasOwnRange_ = true;
    announcedUnits_ = value;
  }
}

void ProgressMeter::setValue(double value) {
  value_ = value;
  isFullForGood_ = maximum_ <= kClosingMaximum && value >= maximum_;
}

void ProgressMeter::setBytes(std::int64_t bytes, Time now) {
  bytes_ = static_cast<double>(bytes);
  if (isStarted_) {
    estimator_.add(passed(now), bytes_);
  }
}

// A range that the page has not set counts percents; larger values mean that bytes are counted without a range.
bool ProgressMeter::isRangeKnown() const { return hasOwnRange_ || value_ <= maximum_; }

double ProgressMeter::part() const {
  const double range = maximum_ - minimum_;
  return range > 0.0 && isRangeKnown() ? std::clamp((value_ - minimum_) / range, 0.0, 1.0) : 0.0;
}

std::optional<int> ProgressMeter::percent() const {
  if (isFullForGood_) {
    return 100;
  }
  if (barWraps_ || !isRangeKnown()) {
    return std::nullopt;
  }
  const int percent = static_cast<int>(std::floor(part() * 100.0));
  return isFinished_ ? percent : std::min(percent, 99);
}

std::optional<double> ProgressMeter::copied() const {
  return isStarted_ ? std::optional(bytes_) : std::nullopt;
}

std::optional<double> ProgressMeter::total() const {
  const double announced = announcedUnits_ * kBytesPerUnit;
  return hasOwnRange_ && !barWraps_ && bytes_ <= announced ? std::optional(announced) : std::nullopt;
}

std::optional<double> ProgressMeter::rate(Time now) {
  if (!isStarted_ || isFinished_) {
    return std::nullopt;
  }
  constexpr Seconds kReadable{1.0};
  if (!shownRate_ || passed(now) - shownRateTime_ >= kReadable) {
    shownRate_ = estimator_.rate(passed(now));
    shownRateTime_ = passed(now);
  }
  return shownRate_;
}

ProgressMeter::Seconds ProgressMeter::passed(Time now) const {
  if (!isStarted_) {
    return Seconds(0.0);
  }
  const Time until = finishedAt_.value_or(pausedAt_.value_or(now));
  return Seconds(until - startTime_) - pausedTime_;
}

std::optional<int> ProgressMeter::minutesLeft(Time now) {
  const auto whole = total();
  if (!whole || isFinished_ || isFullForGood_) {
    return std::nullopt;
  }
  timeLeft_.set(passed(now), estimator_.remaining(passed(now), *whole));
  return timeLeft_.minutes();
}

std::string amountText(const ProgressMeter& meter) {
  const auto copied = meter.copied();
  const auto total = meter.total();
  return !copied ? std::string()
         : total ? format(_("{0} of {1}"), {sizeText(*copied), sizeText(*total)})
                 : sizeText(*copied);
}

std::string timeLeftText(int minutes) {
  if (minutes <= 1) {
    return _("less than a minute left");
  }
  const std::string hours = std::to_string(minutes / 60);
  const std::string rest = std::to_string(minutes % 60);
  return minutes < 60        ? format(_("about {0} min left"), {rest})
         : minutes % 60 == 0 ? format(_("about {0} h left"), {hours})
                             : format(_("about {0} h {1} min left"), {hours, rest});
}

}  // namespace tavenhall

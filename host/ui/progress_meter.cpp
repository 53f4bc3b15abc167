#include "host/ui/progress_meter.h"

#include "host/base/text.h"
#include "host/base/units.h"

#include <algorithm>
#include <cmath>

namespace tavenhall {

namespace {

constexpr double kBytesPerUnit = 1024.0;

// A range up to here is no number of bytes: the page fills its bar with 1 of 1 when all is over.
constexpr double kClosingMaximum = 1.0;

// The page sets its bar at least so often, so a bar no longer than that may have wrapped unseen.
constexpr double kLongestStep = 1000.0;

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

void ProgressMeter::setMaximum(double value, Time now) {
  const bool wasWrapTold = isWrapTold();
  maximum_ = value;
  if (value > kClosingMaximum) {
    hasOwnRange_ = true;
    totalUnits_ = value;
  }
  if (isStarted_ && barWraps_ && isWrapTold() && !wasWrapTold) {
    estimator_.restart(passed(now));
    copiedUnits_ = 0.0;
  }
}

void ProgressMeter::setValue(double value, Time now) {
  const double before = value_;
  value_ = value;
  if (maximum_ <= kClosingMaximum) {
    isFullForGood_ = value >= maximum_;
    return;  // says nothing about bytes
  }
  if (barWraps_) {
    copiedUnits_ += value >= before ? value - before : std::max(maximum_ - before, 0.0) + value;
  } else {
    copiedUnits_ = std::max(value - minimum_, 0.0);
  }
  if (isStarted_) {
    estimator_.add(passed(now), copiedUnits_ * kBytesPerUnit);
  }
}

bool ProgressMeter::isWrapTold() const { return maximum_ > kLongestStep; }

// A bar whose range the page has not set measures percents; values beyond them are bytes of an unknown whole.
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
  return barWraps_ || !isStarted_ ? std::nullopt : std::optional(copiedUnits_ * kBytesPerUnit);
}

std::optional<double> ProgressMeter::total() const {
  const bool isKnown = hasOwnRange_ && !barWraps_ && copiedUnits_ <= totalUnits_;
  return isKnown ? std::optional(totalUnits_ * kBytesPerUnit) : std::nullopt;
}

std::optional<double> ProgressMeter::rate(Time now) {
  const bool isTold = !barWraps_ || totalUnits_ > kLongestStep;
  if (!isStarted_ || isFinished_ || !isTold) {
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

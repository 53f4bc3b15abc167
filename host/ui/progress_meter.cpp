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

void ProgressMeter::change(bool& condition, bool value, Time now) {
  copyingTime_ = copyingTime(now);
  copyingSince_ = now;
  condition = value;
}

void ProgressMeter::setCopying(bool isCopying, Time now) {
  if (isCopying && !isCopying_) {
    estimator_.beginCopy(copyingTime(now), bytes_);
    timeLeft_ = {};
    shownRate_.reset();
  }
  change(isCopying_, isCopying, now);
}

void ProgressMeter::pause(Time now) { change(isPaused_, true, now); }

void ProgressMeter::resume(Time now) { change(isPaused_, false, now); }

void ProgressMeter::finish(Time now) {
  setCopying(false, now);
  if (isRunning()) {
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
    estimator_.add(copyingTime(now), bytes_);
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
  return finishedAt_ ? percent : std::min(percent, 99);
}

std::optional<double> ProgressMeter::copied() const {
  return isStarted_ ? std::optional(bytes_) : std::nullopt;
}

std::optional<double> ProgressMeter::total() const {
  const double announced = announcedUnits_ * kBytesPerUnit;
  return hasOwnRange_ && !barWraps_ && bytes_ <= announced ? std::optional(announced) : std::nullopt;
}

std::optional<double> ProgressMeter::rate(Time now) {
  if (!copiesNow()) {
    return std::nullopt;
  }
  constexpr Seconds kReadable{1.0};
  if (!shownRate_ || copyingTime(now) - shownRateTime_ >= kReadable) {
    shownRate_ = estimator_.rate(copyingTime(now));
    shownRateTime_ = copyingTime(now);
  }
  return shownRate_;
}

ProgressMeter::Seconds ProgressMeter::passed(Time now) const {
  return isStarted_ ? Seconds(finishedAt_.value_or(now) - startTime_) : Seconds(0.0);
}

ProgressMeter::Seconds ProgressMeter::copyingTime(Time now) const {
  return copyingTime_ + (copiesNow() ? Seconds(now - copyingSince_) : Seconds(0.0));
}

std::optional<int> ProgressMeter::minutesLeft(Time now) {
  const auto whole = total();
  if (!whole || !copiesNow() || isFullForGood_) {
    return std::nullopt;
  }
  timeLeft_.set(copyingTime(now), estimator_.remaining(copyingTime(now), *whole));
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

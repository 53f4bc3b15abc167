#pragma once

#include "host/ui/rate_estimator.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace tavenhall {

// What a frontend shows of a running copy: the page's bar, the bytes written, throughput, and time remaining.
// The caller passes the time to every call that needs it. One thread.
class ProgressMeter {
 public:
  using Clock = std::chrono::steady_clock;
  using Time = Clock::time_point;
  using Seconds = std::chrono::duration<double>;

  // `barWraps`: the page starts its bar again from the left each time it is full, as a product updater does.
  explicit ProgressMeter(bool barWraps = false) : barWraps_(barWraps) {}

  void start(Time now);  // the page is entered: a new install begins
  void pause(Time now);  // an alert waits; that time is not counted
  void resume(Time now);
  void finish(Time now);  // the page's threads have ended

  // The bar. Its range is 0 to 100 until the page sets one; then its unit is 1024 bytes.
  void setMinimum(double value) { minimum_ = value; }
  void setMaximum(double value);
  void setValue(double value);

  // Bytes written since start(), as the engine counts them.
  void setBytes(std::int64_t bytes, Time now);

  // Whether time is being counted.
  [[nodiscard]] bool isRunning() const { return isStarted_ && !isFinished_ && !pausedAt_; }
  [[nodiscard]] bool isStarted() const { return isStarted_; }
  [[nodiscard]] bool barWraps() const { return barWraps_; }

  // The filled part of the bar, from 0 to 1.
  [[nodiscard]] double part() const;

  // 100 only once the page has filled its bar for good. None where the bar's range means nothing.
  [[nodiscard]] std::optional<int> percent() const;

  // Bytes written; none before start().
  [[nodiscard]] std::optional<double> copied() const;

  // Bytes that the page has announced. None where it has not, where more is copied already, and where the bar
  // wraps, since several passes then share the announced size.
  [[nodiscard]] std::optional<double> total() const;

  // Time counted since start().
  [[nodiscard]] Seconds passed(Time now) const;

  // Bytes a second; changes at most once a second, so that it can be read.
  [[nodiscard]] std::optional<double> rate(Time now);

  // Whole minutes remaining, steadied for reading; 1 stands for less than a minute.
  [[nodiscard]] std::optional<int> minutesLeft(Time now);

 private:
  [[nodiscard]] bool isRangeKnown() const;

  bool barWraps_;
  bool isStarted_ = false;
  bool isFinished_ = false;
  bool isFullForGood_ = false;
  bool hasOwnRange_ = false;  // the page has set a range
  double minimum_ = 0.0;
  double maximum_ = 100.0;
  double value_ = 0.0;
  double announcedUnits_ = 0.0;
  double bytes_ = 0.0;
  Time startTime_;
  Seconds pausedTime_{0.0};
  std::optional<Time> pausedAt_;
  std::optional<Time> finishedAt_;
  RateEstimator estimator_;
  SteadyTimeLeft timeLeft_;
  std::optional<double> shownRate_;
  Seconds shownRateTime_{0.0};
};

// "812.4 MB of 1.9 GB", or only the first part; empty before start().
[[nodiscard]] std::string amountText(const ProgressMeter& meter);

// "about 5 min left"; 1 stands for less than a minute.
[[nodiscard]] std::string timeLeftText(int minutes);

}  // namespace tavenhall

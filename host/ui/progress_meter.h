#pragma once

#include "host/ui/rate_estimator.h"

#include <chrono>
#include <optional>
#include <string>

namespace tavenhall {

// The page's bar, and what its values tell of the copy: how much, how fast, how long. The clock is the
// caller's: every call is told the time. One thread.
class ProgressMeter {
 public:
  using Clock = std::chrono::steady_clock;
  using Time = Clock::time_point;
  using Seconds = std::chrono::duration<double>;

  // `barWraps`: the page starts its bar again from the left each time it is full.
  explicit ProgressMeter(bool barWraps = false) : barWraps_(barWraps) {}

  void start(Time now);  // the page is entered: a new install, from nothing
  void pause(Time now);  // a question waits: that time is not counted
  void resume(Time now);
  void finish(Time now);  // the page's threads have ended

  // The bar, in the page's units of 1024 bytes.
  void setMinimum(double value) { minimum_ = value; }
  void setMaximum(double value, Time now);
  void setValue(double value, Time now);

  // Does time pass?
  [[nodiscard]] bool isRunning() const { return isStarted_ && !isFinished_ && !pausedAt_; }
  [[nodiscard]] bool isStarted() const { return isStarted_; }
  [[nodiscard]] bool isFinished() const { return isFinished_; }
  [[nodiscard]] bool barWraps() const { return barWraps_; }

  // How full the bar is, from 0 to 1.
  [[nodiscard]] double part() const;

  // Never 100 before the page has filled its bar for good. None where the bar's range says nothing.
  [[nodiscard]] std::optional<int> percent() const;

  // Bytes; none where the bar's values do not tell.
  [[nodiscard]] std::optional<double> copied() const;
  [[nodiscard]] std::optional<double> total() const;  // none as well when more was copied than that

  [[nodiscard]] Seconds passed(Time now) const;

  // Bytes a second; the same for a second at a time, so that it can be read. Call these two at every look,
  // since they are told the time here.
  [[nodiscard]] std::optional<double> rate(Time now);

  // Steady; 1 stands for less than a minute.
  [[nodiscard]] std::optional<int> minutesLeft(Time now);

 private:
  [[nodiscard]] bool isRangeKnown() const;
  [[nodiscard]] bool isWrapTold() const;

  bool barWraps_;
  bool isStarted_ = false;
  bool isFinished_ = false;
  bool isFullForGood_ = false;
  bool hasOwnRange_ = false;  // the page has set a range, so the bar's values are measured by it
  double minimum_ = 0.0;
  double maximum_ = 100.0;
  double value_ = 0.0;
  double copiedUnits_ = 0.0;
  double totalUnits_ = 0.0;
  Time startTime_;
  Seconds pausedTime_{0.0};
  std::optional<Time> pausedAt_;
  std::optional<Time> finishedAt_;
  RateEstimator estimator_;
  SteadyTimeLeft timeLeft_;
  std::optional<double> shownRate_;
  Seconds shownRateTime_{0.0};
};

// "812.4 MB of 1.9 GB", or how much alone; empty where nobody knows.
[[nodiscard]] std::string amountText(const ProgressMeter& meter);

// "about 5 min left"; 1 stands for less than a minute.
[[nodiscard]] std::string timeLeftText(int minutes);

}  // namespace tavenhall

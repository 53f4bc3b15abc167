#pragma once

#include "host/ui/rate_estimator.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace tavenhall {

// What a frontend shows of an install: the page's bar, the bytes written, and, while files are copied,
// throughput and time remaining. Only time in which files can be copied counts for these two. The caller passes
// the time to every call that needs it. One thread.
class ProgressMeter {
 public:
  using Clock = std::chrono::steady_clock;
  using Time = Clock::time_point;
  using Seconds = std::chrono::duration<double>;

  // `barWraps`: the page starts its bar again from the left each time it is full, as a product updater does.
  explicit ProgressMeter(bool barWraps = false) : barWraps_(barWraps) {}

  void start(Time now);                       // the page is entered: a new install begins
  void setCopying(bool isCopying, Time now);  // files are copied from now on, or not; not at first
  void pause(Time now);                       // nothing can be copied while a command asks for a password
  void resume(Time now);
  void finish(Time now);  // the page's threads have ended

  // The bar. Its range is 0 to 100 until the page sets one; then its unit is 1024 bytes.
  void setMinimum(double value) { minimum_ = value; }
  void setMaximum(double value);
  void setValue(double value);

  // Bytes written since start(), as the engine counts them.
  void setBytes(std::int64_t bytes, Time now);

  // Whether time passes: from start() to finish().
  [[nodiscard]] bool isRunning() const { return isStarted_ && !finishedAt_; }
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

  // Time from start() to finish().
  [[nodiscard]] Seconds passed(Time now) const;

  // Bytes a second; changes at most once a second, so that it can be read. None while nothing is copied.
  [[nodiscard]] std::optional<double> rate(Time now);

  // Whole minutes that the copying of the rest takes, steadied for reading; 1 stands for less than a minute.
  // None while nothing is copied.
  [[nodiscard]] std::optional<int> minutesLeft(Time now);

 private:
  [[nodiscard]] bool isRangeKnown() const;
  [[nodiscard]] bool copiesNow() const { return isRunning() && isCopying_ && !isPaused_; }
  [[nodiscard]] Seconds copyingTime(Time now) const;

  // Changes one of the conditions of copiesNow().
  void change(bool& condition, bool value, Time now);

  bool barWraps_;
  bool isStarted_ = false;
  bool isCopying_ = false;
  bool isPaused_ = false;
  bool isFullForGood_ = false;
  bool hasOwnRange_ = false;  // the page has set a range
  double minimum_ = 0.0;
  double maximum_ = 100.0;
  double value_ = 0.0;
  double announcedUnits_ = 0.0;
  double bytes_ = 0.0;
  Time startTime_;
  std::optional<Time> finishedAt_;
  Seconds copyingTime_{0.0};  // without the part that lasts
  Time copyingSince_;         // of copiesNow()
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

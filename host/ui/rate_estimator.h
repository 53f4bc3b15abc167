#pragma once

#include <chrono>
#include <optional>

namespace tavenhall {

// Estimates throughput and time remaining from (time, bytes) samples. Times are seconds in which files could be
// copied, and never go back. One thread.
class RateEstimator {
 public:
  using Seconds = std::chrono::duration<double>;

  // The copy of another volume begins, with these bytes done. Its rate is measured anew; the time remaining
  // still rests on the throughput before.
  void beginCopy(Seconds now, double bytes);

  // Adds a sample: bytes done so far, which never become fewer.
  void add(Seconds now, double bytes);

  // Bytes a second over the last few seconds; none in the first two of a copy.
  [[nodiscard]] std::optional<double> rate(Seconds now) const;

  // The time that the rest of `total` bytes takes at the throughput of the last minutes. None while that would
  // be a guess: at the start, after a long time without a byte, and when more is done than was announced.
  [[nodiscard]] std::optional<Seconds> remaining(Seconds now, double total) const;

 private:
  // An exponentially weighted average that starts without samples rather than with a rate of 0.
  class Average {
   public:
    explicit Average(Seconds memory) : memory_(memory) {}
    void add(Seconds span, double bytes);
    [[nodiscard]] double rate(Seconds sinceThen) const;

   private:
    Seconds memory_;
    double bytes_ = 0.0;
    double seconds_ = 0.0;
  };

  static constexpr Seconds kLatest{5.0};
  Average latest_{kLatest};
  Average steady_{Seconds(60.0)};
  Seconds lastTime_{0.0};
  Seconds lastProgress_{0.0};
  Seconds copyStart_{0.0};
  double bytes_ = 0.0;
};

// Steadies the time remaining of a copy for reading: whole minutes that stay while the estimate varies around
// them, go down as time passes, and go up only after they have been too low for a while, and by no more than a
// third of the lowest number. When more remains than that, the throughput has changed: no number is shown for
// half a minute, and then a new one. One thread.
class SteadyTimeLeft {
 public:
  using Seconds = RateEstimator::Seconds;

  // The latest estimate; none hides the number.
  void set(Seconds now, std::optional<Seconds> estimate);

  // 1 stands for less than a minute.
  [[nodiscard]] std::optional<int> minutes() const { return minutes_; }

 private:
  void hide();

  std::optional<int> minutes_;
  int lowest_ = 0;  // since the number is shown
  std::optional<Seconds> tooLowSince_;
  std::optional<Seconds> hiddenUntil_;
};

}  // namespace tavenhall

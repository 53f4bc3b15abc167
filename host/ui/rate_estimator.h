#pragma once

#include <chrono>
#include <optional>

namespace tavenhall {

// Tells from how much is done at which time how fast it goes, and how long it will still take. All times are
// seconds of work since its start, pauses left out; they never go back. One thread.
class RateEstimator {
 public:
  using Seconds = std::chrono::duration<double>;

  // Forgets everything; `now` becomes the start, and what is done from here on counts.
  void restart(Seconds now);

  // So much is done by now, in bytes; it never becomes less.
  void add(Seconds now, double bytes);

  // Bytes a second, of the latest seconds; none before the first two.
  [[nodiscard]] std::optional<double> rate(Seconds now) const;

  // What remains of `total` bytes at the rate of the latest minutes. None while that would be a guess: at the
  // start, when nothing has come for a while, and when more is done than was announced.
  [[nodiscard]] std::optional<Seconds> remaining(Seconds now, double total) const;

 private:
  // An average in which what is older counts less. Without a bias at its start: it begins with nothing, rather
  // than with a rate of 0.
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

  Average latest_{Seconds(5.0)};
  Average steady_{Seconds(60.0)};
  Seconds startTime_{0.0};
  Seconds lastTime_{0.0};
  Seconds lastProgress_{0.0};
  double bytes_ = 0.0;
};

// Makes the time left calm to look at: a number of whole minutes that keeps still while the estimate moves
// about it, goes down as time goes by, and goes up only once it has been too low for a while. One thread.
class SteadyTimeLeft {
 public:
  using Seconds = RateEstimator::Seconds;

  // The latest estimate; none hides the number.
  void set(Seconds now, std::optional<Seconds> estimate);

  // To be read as "about"; 1 stands for less than a minute.
  [[nodiscard]] std::optional<int> minutes() const { return minutes_; }

 private:
  std::optional<int> minutes_;
  std::optional<Seconds> tooLowSince_;
};

}  // namespace tavenhall

#include "host/ui/progress_meter.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

// What the meter shows of generated installs: several discs with waits between them, of steady or changing
// throughput, with stalls and with files that fail.
namespace tavenhall {
namespace {

class Trace {
 public:
  explicit Trace(unsigned seed) : random_(seed) {}

  // Plays an install and checks the meter every half second.
  void play(bool isSteady) {
    const int discs = chosen(1, 4);
    const double unitsOfADisc = part(1.0, 8.0) * 1'000'000;  // 1 to 8 GB
    const double speed = part(3.0, 60.0) * 1000;             // 3 to 60 MB/s
    total_ = discs * unitsOfADisc;
    meter_.start(clock());
    meter_.setMaximum(total_);
    whole_ = total_ / speed;
    for (int disc = 0; disc < discs; ++disc) {
      idle(part(0.0, 600.0));  // a prompt, and a look for the disc
      copyDisc(unitsOfADisc * (disc + 1), speed, isSteady);
      idle(part(0.0, 20.0));  // the audit, and the ejection
    }
    meter_.finish(clock());
  }

  int shownNumbers = 0;
  double worstError = 0.0;  // of the whole time of copying, after 20 % of it; as a part of it

 private:
  [[nodiscard]] ProgressMeter::Time clock() const {
    return ProgressMeter::Time{} +
           std::chrono::duration_cast<ProgressMeter::Time::duration>(std::chrono::duration<double>(now_));
  }
  int chosen(int least, int most) { return std::uniform_int_distribution<int>(least, most)(random_); }
  double part(double least, double most) {
    return std::uniform_real_distribution<double>(least, most)(random_);
  }

  void idle(double seconds) {
    const double end = now_ + seconds;
    for (; now_ < end; now_ += 0.5) {
      ASSERT_FALSE(meter_.rate(clock())) << now_;
      ASSERT_FALSE(meter_.minutesLeft(clock())) << now_;
    }
  }

  void copyDisc(double end, double speed, bool isSteady) {
    meter_.setCopying(true, clock());
    int lowest = 0;  // of the numbers since one is shown
    double factor = 1.0;
    while (done_ < end) {
      double pause = 0.0;
      if (!isSteady) {
        factor = std::clamp(factor * part(0.93, 1.07), 0.05, 3.0);
        pause = chosen(0, 200) == 0 ? part(0.0, 40.0) : 0.0;                    // the drive tries again
        done_ += chosen(0, 100) == 0 ? std::min(speed * 2, end - done_) : 0.0;  // a file that fails
      }
      now_ += 0.5 + pause;
      copying_ += 0.5 + pause;
      done_ = std::min(done_ + speed * factor * 0.5 * part(0.9, 1.1), end);
      meter_.setValue(done_);
      meter_.setBytes(static_cast<std::int64_t>(done_ * 1024), clock());
      const auto shown = meter_.minutesLeft(clock());
      if (!shown) {
        lowest = 0;
        continue;
      }
      ++shownNumbers;
      if (lowest != 0) {
        ASSERT_LE(*shown, lowest * 4 / 3) << "at " << now_;
      }
      lowest = lowest == 0 ? *shown : std::min(lowest, *shown);
      if (isSteady && copying_ > whole_ / 5) {
        worstError = std::max(worstError, std::abs(copying_ + *shown * 60.0 - whole_) / whole_);
      }
    }
    meter_.setCopying(false, clock());
  }

  std::mt19937 random_;
  ProgressMeter meter_;
  double now_ = 1000.0;
  double copying_ = 0.0;  // seconds
  double done_ = 0.0;     // units of 1024 bytes
  double total_ = 0.0;
  double whole_ = 0.0;  // seconds that a steady copy of all takes

 public:
  [[nodiscard]] double wholeSeconds() const { return whole_; }
};

TEST(ProgressTraces, TheTimeLeftNeverRisesByMoreThanAThirdWhileItIsShown) {
  int shown = 0;
  for (unsigned seed = 0; seed < 300 && !testing::Test::HasFatalFailure(); ++seed) {
    SCOPED_TRACE(seed);
    Trace trace(seed);
    trace.play(false);
    shown += trace.shownNumbers;
  }
  EXPECT_GT(shown, 10000);
}

// A number is at most a minute too high, so an install of five minutes is the shortest that can be judged.
TEST(ProgressTraces, AfterAFifthTheWholeTimeOfASteadyCopyIsRightWithinAQuarter) {
  int judged = 0;
  for (unsigned seed = 0; seed < 300 && !testing::Test::HasFatalFailure(); ++seed) {
    SCOPED_TRACE(seed);
    Trace trace(seed);
    trace.play(true);
    if (trace.wholeSeconds() >= 300) {
      ++judged;
      EXPECT_GT(trace.shownNumbers, 0);
      EXPECT_LT(trace.worstError, 0.25);
    }
  }
  EXPECT_GT(judged, 100);
}

}  // namespace
}  // namespace tavenhall

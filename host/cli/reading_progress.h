#pragma once

#include "host/base/text.h"
#include "host/ui/progress_meter.h"

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>
#include <unistd.h>

namespace tavenhall {

// A line on standard error that is written over, where that is a terminal.
class ReadingProgress {
 public:
  explicit ReadingProgress(std::int64_t total) : isShown_(isatty(STDERR_FILENO) != 0) {
    constexpr double kUnit = 1024.0;
    const auto now = ProgressMeter::Clock::now();
    meter_.start(now);
    meter_.setMaximum(static_cast<double>(total) / kUnit);
    meter_.setCopying(true, now);
  }
  ReadingProgress(const ReadingProgress&) = delete;
  ReadingProgress& operator=(const ReadingProgress&) = delete;
  ~ReadingProgress() {
    if (isShown_) {
      std::fputs("\r\033[K", stderr);
    }
  }

  void add(std::int64_t bytes) {
    constexpr auto kPause = std::chrono::milliseconds(200);
    const auto now = ProgressMeter::Clock::now();
    bytes_ += bytes;
    meter_.setBytes(bytes_, now);
    if (!isShown_ || now - shownAt_ < kPause) {
      return;
    }
    shownAt_ = now;
    std::string line = amountText(meter_);
    if (const auto rate = meter_.rate(now)) {
      line += ", " + sizeText(*rate) + "/s";
    }
    if (const auto minutes = meter_.minutesLeft(now)) {
      line += ", " + timeLeftText(*minutes);
    }
    std::fprintf(stderr, "\r%s\033[K", line.c_str());
    std::fflush(stderr);
  }

 private:
  const bool isShown_;
  ProgressMeter meter_;
  std::int64_t bytes_ = 0;
  ProgressMeter::Time shownAt_;
};

}  // namespace tavenhall

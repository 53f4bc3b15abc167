#include "host/base/stop_request.h"

#include <csignal>
#include <gtest/gtest.h>

namespace tavenhall::test {
namespace {

TEST(StopRequest, ComesWithASignal) {
  const StopRequest stop;
  EXPECT_FALSE(stop.hasCome());
  EXPECT_NO_THROW(stop.throwIfCome());
  std::raise(SIGTERM);
  EXPECT_TRUE(stop.hasCome());
  EXPECT_THROW(stop.throwIfCome(), Stopped);
}

TEST(StopRequest, LeavesIgnoredSignalsIgnored) {
  std::signal(SIGHUP, SIG_IGN);
  {
    const StopRequest stop;
    std::raise(SIGHUP);
    EXPECT_FALSE(stop.hasCome());
  }
  EXPECT_EQ(std::signal(SIGHUP, SIG_IGN), SIG_IGN) << "what is ignored before is ignored after";
}

}  // namespace
}  // namespace tavenhall::test

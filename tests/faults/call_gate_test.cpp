#include "tests/faults/call_gate.h"

#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>

namespace tavenhall::test {
namespace {

Verdict letAllThrough(const FileCall& /*call*/) { return kPass; }

// A shell that is told of its command's end in the middle of a call must not lose that call.
TEST(CallGate, AShellWhoseCommandsEndGoesOn) {
  const GatedRun run = runGated({"/bin/sh", "-c", "for i in $(seq 1 5000); do x=$(:); done; echo \"the end\""},
                                "", letAllThrough, std::chrono::seconds(60));
  EXPECT_FALSE(run.isHung);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.output, "the end\n");
}

TEST(CallGate, ARunThatHangsIsEndedWithAllThatItHasStarted) {
  const GatedRun run =
      runGated({"/bin/sh", "-c", "mkfifo /tmp/pipe; (cat </tmp/pipe & cat </tmp/pipe); echo no"}, "",
               letAllThrough, std::chrono::seconds(1));
  EXPECT_TRUE(run.isHung);
  EXPECT_EQ(run.status, 128 + SIGKILL);
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(open("/tmp/pipe", O_WRONLY | O_NONBLOCK | O_CLOEXEC), -1);
  EXPECT_EQ(errno, ENXIO);  // nobody is left who would read
}

}  // namespace
}  // namespace tavenhall::test

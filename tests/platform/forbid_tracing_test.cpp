#include "platform/host_system.h"

#include "tests/support/private_root.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

// Whether another process of the same user can open a process's memory.
namespace tavenhall::test {
namespace {

constexpr uid_t kUser = 4321;

void becomeUser() {
  if (setresgid(kUser, kUser, kUser) != 0 || setresuid(kUser, kUser, kUser) != 0) {
    _exit(2);
  }
  prctl(PR_SET_DUMPABLE, 1);  // as after exec
}

bool memoryCanBeOpened(bool isForbidden) {
  int ready[2];
  EXPECT_EQ(pipe(ready), 0);
  const pid_t keeper = fork();
  if (keeper == 0) {
    becomeUser();
    if (isForbidden) {
      forbidTracing();
    }
    static_cast<void>(!write(ready[1], "x", 1));
    pause();
  }
  char byte = 0;
  EXPECT_EQ(read(ready[0], &byte, 1), 1);
  const pid_t reader = fork();
  if (reader == 0) {
    becomeUser();
    _exit(open(("/proc/" + std::to_string(keeper) + "/mem").c_str(), O_RDONLY | O_CLOEXEC) >= 0 ? 0 : 1);
  }
  int status = 0;
  waitpid(reader, &status, 0);
  kill(keeper, SIGKILL);
  waitpid(keeper, nullptr, 0);
  return status == 0;
}

TEST(ForbidTracing, KeepsAnotherProcessOfTheUserOutOfTheMemory) {
  if (!isRealRoot() || !memoryCanBeOpened(false)) {
    GTEST_SKIP() << "this user may not look into other processes here anyway";
  }
  EXPECT_FALSE(memoryCanBeOpened(true));
}

}  // namespace
}  // namespace tavenhall::test

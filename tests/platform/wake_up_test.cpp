#include "platform/host_system.h"

#include <cstddef>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <string_view>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

// What of platform/host_system.h exists for any POSIX system as well: the same tests run with this system's own
// backend and with that one.
namespace tavenhall::test {
namespace {

bool isReadable(const WakeUp& wakeUp, int milliseconds) {
  pollfd polled{wakeUp.descriptor(), POLLIN, 0};
  return poll(&polled, 1, milliseconds) == 1;
}

TEST(WakeUp, IsReadableFromTheFirstSignalUntilItIsCleared) {
  WakeUp wakeUp;
  EXPECT_FALSE(isReadable(wakeUp, 0));
  wakeUp.signal();
  EXPECT_TRUE(isReadable(wakeUp, 0));
  EXPECT_TRUE(isReadable(wakeUp, 0));
  wakeUp.clear();
  EXPECT_FALSE(isReadable(wakeUp, 0));
}

TEST(WakeUp, TakesAnyNumberOfSignalsAndOneClear) {
  WakeUp wakeUp;
  for (int i = 0; i < 200000; ++i) {  // more than a pipe holds
    wakeUp.signal();
  }
  wakeUp.clear();
  EXPECT_FALSE(isReadable(wakeUp, 0));
  wakeUp.clear();  // does not wait for a signal
  wakeUp.signal();
  EXPECT_TRUE(isReadable(wakeUp, 0));
}

TEST(WakeUp, WakesAThreadThatWaits) {
  WakeUp wakeUp;
  std::thread signalling([&wakeUp] { wakeUp.signal(); });
  EXPECT_TRUE(isReadable(wakeUp, 10000));
  signalling.join();
}

TEST(WakeUp, IsNotInheritedByPrograms) {
  const WakeUp wakeUp;
  EXPECT_EQ(fcntl(wakeUp.descriptor(), F_GETFD), FD_CLOEXEC);
}

TEST(MemoryFile, IsWrittenAndReadHasNoNameAndIsNotInherited) {
  const int file = openMemoryFile();
  ASSERT_GE(file, 0);
  constexpr std::string_view kText = "some text";
  EXPECT_EQ(pwrite(file, kText.data(), kText.size(), 0), 9);
  char bytes[16] = {};
  EXPECT_EQ(pread(file, bytes, sizeof bytes, 0), 9);
  EXPECT_EQ(std::string_view(bytes), kText);
  struct stat found {};
  EXPECT_EQ(fstat(file, &found), 0);
  EXPECT_EQ(found.st_nlink, 0U);
  EXPECT_EQ(fcntl(file, F_GETFD), FD_CLOEXEC);
  close(file);
}

}  // namespace
}  // namespace tavenhall::test

#include "tests/support/waiting.h"

#include "tests/support/files.h"

#include <csignal>
#include <gtest/gtest.h>
#include <thread>

namespace tavenhall::test {

bool comesTrue(const std::function<bool()>& question, std::chrono::milliseconds pause) {
  constexpr auto kPatience = std::chrono::seconds(60);
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (!question()) {
    if (std::chrono::steady_clock::now() > end) {
      return false;
    }
    std::this_thread::sleep_for(pause);
  }
  return true;
}

void waitForFile(const std::string& path) {
  EXPECT_TRUE(comesTrue([&path] { return exists(path); }, std::chrono::milliseconds(2))) << "no " << path;
}

void waitForEndOf(pid_t process) {
  EXPECT_TRUE(comesTrue([process] { return kill(process, 0) != 0; })) << "process " << process << " runs on";
}

}  // namespace tavenhall::test

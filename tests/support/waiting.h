#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <sys/types.h>

// For what another process or thread does in its own time: a minute at most.
namespace tavenhall::test {

// Asks again and again, with pauses, until the answer is yes; whether it ever was.
[[nodiscard]] bool comesTrue(const std::function<bool()>& question,
                             std::chrono::milliseconds pause = std::chrono::milliseconds(30));

// Until there is such a file, or until the process has ended. Fails the test when that never comes.
void waitForFile(const std::string& path);
void waitForEndOf(pid_t process);

}  // namespace tavenhall::test

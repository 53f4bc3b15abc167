#pragma once

#include <sys/types.h>
#include <vector>

namespace tavenhall::test {

// The processes that the process's first thread has started and not waited for, or that came to it when their
// own parents ended.
[[nodiscard]] std::vector<pid_t> childrenOf(pid_t process);

}  // namespace tavenhall::test

#include "tests/support/children.h"

#include <fstream>
#include <iterator>
#include <string>

namespace tavenhall::test {

std::vector<pid_t> childrenOf(pid_t process) {
  const std::string id = std::to_string(process);
  std::ifstream file("/proc/" + id + "/task/" + id + "/children");
  return {std::istream_iterator<pid_t>(file), {}};
}

}  // namespace tavenhall::test

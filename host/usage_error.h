#pragma once

#include <stdexcept>

namespace tavenhall {

// Something that was given cannot be used. Its text is one line that names it and says what is wrong; the
// program shows it and ends with ExitStatus::badUsage.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace tavenhall

#pragma once

#include <exception>
#include <stdexcept>

namespace tavenhall {

// Something that was given cannot be used. Its text names it and says what is wrong; the program shows it and
// ends with ExitStatus::badUsage.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Shows an error on standard error, as one line whatever it names: a path may hold line breaks.
void showError(const std::exception& error);

}  // namespace tavenhall

#pragma once

#include <exception>
#include <stdexcept>

namespace tavenhall {

// An argument, or a file that it names, cannot be used. what() names it, states the problem and the remedy; the
// program shows it and exits with ExitStatus::badUsage.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Prints an error on standard error, as one line even where a path in it holds line breaks. Any thread.
void showError(const std::exception& error);

}  // namespace tavenhall

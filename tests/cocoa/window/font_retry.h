#pragma once

#include "tests/install/child_program.h"

#include <cstdio>
#include <stdexcept>
#include <string>

// Where fontconfig lists no font at the moment at which GNUstep asks for all of them, as now and then while
// others rewrite its caches, GNUstep has none for the life of the process, which the first text ends.
namespace tavenhall::test {

// A program has ended for that reason; what() is what it said.
class NoFont : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;

  [[nodiscard]] static bool isToldIn(const std::string& error) {
    return error.find("The font specified for NSFont, ") != std::string::npos;
  }
};

// Starts a program; where it had no font, says so on standard output and starts it once more. `start` throws
// NoFont; the second one gets through.
template <typename Start>
auto startWithFonts(Start start) {
  try {
    return start();
  } catch (const NoFont& error) {
    std::printf("RETRY: GNUstep had no font at its start:\n%s\n", error.what());
  }
  return start();
}

}  // namespace tavenhall::test

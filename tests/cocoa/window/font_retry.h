#pragma once

#include "tests/install/child_program.h"

#include <cstdio>
#include <stdexcept>
#include <string>

// Where fontconfig lists no font at the moment at which GNUstep asks for all of them, GNUstep has none for the
// life of the process, which its first text ends. An empty configuration brings that about, and tests use one;
// what rarely brings it about by itself is not known. Rewriting fontconfig's caches meanwhile does not: not
// once in 261 starts.
namespace tavenhall::test {

// A program has ended for that reason; what() is what it said.
class NoFont : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;

  [[nodiscard]] static bool isReportedIn(const std::string& error) {
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

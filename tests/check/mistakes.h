#pragma once

#include "tests/check/sets.h"

#include <string>
#include <vector>

// Sets with one mistake each, at kSetFolder.
namespace tavenhall::test {

struct Mistake {
  enum class Base { discs, dataUpdate, download, update };

  const char* title;
  Base base;

  // In the attributes file, of the first occurrence; empty: nothing.
  std::string from;
  std::string to;

  void (*change)() = nullptr;
};

[[nodiscard]] const std::vector<Mistake>& allMistakes();

// Makes the set anew.
void makeSetWith(const Mistake& mistake);

// The product whose set it is.
[[nodiscard]] std::string productOf(const Mistake& mistake);

}  // namespace tavenhall::test

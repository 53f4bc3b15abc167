#pragma once

#include "tests/install/child_program.h"

#include <string>

namespace tavenhall::test {

// An X server of the test's own, without a screen that anyone sees. It ends with this, and with the test's
// process.
class VirtualDisplay {
 public:
  // Waits until it serves. Throws when it does not come up.
  VirtualDisplay();

  // What DISPLAY is to be: ":7".
  [[nodiscard]] const std::string& name() const { return name_; }

 private:
  ChildProgram server_;
  std::string name_;
};

}  // namespace tavenhall::test

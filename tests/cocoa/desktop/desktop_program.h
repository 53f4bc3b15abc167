#pragma once

#include "tests/cocoa/window/virtual_display.h"
#include "tests/install/child_program.h"
#include "tests/support/files.h"

#include <memory>
#include <string>
#include <vector>

namespace tavenhall::test {

// The package that the window is asked to install, and the user's folder for its data.
inline constexpr const char* kPackage = "/Users/tester/Downloads/Set/Installer.pkg";

// The built program on a display of the test's own, asked what its windows show, with clicks on its buttons by
// their titles. See window_teller.mm.
class DesktopProgram {
 public:
  // Starts it for kPackage, and waits for its window; the environment names the language.
  explicit DesktopProgram(ChildProgram::Environment environment);

  // Clicks on the button as soon as it can be clicked on; clicks keep their order.
  void clickOn(const std::string& title) { program_->write(title + "\n"); }

  // Reads until the windows show that line. Throws when it does not come.
  void await(const std::string& line);

  // Reads up to the end, and gives the exit status.
  int waitForEnd();

  // Every line so far: "window: Install Tessaphon", "step: Summary", "button: Go Back, off", "text: ..." and
  // "line: ..." for longer texts' lines; "(cut)" stands behind what has no room.
  [[nodiscard]] const std::vector<std::string>& lines() const { return lines_; }

  [[nodiscard]] std::string standardError() const { return program_->standardError(); }

 private:
  VirtualDisplay display_;
  std::unique_ptr<ChildProgram> program_;
  std::vector<std::string> lines_;
};

}  // namespace tavenhall::test

#include "tests/cocoa/desktop/desktop_program.h"

#include "tests/cocoa/window/font_retry.h"

#include <stdexcept>
#include <utility>

namespace tavenhall::test {

namespace {

// In a process namespace of its own, so that no daemon of AppKit's outlives it.
const std::vector<std::string> kCommandLine = {"unshare",
                                               "--pid",
                                               "--mount-proc",
                                               "--fork",
                                               "--kill-child",
                                               "env",
                                               "LD_PRELOAD=" TAVINSTALL_BINARY_DIR "/tests/window_teller.so",
                                               TAVINSTALL_BINARY_DIR "/bin/tavinstall-desktop"};

}  // namespace

DesktopProgram::DesktopProgram(ChildProgram::Environment environment) {
  environment["DISPLAY"] = display_.name();
  environment["TAVINSTALL_PACKAGE"] = kPackage;
  program_ = startWithFonts([&] {
    auto program = std::make_unique<ChildProgram>(kCommandLine, environment);
    const auto line = program->readLine();
    if (!line) {
      program->waitForEnd();
      const std::string error = program->standardError();
      if (NoFont::isReportedIn(error)) {
        throw NoFont(error);
      }
      throw std::runtime_error("there is no window: " + error);
    }
    lines_ = {*line};
    return program;
  });
}

void DesktopProgram::await(const std::string& wanted) {
  while (lines_.back() != wanted) {
    auto line = program_->readLine();
    if (!line) {
      throw std::runtime_error("the window does not show \"" + wanted + "\": " + program_->standardError());
    }
    lines_.push_back(std::move(*line));
  }
}

int DesktopProgram::waitForEnd() {
  for (std::string& line : program_->readLines()) {
    lines_.push_back(std::move(line));
  }
  return program_->waitForEnd();
}

}  // namespace tavenhall::test

#pragma once

#include "host/base/files.h"

#include <filesystem>

// The stand-ins in libexec/ for tools that a system may lack: drutil, which ejects discs on macOS, and sudo.
namespace tavenhall {

// Adds their folder to the end of PATH, so that they run only where the real tool is missing, and its folder
// "first", which macOS alone has, to the front. Call it before any thread is started.
void addStandInsToPath(const std::filesystem::path& standIns = findStandIns());

// Passes the folder that was copied last to the stand-in for drutil, which knows no drive numbers: in an
// unnamed file whose descriptor every command inherits. TAVINSTALL_DISC_FD has the descriptor's number.
class EjectNote {
 public:
  // Sets the environment variable, so call it before any thread is started. Without a file the variable is not
  // set, and nothing is ejected.
  EjectNote();
  EjectNote(const EjectNote&) = delete;
  EjectNote& operator=(const EjectNote&) = delete;

  // Replaces the folder. One thread at a time.
  void write(const char* folder) noexcept;

 private:
  int descriptor_ = -1;  // stays open for the process
};

}  // namespace tavenhall

#pragma once

#include <string>

namespace tavenhall {

// Tells the stand-in for the eject command, which has no drive numbers to go by, what was copied last: a
// nameless file whose descriptor every command inherits, and whose number TAVINSTALL_DISC_FD gives.
class DiscNote {
 public:
  // Sets the environment, so before any thread is started. Where there can be no such file, the variable
  // is not set and nothing is ejected.
  DiscNote();
  DiscNote(const DiscNote&) = delete;
  DiscNote& operator=(const DiscNote&) = delete;

  // The folder that is copied from now on. One thread at a time.
  void write(const std::string& folder) noexcept;

 private:
  int descriptor_ = -1;  // stays open for the process
};

}  // namespace tavenhall

#pragma once

// The tools of libexec/ that stand in for those that a system lacks: drutil, which ejects discs on macOS, and
// sudo.
namespace tavenhall {

// Adds their folder to the end of PATH, so that they run only where the real tool is missing. Call it before
// any thread is started.
void addStandInsToPath();

// Tells the stand-in for drutil, which has no drive numbers to go by, which folder was copied last: an unnamed
// file whose descriptor every command inherits and whose number is in TAVINSTALL_DISC_FD.
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

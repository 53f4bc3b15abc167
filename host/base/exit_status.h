#pragma once

#include "host/base/text.h"

#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>

// The program's exit statuses, for all commands.
namespace tavenhall {

enum class ExitStatus : int {
  success = 0,   // the command succeeded
  failure = 1,   // the command ran, and found or had a failure
  badUsage = 2,  // invalid argument; nothing was done

  // One number, since no command has both: somebody should look at it.
  noAnswer = 3,
  warnings = 3,

  stopped = 4,         // by the user or a signal
  alreadyRunning = 5,  // another installation of this user's has the lock; nothing was done
  refused = 6,         // the installation would not be safe; nothing was done
  discMissing = 7,     // nobody is there to insert it
  noSpace = 8,         // on the disk to install to; nothing was done
  noDestination = 9,   // the folder to install into is missing or not writable; nothing was done
};

// Of two ends of checks: a failure before warnings before a success.
[[nodiscard]] constexpr ExitStatus worseOf(ExitStatus one, ExitStatus other) {
  return other == ExitStatus::failure || one == ExitStatus::success ? other : one;
}

struct ExitMeaning {
  const char* command;
  ExitStatus status;
  const char* meaning;
};

// "tavinstall help exit-status" prints these; the manual repeats them.
inline constexpr ExitMeaning kExitMeanings[] = {
    {"run", ExitStatus::success, N_("every file was installed; with --ui json: the requests were served")},
    {"run", ExitStatus::failure, N_("the installation failed, for one file at least")},
    {"run", ExitStatus::badUsage, N_("invalid argument; nothing was installed")},
    {"run", ExitStatus::noAnswer, N_("a prompt needed an answer, but standard input was closed")},
    {"run", ExitStatus::stopped, N_("the installation was stopped")},
    {"run", ExitStatus::alreadyRunning, N_("another installation is running; nothing was installed")},
    {"run", ExitStatus::refused, N_("refused for safety; nothing was installed")},
    {"run", ExitStatus::discMissing, N_("unattended: a disc was not found")},
    {"run", ExitStatus::noSpace, N_("unattended: there is not enough space; nothing was installed")},
    {"run", ExitStatus::noDestination, N_("unattended: the folder to install into is missing or not writable")},
    {"status", ExitStatus::success, N_("an installation is running")},
    {"status", ExitStatus::failure, N_("none is running, or it does not answer")},
    {"status", ExitStatus::badUsage, N_("invalid argument")},
    {"status", ExitStatus::warnings, N_("an installation is running and waits for an answer")},
    {"attach", ExitStatus::success, N_("every file was installed")},
    {"attach", ExitStatus::failure, N_("no installation is running, or it failed")},
    {"attach", ExitStatus::badUsage, N_("invalid argument")},
    {"attach", ExitStatus::warnings, N_("left before the end of the installation, which continues")},
    {"attach", ExitStatus::stopped, N_("the installation was stopped")},
    {"stop", ExitStatus::success, N_("the installation was stopped")},
    {"stop", ExitStatus::failure, N_("none is running, it does not answer, or it had ended before")},
    {"stop", ExitStatus::badUsage, N_("invalid argument")},
    {"new", ExitStatus::success, N_("the set was made")},
    {"new", ExitStatus::badUsage, N_("invalid argument, or the set could not be written")},
    {"split", ExitStatus::success, N_("the discs were made, and hold the whole library")},
    {"split", ExitStatus::failure, N_("a disc or image could not be made; or it was stopped")},
    {"split", ExitStatus::badUsage, N_("the library cannot be put on such discs; nothing was written")},
    {"rehearse", ExitStatus::success, N_("everything was installed; no problems found")},
    {"rehearse", ExitStatus::failure,
     N_("it failed or was stopped, a file differs, or the check finds an error")},
    {"rehearse", ExitStatus::badUsage, N_("invalid argument; nothing was installed")},
    {"rehearse", ExitStatus::warnings, N_("everything was installed, with warnings")},
    {"check", ExitStatus::success, N_("no problems found")},
    {"check", ExitStatus::failure, N_("errors")},
    {"check", ExitStatus::badUsage, N_("invalid argument")},
    {"check", ExitStatus::warnings, N_("warnings, but no errors")},
    {"manifest", ExitStatus::success, N_("the manifests were written")},
    {"manifest", ExitStatus::failure, N_("a file could not be read, or has changed; or it was stopped")},
    {"manifest", ExitStatus::badUsage, N_("invalid argument")},
    {"verify", ExitStatus::success, N_("everything is installed as the manifest says")},
    {"verify", ExitStatus::failure, N_("files are missing or wrong")},
    {"verify", ExitStatus::badUsage, N_("invalid argument")},
    {"verify", ExitStatus::warnings, N_("everything is installed, with files that are not in the manifest")},
    {"log", ExitStatus::success, N_("the log was read; with --check: it records no failure of the last run")},
    {"log", ExitStatus::failure, N_("--check: the last run failed or did not end, or there is none")},
    {"log", ExitStatus::badUsage, N_("invalid argument")},
    {"log", ExitStatus::warnings, N_("--check: the last run has not ended, and runs or may run")},
};

// An argument, or a file that it names, cannot be used. what() names it, states the problem and the remedy; the
// program shows it and exits with status().
class UsageError : public std::runtime_error {
 public:
  explicit UsageError(const std::string& text, ExitStatus status = ExitStatus::badUsage)
      : std::runtime_error(text), status_(status) {}

  [[nodiscard]] ExitStatus status() const { return status_; }

 private:
  ExitStatus status_;
};

// Prints an error on standard error, as one line even where a path in it holds line breaks. Any thread.
inline void showError(const std::exception& error) {
  std::fprintf(stderr, "tavinstall: %s\n", printableLine(error.what()).c_str());
}

}  // namespace tavenhall

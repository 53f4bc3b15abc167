#pragma once

#include "host/base/text.h"

// The program's exit statuses, for all commands.
namespace tavenhall {

enum class ExitStatus : int {
  success = 0,   // the command succeeded
  failure = 1,   // the command ran, and found or had a failure
  badUsage = 2,  // invalid argument; nothing was done

  // One number, since no command has both: somebody should look at it.
  noAnswer = 3,
  warnings = 3,
};

struct ExitMeaning {
  const char* command;
  ExitStatus status;
  const char* meaning;
};

// The help prints these; the manual repeats them.
inline constexpr ExitMeaning kExitMeanings[] = {
    {"run", ExitStatus::success, N_("installed, with nothing missing")},
    {"run", ExitStatus::failure, N_("the installation failed, for one file at least, or was stopped")},
    {"run", ExitStatus::badUsage, N_("invalid argument; nothing was installed")},
    {"run", ExitStatus::noAnswer, N_("a prompt needed an answer, but standard input was closed")},
    {"rehearse", ExitStatus::success, N_("everything was installed; no problems found")},
    {"rehearse", ExitStatus::failure,
     N_("the installation failed, or an installed file differs from its source")},
    {"rehearse", ExitStatus::badUsage, N_("invalid argument; nothing was installed")},
    {"rehearse", ExitStatus::warnings, N_("everything was installed, with warnings")},
    {"check", ExitStatus::success, N_("no problems found")},
    {"check", ExitStatus::failure, N_("errors")},
    {"check", ExitStatus::badUsage, N_("invalid argument")},
    {"check", ExitStatus::warnings, N_("warnings, but no errors")},
    {"log", ExitStatus::success, N_("the log was read")},
    {"log", ExitStatus::badUsage, N_("invalid argument")},
};

}  // namespace tavenhall

#pragma once

#include "host/base/text.h"

// How the program ends. One table for all commands.
namespace tavenhall {

enum class ExitStatus : int {
  success = 0,   // what was asked for was done
  failure = 1,   // it was done, and it is not right
  badUsage = 2,  // something that was given cannot be used; nothing was begun

  // One number, since no command has both: somebody should look at it.
  noAnswer = 3,
  remarks = 3,
};

struct ExitMeaning {
  const char* command;
  ExitStatus status;
  const char* meaning;
};

// The help prints these; the manual repeats them.
inline constexpr ExitMeaning kExitMeanings[] = {
    {"run", ExitStatus::success, N_("installed, with nothing missing")},
    {"run", ExitStatus::failure, N_("the install failed, wholly or for a single file, or it was stopped")},
    {"run", ExitStatus::badUsage, N_("something that was given cannot be used; nothing was begun")},
    {"run", ExitStatus::noAnswer, N_("a question needed an answer, and the input was closed")},
    {"rehearse", ExitStatus::success, N_("everything is installed, and there is nothing to remark")},
    {"rehearse", ExitStatus::failure, N_("the install failed, or what is installed differs from its source")},
    {"rehearse", ExitStatus::badUsage, N_("something that was given cannot be used; nothing was begun")},
    {"rehearse", ExitStatus::remarks, N_("installed, with something to remark")},
    {"check", ExitStatus::success, N_("nothing is wrong")},
    {"check", ExitStatus::failure, N_("there are errors")},
    {"check", ExitStatus::badUsage, N_("something that was given cannot be used")},
    {"check", ExitStatus::remarks, N_("there are warnings, and no errors")},
    {"log", ExitStatus::success, N_("the log was told, whatever it tells")},
    {"log", ExitStatus::badUsage, N_("something that was given cannot be used")},
};

}  // namespace tavenhall

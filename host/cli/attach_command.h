#pragma once

#include "host/base/exit_status.h"
#include "host/cli/command_line.h"

#include <optional>

namespace tavenhall {

// Asks on the terminal whether to show the install of this user that is running, and does; `frontend` is
// terminal or plain. None if there is none to show, or if the user does not want to see it.
[[nodiscard]] std::optional<ExitStatus> offerRunningInstall(Frontend frontend, const NoticeAbilities& notices);

}  // namespace tavenhall

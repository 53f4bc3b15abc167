#pragma once

#include "platform/installer_host.h"

namespace tavenhall {

// Shows the alert and waits for its answer. The first button's code where the system cannot show it. Main
// thread.
[[nodiscard]] int runModalAlert(const Alert& alert) noexcept;

}  // namespace tavenhall

#pragma once

#include "platform/installer_host.h"

#import <AppKit/AppKit.h>

namespace tavenhall {

// Shows the alert and returns the code of the button that the user chose. If the system cannot show it, the
// last button's: an optional disc is skipped, since asking for ever would be worse. For a disc that the install
// needs there is one button, and the page looks for the disc every few seconds until it is there. Main thread.
[[nodiscard]] int runModalAlert(const Alert& alert) noexcept;

// Begins a sheet with one button on the window, and returns without waiting for the user. `delegate` is sent
// nothing. Main thread.
void beginInformationalSheet(const Sheet& sheet, NSWindow* window, id delegate) noexcept;

}  // namespace tavenhall

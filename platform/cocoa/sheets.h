#pragma once

#include "platform/installer_host.h"

#import <AppKit/AppKit.h>

namespace tavenhall {

// Begins a sheet with one button on the window; `delegate` is told nothing. Returns without waiting for the
// user. Main thread.
void beginInformationalSheet(const Sheet& sheet, NSWindow* window, id delegate) noexcept;

}  // namespace tavenhall

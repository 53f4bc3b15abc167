#pragma once

namespace tavenhall {

class InstallerHost;

// Keeps the display and the machine awake while an install runs; whether the system grants it does not
// matter. Taken on the main thread, given back on the install thread; the host is told of each.
void takeSleepHolds(InstallerHost& host) noexcept;
void releaseSleepHolds(InstallerHost& host) noexcept;

}  // namespace tavenhall

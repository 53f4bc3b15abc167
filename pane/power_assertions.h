#pragma once

namespace tavenhall {

class InstallerHost;

// Keep the display and the machine awake while an install runs, and notify the host. A refusal by the system is
// no failure. Taken on the main thread, released on the install thread.
void takePowerAssertions(InstallerHost& host) noexcept;
void releasePowerAssertions(InstallerHost& host) noexcept;

}  // namespace tavenhall

#pragma once

namespace tavenhall {

class InstallerHost;

// Keep the display and the machine awake while an install runs. They notify the host; that the system refuses
// an assertion fails nothing. Taken on the main thread, released on the install thread.
void takePowerAssertions(InstallerHost& host) noexcept;
void releasePowerAssertions(InstallerHost& host) noexcept;

}  // namespace tavenhall

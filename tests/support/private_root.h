#pragma once

#include <string>

// The page works at fixed paths. A test gets its own of each from outside: this process, and all it starts,
// sees empty folders at /tmp, /Volumes, /Library, /Applications and home, in a private mount namespace.
namespace tavenhall::test {

// The home folder that a private root has; HOME names it.
inline constexpr const char* kHome = "/Users/tester";

// Enters a private root. Before any thread is started, once a process. As root or, where the system allows
// user namespaces, as an ordinary user. Ends the process with a message when it cannot.
//
// The project's source and build folders stay where they are, wherever that is. Everything else of the real
// system is visible as it is, and what is written outside the five folders is really written.
void enterPrivateRoot();

// Ends every other process that lives in this process's private root: a test may leave an engine that has lost
// its frontend and waits for an answer for ever. Once all tests have run.
void endWhatIsLeft();

// Gives up for this process what lets root read, list and write everything. Any later check of permissions
// counts.
void dropOverridesOfPermissions();

// Is this process the real root, outside any user namespace? Loop mounts need it.
[[nodiscard]] bool isRealRoot();

}  // namespace tavenhall::test

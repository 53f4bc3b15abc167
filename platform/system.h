#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// What the page asks of the operating system under it, as plain functions that are chosen at link time: one
// backend for real systems, one that records for the tests, one for AppKit. Every backend fills every one.
// Unless a function says otherwise, any thread may call it, and it never fails the caller.
namespace tavenhall {

class InstallerHost;

// ---- Folders ----

// The values are the ones macOS uses for the directories.
enum class SearchPath { caches = 13, applicationSupport = 14 };

// The current user's folder of that kind, absolute, without a trailing slash, whether or not it exists.
// False when there is none.
[[nodiscard]] bool firstUserSearchPath(SearchPath which, std::string& path) noexcept;

// If something lies at `path` and is an alias, stores the path of what it stands for, through whole chains
// of aliases. False, with `target` untouched, in every other case, also where the system has no aliases.
[[nodiscard]] bool resolveAlias(const char* path, std::string& target) noexcept;

// Is the file system at `path` there and readable?
[[nodiscard]] bool statFileSystem(const char* path) noexcept;

// ---- Staying awake ----

inline constexpr std::uint32_t kAssertionLevelOn = 255;

// Takes a hold that keeps the display ("NoDisplaySleepAssertion") or the machine
// ("NoIdleSleepAssertion") awake, and stores its identifier; 0 when the system does not grant one.
void createPowerAssertion(const char* type, std::uint32_t level, const char* name,
                          std::uint32_t& identifier) noexcept;

// Gives the hold back. 0 and unknown identifiers are ignored.
void releasePowerAssertion(std::uint32_t identifier) noexcept;

// ---- Threads and time ----

// Runs `body(target)` on a new thread that nobody joins. The host is notified that the thread has started
// before the body runs, and that it has ended once the body has returned. `name` is a literal. False when
// the system cannot start a thread; the host is then not notified.
[[nodiscard]] bool detachNewThread(InstallerHost& host, const char* name, void (*body)(void*),
                                   void* target) noexcept;

// Sleeps that long on the calling thread, whatever signals arrive.
void sleepSeconds(unsigned seconds) noexcept;

// ---- Commands and files ----

// Runs a command line with the shell, waits for it, and returns what `system` returns.
int runShellCommand(const char* command) noexcept;

// Why a removal failed. Both texts are empty where there is no error or no such text.
struct RemovalError {
  bool failed = false;
  std::string localizedDescription;
  std::string localizedFailureReason;
};

// Removes the file, link or whole tree at `path`. Nothing at `path` is a failure.
[[nodiscard]] RemovalError removeItem(const char* path) noexcept;

// Sets the permission bits of the one item at `path` (through links), if there is one.
void setPosixPermissions(const char* path, std::int16_t permissions) noexcept;

// The text of an errno value, at most `room` bytes with the terminator.
void errorText(int error, char* text, std::size_t room) noexcept;

// ---- The bundle ----

// The text for `key` from the plug-in bundle's own string table, in the user's language; the key itself
// where the table has none. UTF-8.
[[nodiscard]] std::string localizedString(const char* key) noexcept;

}  // namespace tavenhall

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// The page's interface to the operating system: plain functions, implemented by the backend that is linked
// (POSIX, AppKit, or the recording one of the tests). Every backend implements all of them. Unless a function
// says otherwise, any thread may call it, and its failure is not reported.
namespace tavenhall {

class InstallerHost;

// ---- Folders ----

// The values are the ones macOS uses for the directories.
enum class SearchPath { caches = 13, applicationSupport = 14 };

// Stores the absolute path of the user's folder, without a trailing slash; the folder need not exist. Returns
// false if there is none.
[[nodiscard]] bool firstUserSearchPath(SearchPath which, std::string& path) noexcept;

// If the file at `path` is an alias, stores the path that it resolves to, through chains of aliases, and
// returns true. Otherwise, also on systems without aliases, returns false and leaves `target` unchanged.
[[nodiscard]] bool resolveAlias(const char* path, std::string& target) noexcept;

// Is the file system at `path` there and readable?
[[nodiscard]] bool statFileSystem(const char* path) noexcept;

// ---- Staying awake ----

inline constexpr std::uint32_t kAssertionLevelOn = 255;

// Takes a power assertion that keeps the display ("NoDisplaySleepAssertion") or the machine
// ("NoIdleSleepAssertion") awake, and stores its identifier, or 0 if the system refuses.
void createPowerAssertion(const char* type, std::uint32_t level, const char* name,
                          std::uint32_t& identifier) noexcept;

// Releases the assertion. Ignores 0 and unknown identifiers.
void releasePowerAssertion(std::uint32_t identifier) noexcept;

// ---- Threads and time ----

// Runs `body(target)` on a detached thread. The host is notified that the thread has started
// before the body runs, and that it has ended once the body has returned. `name` is a literal. Returns
// false if the system cannot start a thread; the host is then not notified.
[[nodiscard]] bool detachNewThread(InstallerHost& host, const char* name, void (*body)(void*),
                                   void* target) noexcept;

// Blocks the calling thread for that time; signals do not shorten it.
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

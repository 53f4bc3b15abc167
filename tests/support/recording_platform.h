#pragma once

#include "platform/system.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

// The backend of platform/system.h that the unit tests link: it answers as a test tells it to, records what
// the page asks, and keeps a clock that costs no time.
//
// Recorded, one line each, in order:
//   assertion <type> <level> <name>      assertion.release <identifier>
//   thread <name>                        sleep <seconds>
//   system <command>                     remove <path>
//   permissions <octal> <path>           statfs <path>
//   alias <path>
//
// The clock is virtual: it moves on, to the earliest sleeper's hour, only when every page thread sleeps, or
// at once when the test's own thread sleeps. Set everything up before the page is called.
namespace tavenhall::test {

class RecordingPlatform {
 public:
  // ---- What a test may set ----

  std::optional<std::string> caches = "/Users/tester/Library/Caches";
  std::optional<std::string> applicationSupport = "/Users/tester/Library/Application Support";
  std::map<std::string, std::string> aliases;  // path of an alias, and what it stands for
  std::map<std::string, std::string> strings;  // starts with the texts of the default product, in English
  bool canStartThreads = true;
  bool keepsCalls = true;             // false for runs so long that their calls are not to be kept
  std::uint32_t nextAssertion = 101;  // the identifier of the next hold; counts up, but 0 stays 0

  // What a command gives and does; records and gives 0 unless set. The page's thread.
  std::function<int(const std::string& command)> shell;

  // Called on the sleeping thread before it sleeps.
  std::function<void(unsigned seconds)> onSleep;

  // Replaces the real removal and the real file-system test.
  std::function<RemovalError(const std::string& path)> removal;
  std::function<bool(const std::string& path)> fileSystem;

  // ---- What a test may ask ----

  [[nodiscard]] std::vector<std::string> calls() const;
  [[nodiscard]] std::vector<std::string> callsThatBegin(const std::string& start) const;

  // Seconds since the clock started.
  [[nodiscard]] std::uint64_t now() const;

  // Waits, in real time, for every page thread to end. A minute's limit fails the test.
  void joinPageThreads();
};

// The one of this process; every test has a process of its own.
[[nodiscard]] RecordingPlatform& platform();

}  // namespace tavenhall::test

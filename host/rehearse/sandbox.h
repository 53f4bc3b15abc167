#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tavenhall {

// A read-only bind mount of the sandbox.
struct SandboxBind {
  std::filesystem::path outside;
  std::string inside;
};

// A command that runs bubblewrap. Start it with a guard: until the sandbox is complete, bubblewrap's second
// process is not bound to its first one, and would wait for ever or run on without it.
struct SandboxCommand {
  std::vector<std::string> words;
  int filter;  // a descriptor that bubblewrap reads; the sandbox owns it
};

// The sandbox of a rehearsal: /tmp, /Volumes, /Library, /Applications and the home are in one private folder;
// the system's programs and libraries are read-only. There is nothing else: no other folder, process, network,
// socket, device or keyring, no environment variable but those of the language, and no way to get more rights.
// Linux alone.
class Sandbox {
 public:
  static constexpr const char* kHome = "/Users/rehearsal";
  static constexpr const char* kProgram = "/rehearsal/program";  // the folder above the program's bin
  static constexpr const char* kTools = "/rehearsal/tools";      // first on the PATH

  // Creates the five folders in `root`, an absolute path without links, which is empty or does not exist.
  // Throws UsageError and std::filesystem::filesystem_error.
  explicit Sandbox(std::filesystem::path root);
  Sandbox(const Sandbox&) = delete;
  Sandbox& operator=(const Sandbox&) = delete;
  ~Sandbox();

  // Throws UsageError, naming what is missing, if no program can run in a sandbox.
  void probe() const;

  void bind(SandboxBind place) { binds_.push_back(std::move(place)); }

  // Returns the real path of the sandbox's path `inside`; empty if it has none.
  [[nodiscard]] std::filesystem::path outside(const std::string& inside) const;

  [[nodiscard]] const std::filesystem::path& root() const { return root_; }

  // Returns the command that runs `command` in the sandbox, with HOME and PATH set. It ends with its parent.
  // Start it before the next one is returned.
  [[nodiscard]] SandboxCommand commandFor(const std::vector<std::string>& command) const;

 private:
  int filter_;  // of system calls, a seccomp program
  std::filesystem::path root_;
  std::vector<SandboxBind> binds_;
};

}  // namespace tavenhall

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

// The sandbox of a rehearsal: /tmp, /Volumes, /Library, /Applications and the home are in one private folder;
// the rest of the system is read-only.
class Sandbox {
 public:
  static constexpr const char* kHome = "/Users/rehearsal";
  static constexpr const char* kProgram = "/rehearsal/program";  // the folder above the program's bin
  static constexpr const char* kTools = "/rehearsal/tools";      // first on the PATH

  // Creates the five folders in `root`, an absolute path without links, which is empty or does not exist.
  // Throws std::filesystem::filesystem_error.
  explicit Sandbox(std::filesystem::path root);

  // Throws UsageError, naming what is missing, if no program can run in a sandbox.
  void probe() const;

  void bind(SandboxBind place) { binds_.push_back(std::move(place)); }

  // Returns the real path of the sandbox's path `inside`; empty if it has none.
  [[nodiscard]] std::filesystem::path outside(const std::string& inside) const;

  [[nodiscard]] const std::filesystem::path& root() const { return root_; }

  // Returns the command line that runs `command` in the sandbox, with HOME and PATH set. It ends with its
  // parent.
  [[nodiscard]] std::vector<std::string> commandLine(const std::vector<std::string>& command) const;

 private:
  std::filesystem::path root_;
  std::vector<SandboxBind> binds_;
};

}  // namespace tavenhall

#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tavenhall {

// A place that the sandbox sees read-only, wherever it really lies.
struct SandboxBind {
  std::filesystem::path outside;
  std::string inside;
};

// A private world for one rehearsal: /tmp, /Volumes, /Library, /Applications and the home lie in one folder,
// the rest of the system is there to be read, and nothing else can be written.
class Sandbox {
 public:
  static constexpr const char* kHome = "/Users/rehearsal";
  static constexpr const char* kProgram = "/rehearsal/program";  // the folder above the program's bin
  static constexpr const char* kTools = "/rehearsal/tools";      // first on the PATH

  // Makes the five folders in `root`, an absolute path without links that is empty or not there. Throws
  // std::filesystem::filesystem_error where it cannot.
  explicit Sandbox(std::filesystem::path root);

  // Throws UsageError, saying what is wanted, where nothing can be run in a sandbox.
  void probe() const;

  void bind(SandboxBind place) { binds_.push_back(std::move(place)); }

  // Where something that the sandbox calls `inside` really lies; empty for what is nowhere in particular.
  [[nodiscard]] std::filesystem::path outside(const std::string& inside) const;

  [[nodiscard]] const std::filesystem::path& root() const { return root_; }

  // The command line that runs `command` in it, with HOME and PATH set. The program ends with its parent.
  [[nodiscard]] std::vector<std::string> commandLine(const std::vector<std::string>& command) const;

 private:
  std::filesystem::path root_;
  std::vector<SandboxBind> binds_;
};

}  // namespace tavenhall

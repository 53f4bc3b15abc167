#include "host/rehearse/sandbox.h"

#include "host/base/child_process.h"
#include "host/base/exit_status.h"
#include "host/base/text.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr std::array<const char*, 5> kOwnFolders{"tmp", "Volumes", "Library", "Applications", "Users"};

bool isOwnFolder(const fs::path& name) {
  return std::find(kOwnFolders.begin(), kOwnFolders.end(), name) != kOwnFolders.end();
}

bool isAtOrBelow(const std::string& path, const std::string& folder) {
  return path == folder || path.starts_with(folder + "/");
}

void add(std::vector<std::string>& arguments, std::initializer_list<std::string> more) {
  arguments.insert(arguments.end(), more);
}

// The system as it is, read-only, save the folders that the sandbox has of its own.
void addSystem(std::vector<std::string>& arguments) {
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator("/", error)) {
    const fs::path name = entry.path().filename();
    if (isOwnFolder(name) || name == "proc" || name == "dev" || name == "rehearsal") {
      continue;
    }
    if (entry.is_symlink(error)) {
      add(arguments, {"--symlink", fs::read_symlink(entry.path(), error).string(), entry.path().string()});
    } else if (entry.is_directory(error)) {
      add(arguments, {"--ro-bind-try", entry.path().string(), entry.path().string()});
    }
  }
}

}  // namespace

Sandbox::Sandbox(fs::path root) : root_(std::move(root)) {
  for (const char* folder : kOwnFolders) {
    fs::create_directories(root_ / folder);
  }
  fs::create_directories(root_ / "Users" / "rehearsal");
  fs::permissions(root_ / "tmp", fs::perms::all | fs::perms::sticky_bit);
}

void Sandbox::probe() const {
  ToolProcess tool(commandLine({"true"}));
  const int status = tool.wait();
  if (status == kCannotRun) {
    throw UsageError(_("rehearsing needs bubblewrap; install the package bubblewrap"));
  }
  if (status != 0) {
    throw UsageError(format(_("bubblewrap cannot create a sandbox; user namespaces may be disabled: {0}"),
                            {tool.lastLine()}));
  }
}

fs::path Sandbox::outside(const std::string& inside) const {
  for (const SandboxBind& place : binds_) {
    if (isAtOrBelow(inside, place.inside)) {
      return place.outside / fs::path(inside.substr(place.inside.size())).relative_path();
    }
  }
  for (const char* folder : kOwnFolders) {
    if (isAtOrBelow(inside, std::string("/").append(folder))) {
      return root_ / fs::path(inside).relative_path();
    }
  }
  return {};
}

std::vector<std::string> Sandbox::commandLine(const std::vector<std::string>& command) const {
  std::vector<std::string> arguments{"bwrap", "--die-with-parent", "--unshare-pid", "--unshare-ipc"};
  addSystem(arguments);
  add(arguments, {"--proc", "/proc", "--dev", "/dev"});
  for (const char* folder : kOwnFolders) {
    add(arguments, {"--bind", (root_ / folder).string(), std::string("/").append(folder)});
  }
  for (const SandboxBind& place : binds_) {
    add(arguments, {"--ro-bind", place.outside.string(), place.inside});
  }
  const char* path = std::getenv("PATH");
  add(arguments, {"--setenv", "HOME", kHome, "--setenv", "PATH",
                  std::string(kTools) + ":" + (path != nullptr ? path : "/usr/local/bin:/usr/bin:/bin"),
                  "--chdir", "/", "--"});
  arguments.insert(arguments.end(), command.begin(), command.end());
  return arguments;
}

}  // namespace tavenhall

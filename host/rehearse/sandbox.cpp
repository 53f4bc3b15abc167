#include "host/rehearse/sandbox.h"

#include "host/base/child_process.h"
#include "host/base/exit_status.h"
#include "host/base/text.h"
#include "platform/host_system.h"

#include <array>
#include <cstdlib>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr std::array<const char*, 5> kOwnFolders{"tmp", "Volumes", "Library", "Applications", "Users"};

bool isAtOrBelow(const std::string& path, const std::string& folder) {
  return path == folder || path.starts_with(folder + "/");
}

void add(std::vector<std::string>& arguments, std::initializer_list<std::string> more) {
  arguments.insert(arguments.end(), more);
}

// Where a system has its programs and libraries, and the settings that those need. Of /etc nothing else: it
// holds secrets that root could read.
constexpr std::array kSystemFolders{"usr", "bin", "sbin", "lib", "lib32", "lib64", "libx32", "nix", "gnu"};
constexpr std::array kSystemSettings{"alternatives", "group",     "ld.so.cache",  "ld.so.conf",
                                     "ld.so.conf.d", "localtime", "locale.alias", "nsswitch.conf",
                                     "passwd",       "timezone"};

void addSystemItem(std::vector<std::string>& arguments, const fs::path& path) {
  std::error_code error;
  if (fs::is_symlink(path, error)) {
    add(arguments, {"--symlink", fs::read_symlink(path, error).string(), path.string()});
  } else if (fs::exists(path, error)) {
    add(arguments, {"--ro-bind", path.string(), path.string()});
  }
}

void addSystem(std::vector<std::string>& arguments) {
  for (const char* name : kSystemFolders) {
    addSystemItem(arguments, fs::path("/") / name);
  }
  for (const char* name : kSystemSettings) {
    addSystemItem(arguments, fs::path("/etc") / name);
  }
  add(arguments,
      {"--proc", "/proc", "--remount-ro", "/proc", "--dev", "/dev", "--dir", "/run", "--dir", "/var"});
}

// Namespaces and capabilities. An ordinary user gets a user namespace, without which there are no others, and
// no capability in it. Root does not: in one it could not read a set in another user's folder. What it keeps of
// its capabilities is what an install by root needs of them; without the others it cannot leave the sandbox.
void addRights(std::vector<std::string>& arguments) {
  if (geteuid() != 0) {
    add(arguments, {"--unshare-all", "--unshare-user", "--cap-drop", "ALL"});
    return;
  }
  add(arguments, {"--unshare-ipc", "--unshare-pid", "--unshare-net", "--unshare-uts", "--unshare-cgroup-try",
                  "--cap-drop", "ALL"});
  for (const char* capability : {
           "CAP_DAC_OVERRIDE",  // reads a set that only its owner may read
           "CAP_CHOWN",         // "cp -a" of a plug-in's signature keeps its owner, or fails for root
           "CAP_FOWNER",        // "chmod 777" of what then has another owner
       }) {
    add(arguments, {"--cap-add", capability});
  }
}

// Of the language and the time zone, and the sanitizers of a test build.
constexpr std::array kVariables{"LANG",         "LANGUAGE",     "LC_ALL",       "LC_COLLATE", "LC_CTYPE",
                                "LC_MESSAGES",  "LC_TIME",      "LC_NUMERIC",   "TZ",         "ASAN_OPTIONS",
                                "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS"};

void addEnvironment(std::vector<std::string>& arguments) {
  const char* path = std::getenv("PATH");
  add(arguments,
      {"--clearenv", "--setenv", "HOME", Sandbox::kHome, "--setenv", "PATH",
       std::string(Sandbox::kTools) + ":" + (path != nullptr ? path : "/usr/local/bin:/usr/bin:/bin")});
  for (const char* name : kVariables) {
    if (const char* value = std::getenv(name)) {
      add(arguments, {"--setenv", name, value});
    }
  }
}

}  // namespace

Sandbox::Sandbox(fs::path root) : filter_(openSandboxFilter()), root_(std::move(root)) {
  if (filter_ < 0) {
    throw UsageError(_("this system cannot filter system calls, so there is no sandbox to rehearse in"));
  }
  for (const char* folder : kOwnFolders) {
    fs::create_directories(root_ / folder);
  }
  fs::create_directories(root_ / "Users" / "rehearsal");
  fs::permissions(root_ / "tmp", fs::perms::all | fs::perms::sticky_bit);
}

Sandbox::~Sandbox() { close(filter_); }

void Sandbox::probe() const {
  const SandboxCommand command = commandFor({"true"});
  ToolProcess tool(command.words, ToolProcess::Keep::outputAndErrors, command.filter, Guard{});
  const int status = tool.wait();
  if (status == kCannotRun) {
    throw UsageError(_("rehearsing needs Linux and bubblewrap; install the package bubblewrap"));
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

SandboxCommand Sandbox::commandFor(const std::vector<std::string>& command) const {
  lseek(filter_, 0, SEEK_SET);  // bubblewrap reads it from here
  std::vector<std::string> arguments{"bwrap", "--die-with-parent", "--seccomp", std::to_string(filter_)};
  addRights(arguments);
  addSystem(arguments);
  for (const char* folder : kOwnFolders) {
    add(arguments, {"--bind", (root_ / folder).string(), std::string("/").append(folder)});
  }
  for (const SandboxBind& place : binds_) {
    add(arguments, {"--ro-bind", place.outside.string(), place.inside});
  }
  addEnvironment(arguments);
  add(arguments, {"--remount-ro", "/", "--chdir", "/", "--"});
  arguments.insert(arguments.end(), command.begin(), command.end());
  return {std::move(arguments), filter_};
}

}  // namespace tavenhall

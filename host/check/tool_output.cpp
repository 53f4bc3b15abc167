#include "host/check/tool_output.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace tavenhall {

namespace {

std::string readAll(int descriptor) {
  std::string output;
  std::array<char, 65536> chunk;  // filled by the read
  while (true) {
    const ssize_t count = read(descriptor, chunk.data(), chunk.size());
    if (count > 0) {
      output.append(chunk.data(), static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {
      return output;
    }
  }
}

bool endsWell(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) {
      return false;
    }
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace

std::optional<std::string> outputOfTool(const std::vector<std::string>& arguments) {
  std::vector<char*> argv;
  argv.reserve(arguments.size() + 1);
  for (const std::string& argument : arguments) {
    argv.push_back(const_cast<char*>(argument.c_str()));  // the child's copy, which nobody changes
  }
  argv.push_back(nullptr);

  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) {
    return std::nullopt;
  }
  for (const int end : ends) {
    fcntl(end, F_SETFD, FD_CLOEXEC);
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t child = 0;
  const int error = posix_spawnp(&child, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  std::string output = error == 0 ? readAll(ends[0]) : std::string();
  close(ends[0]);
  return error == 0 && endsWell(child) ? std::optional(std::move(output)) : std::nullopt;
}

}  // namespace tavenhall

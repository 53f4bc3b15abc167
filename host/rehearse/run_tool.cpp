#include "host/rehearse/run_tool.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tavenhall {

int runTool(const std::vector<std::string>& command) {
  constexpr int kNoSuchProgram = 127;
  std::fflush(nullptr);
  const pid_t pid = fork();
  if (pid == 0) {
    const int nothing = open("/dev/null", O_RDONLY);
    dup2(nothing, STDIN_FILENO);
    dup2(STDERR_FILENO, STDOUT_FILENO);
    std::vector<std::string> words = command;
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
      arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    execvp(arguments[0], arguments.data());
    _exit(kNoSuchProgram);
  }
  int status = 0;
  while (pid > 0 && waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  return pid > 0 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace tavenhall

#include "host/rehearse/tool_process.h"

#include "host/text.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <string_view>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace tavenhall {

ToolProcess::ToolProcess(const std::vector<std::string>& command) : words_(std::tmpfile(), std::fclose) {
  // The system ends it with this process, however that goes.
  std::vector<std::string> line{"setpriv", "--pdeathsig", "TERM", "--"};
  line.insert(line.end(), command.begin(), command.end());
  std::vector<char*> arguments;
  arguments.reserve(line.size() + 1);
  for (std::string& word : line) {
    arguments.push_back(word.data());
  }
  arguments.push_back(nullptr);

  std::fflush(nullptr);
  pid_ = words_ ? fork() : -1;
  if (pid_ < 0) {
    throw std::system_error(errno, std::generic_category(), filled(_("starting {0}"), {command.front()}));
  }
  if (pid_ == 0) {
    setsid();  // a terminal's Ctrl-C is for this process to act on
    dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
    dup2(fileno(words_.get()), STDOUT_FILENO);
    dup2(STDOUT_FILENO, STDERR_FILENO);
    execvp(arguments[0], arguments.data());
    _exit(kNoSuchProgram);
  }
}

ToolProcess::~ToolProcess() { end(); }

bool ToolProcess::hasEnded() {
  int status = 0;
  if (pid_ > 0 && waitpid(pid_, &status, WNOHANG) == pid_) {
    takeStatus(status);
  }
  return pid_ < 0;
}

int ToolProcess::wait() {
  int status = 0;
  while (pid_ > 0) {
    if (waitpid(pid_, &status, 0) == pid_) {
      takeStatus(status);
    } else if (errno != EINTR) {
      pid_ = -1;
    }
  }
  return status_;
}

void ToolProcess::end() {
  if (!hasEnded()) {
    kill(pid_, SIGTERM);
    wait();
  }
}

std::string ToolProcess::lastWords() const {
  std::string said;
  std::array<char, 4096> piece{};
  std::rewind(words_.get());
  while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), words_.get())) {
    said.append(piece.data(), count);
  }
  said.erase(said.find_last_not_of(" \r\n") + 1);
  return said.substr(said.rfind('\n') + 1);
}

void ToolProcess::takeStatus(int status) {
  pid_ = -1;
  status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace tavenhall

#include "tests/install/child_program.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace tavenhall::test {

namespace {

constexpr int kLongestSilence = 100000;  // milliseconds

// A child that has gone must not end the test. Handled, not ignored: what is ignored stays so in children.
void survivePipes() {
  struct sigaction action {};
  action.sa_handler = [](int) {};
  sigaction(SIGPIPE, &action, nullptr);
}

struct Pipe {
  int readEnd;
  int writeEnd;
};

Pipe makePipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "pipe");
  }
  return {ends[0], ends[1]};
}

bool isThere(const char* path) { return access(path, F_OK) == 0; }

}  // namespace

std::string usualPath() {
  const std::string path = "/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin";
  const bool hasSudo = isThere("/usr/bin/sudo") || isThere("/usr/local/bin/sudo") || isThere("/bin/sudo");
  return hasSudo ? std::string(kStandIns) + ":" + path : path;
}

ChildProgram::ChildProgram(std::vector<std::string> commandLine, const Environment& environment) {
  survivePipes();
  const Pipe input = makePipe();
  const Pipe output = makePipe();
  input_ = input.writeEnd;
  output_ = output.readEnd;
  error_ = memfd_create("standard error", MFD_CLOEXEC);
  std::vector<char*> arguments;
  for (std::string& argument : commandLine) {
    arguments.push_back(argument.data());
  }
  arguments.push_back(nullptr);

  pid_ = fork();
  if (pid_ == 0) {
    dup2(input.readEnd, STDIN_FILENO);
    dup2(output.writeEnd, STDOUT_FILENO);
    dup2(error_, STDERR_FILENO);
    umask(022);
    static_cast<void>(!chdir("/"));
    setenv("PATH", usualPath().c_str(), 1);
    for (const auto& [name, value] : environment) {
      setenv(name.c_str(), value.c_str(), 1);
    }
    execvp(arguments[0], arguments.data());
    _exit(127);
  }
  close(input.readEnd);
  close(output.writeEnd);
  if (pid_ < 0) {
    throw std::system_error(errno, std::generic_category(), "fork");
  }
}

ChildProgram::~ChildProgram() {
  endChild();
  closeInput();
  close(output_);
  close(error_);
}

void ChildProgram::endChild() {
  if (!status_) {
    kill(pid_, SIGKILL);
    int status = 0;
    waitpid(pid_, &status, 0);
    status_ = 128 + SIGKILL;
  }
}

void ChildProgram::write(std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(input_, text.data(), text.size());
    if (count < 0) {
      throw std::system_error(errno, std::generic_category(), "writing to the program");
    }
    text.remove_prefix(static_cast<std::size_t>(count));
  }
}

void ChildProgram::closeInput() {
  if (input_ >= 0) {
    close(input_);
    input_ = -1;
  }
}

bool ChildProgram::readMore() {
  pollfd source{output_, POLLIN, 0};
  if (poll(&source, 1, kLongestSilence) == 0) {
    endChild();
    throw std::runtime_error("the program said nothing for " + std::to_string(kLongestSilence / 1000) + " s");
  }
  std::array<char, 65536> buffer{};
  const ssize_t count = read(output_, buffer.data(), buffer.size());
  if (count <= 0) {
    return false;
  }
  partialLine_.append(buffer.data(), static_cast<std::size_t>(count));
  return true;
}

std::optional<std::string> ChildProgram::readLine() {
  while (true) {
    if (const std::size_t end = partialLine_.find('\n'); end != std::string::npos) {
      std::string line = partialLine_.substr(0, end);
      partialLine_.erase(0, end + 1);
      return line;
    }
    if (!readMore()) {
      EXPECT_EQ(partialLine_, "") << "the last line has no newline";
      return std::nullopt;
    }
  }
}

std::string ChildProgram::readAll() {
  while (readMore()) {
  }
  return std::exchange(partialLine_, {});
}

std::vector<std::string> ChildProgram::readLines() {
  std::vector<std::string> lines;
  while (auto line = readLine()) {
    lines.push_back(std::move(*line));
  }
  return lines;
}

int ChildProgram::waitForEnd() {
  static_cast<void>(readAll());
  if (!status_) {
    int status = 0;
    waitpid(pid_, &status, 0);
    status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }
  const std::string error = standardError();
  const bool hasReport =
      error.find("Sanitizer") != std::string::npos || error.find("runtime error:") != std::string::npos;
  EXPECT_FALSE(hasReport) << error;
  return *status_;
}

std::string ChildProgram::standardError() const {
  struct stat found {};
  fstat(error_, &found);
  std::string text(static_cast<std::size_t>(found.st_size), '\0');
  const ssize_t count = pread(error_, text.data(), text.size(), 0);
  EXPECT_EQ(count, found.st_size);
  return text;
}

Outcome runThrough(std::vector<std::string> commandLine, const ChildProgram::Environment& environment,
                   std::string_view input) {
  ChildProgram program(std::move(commandLine), environment);
  try {
    program.write(input);
  } catch (const std::system_error&) {
    // It may have ended without a look at its input; its status tells.
  }
  program.closeInput();
  const std::string output = program.readAll();
  const int status = program.waitForEnd();
  return {status, output, program.standardError()};
}

}  // namespace tavenhall::test

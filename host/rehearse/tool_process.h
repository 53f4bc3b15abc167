#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <sys/types.h>
#include <vector>

namespace tavenhall {

// A program of the PATH that runs beside this one, without a shell or a terminal, with nothing to read and
// its words kept. It is told to end when its object goes, and also when this process is killed. One thread.
class ToolProcess {
 public:
  static constexpr int kNoSuchProgram = 127;

  // Throws std::system_error where there can be no process.
  explicit ToolProcess(const std::vector<std::string>& command);
  ToolProcess(const ToolProcess&) = delete;
  ToolProcess& operator=(const ToolProcess&) = delete;
  ~ToolProcess();

  [[nodiscard]] bool hasEnded();

  // Waits for its end: its exit status; kNoSuchProgram where there is none of that name, -1 where a signal
  // ended it.
  int wait();

  // Tells it to end, and waits.
  void end();

  // The last line of what it has said; empty: nothing.
  [[nodiscard]] std::string lastWords() const;

 private:
  void takeStatus(int status);

  std::unique_ptr<std::FILE, int (*)(std::FILE*)> words_;
  pid_t pid_ = -1;  // -1 once it has ended
  int status_ = -1;
};

}  // namespace tavenhall

#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

// One run of a program as a child of the test, over pipes. A child that says nothing for too long, or that
// is still there when its object goes, is ended; no other process is.
namespace tavenhall::test {

// The built program.
inline constexpr const char* kTavinstall = TAVINSTALL_BINARY_DIR "/bin/tavinstall";

// Where its stand-ins for missing tools lie.
inline constexpr const char* kStandIns = TAVINSTALL_BINARY_DIR "/libexec/tavinstall";

// A PATH with the system's own tools. Where the machine has a real sudo, whose rights in a private root
// depend on the machine, the stand-ins come first instead of last.
[[nodiscard]] std::string usualPath();

class ChildProgram {
 public:
  using Environment = std::map<std::string, std::string>;  // set besides the test's own

  // Starts the program with a umask of 022, in the root folder.
  explicit ChildProgram(std::vector<std::string> commandLine, const Environment& environment = {});
  ChildProgram(const ChildProgram&) = delete;
  ChildProgram& operator=(const ChildProgram&) = delete;
  ~ChildProgram();

  void write(std::string_view text);
  void closeInput();

  // The next line of standard output, without its newline; none at the end. A last line that has no newline
  // fails the test. Throws after the time limit.
  [[nodiscard]] std::optional<std::string> readLine();

  // The lines that are left, until the end of standard output.
  [[nodiscard]] std::vector<std::string> readLines();

  // What is left of standard output, as it is.
  [[nodiscard]] std::string readAll();

  // Reads what is left and waits; the exit status, or 128 and the signal's number.
  int waitForEnd();

  // After the end. A sanitizer's report in it has failed the test.
  [[nodiscard]] std::string standardError() const;

  [[nodiscard]] pid_t pid() const { return pid_; }

 private:
  void endChild();

  // Reads once; false at the end of standard output.
  bool readMore();

  pid_t pid_ = -1;
  int input_ = -1;
  int output_ = -1;
  int error_ = -1;  // a nameless file
  std::string partialLine_;
  std::optional<int> status_;
};

// What a program that is only run through has to say.
struct Outcome {
  int status;
  std::string output;
  std::string error;
};
[[nodiscard]] Outcome runThrough(std::vector<std::string> commandLine,
                                 const ChildProgram::Environment& environment = {},
                                 std::string_view input = "");

}  // namespace tavenhall::test

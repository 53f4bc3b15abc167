#pragma once

#include "tests/install/child_program.h"

#include <string>
#include <string_view>
#include <vector>

namespace tavenhall::test {

// What is sent to the installer; one line each.
inline constexpr const char* kTitle = R"({"do":"title"})";
inline constexpr const char* kEnter = R"({"do":"enter"})";
inline constexpr const char* kForward = R"({"do":"forward"})";
inline constexpr const char* kBack = R"({"do":"back"})";
inline constexpr const char* kQuit = R"({"do":"quit"})";
inline constexpr const char* kWait = R"({"do":"wait"})";
inline constexpr const char* kFirstButton = R"({"answer":1000})";
inline constexpr const char* kSecondButton = R"({"answer":1001})";

// A run of `tavinstall run --ui json`, and every event of it.
class JsonInstaller {
 public:
  // Another program that takes the same lines and says the same events.
  struct CommandLine {
    std::vector<std::string> words;
  };
  explicit JsonInstaller(CommandLine commandLine, const ChildProgram::Environment& environment = {});

  // Starts it with further arguments of the run command.
  explicit JsonInstaller(const std::vector<std::string>& arguments,
                         const ChildProgram::Environment& environment = {});

  void send(std::string_view line);
  void send(std::initializer_list<std::string_view> lines);
  void closeInput() { program_.closeInput(); }

  // Reads up to the next event of that name, which it gives, as a line. Throws when none comes.
  std::string await(std::string_view name);

  // Closes the input, reads up to the end and gives the exit status.
  int finish();

  // Every event so far, as lines, without the summary that ends them.
  [[nodiscard]] const std::vector<std::string>& events() const { return events_; }

  // The last event, which holds times; empty before it came.
  [[nodiscard]] const std::string& summary() const { return summary_; }

  [[nodiscard]] const ChildProgram& program() const { return program_; }

 private:
  ChildProgram program_;
  void add(std::string line);

  std::vector<std::string> events_;
  std::string summary_;
};

}  // namespace tavenhall::test

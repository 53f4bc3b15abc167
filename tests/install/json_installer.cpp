#include "tests/install/json_installer.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

namespace tavenhall::test {

namespace {

JsonInstaller::CommandLine runCommand(const std::vector<std::string>& arguments) {
  std::vector<std::string> line{kTavinstall, "run", "--ui", "json"};
  line.insert(line.end(), arguments.begin(), arguments.end());
  return {line};
}

std::string nameOf(const std::string& event) {
  const auto object = nlohmann::json::parse(event, nullptr, false);
  if (!object.is_object() || !object.contains("event")) {
    throw std::runtime_error("not an event: " + event);
  }
  return object["event"];
}

}  // namespace

JsonInstaller::JsonInstaller(CommandLine commandLine, const ChildProgram::Environment& environment)
    : program_(std::move(commandLine.words), environment) {}

JsonInstaller::JsonInstaller(const std::vector<std::string>& arguments,
                             const ChildProgram::Environment& environment)
    : JsonInstaller(runCommand(arguments), environment) {}

void JsonInstaller::send(std::string_view line) { program_.write(std::string(line) + "\n"); }

void JsonInstaller::send(std::initializer_list<std::string_view> lines) {
  std::string text;
  for (const std::string_view line : lines) {
    text.append(line).append("\n");
  }
  program_.write(text);
}

std::string JsonInstaller::await(std::string_view name) {
  while (auto line = program_.readLine()) {
    add(*line);
    if (nameOf(*line) == name) {
      return *line;
    }
  }
  program_.waitForEnd();
  throw std::runtime_error("the program ended before the event " + std::string(name) + "\n" +
                           program_.standardError());
}

void JsonInstaller::add(std::string line) {
  EXPECT_EQ(summary_, "") << "something follows the summary: " << line;
  if (line.starts_with(R"({"event":"summary")")) {
    summary_ = std::move(line);
  } else {
    events_.push_back(std::move(line));
  }
}

int JsonInstaller::finish() {
  closeInput();
  for (std::string& line : program_.readLines()) {
    add(std::move(line));
  }
  return program_.waitForEnd();
}

}  // namespace tavenhall::test

#include "host/protocol/command_source.h"

#include <array>
#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

namespace tavenhall {

namespace {

constexpr std::array<std::pair<std::string_view, Command>, 6> kCommands{{
    {"title", Command::title},
    {"enter", Command::enter},
    {"forward", Command::forward},
    {"back", Command::back},
    {"quit", Command::quit},
    {"wait", Command::wait},
}};

constexpr const char* kForms =
    R"(a line is {"do":"title"}, {"do":"enter"}, {"do":"forward"}, {"do":"back"}, {"do":"quit"}, {"do":"wait"} or {"answer":1000})";

template <typename Item>
std::optional<Item> takeFirst(std::deque<Item>& queue) {
  if (queue.empty()) {
    return std::nullopt;
  }
  Item first = std::move(queue.front());
  queue.pop_front();
  return first;
}

}  // namespace

ParsedLine parseCommandLine(std::string_view line) {
  const nlohmann::json object = nlohmann::json::parse(line, nullptr, false);
  if (object.is_discarded()) {
    return BadLine{"not a JSON object: " + std::string(kForms)};
  }
  if (object.is_object() && object.size() == 1) {
    const auto field = object.begin();
    if (field.key() == "do" && field->is_string()) {
      for (const auto& [name, command] : kCommands) {
        if (field->get_ref<const std::string&>() == name) {
          return command;
        }
      }
    }
    if (field.key() == "answer" && field->is_number_integer()) {
      const auto answer = field->get<double>();  // holds every answer exactly, and no number wraps in it
      if (answer >= std::numeric_limits<int>::min() && answer <= std::numeric_limits<int>::max()) {
        return static_cast<int>(answer);
      }
    }
  }
  return BadLine{"not understood: " + std::string(kForms)};
}

void CommandSource::read() {
  lines_.read([this](const std::string& line) { take(line); });
}

void CommandSource::take(std::string_view line) {
  const ParsedLine parsed =
      line.size() > LineReader::kLongestLine ? BadLine{"the line is too long"} : parseCommandLine(line);
  if (const auto* command = std::get_if<Command>(&parsed)) {
    commands_.push_back(*command);
  } else if (const auto* answer = std::get_if<int>(&parsed)) {
    answers_.push_back(*answer);
  } else {
    badLines_.push_back(std::get<BadLine>(parsed).message);
  }
}

std::optional<Command> CommandSource::next() const {
  return commands_.empty() ? std::nullopt : std::optional(commands_.front());
}

void CommandSource::drop() { commands_.pop_front(); }

std::optional<int> CommandSource::takeAnswer() { return everyAnswer_ ? everyAnswer_ : takeFirst(answers_); }

std::optional<std::string> CommandSource::takeBadLine() { return takeFirst(badLines_); }

}  // namespace tavenhall

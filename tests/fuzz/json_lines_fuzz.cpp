#include "host/base/child_process.h"
#include "host/base/files.h"
#include "host/base/unicode.h"
#include "host/plain/plain_printer.h"
#include "host/protocol/json_form.h"
#include "tests/fuzz/fuzzing.h"

#include <algorithm>
#include <fcntl.h>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <unistd.h>
#include <vector>

// The input is what a program writes to the installer: lines of JSON. Each line has to be a command, an answer
// or a line that is not understood, whatever pieces it comes in; and every text that goes out again has to
// be one valid line, and harmless on a terminal.
namespace tavenhall::fuzz {

namespace {

using nlohmann::json;

// The fields of an object on one line, by the parser's other way: events, with the last of equal names
// counting.
class FieldReader final : public nlohmann::json_sax<json> {
 public:
  struct Field {
    std::optional<std::string> text;
    std::optional<std::int64_t> integer;  // that fits
  };
  std::map<std::string, Field> fields;
  bool isObject = false;

  bool null() override { return take({}); }
  bool boolean(bool /*value*/) override { return take({}); }
  bool number_integer(std::int64_t value) override { return take({{}, value}); }
  bool number_unsigned(std::uint64_t value) override {
    constexpr auto kMost = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    return take({{}, value > kMost ? std::nullopt : std::optional(static_cast<std::int64_t>(value))});
  }
  bool number_float(double /*value*/, const std::string& /*text*/) override { return take({}); }
  bool string(std::string& value) override { return take({value, {}}); }
  bool binary(json::binary_t& /*value*/) override { return take({}); }
  bool start_object(std::size_t /*size*/) override {
    isObject = isObject || depth_ == 0;
    return open();
  }
  bool key(std::string& name) override {
    if (depth_ == 1) {
      name_ = name;
    }
    return true;
  }
  bool end_object() override { return close(); }
  bool start_array(std::size_t /*size*/) override { return open(); }
  bool end_array() override { return close(); }
  bool parse_error(std::size_t /*at*/, const std::string& /*token*/, const json::exception& /*why*/) override {
    return false;
  }

 private:
  bool take(Field field) {
    if (depth_ == 1) {
      fields[name_] = std::move(field);
    }
    return true;
  }
  bool open() {
    take({});
    ++depth_;
    return true;
  }
  bool close() {
    --depth_;
    return true;
  }

  int depth_ = 0;
  std::string name_;
};

std::optional<int> intIn(const FieldReader::Field& field) {
  const bool fits = field.integer && *field.integer == static_cast<int>(*field.integer);
  return fits ? std::optional(static_cast<int>(*field.integer)) : std::nullopt;
}

std::string answerWord(int button, int alert) {
  return "answer " + std::to_string(button) + " to " + std::to_string(alert);
}

// A line as a word: the command's name, an answer with the alert's number (0 for the next one), or "bad".
std::string expectedWord(const std::string& line) {
  FieldReader reader;
  if (!json::sax_parse(line, &reader) || !reader.isObject) {
    return "bad";
  }
  auto& fields = reader.fields;
  if (fields.size() == 1 && fields.count("do") == 1 && fields["do"].text) {
    for (const char* command : {"title", "enter", "forward", "back", "quit", "wait", "stop", "no-answers"}) {
      if (*fields["do"].text == command) {
        return command;
      }
    }
  }
  if (fields.count("answer") == 1) {
    const auto button = intIn(fields["answer"]);
    if (button && fields.size() == 1) {
      return answerWord(*button, 0);
    }
    const auto alert = fields.size() == 2 && fields.count("alert") == 1 ? intIn(fields["alert"]) : std::nullopt;
    if (button && alert && *alert > 0) {
      return answerWord(*button, *alert);
    }
  }
  return "bad";
}

struct Words {
  std::vector<std::string> commands;
  std::vector<std::string> answers;
  std::size_t badLines = 0;

  bool operator==(const Words&) const = default;
};

Words expectedWords(std::string_view input) {
  Words words;
  while (!input.empty()) {
    const std::size_t end = std::min(input.find('\n'), input.size());
    const std::string word = expectedWord(std::string(input.substr(0, end)));
    input.remove_prefix(std::min(end + 1, input.size()));
    if (word == "bad") {
      ++words.badLines;
    } else {
      (word.starts_with("answer") ? words.answers : words.commands).push_back(word);
    }
  }
  return words;
}

const char* nameOf(Command command) {
  switch (command) {
    case Command::title: return "title";
    case Command::enter: return "enter";
    case Command::forward: return "forward";
    case Command::back: return "back";
    case Command::quit: return "quit";
    case Command::wait: return "wait";
    case Command::stop: return "stop";
    case Command::noAnswers: return "no-answers";
  }
  return "none";
}

// What the product makes of the input when it comes in pieces of that many bytes.
Words wordsOf(std::string_view input, std::size_t pieceSize) {
  int pipe[2];
  require(pipe2(pipe, O_CLOEXEC | O_NONBLOCK) == 0, "no pipe");
  LineReader lines(pipe[0]);
  Words words;
  const auto accept = [&words](const std::string& line) {
    const auto request = decodeRequest(line);
    if (const auto* bad = std::get_if<BadRequest>(&request)) {
      require(isValidUtf8(bad->message) && bad->message.find('\n') == std::string::npos,
              "what is wrong with a line");
      ++words.badLines;
    } else if (const auto& good = std::get<Request>(request); std::holds_alternative<Command>(good)) {
      words.commands.emplace_back(nameOf(std::get<Command>(good)));
    } else {
      const Answer answer = std::get<Answer>(good);
      words.answers.push_back(answerWord(answer.button, static_cast<int>(answer.alert)));
    }
  };
  while (!input.empty()) {
    const std::string_view piece = input.substr(0, pieceSize);
    require(writeAll(pipe[1], piece), "the pipe is full");
    lines.read(accept);
    input.remove_prefix(piece.size());
  }
  lines.read(accept);
  require(lines.isOpen(), "an input that is still open counts as closed");
  ::close(pipe[1]);
  while (lines.isOpen()) {
    lines.read(accept);
  }
  ::close(pipe[0]);
  return words;
}

// A text that is reported to a program, and one that is shown to a person.
void checkReported(std::string_view text) {
  const std::string line = encode(event::Instructions{std::string(text)});
  require(line.find('\n') == line.size() - 1, "an event is not one line");
  require(isValidUtf8(line), "an event is not UTF-8");
  const auto event = decodeEvent(line);
  require(event && std::holds_alternative<event::Instructions>(*event), "an event does not read back");
  const std::string& shownText = std::get<event::Instructions>(*event).text;
  if (isValidUtf8(text)) {
    requireSame(shownText, text, "a text that was reported");
  }
  PlainPrinter printer([](std::string_view shown) {
    const bool isHarmless = std::none_of(shown.begin(), shown.end(), [](char character) {
      const auto byte = static_cast<unsigned char>(character);
      return (byte < 0x20 && character != '\n') || byte == 0x7F;
    });
    require(isHarmless && shown.find("\xC2\x9B") == std::string_view::npos,
            "a shown text could steer the terminal");
  });
  for (const Event& shown : {*event, Event(event::Status{shownText}), Event(event::ProgressValue{1.0, {}}),
                             Event(event::Alert{shownText, shownText, {shownText}, 1})}) {
    printer.show(shown, PlainPrinter::Clock::time_point());
  }
  printer.flush();
}

}  // namespace

}  // namespace tavenhall::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavenhall::fuzz;
  const std::string_view input = asText(data, size);
  const Words expected = expectedWords(input);
  // A piece is read at once, so none is longer than what a reading takes.
  require(wordsOf(input, 16384) == expected, "the lines were understood otherwise");
  require(wordsOf(input, size % 7 + 1) == expected, "the lines were understood otherwise in small pieces");
  checkReported(input);
  return 0;
}

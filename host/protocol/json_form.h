#pragma once

#include "host/protocol/messages.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

// The public form of events and requests: one JSON object on a line, UTF-8. docs/protocol.md has each. It stays
// compatible: fields and events may be added, none is removed, renamed or reordered. Pure. Any thread.
namespace tavenhall {

// The names of the commands in their public form.
inline constexpr std::array<std::pair<std::string_view, Command>, 8> kCommandNames{{
    {"title", Command::title},
    {"enter", Command::enter},
    {"forward", Command::forward},
    {"back", Command::back},
    {"quit", Command::quit},
    {"wait", Command::wait},
    {"stop", Command::stop},
    {"no-answers", Command::noAnswers},
}};

// The names of the phases in their public form.
inline constexpr std::array<std::pair<std::string_view, event::Phase::Kind>, 6> kPhaseNames{{
    {"waiting", event::Phase::Kind::waiting},
    {"looking", event::Phase::Kind::looking},
    {"not-found", event::Phase::Kind::notFound},
    {"copying", event::Phase::Kind::copying},
    {"checking", event::Phase::Kind::checking},
    {"ejecting", event::Phase::Kind::ejecting},
}};

// The name of a phase in its public form.
[[nodiscard]] std::string_view phaseName(event::Phase::Kind kind);

// The line for an event or a request, newline included. Bytes that are not UTF-8 become U+FFFD.
[[nodiscard]] std::string encode(const Event& event);
[[nodiscard]] std::string encode(const Request& request);

// The run summary as the object that `--summary FILE` holds, newline included.
[[nodiscard]] std::string encodeSummaryFile(const event::Summary& summary);

// The event on a line; nothing for a line that this version does not know. Missing fields have their defaults.
[[nodiscard]] std::optional<Event> decodeEvent(std::string_view line);

// The request on a line, or the reason why it is not a request.
struct BadRequest {
  std::string message;
};
[[nodiscard]] std::variant<Request, BadRequest> decodeRequest(std::string_view line);

}  // namespace tavenhall

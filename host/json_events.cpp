#include "host/json_events.h"

#include <cerrno>
#include <nlohmann/json.hpp>
#include <string>
#include <unistd.h>
#include <vector>

namespace tavenhall {

using nlohmann::ordered_json;

void JsonEvents::plain(const char* event) { write({{"event", event}}); }

void JsonEvents::text(const char* event, std::string_view text) { write({{"event", event}, {"text", text}}); }

void JsonEvents::number(const char* event, double value) { write({{"event", event}, {"value", value}}); }

void JsonEvents::enabled(const char* event, bool enabled) { write({{"event", event}, {"enabled", enabled}}); }

void JsonEvents::exit(std::int64_t direction, bool allowed) {
  write({{"event", "exit"}, {"direction", direction}, {"allowed", allowed}});
}

void JsonEvents::alert(const Alert& alert) {
  write({{"event", "alert"},
         {"message", alert.messageText},
         {"informative", alert.informativeText},
         {"buttons", std::vector<std::string>(alert.buttons.begin(), alert.buttons.end())},
         {"style", alert.style}});
}

void JsonEvents::sheet(const Sheet& sheet) {
  write({{"event", "sheet"}, {"button", sheet.defaultButton}, {"message", sheet.message}});
}

void JsonEvents::assertion(const char* type, std::uint32_t level, const char* name) {
  write({{"event", "assertion"}, {"type", type}, {"level", level}, {"name", name}});
}

void JsonEvents::assertionReleased(const char* type) {
  write({{"event", "assertion.release"}, {"type", type}});
}

void JsonEvents::error(std::string_view message) { write({{"event", "error"}, {"message", message}}); }

void JsonEvents::write(const ordered_json& event) const { writeAll(descriptor_, jsonLine(event)); }

std::string jsonLine(const ordered_json& object) {
  return object.dump(-1, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

bool writeAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(descriptor, text.data(), text.size());
    if (written > 0) {
      text.remove_prefix(static_cast<std::size_t>(written));
    } else if (written < 0 && errno != EINTR) {
      return false;
    }
  }
  return true;
}

}  // namespace tavenhall

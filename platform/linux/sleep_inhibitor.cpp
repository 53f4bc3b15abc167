#include "platform/system.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <map>
#include <memory>
#include <mutex>
#include <string_view>
#include <systemd/sd-bus.h>
#include <unistd.h>
#include <utility>

// The two holds as Linux has them: the machine is kept awake by logind's inhibitor, a descriptor that holds as
// long as it is open, and the display by the desktop's screen-saver inhibitor, a cookie that holds as long as
// the connection that asked for it is open. Where a bus or its service is missing there is no hold, which is
// no failure: a server has neither.
namespace tavenhall {

namespace {

using Clock = std::chrono::steady_clock;
using Bus = std::unique_ptr<sd_bus, decltype(&sd_bus_close_unref)>;
using Message = std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)>;

constexpr const char* kWho = "Tavenhall installer";

// For all that one hold asks of a bus, from the connection to the answer, so that a bus that hangs costs the
// install a moment and no more.
constexpr std::chrono::seconds kPatience{2};

struct Hold {
  int descriptor = -1;  // of logind's inhibitor
  Bus bus{nullptr, sd_bus_close_unref};
  std::uint32_t cookie = 0;
};

struct Holds {
  std::mutex mutex;
  std::map<std::uint32_t, Hold> held;
  std::uint32_t lastIdentifier = 0;
};

// Never destroyed: the program may end while an install still holds.
Holds& holds() {
  static Holds& all = *new Holds;
  return all;
}

std::uint32_t keep(Hold hold) {
  Holds& all = holds();
  const std::lock_guard lock(all.mutex);
  do {
    ++all.lastIdentifier;
  } while (all.lastIdentifier == 0 || all.held.contains(all.lastIdentifier));
  all.held.emplace(all.lastIdentifier, std::move(hold));
  return all.lastIdentifier;
}

// What is left until `deadline`, at least 1, since 0 would mean the library's own, long patience.
std::uint64_t microsecondsUntil(Clock::time_point deadline) {
  const auto left = std::chrono::duration_cast<std::chrono::microseconds>(deadline - Clock::now()).count();
  return static_cast<std::uint64_t>(std::max<std::int64_t>(left, 1));
}

// A connection of our own, greeted by the bus; null when there is no bus. The library's shared connections
// belong to the thread that opened them, and a hold is given back on another one than it was taken on. The
// greeting is waited for here, because the library's calls wait for it without regard to their own limit.
Bus connect(int (*open)(sd_bus**), Clock::time_point deadline) {
  sd_bus* opened = nullptr;
  if (open(&opened) < 0) {
    return {nullptr, sd_bus_close_unref};
  }
  Bus bus(opened, sd_bus_close_unref);
  while (sd_bus_is_ready(bus.get()) == 0 && Clock::now() < deadline) {
    const int progress = sd_bus_process(bus.get(), nullptr);
    if (progress < 0) {
      break;
    }
    if (progress == 0) {
      const int woken = sd_bus_wait(bus.get(), microsecondsUntil(deadline));
      if (woken < 0 && woken != -EINTR) {
        break;
      }
    }
  }
  if (sd_bus_is_ready(bus.get()) <= 0) {
    bus.reset();
  }
  return bus;
}

// Sends the call and gives its answer; null when there is none in time, or only an error.
Message call(const Bus& bus, sd_bus_message* request, Clock::time_point deadline) {
  sd_bus_message* answer = nullptr;
  if (sd_bus_call(bus.get(), request, microsecondsUntil(deadline), nullptr, &answer) < 0) {
    return {nullptr, sd_bus_message_unref};
  }
  return {answer, sd_bus_message_unref};
}

Message newLogindCall(const Bus& bus, const char* member) {
  sd_bus_message* request = nullptr;
  sd_bus_message_new_method_call(bus.get(), &request, "org.freedesktop.login1", "/org/freedesktop/login1",
                                 "org.freedesktop.login1.Manager", member);
  return {request, sd_bus_message_unref};
}

Message newScreenSaverCall(const Bus& bus, const char* member) {
  sd_bus_message* request = nullptr;
  sd_bus_message_new_method_call(bus.get(), &request, "org.freedesktop.ScreenSaver",
                                 "/org/freedesktop/ScreenSaver", "org.freedesktop.ScreenSaver", member);
  return {request, sd_bus_message_unref};
}

bool holdMachine(const char* why, Hold& hold) {
  const Clock::time_point deadline = Clock::now() + kPatience;
  const Bus bus = connect(sd_bus_open_system, deadline);
  if (!bus) {
    return false;
  }
  const Message request = newLogindCall(bus, "Inhibit");
  if (!request || sd_bus_message_append(request.get(), "ssss", "sleep:idle", kWho, why, "block") < 0) {
    return false;
  }
  const Message answer = call(bus, request.get(), deadline);
  int lent = -1;  // the answer's own, closed with it
  if (!answer || sd_bus_message_read(answer.get(), "h", &lent) < 0) {
    return false;
  }
  hold.descriptor = fcntl(lent, F_DUPFD_CLOEXEC, 0);
  return hold.descriptor >= 0;
}

bool holdDisplay(const char* why, Hold& hold) {
  const Clock::time_point deadline = Clock::now() + kPatience;
  Bus bus = connect(sd_bus_open_user, deadline);
  if (!bus) {
    return false;
  }
  const Message request = newScreenSaverCall(bus, "Inhibit");
  if (!request || sd_bus_message_append(request.get(), "ss", kWho, why) < 0) {
    return false;
  }
  const Message answer = call(bus, request.get(), deadline);
  if (!answer || sd_bus_message_read(answer.get(), "u", &hold.cookie) < 0) {
    return false;
  }
  hold.bus = std::move(bus);
  return true;
}

void giveBack(Hold& hold) {
  if (hold.descriptor >= 0) {
    close(hold.descriptor);
  }
  if (!hold.bus) {
    return;
  }
  const Message request = newScreenSaverCall(hold.bus, "UnInhibit");
  if (request && sd_bus_message_append(request.get(), "u", hold.cookie) >= 0) {
    call(hold.bus, request.get(), Clock::now() + kPatience);
  }
}

}  // namespace

void createPowerAssertion(const char* type, std::uint32_t level, const char* name,
                          std::uint32_t& identifier) noexcept {
  identifier = 0;
  if (level != kAssertionLevelOn) {
    return;
  }
  const std::string_view wanted = type;
  Hold hold;
  if ((wanted == "NoIdleSleepAssertion" && holdMachine(name, hold)) ||
      (wanted == "NoDisplaySleepAssertion" && holdDisplay(name, hold))) {
    identifier = keep(std::move(hold));
  }
}

void releasePowerAssertion(std::uint32_t identifier) noexcept {
  Holds& all = holds();
  std::unique_lock lock(all.mutex);
  auto found = all.held.extract(identifier);
  lock.unlock();
  if (!found.empty()) {
    giveBack(found.mapped());
  }
}

}  // namespace tavenhall

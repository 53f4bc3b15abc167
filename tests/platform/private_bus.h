#pragma once

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <signal.h>
#include <string>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "tests/support/files.h"

// A message bus of the test's own, which serves as both the system's and the user's, and services on it that
// play the login manager and the screen saver.
namespace tavenhall::test {

inline constexpr const char* kBusAddress = "unix:path=/tmp/bus/socket";

inline void pointBothBusesTo(const char* address) {
  ASSERT_EQ(setenv("DBUS_SYSTEM_BUS_ADDRESS", address, 1), 0);
  ASSERT_EQ(setenv("DBUS_SESSION_BUS_ADDRESS", address, 1), 0);
}

// The bus itself, from the constructor until it is stopped.
class PrivateBus {
 public:
  PrivateBus() {
    writeFile("/tmp/bus/config",
              "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\"\n"
              " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
              "<busconfig><type>session</type><listen>unix:path=/tmp/bus/socket</listen>"
              "<policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
              "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>\n");
    daemon_ = fork();
    if (daemon_ == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      execlp("dbus-daemon", "dbus-daemon", "--config-file=/tmp/bus/config", "--nofork", "--nopidfile", nullptr);
      _exit(127);
    }
    EXPECT_TRUE(answersInTime()) << "dbus-daemon does not start";
    pointBothBusesTo(kBusAddress);
  }

  ~PrivateBus() { stop(); }

  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;

  void stop() {
    if (daemon_ > 0) {
      kill(daemon_, SIGKILL);
      waitpid(daemon_, nullptr, 0);
      daemon_ = -1;
    }
  }

 private:
  // The socket's file is there a moment before anybody listens to it, so only a connection tells.
  static bool answersInTime() {
    for (int turn = 0; turn < 1500; ++turn) {
      const int caller = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
      const sockaddr_un address{AF_UNIX, "/tmp/bus/socket"};
      const bool isUp = connect(caller, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
      close(caller);
      if (isUp) {
        return true;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
  }

  pid_t daemon_ = -1;
};

// Both services, on a thread of their own.
class SleepServices {
 public:
  enum class Manner { grants, refuses, staysSilent };

  explicit SleepServices(Manner manner) : manner_(manner) {
    EXPECT_EQ(pipe2(inhibitor_.data(), O_CLOEXEC | O_NONBLOCK), 0);
    EXPECT_GE(sd_bus_open_user(&bus_), 0);
    addObject("/org/freedesktop/login1", "org.freedesktop.login1.Manager", kLoginManager);
    addObject("/org/freedesktop/ScreenSaver", "org.freedesktop.ScreenSaver", kScreenSaver);
    EXPECT_GE(sd_bus_request_name(bus_, "org.freedesktop.login1", 0), 0);
    EXPECT_GE(sd_bus_request_name(bus_, "org.freedesktop.ScreenSaver", 0), 0);
    if (manner != Manner::staysSilent) {
      thread_ = std::thread([this] { serve(); });
    }
  }

  ~SleepServices() {
    mustEnd_ = true;
    if (thread_.joinable()) {
      thread_.join();
    }
    sd_bus_close_unref(bus_);
    close(inhibitor_[0]);
    closeLentEnd();
  }

  SleepServices(const SleepServices&) = delete;
  SleepServices& operator=(const SleepServices&) = delete;

  // What was called, in order: "<member> <argument>|<argument>…".
  [[nodiscard]] std::vector<std::string> calls() const {
    const std::lock_guard lock(mutex_);
    return calls_;
  }

  // Has everybody closed the descriptor that the login manager lent? Waits a while for it to be so.
  [[nodiscard]] bool isInhibitorClosed() const {
    char byte = 0;
    for (int turn = 0; turn < 25; ++turn) {
      if (read(inhibitor_[0], &byte, 1) == 0) {
        return true;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
  }

 private:
  static constexpr std::uint32_t kCookie = 4711;

  void addObject(const char* path, const char* interface, const sd_bus_vtable* table) {
    EXPECT_GE(sd_bus_add_object_vtable(bus_, nullptr, path, interface, table, this), 0);
  }

  void serve() {
    while (!mustEnd_) {
      const int progress = sd_bus_process(bus_, nullptr);
      if (progress < 0) {
        return;  // the bus has gone
      }
      if (progress == 0) {
        sd_bus_wait(bus_, 20'000);
      }
    }
  }

  void note(const std::string& call) {
    const std::lock_guard lock(mutex_);
    calls_.push_back(call);
  }

  void closeLentEnd() {
    if (inhibitor_[1] >= 0) {
      close(inhibitor_[1]);
      inhibitor_[1] = -1;
    }
  }

  static int refuse(sd_bus_error* error) {
    return sd_bus_error_set(error, SD_BUS_ERROR_ACCESS_DENIED, "Not for you.");
  }

  static int inhibitSleep(sd_bus_message* message, void* self, sd_bus_error* error) {
    auto& services = *static_cast<SleepServices*>(self);
    std::array<const char*, 4> texts{};
    sd_bus_message_read(message, "ssss", texts.data(), &texts[1], &texts[2], &texts[3]);
    services.note(std::string("login1.Inhibit ") + texts[0] + "|" + texts[1] + "|" + texts[2] + "|" + texts[3]);
    if (services.manner_ == Manner::refuses) {
      return refuse(error);
    }
    const int answered = sd_bus_reply_method_return(message, "h", services.inhibitor_[1]);
    services.closeLentEnd();  // the one that was sent is left
    return answered;
  }

  static int inhibitScreenSaver(sd_bus_message* message, void* self, sd_bus_error* error) {
    auto& services = *static_cast<SleepServices*>(self);
    std::array<const char*, 2> texts{};
    sd_bus_message_read(message, "ss", texts.data(), &texts[1]);
    services.note(std::string("ScreenSaver.Inhibit ") + texts[0] + "|" + texts[1]);
    return services.manner_ == Manner::refuses ? refuse(error)
                                               : sd_bus_reply_method_return(message, "u", kCookie);
  }

  static int uninhibitScreenSaver(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
    std::uint32_t cookie = 0;
    sd_bus_message_read(message, "u", &cookie);
    static_cast<SleepServices*>(self)->note("ScreenSaver.UnInhibit " + std::to_string(cookie));
    return sd_bus_reply_method_return(message, "");
  }

  static const sd_bus_vtable kLoginManager[];
  static const sd_bus_vtable kScreenSaver[];

  Manner manner_;
  std::array<int, 2> inhibitor_{-1, -1};  // a pipe whose writing end is lent
  sd_bus* bus_ = nullptr;
  std::atomic<bool> mustEnd_{false};
  mutable std::mutex mutex_;
  std::vector<std::string> calls_;
  std::thread thread_;
};

inline const sd_bus_vtable SleepServices::kLoginManager[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Inhibit", "ssss", "h", SleepServices::inhibitSleep, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END};

inline const sd_bus_vtable SleepServices::kScreenSaver[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Inhibit", "ss", "u", SleepServices::inhibitScreenSaver, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("UnInhibit", "u", "", SleepServices::uninhibitScreenSaver, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END};

}  // namespace tavenhall::test

#include "host/plain/plain_frontend.h"

#include "host/base/child_process.h"
#include "host/base/line_reader.h"
#include "host/base/text.h"
#include "host/base/units.h"
#include "host/plain/hidden_line.h"
#include "host/plain/plain_printer.h"
#include "host/protocol/command_terminal.h"
#include "host/protocol/json_events.h"
#include "platform/host_system.h"
#include "platform/installer_host.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <deque>
#include <nlohmann/json.hpp>
#include <optional>
#include <poll.h>
#include <string>
#include <unistd.h>
#include <utility>

namespace tavenhall {

namespace {

using nlohmann::ordered_json;

void printLine(std::string_view line) { writeAll(STDOUT_FILENO, std::string(line) + "\n"); }

// Ctrl-C and its like reach the face; the engine is out of the terminal's reach, so it is told.
WakeUp* signalCame = nullptr;
volatile std::sig_atomic_t isHungUp = 0;

void noteSignal(int signal) {
  if (signal == SIGHUP) {
    isHungUp = 1;
  }
  signalCame->signal();
}

// One run, seen through the lines of an engine in another process.
class PlainFace {
 public:
  PlainFace(const EngineProcess& engine, const LastLines& lastLines)
      : engine_(engine), lastLines_(lastLines), commands_(engine.commandTerminal) {}

  ExitStatus run() {
    signalCame = &wakeUp_;
    struct sigaction action {};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
      sigaction(signal, &action, nullptr);
    }
    std::signal(SIGPIPE, SIG_IGN);  // an engine that refuses to begin is gone before it has read anything

    send({{"do", "title"}});
    send({{"do", "enter"}});
    send({{"do", "wait"}});
    while (engineLines_.isOpen()) {
      step();
      if (isHungUp != 0) {
        return ExitStatus::failure;  // nobody is there any more; the engine goes on to its end
      }
    }
    hiddenLine_.reset();
    printer_.flush();
    return lastWord(waitForEngineProcess(engine_));
  }

 private:
  void step() {
    const bool takesAnswer = buttons_ > 0 && answerLines_.isOpen() && !hiddenLine_;
    std::array<pollfd, 5> sources{{{engine_.lines.events, POLLIN, 0},
                                   {wakeUp_.descriptor(), POLLIN, 0},
                                   {takesAnswer ? STDIN_FILENO : -1, POLLIN, 0},
                                   {commands_.descriptor(), POLLIN, 0},
                                   {hiddenLine_ ? hiddenLine_->descriptor() : -1, POLLIN, 0}}};
    if (::poll(sources.data(), sources.size(), -1) <= 0) {
      return;
    }
    if (sources[1].revents != 0) {
      wakeUp_.clear();
      stop();
    }
    if (sources[0].revents != 0) {
      engineLines_.read([this](const std::string& line) { hear(line); });
    }
    if (sources[2].revents != 0) {
      answerLines_.read([this](const std::string& line) { typed_.push_back(line); });
      answerFromWhatWasTyped();
    }
    if (sources[3].revents != 0) {
      hearCommands();
    }
    if (sources[4].revents != 0) {
      tellPassword();
    }
  }

  void stop() {
    if (isHungUp == 0) {
      isStopped_ = true;
      stopEngineProcess(engine_);
    }
  }

  // ---- Commands that ask for a password ----

  void hearCommands() {
    const auto before = commands_.question();
    commands_.read([](const std::string& line) { writeAll(STDERR_FILENO, printableText(line) + "\n"); });
    if (commands_.question() == before) {
      return;
    }
    hiddenLine_.reset();
    if (commands_.question()) {
      printer_.flush();
      hiddenLine_.emplace("? " + format(_("A command asks: {0}"), {printableText(*commands_.question())}) +
                          " ");
      if (hiddenLine_->descriptor() < 0) {
        commands_.refuse();
      }
    }
  }

  void tellPassword() {
    Secret password;
    if (hiddenLine_->read(password)) {
      commands_.answer(password);
    } else {
      commands_.refuse();
    }
    hiddenLine_.reset();
  }

  // ---- Questions of the page's ----

  // Lines may be typed, or piped, before their question comes.
  void answerFromWhatWasTyped() {
    while (buttons_ > 0 && !typed_.empty()) {
      answer(typed_.front());
      typed_.pop_front();
    }
    if (buttons_ > 0 && !answerLines_.isOpen()) {
      closeCommands();  // nobody can answer: the engine ends the run
    }
  }

  void hear(const std::string& line) {
    const ordered_json event = ordered_json::parse(line, nullptr, false);
    if (!event.is_object()) {
      return;
    }
    printer_.show(event, std::chrono::steady_clock::now());
    const std::string name = event.value("event", std::string());
    if (name == "alert") {
      buttons_ = static_cast<int>(event["buttons"].size());
      answerFromWhatWasTyped();
    } else if (name == "next") {
      nextIsEnabled_ = event.value("enabled", false);
    } else if (name == "idle") {
      if (nextIsEnabled_) {
        send({{"do", "forward"}});
      }
      send({{"do", "quit"}});
    }
  }

  // Buttons are answered by number; an empty line presses the first.
  void answer(const std::string& line) {
    const std::size_t start = line.find_first_not_of(" \t\r");
    const std::string_view digits = start == std::string::npos ? "1" : std::string_view(line).substr(start);
    int number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const bool isWhole = std::string_view(end, digits.data() + digits.size()).find_first_not_of(" \t\r") ==
                         std::string_view::npos;
    if (error != std::errc{} || !isWhole || number < 1 || number > buttons_) {
      printLine("  " + format(_("Please type a number from 1 to {0}."), {std::to_string(buttons_)}));
      return;
    }
    buttons_ = 0;
    send({{"answer", kAlertFirstButtonReturn + number - 1}});
  }

  void send(const ordered_json& command) {
    if (engine_.lines.commands >= 0) {
      writeAll(engine_.lines.commands, jsonLine(command));
    }
  }

  void closeCommands() {
    if (engine_.lines.commands >= 0) {
      close(engine_.lines.commands);
      engine_.lines.commands = -1;
    }
  }

  std::string readSummary() {
    std::string text;
    std::array<char, 4096> buffer{};
    ssize_t count = 0;
    while ((count = ::read(engine_.lines.summary, buffer.data(), buffer.size())) > 0) {
      text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return text;
  }

  ExitStatus lastWord(ExitStatus status) {
    const ordered_json summary = ordered_json::parse(readSummary(), nullptr, false);
    if (summary.is_object()) {
      const std::string amount = format(_("{0} in {1}"), {sizeText(summary.value("kBytesCopied", 0.0) * 1024.0),
                                                          durationText(summary.value("seconds", 0.0))});
      switch (status) {
        case ExitStatus::success: printLine(format(_("Installed {0}."), {amount})); break;
        case ExitStatus::noAnswer:
          printLine(
              "! " +
              format(_("Stopped: a question needs an answer, and the input is closed. Copied {0}."), {amount}));
          break;
        default:
          printLine("! " +
                    format(_("Not installed, or not wholly: see the lines that begin with \"!\". Copied {0}."),
                           {amount}));
          break;
      }
    } else if (isStopped_) {
      printLine("! " + join(_("Stopped."), lastLines_.afterStop));
    } else if (status == ExitStatus::failure) {
      printLine(std::string("! ") + _("The installer's engine ended before its time."));
    }
    if (status != ExitStatus::badUsage && !lastLines_.log.empty()) {
      printLine(format(_("The log is {0}."), {lastLines_.log}));
    }
    return status;
  }

  WakeUp wakeUp_;
  EngineProcess engine_;
  const LastLines lastLines_;
  PlainPrinter printer_{printLine};
  LineReader engineLines_{engine_.lines.events};
  LineReader answerLines_{STDIN_FILENO};
  CommandTerminal commands_;
  std::optional<HiddenLine> hiddenLine_;  // while a command asks
  std::deque<std::string> typed_;
  int buttons_ = 0;  // of the alert that is up; 0 when there is none
  bool nextIsEnabled_ = false;
  bool isStopped_ = false;
};

}  // namespace

ExitStatus runPlainFace(const EngineProcess& engine, const LastLines& lastLines) {
  return PlainFace(engine, lastLines).run();
}

}  // namespace tavenhall

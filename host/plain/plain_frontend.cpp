#include "host/plain/plain_frontend.h"

#include "host/base/child_process.h"
#include "host/base/text.h"
#include "host/plain/password_prompt.h"
#include "host/plain/plain_notices.h"
#include "host/plain/plain_printer.h"
#include "host/ui/run_result.h"
#include "platform/host_system.h"
#include "platform/installer_host.h"

#include <array>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <optional>
#include <poll.h>
#include <string>
#include <string_view>
#include <unistd.h>
#include <variant>

namespace tavenhall {

namespace {

constexpr int kColumns = 77;  // of an indented text

// Signals of the terminal reach only this process: the engine has no terminal.
WakeUp* signalWakeUp = nullptr;
volatile std::sig_atomic_t isHungUp = 0;

void noteSignal(int signal) {
  if (signal == SIGHUP) {
    isHungUp = 1;
  }
  signalWakeUp->signal();
}

class PlainFrontend {
 public:
  PlainFrontend(const EngineConnection& engine, const RunDescription& description)
      : engine_(engine), description_(description) {}

  ExitStatus run() {
    send(notices_.begin());
    const ExitStatus status = play();
    send(notices_.leave());
    return status;
  }

 private:
  ExitStatus play() {
    signalWakeUp = &wakeUp_;
    struct sigaction action {};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
      sigaction(signal, &action, nullptr);
    }
    if (!description_.attached) {
      begin();
    }
    while (!engine_.hasEnded()) {
      step();
      if (isHungUp != 0) {
        return ExitStatus::failure;  // the reader has gone; the engine continues
      }
      if (isDetached_) {
        print(_("The installation continues. \"tavinstall attach\" shows it again."));
        return ExitStatus::warnings;
      }
    }
    passwordPrompt_.reset();
    printer_.flush();
    return finish();
  }

  void begin() {
    engine_.send(Command::title);
    if (description_.asksFirst) {
      askFirst();
    } else {
      if (description_.introduction.isRoomShort() && !description_.isUnattended) {
        print("! " + shortRoomText(description_.introduction));
      }
      enter();
    }
  }

  ExitStatus finish() {
    const std::optional<ExitStatus> status = engine_.wait();
    const bool wasStopped = isStopped_ && status != ExitStatus::success;
    const std::string reason = summary_ ? summary_->reason : "";
    if (!status || wasStopped) {
      summary_.reset();  // it is not the engine's last word
    }
    send(notices_.end(status == ExitStatus::success));
    const ExitStatus result = wasStopped ? ExitStatus::stopped : status.value_or(ExitStatus::failure);
    printResult(result);
    if (description_.isUnattended && result != ExitStatus::success && !reason.empty()) {
      std::fprintf(stderr, "tavinstall: %s\n", printableLine(reason).c_str());
    }
    return result;
  }

  void enter() {
    hasEntered_ = true;
    engine_.send(Command::enter);
    engine_.send(Command::wait);
  }

  // The introduction, which the terminal page would show, and its button.
  void askFirst() {
    const char* term = std::getenv("TERM");
    print(format(_("This terminal ({0}) cannot show the page. Plain lines follow."),
                 {term != nullptr && *term != '\0' ? printableLine(term) : _("unknown")}));
    for (const Line& line : introductionLines(description_.introduction, kColumns)) {
      std::string text = " ";
      for (const Span& span : line) {
        text += " " + span.text;
      }
      print(text.substr(0, text.find_last_not_of(' ') + 1));
    }
    print(std::string("  1) ") + _("Continue"));
    print(std::string("  2) ") + _("Do Not Install"));
    isFirstPage_ = true;
    buttons_ = 2;
  }

  void step() {
    const bool readsAnswer = buttons_ > 0 && isPresent_ && answerLines_.isOpen() && !passwordPrompt_;
    std::array<pollfd, 5> sources{{{engine_.eventsDescriptor(), POLLIN, 0},
                                   {wakeUp_.descriptor(), POLLIN, 0},
                                   {readsAnswer ? STDIN_FILENO : -1, POLLIN, 0},
                                   {engine_.passwords().descriptor(), POLLIN, 0},
                                   {passwordPrompt_ ? passwordPrompt_->descriptor() : -1, POLLIN, 0}}};
    if (::poll(sources.data(), sources.size(), -1) <= 0) {
      return;
    }
    if (sources[1].revents != 0) {
      wakeUp_.clear();
      stop();
    }
    if (sources[0].revents != 0) {
      engine_.readEvents([this](const Event& event) { handle(event); });
    }
    if (sources[2].revents != 0) {
      answerLines_.read([this](const std::string& line) { typed_.push_back(line); });
      answerFromTyped();
    }
    if (sources[3].revents != 0) {
      readPasswordTerminal();
    }
    if (sources[4].revents != 0) {
      answerPasswordPrompt();
    }
  }

  // Waits for whoever reads standard output, but not for longer than until a signal comes.
  void print(std::string_view line) {
    constexpr std::chrono::seconds kPatience{1};
    const std::string text = std::string(line) + "\n";
    if (isStopped_) {
      isOutputStuck_ = isOutputStuck_ || !writeUnless(STDOUT_FILENO, text, -1, kPatience);
      return;
    }
    if (!writeUnless(STDOUT_FILENO, text, wakeUp_.descriptor()) && hasSignal()) {
      wakeUp_.clear();
      stop();
    }
  }

  [[nodiscard]] bool hasSignal() const {
    pollfd signal{wakeUp_.descriptor(), POLLIN, 0};
    return ::poll(&signal, 1, 0) > 0;
  }

  void stop() {
    if (isHungUp != 0) {
      return;
    }
    if (engine_.isAttached()) {
      isDetached_ = true;
    } else {
      isStopped_ = true;
      engine_.stop();
    }
  }

  // ---- Commands that ask for a password ----

  void readPasswordTerminal() {
    PasswordTerminal& passwords = engine_.passwords();
    const auto before = passwords.prompt();
    passwords.read([](const std::string& line) { writeAll(STDERR_FILENO, printableText(line) + "\n"); });
    if (passwords.prompt() == before) {
      return;
    }
    passwordPrompt_.reset();
    send(notices_.setPasswordIsNeeded(passwords.prompt().has_value()));
    if (passwords.prompt()) {
      printer_.flush();
      passwordPrompt_.emplace("? " + format(_("A command prompts: {0}"), {printableText(*passwords.prompt())}) +
                              " ");
      if (passwordPrompt_->descriptor() < 0) {
        passwords.refuse();
      }
    }
  }

  void answerPasswordPrompt() {
    Secret password;
    if (passwordPrompt_->read(password)) {
      engine_.passwords().answer(password);
    } else {
      engine_.passwords().refuse();
    }
    passwordPrompt_.reset();
  }

  // ---- Alerts ----

  void handle(const Event& event) {
    printer_.show(event, engine_.eventTime());
    send(notices_.handle(event));
    std::visit(EventVisitor{[this](const event::Alert& alert) {
                              if (!description_.isUnattended) {
                                alert_ = alert;
                                buttons_ = static_cast<int>(alert.buttons.size());
                                answerFromTyped();
                              }
                            },
                            [this](const event::Answered& answered) {
                              if (buttons_ > 0 && answered.number == alert_.number) {
                                buttons_ = 0;
                                printAnswer(answered);
                              }
                            },
                            [this](const event::Present& /*present*/) {
                              isPresent_ = true;
                              answerFromTyped();
                            },
                            [this](const event::NextEnabled& next) { nextIsEnabled_ = next.isEnabled; },
                            [this](const event::Idle& /*idle*/) {
                              if (engine_.isAttached()) {
                                return;  // the frontend that it was started with leaves the page, or the engine
                              }
                              if (nextIsEnabled_) {
                                engine_.send(Command::forward);
                              }
                              engine_.send(Command::quit);
                            },
                            [this](const event::Summary& summary) { summary_ = summary; },
                            [](const auto& /*other*/) {}},
               event);
  }

  // To the terminal; empty where standard output is none.
  void send(const std::string& sequences) {
    if (!sequences.empty() && !isStopped_) {
      static_cast<void>(writeUnless(STDOUT_FILENO, sequences, wakeUp_.descriptor()));
    }
  }

  // Another frontend was quicker, or it is the past.
  void printAnswer(const event::Answered& answered) {
    const auto index = static_cast<std::size_t>(answered.button - kAlertFirstButtonReturn);
    const std::string button = index < alert_.buttons.size() ? alert_.buttons[index] : "";
    print("  " + format(_("Answered: {0}"), {printableText(button)}));
  }

  // Lines may arrive before their alert.
  void answerFromTyped() {
    while (buttons_ > 0 && isPresent_ && !typed_.empty()) {
      answer(typed_.front());
      typed_.pop_front();
    }
    if (buttons_ > 0 && !answerLines_.isOpen() && !engine_.isAttached()) {
      engine_.send(Command::noAnswers);
    }
  }

  // Presses a button by its number; an empty line presses the first.
  void answer(const std::string& line) {
    const std::size_t start = line.find_first_not_of(" \t\r");
    const std::string_view digits = start == std::string::npos ? "1" : std::string_view(line).substr(start);
    int number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const bool isWhole = std::string_view(end, digits.data() + digits.size()).find_first_not_of(" \t\r") ==
                         std::string_view::npos;
    if (error != std::errc{} || !isWhole || number < 1 || number > buttons_) {
      print("  " + (buttons_ == 1 ? _("Press Return.")
                                  : format(_("Type a number from 1 to {0}."), {std::to_string(buttons_)})));
      return;
    }
    buttons_ = 0;
    if (isFirstPage_) {
      isFirstPage_ = false;
      number == 1 ? enter() : stop();
      return;
    }
    engine_.send(Answer{kAlertFirstButtonReturn + number - 1, alert_.number});
  }

  void printResult(ExitStatus status) {
    if (summary_) {
      const std::string amount =
          format(_("{0} in {1}"), {sizeText(summary_->audit.bytes), durationText(summary_->seconds)});
      switch (status) {
        case ExitStatus::success: print(format(_("Installed {0}."), {amount})); break;
        case ExitStatus::stopped:
          print("! " + stoppedText(*summary_, description_.afterStop));
          for (const std::string& line : remainingTexts(summary_->remaining)) {
            print("  " + printableLine(line));
          }
          break;
        case ExitStatus::discMissing:
          print("! " + format(_("Stopped: a disc was not found. Copied {0}."), {amount}));
          break;
        case ExitStatus::noAnswer:
          print("! " + format(_("Stopped: a prompt needs an answer, but standard input is closed. Copied {0}."),
                              {amount}));
          break;
        default:
          print("! " + format(_("Not installed completely: see the lines that begin with \"!\". Copied {0}."),
                              {amount}));
          break;
      }
    } else if (status == ExitStatus::stopped) {
      print("! " + join(_("Stopped."),
                        hasEntered_ ? description_.afterStop : std::string(_("Nothing was installed."))));
    } else if (status == ExitStatus::failure) {
      print(std::string("! ") + _("The installer's engine ended unexpectedly."));
    }
    if (summary_) {
      const std::string split =
          timeSplitText(summary_->copyingSeconds, summary_->waitingSeconds, summary_->seconds);
      if (!split.empty()) {
        print("  " + split);
      }
    }
    if (const std::string log = description_.writtenLog(); !log.empty()) {
      print(format(_("The log is {0}."), {log}));
    }
  }

  WakeUp wakeUp_;
  EngineClient engine_;
  const RunDescription& description_;
  bool isOutputStuck_ = false;  // nobody has read it since the run was stopped
  PlainPrinter printer_{[this](std::string_view line) { print(line); }, !description_.isUnattended};
  PlainNotices notices_{description_};
  LineReader answerLines_{STDIN_FILENO};
  std::optional<PasswordPrompt> passwordPrompt_;  // while a command asks
  std::deque<std::string> typed_;
  std::optional<event::Summary> summary_;
  event::Alert alert_;                       // the latest
  int buttons_ = 0;                          // of the alert that is up; 0: none is
  bool isPresent_ = !description_.attached;  // the past is shown
  bool isDetached_ = false;
  bool isFirstPage_ = false;  // instead of an alert
  bool nextIsEnabled_ = false;
  bool hasEntered_ = false;
  bool isStopped_ = false;
};

}  // namespace

ExitStatus runPlainFrontend(const EngineConnection& engine, const RunDescription& description) {
  return PlainFrontend(engine, description).run();
}

}  // namespace tavenhall

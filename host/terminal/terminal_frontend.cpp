#include "host/terminal/terminal_frontend.h"

#include "host/base/text.h"
#include "host/protocol/engine_client.h"
#include "host/terminal/key_map.h"
#include "host/terminal/page_layout.h"
#include "host/terminal/page_model.h"
#include "host/terminal/screen.h"
#include "platform/host_system.h"

#include <array>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <memory>
#include <optional>
#include <poll.h>
#include <string>
#include <unistd.h>
#include <utility>
#include <variant>

namespace tavenhall {

namespace {

using Clock = ProgressMeter::Clock;
using Time = Clock::time_point;

constexpr auto kShortestFrame = std::chrono::microseconds(16667);  // 60 a second
constexpr int kWheelLines = 3;

// ---- Signals, which the main loop handles ----

enum SignalFlag { kWindowChanged, kInterrupted, kTerminated, kHungUp, kContinued, kSignalFlags };
constexpr std::array<int, kSignalFlags> kSignals{SIGWINCH, SIGINT, SIGTERM, SIGHUP, SIGCONT};
std::array<volatile std::sig_atomic_t, kSignalFlags> hasCome{};
WakeUp* signalCame = nullptr;

void noteSignal(int signal) {
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    if (kSignals[i] == signal) {
      hasCome[i] = 1;
    }
  }
  signalCame->signal();
}

void takeSignals(WakeUp& wakeUp) {
  signalCame = &wakeUp;
  struct sigaction action {};
  action.sa_handler = noteSignal;
  action.sa_flags = SA_RESTART;
  for (const int signal : kSignals) {
    sigaction(signal, &action, nullptr);
  }
  std::signal(SIGTSTP, SIG_IGN);  // a full screen is not left half way
}

bool take(SignalFlag flag) { return std::exchange(hasCome[flag], 0) != 0; }

class TerminalFrontend {
 public:
  TerminalFrontend(const EngineConnection& engine, const RunDescription& description)
      : description_(description), engine_(engine), model_(description.introduction) {
    if (description.attached) {
      model_.attach(*description.attached, Clock::now());
    }
  }

  ExitStatus run() {
    if (!engine_.isAttached()) {
      if (const auto status = failedStart()) {
        return *status;
      }
    }
    takeSignals(wakeUp_);
    screen_ = std::make_unique<Screen>(notices_.end());
    screen_->send(notices_.begin());
    while (!end_) {
      step();
    }
    screen_.reset();
    return endStatus();
  }

 private:
  enum class End { closed, left, terminated, terminalGone };

  // The engine reports the title as soon as it is ready. Errors that keep it from starting are printed before
  // the screen is taken over.
  std::optional<ExitStatus> failedStart() {
    engine_.send(Command::title);
    bool isReady = false;
    while (!isReady && !engine_.hasEnded()) {
      engine_.readEvents([&](const Event& event) {
        isReady = true;
        handle(event);
      });
    }
    if (isReady) {
      return std::nullopt;
    }
    return engine_.wait([](const std::string& line) { std::fprintf(stderr, "%s\n", line.c_str()); })
        .value_or(ExitStatus::failure);
  }

  void step() {
    drawIfDue();
    std::array<pollfd, 6> sources{{{screen_->inputDescriptor(), POLLIN, 0},
                                   {wakeUp_.descriptor(), POLLIN, 0},
                                   {engine_.eventsDescriptor(), POLLIN, 0},
                                   {engine_.errorsDescriptor(), POLLIN, 0},
                                   {engine_.passwords().descriptor(), POLLIN, 0},
                                   {screen_->isBacklogged() ? screen_->outputDescriptor() : -1, POLLOUT, 0}}};
    if (::poll(sources.data(), sources.size(), timeout()) <= 0) {
      isChanged_ = isChanged_ || clockIsShown();  // a second has passed
      takeAllSignals();
      return;
    }
    if (sources[1].revents != 0) {
      wakeUp_.clear();
      takeAllSignals();
    }
    if (sources[2].revents != 0) {
      engine_.readEvents([this](const Event& event) { handle(event); });
      isChanged_ = true;
    }
    if (sources[3].revents != 0) {
      engine_.readErrors([this](const std::string& line) { model_.addMessage(line); });
      isChanged_ = true;
    }
    if (sources[4].revents != 0) {
      readPasswordTerminal();
    }
    if ((sources[0].revents & POLLIN) != 0) {
      takeInput();
    }
    if ((sources[0].revents & (POLLHUP | POLLERR | POLLNVAL)) != 0) {
      end_ = End::terminalGone;
    }
    if (sources[5].revents != 0) {
      screen_->writeBacklog();
    }
    if (screen_->isGone()) {
      end_ = End::terminalGone;
    }
    performRequests();
    if (!end_ && !result_ && engine_.hasEnded()) {
      takeResult();
    }
  }

  void handle(const Event& event) {
    if (const auto* summary = std::get_if<event::Summary>(&event)) {
      summary_ = *summary;
    } else if (const auto* failure = std::get_if<event::AuditFailure>(&event)) {
      failures_.add({failure->problem, failure->source, failure->detail});
    }
    model_.handle(event, engine_.eventTime());
  }

  void readPasswordTerminal() {
    PasswordTerminal& passwords = engine_.passwords();
    const auto before = passwords.prompt();
    passwords.read([this](const std::string& line) { model_.addMessage(line); });
    if (passwords.prompt() != before) {
      model_.setPasswordPrompt(passwords.prompt(), Clock::now());
    }
    isChanged_ = true;
  }

  void drawIfDue() {
    const Time now = Clock::now();
    if (!isChanged_ || screen_->isBacklogged() || now - lastDrawn_ < kShortestFrame) {
      return;
    }
    layers_ = layOut(model_, now, screen_->size(), screen_->signs());
    screen_->draw(layers_);
    screen_->send(notices_.update(model_.terminalNotice()));
    lastDrawn_ = now;
    isChanged_ = false;
  }

  // Milliseconds until the next frame is due; -1 while nothing changes.
  [[nodiscard]] int timeout() {
    using std::chrono::milliseconds;
    const Time now = Clock::now();
    if (isChanged_ && !screen_->isBacklogged()) {
      return static_cast<int>(std::chrono::ceil<milliseconds>(lastDrawn_ + kShortestFrame - now).count());
    }
    if (!clockIsShown()) {
      return -1;
    }
    const double passed = model_.meter().passed(now).count();
    return static_cast<int>((std::floor(passed) + 1.0 - passed) * 1000.0) + 1;
  }

  [[nodiscard]] bool clockIsShown() { return model_.meter().isRunning() && !model_.isWaitingForUser(); }

  void takeAllSignals() {
    if (take(kWindowChanged)) {
      screen_->takeNewSize();
      isChanged_ = true;
    }
    if (take(kContinued)) {
      screen_->comeBack();
      isChanged_ = true;
    }
    if (take(kInterrupted)) {
      model_.act(Action::leave, {}, Clock::now());
      isChanged_ = true;
    }
    if (take(kTerminated)) {
      end_ = End::terminated;
    }
    if (take(kHungUp)) {
      end_ = End::terminalGone;
    }
  }

  void takeInput() {
    std::vector<Input> inputs = screen_->read();
    for (const Input& input : inputs) {
      const Time now = Clock::now();
      const ScrollExtent extent = layers_.empty() ? ScrollExtent{} : layers_.back().extent;
      isChanged_ = true;
      if (asksToDrawAnew(input)) {
        screen_->drawAllAnew();
      } else if (input.kind == Input::Kind::click) {
        if (const auto button = buttonAt(layers_, input.row, input.column)) {
          model_.pressButton(*button, now);
        }
      } else if (model_.takesTyping() && typesInto(model_, input)) {
        // typed into the password
      } else if (const auto action = actionFor(input)) {
        const int times =
            input.kind == Input::Kind::wheelUp || input.kind == Input::Kind::wheelDown ? kWheelLines : 1;
        for (int i = 0; i < times; ++i) {
          model_.act(*action, extent, now);
        }
      } else if (const char key = hotKeyFor(input); key != '\0') {
        const bool isPressed = model_.pressKey(key, now);
        if (!isPressed && key == 'q') {
          model_.act(Action::leave, extent, now);
        }
      }
      // Lay out first: the next key may be for a window that this one has opened.
      layers_ = layOut(model_, now, screen_->size(), screen_->signs());
    }
    wipe(inputs.data(), inputs.size() * sizeof(Input));
  }

  void performRequests() {
    for (const PageRequest& request : model_.takeRequests()) {
      switch (request.kind) {
        case PageRequest::Kind::enter:
          engine_.send(Command::enter);
          engine_.send(Command::wait);
          break;
        case PageRequest::Kind::forward: engine_.send(Command::forward); break;
        case PageRequest::Kind::back: engine_.send(Command::back); break;
        case PageRequest::Kind::quit: engine_.send(Command::quit); break;
        case PageRequest::Kind::answer: engine_.send(Answer{request.answer, request.alert}); break;
        case PageRequest::Kind::sendPassword:
          engine_.passwords().answer(model_.typedPassword());
          model_.clearPassword();
          break;
        case PageRequest::Kind::refusePassword: engine_.passwords().refuse(); break;
        case PageRequest::Kind::leave: end_ = End::left; break;
        case PageRequest::Kind::close: end_ = End::closed; break;
      }
    }
  }

  void takeResult() {
    RunResult result;
    const auto status = engine_.wait([this](const std::string& line) { model_.addMessage(line); });
    result.status = status.value_or(ExitStatus::failure);
    result.hasSummary = summary_ && status;
    result.bytes =
        summary_ ? static_cast<double>(summary_->audit.bytes) : model_.meter().copied().value_or(0.0);
    result.log = description_.writtenLog();
    result.destination = model_.introduction().destination;
    if (summary_) {
      result.hasCopied = summary_->filesDone > 0;
      result.remaining = remainingTexts(summary_->remaining);
    }
    result.time = model_.meter().passed(Clock::now());
    result.copyingSeconds = summary_ ? summary_->copyingSeconds : 0.0;
    result.waitingSeconds = summary_ ? summary_->waitingSeconds : 0.0;
    result.messages.assign(model_.messages().begin(), model_.messages().end());
    result.failures = failures_;
    model_.end(result, Clock::now());
    result_ = std::move(result);
    isChanged_ = true;
  }

  // Prints what remains on the terminal after the screen is restored.
  ExitStatus endStatus() {
    switch (*end_) {
      case End::terminalGone: return ExitStatus::failure;
      case End::closed: break;
      case End::left:
      case End::terminated:
        if (engine_.isAttached() && !result_) {
          std::puts(_("The installation continues. \"tavinstall attach\" shows it again."));
          return ExitStatus::warnings;
        }
        return stop();
    }
    std::fputs(closingText(*result_).c_str(), stdout);
    return result_->exitStatus();
  }

  ExitStatus stop() {
    const bool hasBegun = model_.stage() == PageModel::Stage::page;
    if (!result_) {
      engine_.stop();
      static_cast<void>(engine_.wait());
    }
    if (hasBegun) {
      std::puts(join(_("Stopped."), description_.afterStop).c_str());
      std::fputs(logLine(description_.writtenLog()).c_str(), stdout);
    } else if (!result_) {
      std::puts(_("Nothing was installed."));
    }
    return result_ ? result_->exitStatus() : ExitStatus::stopped;
  }

  const RunDescription& description_;
  WakeUp wakeUp_;
  EngineClient engine_;
  PageModel model_;
  TerminalNotices notices_{description_.notices};
  std::unique_ptr<Screen> screen_;
  std::vector<Layer> layers_;
  bool isChanged_ = true;  // since it was drawn
  Time lastDrawn_;
  std::optional<event::Summary> summary_;
  Failures failures_;
  std::optional<RunResult> result_;
  std::optional<End> end_;
};

}  // namespace

ExitStatus runTerminalFrontend(const EngineConnection& engine, const RunDescription& description) {
  return TerminalFrontend(engine, description).run();
}

}  // namespace tavenhall

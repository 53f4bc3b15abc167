#include "host/terminal/terminal_frontend.h"

#include "host/base/text.h"
#include "host/protocol/command_terminal.h"
#include "host/protocol/engine_client.h"
#include "host/terminal/key_map.h"
#include "host/terminal/page_layout.h"
#include "host/terminal/page_model.h"
#include "host/terminal/screen.h"
#include "platform/host_system.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <memory>
#include <optional>
#include <poll.h>
#include <string>
#include <unistd.h>

namespace tavenhall {

namespace {

using Clock = ProgressMeter::Clock;
using Time = Clock::time_point;

constexpr auto kShortestFrame = std::chrono::microseconds(16667);  // 60 a second
constexpr int kWheelLines = 3;

// ---- Signals, which the loop takes in turn with everything else ----

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

class TerminalFace {
 public:
  TerminalFace(const EngineProcess& engine, const TerminalPage& page)
      : page_(page), engine_(engine), commands_(engine.commandTerminal), model_(page.introduction) {}

  ExitStatus run() {
    if (const auto status = failedStart()) {
      return *status;
    }
    takeSignals(wakeUp_);
    screen_ = std::make_unique<Screen>();
    while (!end_) {
      step();
    }
    screen_.reset();
    return lastWords();
  }

 private:
  enum class End { closed, left, terminated, terminalGone };

  // The engine tells the page's title as soon as it is ready. What keeps it from starting is said before
  // the screen is taken.
  std::optional<ExitStatus> failedStart() {
    engine_.sendDo("title");
    bool isReady = false;
    while (!isReady && !engine_.hasEnded()) {
      engine_.readEvents([&](const nlohmann::ordered_json& event) {
        isReady = true;
        model_.hear(event, Clock::now());
      });
    }
    if (isReady) {
      return std::nullopt;
    }
    const RunOutcome outcome =
        engine_.finish([](const std::string& line) { std::fprintf(stderr, "%s\n", line.c_str()); });
    return outcome.status;
  }

  void step() {
    drawIfDue();
    std::array<pollfd, 6> sources{{{screen_->inputDescriptor(), POLLIN, 0},
                                   {wakeUp_.descriptor(), POLLIN, 0},
                                   {engine_.events(), POLLIN, 0},
                                   {engine_.messages(), POLLIN, 0},
                                   {commands_.descriptor(), POLLIN, 0},
                                   {screen_->isBacklogged() ? screen_->outputDescriptor() : -1, POLLOUT, 0}}};
    if (::poll(sources.data(), sources.size(), timeout()) <= 0) {
      isChanged_ = isChanged_ || model_.meter().isRunning();  // a second has passed
      takeAllSignals();
      return;
    }
    if (sources[1].revents != 0) {
      wakeUp_.clear();
      takeAllSignals();
    }
    if (sources[2].revents != 0) {
      engine_.readEvents([this](const nlohmann::ordered_json& event) { model_.hear(event, Clock::now()); });
      isChanged_ = true;
    }
    if (sources[3].revents != 0) {
      engine_.readMessages([this](const std::string& line) { model_.hearMessage(line); });
      isChanged_ = true;
    }
    if (sources[4].revents != 0) {
      hearCommands();
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
    carryOutWishes();
    if (!end_ && !hasOutcome_ && engine_.hasEnded()) {
      takeOutcome();
    }
  }

  void hearCommands() {
    const auto before = commands_.question();
    commands_.read([this](const std::string& line) { model_.hearMessage(line); });
    if (commands_.question() != before) {
      model_.hearPasswordQuestion(commands_.question(), Clock::now());
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
    lastDrawn_ = now;
    isChanged_ = false;
  }

  // Milliseconds until something has to be drawn though nothing comes; for ever while nothing moves.
  [[nodiscard]] int timeout() {
    using std::chrono::milliseconds;
    const Time now = Clock::now();
    if (isChanged_ && !screen_->isBacklogged()) {
      return static_cast<int>(std::chrono::ceil<milliseconds>(lastDrawn_ + kShortestFrame - now).count());
    }
    if (!model_.meter().isRunning()) {
      return -1;
    }
    const double passed = model_.meter().passed(now).count();
    return static_cast<int>((std::floor(passed) + 1.0 - passed) * 1000.0) + 1;
  }

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
        // It was part of a password.
      } else if (const auto action = actionFor(input)) {
        const int times =
            input.kind == Input::Kind::wheelUp || input.kind == Input::Kind::wheelDown ? kWheelLines : 1;
        for (int i = 0; i < times; ++i) {
          model_.act(*action, extent, now);
        }
      } else if (const char key = hotKeyFor(input); key != '\0') {
        model_.pressKey(key, now);
      }
      // What is pressed next may mean what this has brought up, so that is laid out first.
      layers_ = layOut(model_, now, screen_->size(), screen_->signs());
    }
    wipe(inputs.data(), inputs.size() * sizeof(Input));
  }

  void carryOutWishes() {
    for (const Wish& wish : model_.takeWishes()) {
      switch (wish.kind) {
        case Wish::Kind::enter:
          engine_.sendDo("enter");
          engine_.sendDo("wait");
          break;
        case Wish::Kind::forward: engine_.sendDo("forward"); break;
        case Wish::Kind::back: engine_.sendDo("back"); break;
        case Wish::Kind::quit: engine_.sendDo("quit"); break;
        case Wish::Kind::answer: engine_.sendAnswer(wish.answer); break;
        case Wish::Kind::tellPassword:
          commands_.answer(model_.typedPassword());
          model_.forgetPassword();
          break;
        case Wish::Kind::refusePassword: commands_.refuse(); break;
        case Wish::Kind::leave: end_ = End::left; break;
        case Wish::Kind::close: end_ = End::closed; break;
      }
    }
  }

  void takeOutcome() {
    hasOutcome_ = true;
    outcome_ = engine_.finish([this](const std::string& line) { model_.hearMessage(line); });
    outcome_.logPath = page_.logShown;
    outcome_.destination = model_.introduction().destination;
    if (!outcome_.isTold) {
      outcome_.bytesCopied = model_.meter().copied().value_or(0.0);
    }
    outcome_.time = model_.meter().passed(Clock::now());
    outcome_.messages.assign(model_.messages().begin(), model_.messages().end());
    readFailures(page_.logPath, page_.logStart, outcome_);
    model_.end(outcome_, Clock::now());
    isChanged_ = true;
  }

  // What stays to be read when the screen has been given back.
  ExitStatus lastWords() {
    switch (*end_) {
      case End::terminalGone: return ExitStatus::failure;
      case End::closed: break;
      case End::left:
      case End::terminated: return stop();
    }
    std::fputs(lastWord(outcome_).c_str(), stdout);
    return outcome_.exitStatus();
  }

  ExitStatus stop() {
    const bool hasBegun = model_.stage() == PageModel::Stage::page;
    if (!hasOutcome_) {
      engine_.stop();
    }
    if (hasBegun) {
      std::puts(join(_("Stopped."), page_.afterStop).c_str());
      std::fputs(logLine(page_.logShown).c_str(), stdout);
    } else if (!hasOutcome_) {
      std::puts(_("Nothing was installed."));
    }
    return hasOutcome_ ? outcome_.exitStatus() : ExitStatus::failure;
  }

  const TerminalPage& page_;
  WakeUp wakeUp_;
  EngineClient engine_;
  CommandTerminal commands_;
  PageModel model_;
  std::unique_ptr<Screen> screen_;
  std::vector<Layer> layers_;
  bool isChanged_ = true;  // since it was drawn
  Time lastDrawn_;
  bool hasOutcome_ = false;
  RunOutcome outcome_;
  std::optional<End> end_;
};

}  // namespace

ExitStatus runTerminalFace(const EngineProcess& engine, const TerminalPage& page) {
  return TerminalFace(engine, page).run();
}

}  // namespace tavenhall

#include "host/engine/engine.h"

#include "host/base/exit_status.h"
#include "host/base/files.h"
#include "host/base/text.h"
#include "host/protocol/json_form.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace tavenhall {

namespace {

constexpr const char* kCopyThread = "copySingleVolume";
constexpr double kStillRunning = -1.0;  // in place of a copy thread's seconds

std::string textOrEmpty(const char* text) { return text != nullptr ? text : ""; }

double secondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

// ---- Controls ----

void Engine::Text::setTitleWithMnemonic(const char* text) noexcept {
  const Lock lock(engine_.state_);
  if (place_ == Place::instructions) {
    engine_.report(event::Instructions{text});
  } else {
    engine_.report(event::Status{text});
  }
}

void Engine::Bar::setMinValue(double value) noexcept {
  const Lock lock(engine_.state_);
  engine_.barMinimum_ = value;
  engine_.report(event::ProgressMinimum{value});
}

void Engine::Bar::setMaxValue(double value) noexcept {
  const Lock lock(engine_.state_);
  engine_.barMaximum_ = value;
  engine_.report(event::ProgressMaximum{value});
}

void Engine::Bar::setDoubleValue(double value) noexcept {
  const Lock lock(engine_.state_);
  engine_.barValue_ = value;
  if (engine_.events_ != nullptr) {
    engine_.report(event::ProgressValue{value, engine_.copyState()});
  }
}

double Engine::Bar::maxValue() const noexcept {
  const Lock lock(engine_.state_);
  return engine_.barMaximum_;
}

double Engine::Bar::doubleValue() const noexcept {
  const Lock lock(engine_.state_);
  return engine_.barValue_;
}

void Engine::setNextEnabled(bool enabled) noexcept {
  const Lock lock(state_);
  isNextEnabled_ = enabled;
  report(event::NextEnabled{enabled});
}

void Engine::setPreviousEnabled(bool enabled) noexcept {
  const Lock lock(state_);
  report(event::PreviousEnabled{enabled});
}

// ---- Dialogs and dispatch ----

int Engine::runModal(const Alert& alert) noexcept {
  main_.assertHeld();
  {
    const Lock lock(state_);
    event::Alert shown{
        alert.messageText, alert.informativeText, {alert.buttons.begin(), alert.buttons.end()}, alert.style};
    report(shown);
    summary_.alerts.push_back({std::move(shown), 0});
  }
  isAlertUp_ = true;
  std::optional<int> answer;
  while (!(answer = takeAnswer())) {
    if (isInputClosed_) {
      onNoAnswer_();
    }
    changed_.wait(main_);
  }
  isAlertUp_ = false;
  changed_.notifyAll();
  const Lock lock(state_);
  summary_.alerts.back().answer = *answer;
  return *answer;
}

void Engine::beginInformationalSheet(const Sheet& sheet) noexcept {
  const Lock lock(state_);
  event::Sheet shown{sheet.defaultButton, sheet.message};
  report(shown);
  summary_.sheets.push_back(std::move(shown));
}

void Engine::dispatchSync(void (*block)(void*), void* context) noexcept {
  if (std::this_thread::get_id() == mainLoopThread_) {
    std::fputs("tavinstall: dispatchSync was called on the main thread\n", stderr);
    std::abort();
  }
  const Lock lock(main_);
  while (isAlertUp_) {
    changed_.wait(main_);
  }
  takeSnapshot();
  block(context);
}

// ---- Notifications ----

void Engine::pageThreadStarted(const char* name) noexcept {
  const Lock lock(state_);
  ++pageThreads_;
  if (std::strcmp(name, kCopyThread) == 0) {
    copyThreadStart_ = Clock::now();
    summary_.copySeconds.push_back(kStillRunning);
  }
}

void Engine::pageThreadEnded(const char* name) noexcept {
  {
    const Lock lock(state_);
    --pageThreads_;
    if (std::strcmp(name, kCopyThread) == 0) {
      summary_.copySeconds.back() = secondsSince(copyThreadStart_);
    }
  }
  // With main_ held, so that the main loop cannot miss it between its look at the threads and its wait.
  const Lock lock(main_);
  changed_.notifyAll();
}

void Engine::copyBegun(const TreeCopy& copy) noexcept {
  ejectNote_.write(copy.source);
  takeSnapshot();
  const Lock lock(state_);
  bytesAtCopyBegin_ = snapshot_.bytesWritten;
  filesAtCopyBegin_ = snapshot_.filesDone;
  // A folder beside the package belongs to no volume.
  const std::string_view source = copy.source;
  const bool isVolume = !snapshot_.sourceFolder.empty() && source.starts_with(snapshot_.sourceFolder);
  copy_ = {copy.source, textOrEmpty(copy.destination), isVolume ? snapshot_.currentVolumeNumber + 1 : 0,
           isVolume ? snapshot_.volumeCount : 0};
  report(copy_);
}

void Engine::copyFinished(const TreeCopy& copy, bool isCopied) noexcept {
  takeSnapshot();
  const Lock lock(state_);
  hasFailedCopy_ = hasFailedCopy_ || !isCopied;
  report(event::CopyEnd{copy.source, textOrEmpty(copy.destination), isCopied,
                        snapshot_.bytesWritten - bytesAtCopyBegin_, snapshot_.filesDone - filesAtCopyBegin_});
}

void Engine::assertionTaken(const char* type, std::uint32_t level, const char* name) noexcept {
  const Lock lock(state_);
  report(event::Assertion{type, level, name});
}

void Engine::assertionReleased(const char* type) noexcept {
  const Lock lock(state_);
  report(event::AssertionRelease{type});
}

// ---- The run ----

Engine::Engine(EventWriter* events, EjectNote& ejectNote, std::function<void()> onNoAnswer)
    : events_(events), ejectNote_(ejectNote), onNoAnswer_(std::move(onNoAnswer)) {}

Engine::~Engine() { stopReading(); }

void Engine::stopReading() {
  if (inputThread_.joinable()) {
    close(stopReading_.writeEnd);
    inputThread_.join();
    close(stopReading_.readEnd);
  }
}

void Engine::makePage(PageFactory factory) {
  page_.reset(factory(this, kInstallerInterfaceVersion));
  if (page_ == nullptr) {
    throw UsageError(_("the plug-in was built for another version of this program"));
  }
}

void Engine::readRequests(int descriptor) {
  stopReading_ = makePipe();
  inputThread_ = std::thread([this, descriptor] {
    LineReader lines(descriptor);
    while (lines.isOpen()) {
      std::array<pollfd, 2> inputs{{{descriptor, POLLIN, 0}, {stopReading_.readEnd, POLLIN, 0}}};
      if (poll(inputs.data(), inputs.size(), -1) <= 0) {  // the descriptor may be non-blocking
        continue;
      }
      if (inputs[1].revents != 0) {
        return;
      }
      lines.read([this](const std::string& line) { accept(line); });
    }
    const Lock lock(main_);
    isInputClosed_ = true;
    changed_.notifyAll();
  });
}

void Engine::setRequests(std::deque<Command> commands, Answer answer) {
  const Lock lock(main_);
  commands_ = std::move(commands);
  everyAnswer_ = answer.button;
  isInputClosed_ = true;
}

void Engine::accept(std::string_view line) {
  const auto request = decodeRequest(line);
  if (const auto* bad = std::get_if<BadRequest>(&request)) {
    const Lock lock(state_);
    report(event::Error{bad->message});
    return;
  }
  const Lock lock(main_);
  const auto& good = std::get<Request>(request);
  if (const auto* command = std::get_if<Command>(&good)) {
    commands_.push_back(*command);
  } else {
    answers_.push_back(std::get<Answer>(good).button);
  }
  changed_.notifyAll();
}

void Engine::add(Command command) {
  const Lock lock(main_);
  commands_.push_back(command);
  changed_.notifyAll();
}

void Engine::run() {
  const Lock lock(main_);
  while (!isQuitting_) {
    if (!commands_.empty() && canPerform(commands_.front())) {
      const Command command = commands_.front();
      commands_.pop_front();
      perform(command);
    } else if (commands_.empty() && isInputClosed_ && !isAlertUp_) {
      return;
    } else {
      changed_.wait(main_);
    }
  }
}

bool Engine::canPerform(Command command) const {
  const bool needsIdlePage = command == Command::enter || command == Command::wait;
  return !isAlertUp_ && (!needsIdlePage || isIdle());
}

void Engine::perform(Command command) {
  switch (command) {
    case Command::title: {
      event::Title title{page_->title()};
      const Lock lock(state_);
      report(std::move(title));
      break;
    }
    case Command::enter: {
      page_->didEnterPane(kDirectionForward);
      const Lock lock(state_);
      report(event::Entered{});
      break;
    }
    case Command::wait: {
      const Lock lock(state_);
      report(event::Idle{});
      break;
    }
    case Command::forward: leave(kDirectionForward); break;
    case Command::back: leave(kDirectionBackward); break;
    case Command::quit: isQuitting_ = true; break;
  }
}

void Engine::leave(std::int64_t direction) {
  const bool isAllowed = page_->shouldExitPane(direction);
  const Lock lock(state_);
  report(event::Exit{direction, isAllowed});
  summary_.hasLeft = summary_.hasLeft || (isAllowed && direction == kDirectionForward);
}

std::optional<int> Engine::takeAnswer() {
  if (everyAnswer_ || answers_.empty()) {
    return everyAnswer_;
  }
  const int answer = answers_.front();
  answers_.pop_front();
  return answer;
}

void Engine::report(const Event& event) {
  if (events_ != nullptr) {
    events_->write(event);
  }
}

event::CopyState Engine::copyState() const {
  return {copy_.volume, copy_.volumeCount, snapshot_.bytesWritten, snapshot_.filesDone, snapshot_.currentFile};
}

// Only where InstallerPane::snapshot() allows it.
void Engine::takeSnapshot() {
  PaneSnapshot snapshot = page_->snapshot();
  const Lock lock(state_);
  snapshot_ = std::move(snapshot);
}

bool Engine::isIdle() const {
  const Lock lock(state_);
  return pageThreads_ == 0;
}

bool Engine::inputIsClosed() const {
  const Lock lock(main_);
  return isInputClosed_;
}

bool Engine::nextIsEnabled() const {
  const Lock lock(state_);
  return isNextEnabled_;
}

bool Engine::isSuccess() const {
  const Lock lock(state_);
  return summary_.hasLeft && !hasFailedCopy_ && summary_.sheets.empty();
}

event::Summary Engine::summary() const {
  const bool isQuiet = page_ != nullptr && isIdle();
  const PaneSnapshot quietSnapshot = isQuiet ? page_->snapshot() : PaneSnapshot{};
  const Lock lock(state_);
  const PaneSnapshot& snapshot = isQuiet ? quietSnapshot : snapshot_;
  event::Summary summary = summary_;
  if (!summary.copySeconds.empty() && summary.copySeconds.back() == kStillRunning) {
    summary.copySeconds.back() = secondsSince(copyThreadStart_);
  }
  summary.ready = snapshot.readyToProceed;
  summary.mode = snapshot.installMode;
  summary.seconds = secondsSince(start_);
  summary.kBytesCopied = snapshot.kBytesCopied;
  summary.bytesWritten = snapshot.bytesWritten;
  summary.filesDone = snapshot.filesDone;
  return summary;
}

}  // namespace tavenhall

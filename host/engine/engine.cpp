#include "host/engine/engine.h"

#include "host/base/exit_status.h"
#include "host/base/files.h"
#include "host/base/text.h"
#include "host/engine/pre_install.h"
#include "host/protocol/json_form.h"

#include <array>
#include <cstdlib>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace tavenhall {

// ---- The run ----

Engine::Engine(EventHub& events, EjectNote& ejectNote, OnEnd onEnd)
    : events_(events), ejectNote_(ejectNote), onEnd_(std::move(onEnd)) {
  beginAudits();
}

Engine::~Engine() { stopReading(); }

double Engine::secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

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
    leftAloneAt_ = Clock::now();
    hasReadAll_ = true;
    changed_.notifyAll();
  });
}

void Engine::setCommands(std::deque<Command> commands) {
  const Lock lock(main_);
  commands_ = std::move(commands);
  isInputClosed_ = true;
}

void Engine::add(Command command) {
  const Lock lock(main_);
  commands_.push_back(command);
  changed_.notifyAll();
}

void Engine::run() {
  const Lock lock(main_);
  while (!isQuitting_) {
    if (!isAlertUp_ && isIdle()) {
      stopWhileIdle();
    }
    if (isQuitting_) {
      return;
    }
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
      beginAudits();
      if (onEntry_) {
        onEntry_();
      }
      {
        const Lock lock(state_);
        enteredAt_ = Clock::now();
        isOnPage_ = true;
        finishedCopies_.clear();
        phases_.start();
      }
      {
        const InstallTypePlace place;  // the page reads the choice here, and only here
        page_->didEnterPane(kDirectionForward);
      }
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
    case Command::stop:
    case Command::noAnswers: break;  // not in the queue
  }
}

void Engine::leave(std::int64_t direction) {
  const bool isAllowed = page_->shouldExitPane(direction);
  const Lock lock(state_);
  report(event::Exit{direction, isAllowed});
  isOnPage_ = isOnPage_ && !isAllowed;
  summary_.hasLeft = summary_.hasLeft || (isAllowed && direction == kDirectionForward);
}

void Engine::report(const Event& event) { events_.write(event); }

event::CopyState Engine::copyState() const {
  return {copy_.volume, copy_.volumeCount, snapshot_.bytesWritten, snapshot_.filesDone, snapshot_.currentFile};
}

// Only where InstallerPane::snapshot() allows it.
void Engine::takeSnapshot() {
  PaneSnapshot snapshot = page_->snapshot();
  const Lock lock(state_);
  snapshot_ = std::move(snapshot);
}

bool Engine::isBetweenFiles() const {
  const Lock lock(state_);
  return snapshot_.filesBegun == snapshot_.filesDone;
}

std::optional<double> Engine::secondsSinceEntry() const {
  const Lock lock(state_);
  return enteredAt_ ? std::optional(secondsSince(*enteredAt_)) : std::nullopt;
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

bool Engine::pageIsContent() const { return summary_.hasLeft && !hasFailedCopy_ && summary_.sheets.empty(); }

bool Engine::isInstalled() const { return pageIsContent() && summary_.audit.isClean(); }

bool Engine::isSuccess() const {
  const Lock lock(state_);
  return isInstalled();
}

event::Summary Engine::summary() const {
  const bool isQuiet = page_ != nullptr && isIdle();
  const PaneSnapshot quietSnapshot = isQuiet ? page_->snapshot() : PaneSnapshot{};
  const Lock lock(state_);
  const PaneSnapshot& snapshot = isQuiet ? quietSnapshot : snapshot_;
  event::Summary summary = summary_;
  summary.isInstalled = isInstalled();
  if (!summary.copySeconds.empty() && summary.copySeconds.back() == kStillRunning) {
    summary.copySeconds.back() = secondsSince(copyThreadStart_);
  }
  phases_.addTimes(summary, Clock::now());
  summary.ready = snapshot.readyToProceed;
  summary.mode = snapshot.installMode;
  summary.seconds = secondsSince(start_);
  summary.kBytesCopied = snapshot.kBytesCopied;
  summary.bytesWritten = snapshot.bytesWritten;
  summary.filesDone = snapshot.filesDone;
  return summary;
}

}  // namespace tavenhall

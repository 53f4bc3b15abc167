#include "host/base/exit_status.h"
#include "host/engine/engine.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <utility>

// What the page calls: its controls, dialogs, dispatch, and notifications.
namespace tavenhall {

namespace {

constexpr const char* kCopyThread = "copySingleVolume";

std::string textOrEmpty(const char* text) { return text != nullptr ? text : ""; }

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
  engine_.report(event::ProgressValue{value, engine_.copyState()});
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

void Engine::beginInformationalSheet(const Sheet& sheet) noexcept {
  const Lock lock(state_);
  if (isCopying_) {
    audit_->addRefusal(snapshot_.currentFile);  // on the copy's own thread, which waits for this block
  }
  event::Sheet shown{sheet.defaultButton, sheet.message, isCopying_ ? snapshot_.currentFile : ""};
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
  if (isBetweenFiles()) {
    stopIfRequested();
  }
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
    if (pageThreads_ == 0) {
      phases_.end(Clock::now());
    }
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
  const std::int32_t volume = volumeOf(copy.source, snapshot_);
  isCopying_ = true;
  report(phases_.beginCopy(volume, snapshot_.volumeCount, Clock::now()));
  copy_ = {copy.source, textOrEmpty(copy.destination), volume, volume > 0 ? snapshot_.volumeCount : 0};
  report(copy_);
}

void Engine::copyFinished(const TreeCopy& copy, bool isCopied) noexcept {
  takeSnapshot();
  event::CopyBegin ended;
  {
    const Lock lock(state_);
    ended = copy_;
    isCopying_ = false;
    hasFailedCopy_ = hasFailedCopy_ || !isCopied;
    report(event::CopyEnd{copy.source, textOrEmpty(copy.destination), isCopied,
                          snapshot_.bytesWritten - bytesAtCopyBegin_, snapshot_.filesDone - filesAtCopyBegin_});
    report(phases_.beginChecking(Clock::now()));
  }
  const event::Audit audit = audit_->compare(ended);
  const Lock lock(state_);
  summary_.audit = audit_->sums();
  finishedCopies_.push_back(ended);
  report(audit);
  phases_.end(Clock::now());
}

void Engine::discBegun(const char* root) noexcept {
  takeSnapshot();
  const Lock lock(state_);
  phases_.beginDisc(root, snapshot_.currentVolumeNumber, snapshot_.volumeCount, Clock::now());
}

void Engine::discAwaited(unsigned seconds) noexcept {
  const Lock lock(state_);
  report(phases_.beginLooking(seconds, Clock::now()));
}

void Engine::ejectBegun() noexcept {
  const Lock lock(state_);
  report(phases_.beginEjecting(Clock::now()));
}

void Engine::beginAudits() {
  audit_.emplace([this](const event::AuditFailure& failure) { reportFailure(failure); });
  const Lock lock(state_);
  summary_.audit = {};
  summary_.failedFiles.clear();
}

void Engine::reportFailure(const event::AuditFailure& failure) {
  const Lock lock(state_);
  if (summary_.failedFiles.size() < event::Summary::kMostFailedFiles) {
    summary_.failedFiles.push_back(failure);
  }
  report(failure);
  if (!events_.hasFirst()) {
    const std::string reason =
        failure.detail.empty() ? failure.problem : failure.problem + ", " + failure.detail;
    showError(std::runtime_error("not installed: " + failure.source + " (" + reason + ")"));
  }
}

void Engine::requireCopies(const std::vector<ExpectedCopy>& expected,
                           const std::vector<event::AuditFailure>& failures) {
  bool needsFiles = false;
  {
    const Lock lock(state_);
    if (!enteredAt_) {
      return;
    }
    needsFiles = pageIsContent();
  }
  audit_->requireCopies(expected, failures);
  if (needsFiles) {
    audit_->requireFiles();
  }
  const Lock lock(state_);
  summary_.audit = audit_->sums();
}

std::vector<event::Remaining> Engine::remainingOf(const std::vector<ExpectedCopy>& expected) const {
  const Lock lock(state_);
  std::vector<event::Remaining> remaining;
  for (const ExpectedCopy& copy : expected) {
    const bool isFinished =
        std::any_of(finishedCopies_.begin(), finishedCopies_.end(),
                    [&copy](const event::CopyBegin& finished) { return isCopyOf(finished, copy); });
    if (!isFinished) {
      remaining.push_back({copy.source, copy.volume});
    }
  }
  return remaining;
}

void Engine::assertionTaken(const char* type, std::uint32_t level, const char* name) noexcept {
  const Lock lock(state_);
  report(event::Assertion{type, level, name});
}

void Engine::assertionReleased(const char* type) noexcept {
  const Lock lock(state_);
  report(event::AssertionRelease{type});
}

}  // namespace tavenhall

#include "host/engine/engine.h"

#include "host/base/errors.h"
#include "host/base/text.h"

#include <array>
#include <cstring>
#include <poll.h>
#include <utility>

namespace tavenhall {

namespace {

constexpr const char* kCopyThread = "copySingleVolume";
constexpr int kLongestLull = 16;  // milliseconds without news, after which held events are written

}  // namespace

// ---- Controls ----

void Engine::Text::setTitleWithMnemonic(const char* text) noexcept {
  engine_.say([&](EventSink& events) { events.text(event_, text); });
}

void Engine::Bar::set(double& field, double value, const char* event) {
  engine_.say([&](EventSink& events) {
    field = value;
    events.number(event, value);
  });
}

void Engine::Bar::setMinValue(double value) noexcept { set(min_, value, "progress.min"); }
void Engine::Bar::setMaxValue(double value) noexcept { set(max_, value, "progress.max"); }
void Engine::Bar::setDoubleValue(double value) noexcept { set(value_, value, "progress.value"); }

double Engine::Bar::maxValue() const noexcept {
  const std::lock_guard lock(engine_.eventsMutex_);
  return max_;
}

double Engine::Bar::doubleValue() const noexcept {
  const std::lock_guard lock(engine_.eventsMutex_);
  return value_;
}

void Engine::setNextEnabled(bool enabled) noexcept {
  say([&](EventSink& events) {
    nextIsEnabled_ = enabled;
    events.enabled("next", enabled);
  });
}

void Engine::setPreviousEnabled(bool enabled) noexcept {
  say([&](EventSink& events) { events.enabled("previous", enabled); });
}

// ---- Dialogs, and what the page tells ----

int Engine::runModal(const Alert& alert) noexcept {
  record_.alertShown(alert);
  say([&](EventSink& events) { events.alert(alert); });
  while (true) {
    if (const auto answer = commands_.takeAnswer()) {
      record_.alertAnswered(*answer);
      return *answer;
    }
    if (commands_.isClosed()) {
      onNoAnswer_();
    }
    waitForNews(false);
  }
}

void Engine::beginInformationalSheet(const Sheet& sheet) noexcept {
  record_.sheetShown(sheet);
  say([&](EventSink& events) { events.sheet(sheet); });
}

void Engine::dispatchSync(void (*block)(void*), void* context) noexcept {
  auto run = [this, block, context] {
    block(context);
    paneState_ = page_->snapshot();
  };
  mainQueue_.dispatchSync([](void* it) { (*static_cast<decltype(run)*>(it))(); }, &run);
}

void Engine::pageThreadStarted(const char* name) noexcept {
  if (std::strcmp(name, kCopyThread) == 0) {
    record_.copyStarted();
    discNote_.write(page_->snapshot().sourceFolder);
  }
  const std::lock_guard lock(threadsMutex_);
  ++pageThreads_;
}

void Engine::pageThreadEnded(const char* name) noexcept {
  if (std::strcmp(name, kCopyThread) == 0) {
    record_.copyEnded(page_->isReadyToProceed());
  }
  {
    const std::lock_guard lock(threadsMutex_);
    --pageThreads_;
  }
  wakeUp_.signal();
}

void Engine::assertionTaken(const char* type, std::uint32_t level, const char* name) noexcept {
  say([&](EventSink& events) { events.assertion(type, level, name); });
}

void Engine::assertionReleased(const char* type) noexcept {
  say([&](EventSink& events) { events.assertionReleased(type); });
}

// ---- The run ----

Engine::Engine(CommandSource& commands, EventSink& events, std::function<void()> onNoAnswer)
    : commands_(commands), events_(events), onNoAnswer_(std::move(onNoAnswer)) {}

void Engine::makePage(PageFactory factory) {
  page_.reset(factory(this, kInstallerInterfaceVersion));
  if (page_ == nullptr) {
    throw UsageError(_("the plug-in was built for another version of this program"));
  }
}

void Engine::run() {
  while (!isQuitting_) {
    mainQueue_.serve();
    const auto command = commands_.next();
    if (command && canDo(*command)) {
      commands_.drop();
      perform(*command);
    } else if (!command && commands_.isClosed()) {
      break;
    } else {
      waitForNews(true);
    }
  }
  flushEvents();
}

void Engine::flushEvents() {
  say([](EventSink& events) { events.flush(); });
}

void Engine::flushAtStop() noexcept {
  const std::unique_lock lock(eventsMutex_, std::try_to_lock);
  if (lock) {
    events_.flush();
  }
}

bool Engine::nextIsEnabled() const {
  const std::lock_guard lock(eventsMutex_);
  return nextIsEnabled_;
}

std::string Engine::summary() const {
  const bool pageIsQuiet = page_ != nullptr && isIdle();
  return record_.summary(pageIsQuiet ? page_->snapshot() : paneState_);
}

bool Engine::isIdle() const {
  const std::lock_guard lock(threadsMutex_);
  return pageThreads_ == 0;
}

bool Engine::canDo(Command command) const {
  const bool needsIdlePage = command == Command::enter || command == Command::wait;
  return !needsIdlePage || isIdle();
}

void Engine::perform(Command command) {
  switch (command) {
    case Command::title:
      say([title = page_->title()](EventSink& events) { events.text("title", title); });
      break;
    case Command::enter:
      page_->didEnterPane(kDirectionForward);
      say([](EventSink& events) { events.plain("entered"); });
      break;
    case Command::wait: say([](EventSink& events) { events.plain("idle"); }); break;
    case Command::forward: leave(kDirectionForward); break;
    case Command::back: leave(kDirectionBackward); break;
    case Command::quit: isQuitting_ = true; break;
  }
}

void Engine::leave(std::int64_t direction) {
  const bool isAllowed = page_->shouldExitPane(direction);
  say([=](EventSink& events) { events.exit(direction, isAllowed); });
  if (isAllowed && direction == kDirectionForward) {
    record_.leftForward();
  }
}

void Engine::waitForNews(bool pagesToo) {
  std::array<pollfd, 2> sources{{{commands_.descriptor(), POLLIN, 0}, {-1, POLLIN, 0}}};
  if (pagesToo) {
    sources[1].fd = wakeUp_.descriptor();
  }
  int timeout = -1;
  say([&](EventSink& events) { timeout = events.isHolding() ? kLongestLull : -1; });
  const int ready = ::poll(sources.data(), sources.size(), timeout);
  if (ready == 0) {
    flushEvents();
  }
  if (ready <= 0) {
    return;  // otherwise a signal: the caller looks again
  }
  if (sources[0].revents != 0) {
    commands_.read();
    while (const auto badLine = commands_.takeBadLine()) {
      say([&](EventSink& events) { events.error(*badLine); });
    }
  }
  if (sources[1].revents != 0) {
    wakeUp_.clear();
  }
}

}  // namespace tavenhall

#include "tests/support/recording_host.h"

#include "tests/support/page_threads.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <mutex>
#include <string_view>
#include <utility>

namespace tavenhall::test {

namespace {

constexpr std::chrono::seconds kLimit(60);
constexpr std::string_view kMain = "main: ";

thread_local bool insideDispatch = false;

std::string printed(double value) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%g", value);
  return text.data();
}

class RecordingText final : public TextField {
 public:
  RecordingText(std::function<void(std::string)> record, std::string name)
      : record_(std::move(record)), name_(std::move(name)) {}

  void setTitleWithMnemonic(const char* text) noexcept override { record_(name_ + " " + text); }
  void setNeedsDisplay() noexcept override { record_(name_ + ".needsDisplay"); }

 private:
  std::function<void(std::string)> record_;
  std::string name_;
};

class RecordingBar final : public ProgressIndicator {
 public:
  RecordingBar(std::function<void(std::string)> record, std::mutex& mutex, double& maximum)
      : record_(std::move(record)), mutex_(mutex), maximum_(maximum) {}

  void setMinValue(double value) noexcept override { record_("progress.min " + printed(value)); }
  void setMaxValue(double value) noexcept override {
    set(maximum_, value);
    record_("progress.max " + printed(value));
  }
  void setDoubleValue(double value) noexcept override {
    set(value_, value);
    record_("progress.value " + printed(value));
  }
  [[nodiscard]] double maxValue() const noexcept override { return get(maximum_); }
  [[nodiscard]] double doubleValue() const noexcept override { return get(value_); }
  void displayIfNeeded() noexcept override { record_("progress.display"); }

 private:
  void set(double& place, double value) {
    const std::lock_guard lock(mutex_);
    place = value;
  }
  [[nodiscard]] double get(const double& place) const {
    const std::lock_guard lock(mutex_);
    return place;
  }

  std::function<void(std::string)> record_;
  std::mutex& mutex_;
  double& maximum_;
  double value_ = 0.0;
};

class RecordingButton final : public Button {};

std::string described(const Alert& alert) {
  std::string text = std::string("alert ") + alert.messageText + "|" + alert.informativeText + "|";
  for (const char* const& button : alert.buttons) {
    text += std::string(&button == alert.buttons.data() ? "" : ",") + button;
  }
  return text + "|" + std::to_string(alert.style);
}

// The page may open a dialog on the main thread only.
void expectMainThread(const char* what) {
  EXPECT_TRUE(!PageThreads::isPageThread()) << what << " on a page thread";
}

}  // namespace

struct RecordingHost::State {
  explicit State(RecordingHost& host)
      : record([this, &host](std::string line) { add(host, std::move(line)); }),
        instructions(record, "instructions"),
        status(record, "status"),
        bar(record, mutex, host.barMaximum) {}

  void add(RecordingHost& host, std::string line) {
    if (insideDispatch) {
      line.insert(0, kMain);
    }
    if (host.keepsLines) {
      const std::lock_guard lock(mutex);
      lines.push_back(line);
    }
    if (host.onLine) {
      host.onLine(line);
    }
  }

  std::mutex mutex;
  std::vector<std::string> lines;
  std::vector<std::string> notifications;
  int dispatches = 0;
  std::function<void(std::string)> record;
  RecordingText instructions;
  RecordingText status;
  RecordingBar bar;
  RecordingButton button;
};

RecordingHost::RecordingHost() : state_(new State(*this)) {}

RecordingHost::~RecordingHost() {
  if (PageThreads::instance().alive() > 0) {
    std::fprintf(stderr, "a page thread outlives its host; a test must serve or join until none is left\n");
    std::abort();
  }
  delete state_;
}

std::vector<std::string> RecordingHost::lines() const {
  const std::lock_guard lock(state_->mutex);
  return state_->lines;
}

std::vector<std::string> RecordingHost::notifications() const {
  const std::lock_guard lock(state_->mutex);
  return state_->notifications;
}

void RecordingHost::copyBegun(const TreeCopy& copy) noexcept {
  const std::lock_guard lock(state_->mutex);
  state_->notifications.push_back(std::string("begun ") + copy.source + " " +
                                  (copy.destination != nullptr ? copy.destination : "(null)"));
}

void RecordingHost::copyFinished(const TreeCopy& copy, bool isCopied) noexcept {
  const std::lock_guard lock(state_->mutex);
  state_->notifications.push_back(std::string("finished ") + copy.source + " " +
                                  (copy.destination != nullptr ? copy.destination : "(null)") +
                                  (isCopied ? " 1" : " 0"));
}

void RecordingHost::discBegun(const char* root) noexcept {
  const std::lock_guard lock(state_->mutex);
  state_->notifications.push_back(std::string("disc ") + root);
}

void RecordingHost::discAwaited(unsigned seconds) noexcept {
  const std::lock_guard lock(state_->mutex);
  state_->notifications.push_back("awaited " + std::to_string(seconds));
}

void RecordingHost::ejectBegun() noexcept {
  const std::lock_guard lock(state_->mutex);
  state_->notifications.emplace_back("eject");
}

std::vector<std::string> RecordingHost::linesThatBegin(const std::string& start) const {
  std::vector<std::string> chosen;
  for (const std::string& line : lines()) {
    const std::string plain = line.starts_with(kMain) ? line.substr(kMain.size()) : line;
    if (plain.starts_with(start)) {
      chosen.push_back(plain);
    }
  }
  return chosen;
}

double RecordingHost::barValue() const { return state_->bar.doubleValue(); }

int RecordingHost::dispatches() const {
  const std::lock_guard lock(state_->mutex);
  return state_->dispatches;
}

void RecordingHost::serve() {
  EXPECT_TRUE(PageThreads::instance().waitForEnd(true, kLimit))
      << "a page thread has not ended within a minute";
}

void RecordingHost::serve(std::function<void()> worker) {
  ASSERT_TRUE(PageThreads::instance().start(std::move(worker)));
  serve();
}

TextField& RecordingHost::instructions() noexcept { return state_->instructions; }
TextField& RecordingHost::status() noexcept { return state_->status; }
Button& RecordingHost::uiButton() noexcept { return state_->button; }
ProgressIndicator& RecordingHost::progressIndicator() noexcept { return state_->bar; }

void RecordingHost::setNextEnabled(bool enabled) noexcept { state_->record(enabled ? "next 1" : "next 0"); }

void RecordingHost::setPreviousEnabled(bool enabled) noexcept {
  state_->record(enabled ? "previous 1" : "previous 0");
}

int RecordingHost::runModal(const Alert& alert) noexcept {
  expectMainThread("a modal alert");
  const std::string line = described(alert);
  state_->record(line);
  if (onAlert) {
    onAlert(line);
  }
  if (answers.empty()) {
    return kAlertFirstButtonReturn;
  }
  const int answer = answers.front();
  answers.pop_front();
  return answer;
}

void RecordingHost::beginInformationalSheet(const Sheet& sheet) noexcept {
  expectMainThread("a sheet");
  state_->record(std::string("sheet ") + sheet.defaultButton + "|" + sheet.message);
}

void RecordingHost::dispatchSync(void (*block)(void*), void* context) noexcept {
  EXPECT_FALSE(insideDispatch) << "a dispatch inside a dispatch would deadlock";
  if (beforeDispatch) {
    beforeDispatch();
  }
  {
    const std::lock_guard lock(state_->mutex);
    ++state_->dispatches;
  }
  const auto run = [block, context] {
    insideDispatch = true;
    block(context);
    insideDispatch = false;
  };
  if (PageThreads::isPageThread()) {
    PageThreads::instance().dispatch(run);
  } else {
    run();
  }
}

void RecordingHost::beginAnimationGrouping() noexcept { state_->record("animation.begin"); }

void RecordingHost::setAnimationDuration(double seconds) noexcept {
  state_->record("animation.duration " + printed(seconds));
}

void RecordingHost::endAnimationGrouping() noexcept { state_->record("animation.end"); }

void RecordingHost::pageThreadStarted(const char* name) noexcept {
  state_->record(std::string("thread.started ") + name);
}

void RecordingHost::pageThreadEnded(const char* name) noexcept {
  state_->record(std::string("thread.ended ") + name);
}

void RecordingHost::assertionTaken(const char* type, std::uint32_t level, const char* name) noexcept {
  state_->record(std::string("assertion ") + type + " " + std::to_string(level) + " " + name);
}

void RecordingHost::assertionReleased(const char* type) noexcept {
  state_->record(std::string("assertion.release ") + type);
}

}  // namespace tavenhall::test

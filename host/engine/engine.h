#pragma once

#include "host/engine/disc_note.h"
#include "host/engine/main_queue.h"
#include "host/engine/run_record.h"
#include "host/protocol/command_source.h"
#include "host/protocol/event_sink.h"
#include "platform/host_system.h"
#include "platform/installer_host.h"
#include "platform/installer_pane.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace tavenhall {

// Plays the installer around one page, without showing anything: does what the commands say, serves the
// page's hand-offs, and says what happens. Made and run on the process's main thread.
//
// Commands wait while an alert is up, and entering again waits until every page thread has ended, since the
// page has one job at a time.
class Engine final : private InstallerHost {
 public:
  // `onNoAnswer` is called, on the main thread and from inside the page, when an alert waits for an answer and
  // the input is closed; it does not return.
  Engine(CommandSource& commands, EventSink& events, std::function<void()> onNoAnswer);

  // Makes the page. Throws UsageError when the bundle was built for another host.
  void makePage(PageFactory factory);

  // Does one command after the other until it is told to quit, or no command is left and none can come. The
  // page's threads may still run then: the caller ends the process without destroying anything they use.
  void run();

  // Main thread, like all that follows.
  [[nodiscard]] bool nextIsEnabled() const;
  [[nodiscard]] const RunRecord& record() const { return record_; }

  // Writes the events that are held back, in a process that is about to stop, unless another thread is writing.
  // Any thread.
  void flushAtStop() noexcept;

  // One JSON object and a newline, as of the latest time when the page's state could be read.
  [[nodiscard]] std::string summary() const;

 private:
  class Text final : public TextField {
   public:
    Text(Engine& engine, const char* event) : engine_(engine), event_(event) {}
    void setTitleWithMnemonic(const char* text) noexcept override;
    void setNeedsDisplay() noexcept override {}

   private:
    Engine& engine_;
    const char* event_;
  };

  class Bar final : public ProgressIndicator {
   public:
    explicit Bar(Engine& engine) : engine_(engine) {}
    void setMinValue(double value) noexcept override;
    void setMaxValue(double value) noexcept override;
    void setDoubleValue(double value) noexcept override;
    [[nodiscard]] double maxValue() const noexcept override;
    [[nodiscard]] double doubleValue() const noexcept override;
    void displayIfNeeded() noexcept override {}

   private:
    void set(double& field, double value, const char* event);

    Engine& engine_;
    double min_ = 0.0;  // these three: guarded by the engine's eventsMutex_
    double max_ = 100.0;
    double value_ = 0.0;
  };

  TextField& instructions() noexcept override { return instructions_; }
  TextField& status() noexcept override { return status_; }
  Button& uiButton() noexcept override { return button_; }
  ProgressIndicator& progressIndicator() noexcept override { return bar_; }
  void setNextEnabled(bool enabled) noexcept override;
  void setPreviousEnabled(bool enabled) noexcept override;
  [[nodiscard]] int runModal(const Alert& alert) noexcept override;
  void beginInformationalSheet(const Sheet& sheet) noexcept override;
  void dispatchSync(void (*block)(void*), void* context) noexcept override;
  void beginAnimationGrouping() noexcept override {}
  void setAnimationDuration(double /*seconds*/) noexcept override {}
  void endAnimationGrouping() noexcept override {}
  void pageThreadStarted(const char* name) noexcept override;
  void pageThreadEnded(const char* name) noexcept override;
  void assertionTaken(const char* type, std::uint32_t level, const char* name) noexcept override;
  void assertionReleased(const char* type) noexcept override;

  [[nodiscard]] bool isIdle() const;
  [[nodiscard]] bool canDo(Command command) const;
  void perform(Command command);
  void leave(std::int64_t direction);

  // Waits for input and, when asked, for hand-offs and page threads that end.
  void waitForNews(bool pagesToo);

  void flushEvents();

  // Says something, as one of the engine's threads at a time. The main thread comes round soon to write what is
  // held back; no other does.
  template <typename Say>
  void say(Say what) {
    const std::lock_guard lock(eventsMutex_);
    what(events_);
    if (std::this_thread::get_id() != mainThread_) {
      events_.flush();
    }
  }

  CommandSource& commands_;
  EventSink& events_;
  const std::function<void()> onNoAnswer_;
  const std::thread::id mainThread_ = std::this_thread::get_id();
  mutable std::mutex eventsMutex_;

  WakeUp wakeUp_;
  MainQueue mainQueue_{wakeUp_};
  DiscNote discNote_;
  RunRecord record_;

  Text instructions_{*this, "instructions"};
  Text status_{*this, "status"};
  Button button_;
  Bar bar_{*this};
  bool nextIsEnabled_ = false;  // guarded by eventsMutex_

  mutable std::mutex threadsMutex_;
  int pageThreads_ = 0;  // guarded by threadsMutex_

  std::unique_ptr<InstallerPane> page_;
  PaneSnapshot paneState_;  // main thread; taken when the page's thread is held in a hand-off
  bool isQuitting_ = false;
};

}  // namespace tavenhall

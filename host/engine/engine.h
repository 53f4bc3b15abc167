#pragma once

#include "host/base/child_process.h"
#include "host/base/exit_status.h"
#include "host/base/mutex.h"
#include "host/engine/install_audit.h"
#include "host/engine/run_phases.h"
#include "host/engine/stand_ins.h"
#include "host/protocol/event_hub.h"
#include "host/protocol/messages.h"
#include "platform/installer_host.h"
#include "platform/installer_pane.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace tavenhall {

// How alerts are answered while nobody is there.
struct UnattendedAnswers {
  std::chrono::seconds discTimeout{0};  // how long a disc that is not there is waited for
  bool skipsOptionalDiscs = true;       // false: they are waited for like the others
};

// Plays the installer around one page: performs requests, runs what the page dispatches, and reports events.
//
// The engine is a monitor. `main_` represents the main thread: the thread that holds it is the main thread for
// the page. The main loop holds it while it performs a request, and a page thread holds it while it runs a
// block of its own dispatch, so that no thread is woken for a dispatch. An alert releases it while it waits for
// its answer, but nothing is performed or dispatched until it has one. `state_` guards what any thread may read
// or report; it is taken after `main_` and never held while the page runs.
class Engine final : private InstallerHost {
 public:
  // Called when the run must end before the page has ended, with the exit status and its reason: an alert waits
  // and no answer can come any more, or a stop was requested. It must not return. It is called with `main_`
  // held, on whichever thread shows the alert or dispatches.
  using OnEnd = std::function<void(ExitStatus status, const std::string& reason)>;

  Engine(EventHub& events, EjectNote& ejectNote, OnEnd onEnd);

  // Calls stopReading(). A page that is destroyed while its threads run must wait for them itself.
  ~Engine();

  // Ends the thread that reads requests, if there is one, and waits for that. Requests that it has not read yet
  // are lost. Must not be called with `main_` held unless the input is closed.
  void stopReading();

  // Makes the page. Throws UsageError when the bundle was built for another interface version.
  void makePage(PageFactory factory);

  // Sets the source of requests; call one of the two once, before run(). readRequests() reads JSON lines on a
  // thread of its own; the descriptor must stay open. setCommands() performs these commands.
  void readRequests(int descriptor);
  void setCommands(std::deque<Command> commands);

  // Called on the main loop each time before the page is entered. Set it before run().
  void setOnEntry(std::function<void()> onEntry) { onEntry_ = std::move(onEntry); }

  // Answers every alert by itself from now on; answers of a frontend count no more.
  void answerUnattended(const UnattendedAnswers& answers) EXCLUDES(main_);

  // From now on an alert waits so long for a frontend to attach once the requests have ended. Otherwise it ends
  // the run then.
  void waitForFrontends(std::chrono::seconds patience) EXCLUDES(main_);

  // ---- Frontends that have attached to the run; each call on any thread ----

  // `takesAnswers`: it may answer alerts, and leave the page when the install has ended.
  void addFrontend(bool takesAnswers) EXCLUDES(main_);
  void removeFrontend(bool takesAnswers) EXCLUDES(main_);

  // A line of its requests. Heeded are answers with the number of their alert, Command::forward,
  // Command::quit once the page was left, and from every frontend Command::stop.
  void acceptFromFrontend(std::string_view line, bool takesAnswers) EXCLUDES(main_);

  // The time since the page was entered; none before.
  [[nodiscard]] std::optional<double> secondsSinceEntry() const EXCLUDES(state_);

  // Adds a command behind all others.
  void add(Command command) EXCLUDES(main_);

  // Performs requests until one is Command::quit, or none is left and none can come. Page threads may still run
  // afterwards: the caller ends the process without destroying this object. The thread that made the engine.
  void run() EXCLUDES(main_);

  // Reports the failures, and each of these copies that was not made since the page was entered as one; nothing
  // if it was not entered. Call it once page threads have ended.
  void requireCopies(const std::vector<ExpectedCopy>& expected,
                     const std::vector<event::AuditFailure>& failures) EXCLUDES(state_);

  // Those of these copies that have not come to their end since the page was entered.
  [[nodiscard]] std::vector<event::Remaining> remainingOf(const std::vector<ExpectedCopy>& expected) const
      EXCLUDES(state_);

  // Any thread.
  [[nodiscard]] bool nextIsEnabled() const EXCLUDES(state_);
  [[nodiscard]] bool inputIsClosed() const EXCLUDES(main_);
  [[nodiscard]] bool hasReadAll() const { return hasReadAll_; }  // so stopReading() waits for nobody
  [[nodiscard]] bool isIdle() const EXCLUDES(state_);            // no page thread runs
  [[nodiscard]] event::Summary summary() const EXCLUDES(state_);

  // Whether everything is installed: the page was left forwards, every copy succeeded, no sheet reported a
  // failure, and the audits found at least one file and no failure. Any thread.
  [[nodiscard]] bool isSuccess() const EXCLUDES(state_);

 private:
  class Text final : public TextField {
   public:
    enum class Place { instructions, status };
    Text(Engine& engine, Place place) : engine_(engine), place_(place) {}
    void setTitleWithMnemonic(const char* text) noexcept override;
    void setNeedsDisplay() noexcept override {}

   private:
    Engine& engine_;
    Place place_;
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
    Engine& engine_;
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
  void copyBegun(const TreeCopy& copy) noexcept override;
  void copyFinished(const TreeCopy& copy, bool isCopied) noexcept override;
  void discBegun(const char* root) noexcept override;
  void discAwaited(unsigned seconds) noexcept override;
  void ejectBegun() noexcept override;
  void assertionTaken(const char* type, std::uint32_t level, const char* name) noexcept override;
  void assertionReleased(const char* type) noexcept override;

  void accept(std::string_view line) EXCLUDES(main_);
  [[nodiscard]] bool isHeededFromFrontend(Command command) const REQUIRES(main_);
  // Whether an alert may still get an answer.
  [[nodiscard]] bool canBeAnswered() const REQUIRES(main_);
  // Ends the run if that was requested. Call it where no file is half copied.
  void stopIfRequested() REQUIRES(main_);
  // The same while no page thread runs. An install that has ended is no stopped one: its page is left instead.
  void stopWhileIdle() REQUIRES(main_);
  [[nodiscard]] bool canPerform(Command command) const REQUIRES(main_);
  void perform(Command command) REQUIRES(main_);
  void leave(std::int64_t direction) REQUIRES(main_);
  [[nodiscard]] std::optional<int> takeAnswer(std::int64_t alert) REQUIRES(main_);
  [[nodiscard]] int unattendedAnswer(std::size_t buttons, const std::string& disc) REQUIRES(main_);
  void report(const Event& event) REQUIRES(state_);
  [[nodiscard]] event::CopyState copyState() const REQUIRES(state_);
  void takeSnapshot() EXCLUDES(state_);
  [[nodiscard]] bool isBetweenFiles() const EXCLUDES(state_);  // no file is half copied
  void beginAudits() EXCLUDES(state_);
  void reportFailure(const event::AuditFailure& failure) EXCLUDES(state_);
  // The page was left forwards and has reported no failure.
  [[nodiscard]] bool pageIsContent() const REQUIRES(state_);
  [[nodiscard]] bool isInstalled() const REQUIRES(state_);

  using Clock = std::chrono::steady_clock;
  static double secondsSince(Clock::time_point start);
  static constexpr double kStillRunning = -1.0;  // in place of a copy thread's seconds

  EventHub& events_;
  EjectNote& ejectNote_;
  const OnEnd onEnd_;
  std::function<void()> onEntry_;
  const Clock::time_point start_ = Clock::now();
  const std::thread::id mainLoopThread_ = std::this_thread::get_id();
  Text instructions_{*this, Text::Place::instructions};
  Text status_{*this, Text::Place::status};
  Button button_;
  Bar bar_{*this};

  mutable Mutex main_;
  Condition changed_;  // of what main_ guards, and of the page threads
  std::deque<Command> commands_ GUARDED_BY(main_);
  std::deque<Answer> answers_ GUARDED_BY(main_);
  std::optional<UnattendedAnswers> unattended_ GUARDED_BY(main_);
  std::string missingDisc_ GUARDED_BY(main_);  // the latest that was not there
  Clock::time_point missingSince_ GUARDED_BY(main_);
  std::chrono::seconds patience_ GUARDED_BY(main_){0};  // for a frontend that attaches
  Clock::time_point leftAloneAt_ GUARDED_BY(main_);     // the last frontend's end
  int answeringFrontends_ GUARDED_BY(main_) = 0;        // attached
  bool isInputClosed_ GUARDED_BY(main_) = false;
  bool hasNoAnswers_ GUARDED_BY(main_) = false;  // none comes with the requests
  bool isStopRequested_ GUARDED_BY(main_) = false;
  bool isAlertUp_ GUARDED_BY(main_) = false;
  bool isQuitting_ GUARDED_BY(main_) = false;

  mutable Mutex state_;
  double barMinimum_ GUARDED_BY(state_) = 0.0;
  double barMaximum_ GUARDED_BY(state_) = 100.0;
  double barValue_ GUARDED_BY(state_) = 0.0;
  bool isNextEnabled_ GUARDED_BY(state_) = false;
  int pageThreads_ GUARDED_BY(state_) = 0;
  PaneSnapshot snapshot_ GUARDED_BY(state_);  // the latest
  event::CopyBegin copy_ GUARDED_BY(state_);  // that began last
  RunPhases phases_ GUARDED_BY(state_);
  std::optional<Clock::time_point> enteredAt_ GUARDED_BY(state_);
  bool isOnPage_ GUARDED_BY(state_) = false;  // entered, and not left yet
  std::vector<event::CopyBegin> finishedCopies_ GUARDED_BY(state_);
  std::int64_t bytesAtCopyBegin_ GUARDED_BY(state_) = 0;
  std::int64_t filesAtCopyBegin_ GUARDED_BY(state_) = 0;
  Clock::time_point copyThreadStart_ GUARDED_BY(state_);
  bool isCopying_ GUARDED_BY(state_) = false;
  bool hasFailedCopy_ GUARDED_BY(state_) = false;
  event::Summary summary_ GUARDED_BY(state_);

  std::optional<InstallAudit>
      audit_;  // made by the main loop when the page is entered; then the copying thread's

  std::atomic<bool> hasReadAll_ = false;
  std::thread inputThread_;
  Pipe stopReading_;                     // its write end is closed to end that thread
  std::unique_ptr<InstallerPane> page_;  // last, since it may call until it is destroyed
};

}  // namespace tavenhall

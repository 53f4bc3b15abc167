#pragma once

#include "platform/installer_host.h"

#include <deque>
#include <functional>
#include <string>
#include <vector>

// An installer for the unit tests: it records, one line each and in order, what the page does to it.
//
//   previous 0|1            next 0|1
//   instructions <text>     status <text>            status.needsDisplay
//   progress.min <value>    progress.max <value>     progress.value <value>    progress.display
//   animation.begin         animation.duration <s>   animation.end
//   alert <message>|<informative>|<button>,<button>|<style>
//   sheet <button>|<message>
//   thread.started <name>   thread.ended <name>
//   assertion <type> <level> <name>                  assertion.release <type>
//
// Values are printed with "%g". A line has the prefix "main: " when it was done inside a dispatch.
namespace tavenhall::test {

class RecordingHost final : public InstallerHost {
 public:
  RecordingHost();
  ~RecordingHost();

  // ---- What a test may set ----

  std::deque<int> answers;  // for the alerts, in order; 1000 when there are none left

  // Called for each alert, on the main thread, before it is answered; its line is recorded already.
  std::function<void(const std::string& line)> onAlert;

  // Called after each line is recorded, without any lock held.
  std::function<void(const std::string& line)> onLine;

  // Called for each dispatch, on the thread that makes it, before it is dispatched.
  std::function<void()> beforeDispatch;

  double barMaximum = 100.0;

  bool keepsLines =
      true;  // false for runs so long that their lines are not to be kept; `onLine` hears them all

  // ---- What a test may ask ----

  [[nodiscard]] std::vector<std::string> lines() const;
  [[nodiscard]] std::vector<std::string> linesThatBegin(const std::string& start) const;  // without "main: "
  [[nodiscard]] double barValue() const;

  // The notifications of tree copies and discs, which are not among the lines: "begun SOURCE DESTINATION",
  // "finished SOURCE DESTINATION RESULT", "disc ROOT", "awaited SECONDS", "eject".
  [[nodiscard]] std::vector<std::string> notifications() const;
  [[nodiscard]] int dispatches() const;

  // Serves dispatches on the calling thread until every page thread has ended. Until then a page thread's
  // dispatch waits. A minute's limit fails the test.
  //
  // A dispatch made by the test's own thread (a test that calls a worker's method directly) runs at once,
  // and counts as one.
  void serve();

  // Runs `worker` on a page thread of its own, of which no line tells, and serves as above.
  void serve(std::function<void()> worker);

  // ---- InstallerHost ----

  TextField& instructions() noexcept override;
  TextField& status() noexcept override;
  Button& uiButton() noexcept override;
  ProgressIndicator& progressIndicator() noexcept override;
  void setNextEnabled(bool enabled) noexcept override;
  void setPreviousEnabled(bool enabled) noexcept override;
  [[nodiscard]] int runModal(const Alert& alert) noexcept override;
  void beginInformationalSheet(const Sheet& sheet) noexcept override;
  void dispatchSync(void (*block)(void*), void* context) noexcept override;
  void beginAnimationGrouping() noexcept override;
  void setAnimationDuration(double seconds) noexcept override;
  void endAnimationGrouping() noexcept override;
  void pageThreadStarted(const char* name) noexcept override;
  void pageThreadEnded(const char* name) noexcept override;
  void copyBegun(const TreeCopy& copy) noexcept override;
  void copyFinished(const TreeCopy& copy, bool isCopied) noexcept override;
  void discBegun(const char* root) noexcept override;
  void discAwaited(unsigned seconds) noexcept override;
  void ejectBegun() noexcept override;
  void assertionTaken(const char* type, std::uint32_t level, const char* name) noexcept override;
  void assertionReleased(const char* type) noexcept override;

 private:
  struct State;
  State* state_;
};

}  // namespace tavenhall::test

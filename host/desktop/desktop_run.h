#pragma once

#include "host/base/exit_status.h"
#include "host/cli/terminal_page.h"
#include "host/engine/install_lock.h"
#include "host/engine/run_options.h"
#include "host/ui/progress_meter.h"
#include "host/ui/run_outcome.h"
#include "host/ui/styled_text.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

// The install that a window shows: what was asked for, what comes before and after the page, and what the
// page's bar tells. Main thread, unless a function says otherwise; nothing here throws, so that Objective-C can
// call it.
namespace tavenhall {

// A page of the installer's own: a heading, and lines that are not wrapped.
struct DesktopText {
  Span heading;
  std::vector<Line> lines;
};

class DesktopRun {
 public:
  // From now on the installer's own texts are in that language, named as its folder in a bundle is.
  static void speak(const std::string& language) noexcept;

  // Takes the options, each from the arguments or else from the environment. Where there is nothing to show
  // (a request for help, or something that cannot be used), says so on the standard streams and gives the exit
  // status. Before any thread.
  [[nodiscard]] std::optional<ExitStatus> read(int argumentCount, char** arguments) noexcept;

  [[nodiscard]] const std::string& productName() const { return page_.introduction.productName; }
  [[nodiscard]] const std::string& bundlePath() const { return bundlePath_; }
  [[nodiscard]] DesktopText introduction() const noexcept;

  // What the rest of an installer does before the page is shown; and keeps this user's other installs from
  // starting. Before any thread of the page. Says what is wrong; empty: all is well.
  [[nodiscard]] std::string prepare() noexcept;

  // The page is entered.
  void begin() noexcept;

  // How its bar stands, told at every change of it. Any thread.
  void lookAtBar(double minimum, double maximum, double value) noexcept;

  // A question waits for the user: that time does not count.
  void setPaused(bool isPaused) noexcept;

  // The page was left forwards.
  void end() noexcept;

  // "54.2 MB/s, about 3 min left"; empty where the bar does not tell.
  [[nodiscard]] std::string paceText() noexcept;

  // How it went, by the installation log; once the page was left.
  [[nodiscard]] DesktopText summary() const noexcept;
  [[nodiscard]] ExitStatus exitStatus() const noexcept;

 private:
  RunOptions options_;
  std::string bundlePath_;
  TerminalPage page_;
  std::unique_ptr<InstallLock> lock_;
  std::mutex meterMutex_;
  ProgressMeter meter_;  // guarded by it
  RunOutcome outcome_;
};

}  // namespace tavenhall

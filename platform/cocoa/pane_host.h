#pragma once

#include "platform/cocoa/controls.h"
#include "platform/installer_host.h"
#include "platform/thread_start.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>

@class InstallDataPane;

namespace tavenhall {

// The threads of one page. Each starts in the pane's method of the thread's name, without an argument, and
// finds its body here.
class PageThreads {
 public:
  // `patience` is how long a thread may take to begin.
  explicit PageThreads(std::chrono::milliseconds patience = std::chrono::seconds(30)) : patience_(patience) {}

  // Starts a thread that sends `name` to the pane, and returns when it has begun. Returns false if the system
  // cannot start it, or says that it did and no thread comes; the host is then not notified, and a thread that
  // comes later does nothing.
  [[nodiscard]] bool detach(::InstallDataPane* pane, InstallerHost& host, const char* name, void (*body)(void*),
                            void* target) noexcept;

  // Runs the oldest body that waits under this name, if there is one. On the thread, from that method.
  void run(const char* name) noexcept;

 private:
  const std::chrono::milliseconds patience_;
  std::mutex mutex_;
  std::condition_variable taken_;
  std::map<std::string, std::deque<std::shared_ptr<ThreadStart>>, std::less<>> waiting_;  // guarded by mutex_
};

// The installer around the page in the bundle: passes the page's calls on to the pane that the Installer shows
// and to AppKit.
class PaneHost final : public InstallerHost {
 public:
  // The pane's outlets, as they are at the time of each call.
  struct Outlets {
    NSTextField* const& instructions;
    NSTextField* const& status;
    NSProgressIndicator* const& progressIndicator;
  };

  // The pane, which is not retained, and its outlets live longer than this.
  PaneHost(::InstallDataPane* pane, const Outlets& outlets);

  [[nodiscard]] bool detachThread(const char* name, void (*body)(void*), void* target) noexcept;
  void runThread(const char* name) noexcept { threads_.run(name); }

  TextField& instructions() noexcept override { return instructions_; }
  TextField& status() noexcept override { return status_; }
  Button& uiButton() noexcept override { return uiButton_; }
  ProgressIndicator& progressIndicator() noexcept override { return progressIndicator_; }
  void setNextEnabled(bool enabled) noexcept override;
  void setPreviousEnabled(bool enabled) noexcept override;
  [[nodiscard]] int runModal(const Alert& alert) noexcept override;
  void beginInformationalSheet(const Sheet& sheet) noexcept override;
  void dispatchSync(void (*block)(void*), void* context) noexcept override;
  void beginAnimationGrouping() noexcept override;
  void setAnimationDuration(double seconds) noexcept override;
  void endAnimationGrouping() noexcept override;

  void copyBegun(const TreeCopy& copy) noexcept override;
  void copyFinished(const TreeCopy& copy, bool isCopied) noexcept override;
  void discBegun(const char* root) noexcept override;
  void discAwaited(unsigned seconds) noexcept override;
  void ejectBegun() noexcept override;

  // The installer does not ask for these.
  void pageThreadStarted(const char* /*name*/) noexcept override {}
  void pageThreadEnded(const char* /*name*/) noexcept override {}
  void assertionTaken(const char* /*type*/, std::uint32_t /*level*/, const char* /*name*/) noexcept override {}
  void assertionReleased(const char* /*type*/) noexcept override {}

 private:
  ::InstallDataPane* pane_;
  NSTextField* const& sheetsField_;  // its window carries the sheets
  LayoutTextField instructions_;
  LayoutTextField status_;
  Button uiButton_;
  LayoutProgressIndicator progressIndicator_;
  PageThreads threads_;
  std::atomic<bool> isCopying_ = false;
};

}  // namespace tavenhall

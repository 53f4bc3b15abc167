#include "platform/cocoa/pane_host.h"

#include "platform/cocoa/adapter.h"
#include "platform/cocoa/dialogs.h"
#import "platform/cocoa/install_data_pane.h"
#include "platform/system.h"

#include <algorithm>
#include <dispatch/dispatch.h>
#include <utility>

namespace tavenhall {

PaneHost::PaneHost(::InstallDataPane* pane, const Outlets& outlets)
    : pane_(pane),
      sheetsField_(outlets.instructions),
      instructions_(outlets.instructions),
      status_(outlets.status),
      progressIndicator_(outlets.progressIndicator) {}

bool PaneHost::detachThread(const char* name, void (*body)(void*), void* target) noexcept {
  return threads_.detach(pane_, *this, name, body, target);
}

void PaneHost::setNextEnabled(bool enabled) noexcept {
  changeControl("Continue", [=, this] { [pane_ setNextEnabled:enabled]; });
}

void PaneHost::setPreviousEnabled(bool enabled) noexcept {
  changeControl("Go Back", [=, this] { [pane_ setPreviousEnabled:enabled]; });
}

int PaneHost::runModal(const Alert& alert) noexcept { return runModalAlert(alert); }

void PaneHost::beginInformationalSheet(const Sheet& sheet) noexcept {
  [pane_ didFailWhileCopying:isCopying_];
  tavenhall::beginInformationalSheet(sheet, [sheetsField_ window], pane_);
}

void PaneHost::copyBegun(const TreeCopy& copy) noexcept {
  isCopying_ = true;
  [pane_ willCopy:copy.source];
}

void PaneHost::discBegun(const char* root) noexcept { [pane_ didBeginDisc:root]; }

void PaneHost::discAwaited(unsigned seconds) noexcept { [pane_ willLookForDiscAfter:seconds]; }

void PaneHost::ejectBegun() noexcept { [pane_ willEjectDisc]; }

void PaneHost::copyFinished(const TreeCopy& copy, bool isCopied) noexcept {
  isCopying_ = false;
  [pane_ didCopy:copy.source to:copy.destination ok:isCopied];
}

void PaneHost::dispatchSync(void (*block)(void*), void* context) noexcept {
  dispatch_sync_f(dispatch_get_main_queue(), context, block);
}

void PaneHost::beginAnimationGrouping() noexcept { beginAnimationGroup(); }

void PaneHost::setAnimationDuration(double seconds) noexcept { setAnimationGroupDuration(seconds); }

void PaneHost::endAnimationGrouping() noexcept { endAnimationGroup(); }

bool PageThreads::detach(::InstallDataPane* pane, InstallerHost& host, const char* name, void (*body)(void*),
                         void* target) noexcept {
  const auto start = std::make_shared<ThreadStart>(host, name, body, target);
  {
    const std::lock_guard lock(mutex_);
    waiting_[name].push_back(start);
  }
  bool isStarted = false;
  adapt("a thread", [&] {
    NSThread* thread =
        [[[NSThread alloc] initWithTarget:pane
                                 selector:NSSelectorFromString([NSString stringWithUTF8String:name])
                                   object:nil] autorelease];
    [thread setStackSize:kPageThreadStack];
    [thread start];
    isStarted = true;
  });
  {
    std::unique_lock lock(mutex_);
    auto& starts = waiting_[name];
    const auto isTaken = [&] { return std::find(starts.begin(), starts.end(), start) == starts.end(); };
    if (!isStarted || !taken_.wait_for(lock, patience_, isTaken)) {
      std::erase(starts, start);
      return false;
    }
  }
  start->release();
  return true;
}

void PageThreads::run(const char* name) noexcept {
  std::shared_ptr<ThreadStart> start;
  {
    const std::lock_guard lock(mutex_);
    auto& starts = waiting_[name];
    if (starts.empty()) {
      return;
    }
    start = std::move(starts.front());
    starts.pop_front();
  }
  taken_.notify_all();
  start->run();
}

// In this bundle, every host is a PaneHost.
bool detachNewThread(InstallerHost& host, const char* name, void (*body)(void*), void* target) noexcept {
  return static_cast<PaneHost&>(host).detachThread(name, body, target);
}

}  // namespace tavenhall

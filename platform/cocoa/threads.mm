#include "platform/cocoa/threads.h"

#include "platform/cocoa/adapter.h"
#include "platform/cocoa/pane_host.h"
#include "platform/system.h"

#include <utility>

namespace tavenhall {

bool PageThreads::detach(::InstallDataPane* pane, InstallerHost& host, const char* name, void (*body)(void*),
                         void* target) noexcept {
  const auto start = std::make_shared<ThreadStart>(host, name, body, target);
  {
    const std::lock_guard lock(mutex_);
    waiting_[name].push_back(start);
  }
  bool isDetached = false;
  adapt("a thread", [&] {
    [NSThread detachNewThreadSelector:NSSelectorFromString([NSString stringWithUTF8String:name])
                             toTarget:pane
                           withObject:nil];
    isDetached = true;
  });
  if (isDetached) {
    start->release();
  } else {
    const std::lock_guard lock(mutex_);
    std::erase(waiting_[name], start);
  }
  return isDetached;
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
  start->run();
}

// The page in this bundle has no host but the pane around it.
bool detachNewThread(InstallerHost& host, const char* name, void (*body)(void*), void* target) noexcept {
  return static_cast<PaneHost&>(host).detachThread(name, body, target);
}

}  // namespace tavenhall

#pragma once

#include "host/engine/engine.h"
#include "tests/support/files.h"

#include <array>
#include <deque>
#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

// An engine with a page of the test's own in it.
namespace tavenhall::test {

inline constexpr std::array<const char*, 2> kButtons{"OK", "Skip"};

// What the page does on a thread of its own after it was entered, and what it answers.
struct Script {
  std::function<void(InstallerHost& host)> install;  // none: no thread is started
  std::function<void(InstallerHost& host)> onEnter;
  bool letsGoForward = true;
};

class TestPage final : public InstallerPane {
 public:
  explicit TestPage(InstallerHost& host) : InstallerPane(host) {}
  ~TestPage() override {
    if (thread_.joinable()) {
      thread_.join();
    }
  }

  void didEnterPane(std::int64_t direction) noexcept override {
    calls.push_back("enter " + std::to_string(direction));
    host().setNextEnabled(true);
    if (script->onEnter) {
      script->onEnter(host());
    }
    if (script->install) {
      host().pageThreadStarted("doEntireInstall");
      thread_ = std::thread([this] {
        script->install(host());
        host().pageThreadEnded("doEntireInstall");
      });
    }
  }
  bool shouldExitPane(std::int64_t direction) noexcept override {
    calls.push_back("exit " + std::to_string(direction));
    return direction != kDirectionForward || script->letsGoForward;
  }
  std::string title() noexcept override {
    calls.emplace_back("title");
    return "A title";
  }
  void controlTextDidChange() noexcept override {}
  void updateText() noexcept override {}
  std::int32_t isReadyToProceed() const noexcept override { return 1; }
  PaneSnapshot snapshot() const noexcept override { return *state; }

  static inline Script* script = nullptr;
  static inline PaneSnapshot* state = nullptr;
  static inline std::vector<std::string> calls;

 private:
  std::thread thread_;
};

// Reports the copy of a tree with one file, which is there.
inline void reportCopy(InstallerHost& host, bool isCopied = true) {
  writeFile("/tmp/source/one.db", "one");
  writeFile("/tmp/destination/one.db", "one");
  host.copyBegun({"/tmp/source", "/tmp/destination"});
  host.copyFinished({"/tmp/source", "/tmp/destination"}, isCopied);
}

template <typename Block>
void dispatch(InstallerHost& host, Block block) {
  host.dispatchSync([](void* context) { (*static_cast<Block*>(context))(); }, &block);
}

class EngineRun : public testing::Test {
 protected:
  EngineRun() {
    TestPage::script = &script;
    TestPage::state = &state;
    TestPage::calls.clear();
  }

  // Runs an engine without input over these commands; alerts get their first button.
  void run(std::deque<Command> commands) {
    EventHub events;
    Engine engine(events, ejectNote,
                  [](ExitStatus, const std::string&) { throw std::logic_error("no alert is shown"); });
    engine.makePage(makeTestPage);
    engine.setCommands(std::move(commands));
    engine.answerUnattended({});
    engine.run();
    isSuccess = engine.isSuccess();
    nextIsEnabled = engine.nextIsEnabled();
    summary = engine.summary();
  }

  static InstallerPane* makeTestPage(InstallerHost* host, std::uint32_t /*version*/) {
    return new TestPage(*host);
  }

  EjectNote ejectNote;
  Script script;
  PaneSnapshot state;
  bool isSuccess = false;
  bool nextIsEnabled = false;
  event::Summary summary;
};

}  // namespace tavenhall::test

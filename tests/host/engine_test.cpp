#include "host/engine/engine.h"

#include "host/base/errors.h"
#include "host/protocol/quiet_events.h"

#include <gtest/gtest.h>
#include <stdexcept>

// The engine with a page of the test's own in it.
namespace tavenhall::test {
namespace {

// Writes down what happens to it.
struct Story {
  std::vector<std::string> lines;
  bool letsGoForward = true;
};
Story* story = nullptr;

class TestPage final : public InstallerPane {
 public:
  explicit TestPage(InstallerHost& host) : InstallerPane(host) {}

  void didEnterPane(std::int64_t direction) noexcept override {
    story->lines.push_back("enter " + std::to_string(direction));
    host().setNextEnabled(true);
  }
  bool shouldExitPane(std::int64_t direction) noexcept override {
    story->lines.push_back("exit " + std::to_string(direction));
    return direction != kDirectionForward || story->letsGoForward;
  }
  std::string title() noexcept override {
    story->lines.emplace_back("title");
    return "A title";
  }
  void controlTextDidChange() noexcept override {}
  void updateText() noexcept override {}
  std::int32_t isReadyToProceed() const noexcept override { return 1; }
  PaneSnapshot snapshot() const noexcept override { return {}; }
};

InstallerPane* makeTestPage(InstallerHost* host, std::uint32_t /*version*/) { return new TestPage(*host); }

using Lines = std::vector<std::string>;

class EngineRun : public testing::Test {
 protected:
  EngineRun() { story = &itsStory; }

  void run(std::deque<Command> commands) {
    CommandSource source(std::move(commands), kAlertFirstButtonReturn);
    Engine engine(source, events, [] { throw std::logic_error("no alert is shown"); });
    engine.makePage(makeTestPage);
    engine.run();
    isSuccess = engine.record().isSuccess();
    nextIsEnabled = engine.nextIsEnabled();
  }

  Story itsStory;
  QuietEvents events;
  bool isSuccess = false;
  bool nextIsEnabled = false;
};

TEST_F(EngineRun, CommandsAreDoneInTheirOrder) {
  run({Command::title, Command::enter, Command::back, Command::forward});
  EXPECT_EQ(itsStory.lines, (Lines{"title", "enter 0", "exit 1", "exit 0"}));
}

TEST_F(EngineRun, WhatComesAfterQuitIsNotDone) {
  run({Command::title, Command::quit, Command::enter});
  EXPECT_EQ(itsStory.lines, Lines{"title"});
}

TEST_F(EngineRun, NextIsOffUntilThePageEnablesIt) {
  run({Command::title});
  EXPECT_FALSE(nextIsEnabled);
}

TEST_F(EngineRun, NextIsOnOnceThePageHasEnabledIt) {
  run({Command::enter});
  EXPECT_TRUE(nextIsEnabled);
}

TEST_F(EngineRun, APageThatIsLeftForwardsIsASuccess) {
  run({Command::enter, Command::forward});
  EXPECT_TRUE(isSuccess);
}

TEST_F(EngineRun, APageThatIsLeftBackwardsIsNone) {
  run({Command::enter, Command::back});
  EXPECT_FALSE(isSuccess);
}

TEST_F(EngineRun, APageThatRefusesIsNone) {
  itsStory.letsGoForward = false;
  run({Command::enter, Command::forward});
  EXPECT_FALSE(isSuccess);
}

TEST(EnginePage, APluginForAnotherHostIsRefused) {
  CommandSource source({}, kAlertFirstButtonReturn);
  QuietEvents events;
  Engine engine(source, events, [] {});
  EXPECT_THROW(engine.makePage([](InstallerHost*, std::uint32_t) -> InstallerPane* { return nullptr; }),
               UsageError);
}

}  // namespace
}  // namespace tavenhall::test

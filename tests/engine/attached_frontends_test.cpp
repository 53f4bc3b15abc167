#include "host/base/exit_status.h"
#include "tests/engine/engine_run.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>
#include <unistd.h>

// What an engine does for frontends that have attached to it, and when it was asked to stop. An engine that
// ends does so in a process of its own, whose exit status tells how.
namespace tavenhall::test {
namespace {

class AttachedFrontends : public EngineRun {
 protected:
  static constexpr int kEndedLate = 99;

  // Plays the script to its end or to the engine's; the process ends with the engine's exit status.
  void play(bool takesAnswers = true) {
    EventHub events;
    Engine made(events, ejectNote, [this](ExitStatus status, const std::string&) {
      _exit(isEndExpected ? static_cast<int>(status) : kEndedLate);
    });
    engine = &made;
    made.makePage(makeTestPage);
    made.addFrontend(takesAnswers);
    made.setCommands({Command::enter, Command::wait});
    made.run();
    _exit(0);
  }

  void request(const char* line) const { engine->acceptFromFrontend(line, true); }

  Engine* engine = nullptr;
  std::atomic<bool> isEndExpected = true;
};

using AttachedFrontendsDeathTest = AttachedFrontends;

TEST_F(AttachedFrontendsDeathTest, AStopWaitsUntilTheFileIsCopied) {
  script.install = [this](InstallerHost& host) {
    state.filesBegun = 1;
    isEndExpected = false;
    request(R"({"do":"stop"})");
    dispatch(host, [&] { host.status().setTitleWithMnemonic("half of it"); });
    state.filesDone = 1;
    isEndExpected = true;
    dispatch(host, [&] { host.status().setTitleWithMnemonic("all of it"); });
    isEndExpected = false;
  };
  EXPECT_EXIT(play(), testing::ExitedWithCode(4), "");
}

TEST_F(AttachedFrontendsDeathTest, AStopEndsAPrompt) {
  script.install = [this](InstallerHost& host) {
    std::thread other([this] { request(R"({"do":"stop"})"); });
    dispatch(host, [&] { static_cast<void>(host.runModal({"Next", "Insert B", kButtons, 1})); });
    other.join();
    isEndExpected = false;
    dispatch(host, [] {});
  };
  EXPECT_EXIT(play(), testing::ExitedWithCode(4), "");
}

TEST_F(AttachedFrontendsDeathTest, AnAnswerCountsForItsAlertAlone) {
  script.install = [this](InstallerHost& host) {
    request(R"({"answer":1001,"alert":2})");  // of an alert that is not up yet
    request(R"({"answer":1001})");            // of no alert
    std::thread other([this] {
      usleep(100000);
      request(R"({"answer":1000,"alert":1})");
      request(R"({"answer":1001,"alert":1})");  // a second answer to the same alert
    });
    int first = 0;
    dispatch(host, [&] { first = host.runModal({"Next", "Insert A", kButtons, 1}); });
    other.join();
    std::thread another([this] {
      usleep(100000);
      request(R"({"answer":1000,"alert":2})");
    });
    int second = 0;
    dispatch(host, [&] { second = host.runModal({"Next", "Insert B", kButtons, 1}); });
    another.join();
    _exit(first == 1000 && second == 1000 ? 50 : 51);
  };
  EXPECT_EXIT(play(), testing::ExitedWithCode(50), "");
}

TEST_F(AttachedFrontendsDeathTest, OneThatOnlyWatchesAnswersNothing) {
  script.install = [this](InstallerHost& host) {
    engine->acceptFromFrontend(R"({"answer":1000,"alert":1})", false);
    dispatch(host, [&] { static_cast<void>(host.runModal({"Next", "Insert A", kButtons, 1})); });
  };
  EXPECT_EXIT(play(false), testing::ExitedWithCode(3), "");
}

TEST_F(AttachedFrontendsDeathTest, ThePromptOfALoneEngineEndsItWhenItsPatienceIsOver) {
  script.install = [this](InstallerHost& host) {
    engine->waitForFrontends(std::chrono::seconds(1));
    engine->removeFrontend(true);
    isEndExpected = false;
    std::thread watch([this] {
      usleep(500000);
      isEndExpected = true;
    });
    dispatch(host, [&] { static_cast<void>(host.runModal({"Next", "Insert A", kButtons, 1})); });
    watch.join();
  };
  EXPECT_EXIT(play(), testing::ExitedWithCode(3), "");
}

TEST_F(AttachedFrontendsDeathTest, ALoneEngineTakesTheAnswerOfOneThatComesLater) {
  script.install = [this](InstallerHost& host) {
    engine->waitForFrontends(std::chrono::seconds(60));
    engine->removeFrontend(true);
    std::thread later([this] {
      usleep(200000);
      engine->addFrontend(true);
      request(R"({"answer":1001,"alert":1})");
    });
    int answer = 0;
    dispatch(host, [&] { answer = host.runModal({"Next", "Insert A", kButtons, 1}); });
    later.join();
    _exit(answer == 1001 ? 50 : 51);
  };
  EXPECT_EXIT(play(), testing::ExitedWithCode(50), "");
}

}  // namespace
}  // namespace tavenhall::test

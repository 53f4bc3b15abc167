#include "host/engine/engine.h"

#include "host/base/child_process.h"
#include "host/base/errors.h"
#include "host/base/line_reader.h"
#include "host/protocol/json_form.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <stdexcept>
#include <unistd.h>

// The engine with a page of the test's own in it.
namespace tavenhall::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

constexpr std::array<const char*, 2> kButtons{"OK", "Skip"};

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
    Engine engine(nullptr, ejectNote, [] { throw std::logic_error("no alert is shown"); });
    engine.makePage(makeTestPage);
    engine.setRequests(std::move(commands), Answer{kAlertFirstButtonReturn});
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

TEST_F(EngineRun, PerformsCommandsInTheirOrder) {
  run({Command::title, Command::enter, Command::back, Command::forward});
  EXPECT_THAT(TestPage::calls, ElementsAre("title", "enter 0", "exit 1", "exit 0"));
}

TEST_F(EngineRun, PerformsNothingAfterQuit) {
  run({Command::title, Command::quit, Command::enter});
  EXPECT_THAT(TestPage::calls, ElementsAre("title"));
}

TEST_F(EngineRun, NextIsOffUntilThePageEnablesIt) {
  run({Command::title});
  EXPECT_FALSE(nextIsEnabled);
  run({Command::enter});
  EXPECT_TRUE(nextIsEnabled);
}

TEST_F(EngineRun, RefusesAPluginOfAnotherInterfaceVersion) {
  Engine engine(nullptr, ejectNote, [] {});
  EXPECT_THROW(engine.makePage([](InstallerHost*, std::uint32_t) -> InstallerPane* { return nullptr; }),
               UsageError);
}

// ---- What counts as success ----

TEST_F(EngineRun, SucceedsWhenThePageIsLeftForwards) {
  run({Command::enter, Command::forward});
  EXPECT_TRUE(isSuccess);
  EXPECT_TRUE(summary.hasLeft);
}

TEST_F(EngineRun, FailsWhenThePageIsLeftBackwardsOrRefuses) {
  run({Command::enter, Command::back});
  EXPECT_FALSE(isSuccess);
  script.letsGoForward = false;
  run({Command::enter, Command::forward});
  EXPECT_FALSE(isSuccess);
}

TEST_F(EngineRun, FailsAfterASheet) {
  script.onEnter = [](InstallerHost& host) {
    host.beginInformationalSheet({"OK", "Failed to open input file."});
  };
  run({Command::enter, Command::forward});
  EXPECT_FALSE(isSuccess);
  ASSERT_EQ(summary.sheets.size(), 1U);
  EXPECT_EQ(summary.sheets[0].message, "Failed to open input file.");
}

TEST_F(EngineRun, FailsAfterACopyThatFailedWhateverTheNextOneGives) {
  script.install = [](InstallerHost& host) {
    for (const bool isCopied : {false, true}) {
      host.copyBegun({"/Volumes/A/TANVO", "/T"});
      host.copyFinished({"/Volumes/A/TANVO", "/T"}, isCopied);
    }
  };
  run({Command::enter, Command::wait, Command::forward});
  EXPECT_FALSE(isSuccess);
}

TEST_F(EngineRun, AlertsAreNoFailure) {
  script.onEnter = [](InstallerHost& host) {
    EXPECT_EQ(host.runModal({"Ready for next volume", "Insert B", kButtons, 1}), kAlertFirstButtonReturn);
  };
  run({Command::enter, Command::forward});
  EXPECT_TRUE(isSuccess);
  ASSERT_EQ(summary.alerts.size(), 1U);
  EXPECT_EQ(summary.alerts[0].alert.informative, "Insert B");
  EXPECT_EQ(summary.alerts[0].answer, kAlertFirstButtonReturn);
}

TEST_F(EngineRun, TheSummaryHasThePagesCountsAndTheTimesOfItsCopyThreads) {
  state.readyToProceed = 1;
  state.installMode = 2;
  state.kBytesCopied = 200;
  state.bytesWritten = 204801;
  state.filesDone = 7;
  script.install = [](InstallerHost& host) {
    host.pageThreadStarted("copySingleVolume");
    std::this_thread::sleep_for(20ms);
    host.pageThreadEnded("copySingleVolume");
  };
  run({Command::enter, Command::wait});
  EXPECT_EQ(summary.ready, 1);
  EXPECT_EQ(summary.mode, 2);
  EXPECT_EQ(summary.kBytesCopied, 200);
  EXPECT_EQ(summary.bytesWritten, 204801);
  EXPECT_EQ(summary.filesDone, 7);
  ASSERT_EQ(summary.copySeconds.size(), 1U);
  EXPECT_GE(summary.copySeconds[0], 0.02);
}

TEST_F(EngineRun, ACopyThreadThatStillRunsHasItsTimeSoFar) {
  script.onEnter = [](InstallerHost& host) { host.pageThreadStarted("copySingleVolume"); };
  run({Command::enter, Command::title});
  ASSERT_EQ(summary.copySeconds.size(), 1U);
  EXPECT_GE(summary.copySeconds[0], 0.0);
}

// ---- With a program at the other end of the pipes ----

class EngineAtPipes : public EngineRun {
 protected:
  EngineAtPipes()
      : requests(makePipe()),
        events(makePipe()),
        writer(std::in_place, events.writeEnd),
        engine(std::in_place, &*writer, ejectNote, [this] {
          hasNoAnswer = true;
          throw std::logic_error("no answer");
        }) {
    std::signal(SIGPIPE, SIG_IGN);
    engine->makePage(makeTestPage);
    engine->readRequests(requests.readEnd);
  }
  ~EngineAtPipes() override {
    hangUp();
    engine.reset();
    close(events.readEnd);  // what nobody reads is dropped
    writer.reset();
    for (const int end : {requests.readEnd, events.writeEnd}) {
      close(end);
    }
  }

  void send(const Request& request) const { writeAll(requests.writeEnd, encode(request)); }
  void hangUp() {
    if (requests.writeEnd >= 0) {
      close(std::exchange(requests.writeEnd, -1));
    }
  }

  // Reads events until one is of that kind; it. Fails after a minute.
  template <typename Kind>
  Kind await() {
    while (true) {
      while (!received.empty()) {
        const Event event = received.front();
        received.pop_front();
        all.push_back(event);
        if (const auto* found = std::get_if<Kind>(&event)) {
          return *found;
        }
      }
      pollfd input{events.readEnd, POLLIN, 0};
      if (poll(&input, 1, 60000) <= 0) {
        ADD_FAILURE() << "the event did not come";
        return {};
      }
      lines.read([this](const std::string& line) { received.push_back(*decodeEvent(line)); });
    }
  }

  Pipe requests;
  Pipe events;
  std::optional<EventWriter> writer;
  std::optional<Engine> engine;
  LineReader lines{events.readEnd};
  std::deque<Event> received;
  std::vector<Event> all;
  std::atomic<bool> hasNoAnswer = false;
};

TEST_F(EngineAtPipes, PerformsNothingWhileAnAlertIsUp) {
  script.install = [](InstallerHost& host) {
    dispatch(host, [&] { EXPECT_EQ(host.runModal({"Next", "Insert B", kButtons, 1}), 1001); });
  };
  std::thread frontend([this] {
    send(Command::enter);
    await<event::Alert>();
    send(Command::title);
    send(Answer{1001});
    send(Command::wait);
    send(Command::quit);
    await<event::Title>();
    await<event::Idle>();
  });
  engine->run();
  frontend.join();
}

// Two page threads dispatch, alerts wait for answers, commands come meanwhile, and the input closes: every
// answer is used once and in order, every command is performed once, and the end is noticed.
TEST_F(EngineAtPipes, LosesNoAnswerNoCommandAndNoHangUp) {
  constexpr int kAlerts = 200;
  std::vector<int> answers;
  std::atomic<int> dispatched = 0;
  script.install = [&](InstallerHost& host) {
    host.pageThreadStarted("copySingleVolume");
    std::thread copy([&] {
      for (int i = 0; i < 2000; ++i) {
        dispatch(host, [&] {
          ++dispatched;
          host.progressIndicator().setDoubleValue(i);
        });
        host.status().setTitleWithMnemonic("Installing...");
      }
      host.pageThreadEnded("copySingleVolume");
    });
    for (int i = 0; i < kAlerts; ++i) {
      dispatch(host, [&] { answers.push_back(host.runModal({"Next", "Insert", kButtons, 1})); });
    }
    copy.join();
  };
  std::thread frontend([this] {
    send(Command::enter);
    for (int i = 0; i < kAlerts; ++i) {
      if (i % 3 != 0) {
        await<event::Alert>();
      }
      send(Answer{1000 + i});
      send(Command::title);
    }
    send(Command::wait);
    hangUp();
    await<event::Idle>();
  });
  engine->run();
  frontend.join();
  std::vector<int> expected(kAlerts);
  for (int i = 0; i < kAlerts; ++i) {
    expected[static_cast<std::size_t>(i)] = 1000 + i;
  }
  EXPECT_EQ(answers, expected);
  EXPECT_EQ(dispatched, 2000);
  EXPECT_EQ(std::ranges::count(TestPage::calls, "title"), kAlerts);
  EXPECT_TRUE(engine->inputIsClosed());
  EXPECT_FALSE(hasNoAnswer);
}

TEST_F(EngineAtPipes, QuitEndsItWhileThePagesThreadGoesOn) {
  std::atomic<bool> mayEnd = false;
  script.install = [&](InstallerHost& host) {
    while (!mayEnd) {
      dispatch(host, [&] { host.status().setTitleWithMnemonic("Installing..."); });
    }
  };
  std::thread frontend([this] {
    send(Command::enter);
    await<event::Status>();
    send(Command::quit);
  });
  engine->run();
  mayEnd = true;
  frontend.join();
}

TEST_F(EngineAtPipes, AFrontendThatReadsNothingDelaysNoDispatch) {
  constexpr int kFiles = 100000;
  std::atomic<int> done = 0;
  script.install = [&](InstallerHost& host) {
    for (int i = 0; i < kFiles; ++i) {
      dispatch(host, [&] { host.progressIndicator().setDoubleValue(i); });
      ++done;
    }
  };
  send(Command::enter);
  send(Command::wait);
  send(Command::quit);
  engine->run();  // nobody reads the events, which are many times what a pipe holds
  EXPECT_EQ(done, kFiles);
}

TEST_F(EngineAtPipes, ProgressHasTheStateOfTheCopy) {
  script.install = [this](InstallerHost& host) {
    state.sourceFolder = "/Volumes/A/TANVO";
    state.currentVolumeNumber = 1;
    state.volumeCount = 3;
    host.copyBegun({"/Volumes/A/TANVO", "/T"});
    state.bytesWritten = 5000;
    state.filesDone = 2;
    state.currentFile = "/Volumes/A/TANVO/2.db";
    dispatch(host, [&] { host.progressIndicator().setDoubleValue(4.0); });
    host.copyFinished({"/Volumes/A/TANVO", "/T"}, true);
    host.copyBegun({"/Set/Library", "/Library/"});
    host.copyFinished({"/Set/Library", "/Library/"}, false);
  };
  std::thread frontend([this] {
    send(Command::enter);
    send(Command::wait);
    send(Command::quit);
    await<event::Idle>();
  });
  engine->run();
  frontend.join();
  std::vector<std::string> copies;
  for (const Event& event : all) {
    if (std::holds_alternative<event::CopyBegin>(event) || std::holds_alternative<event::CopyEnd>(event) ||
        std::holds_alternative<event::ProgressValue>(event)) {
      copies.push_back(encode(event));
    }
  }
  EXPECT_THAT(
      copies,
      ElementsAre(
          "{\"event\":\"copy.begin\",\"source\":\"/Volumes/A/TANVO\",\"destination\":\"/T\",\"volume\":2,"
          "\"volumes\":3}\n",
          "{\"event\":\"progress.value\",\"value\":4.0,\"volume\":2,\"volumes\":3,\"bytes\":5000,\"files\":2,"
          "\"file\":\"/Volumes/A/TANVO/2.db\"}\n",
          "{\"event\":\"copy.end\",\"source\":\"/Volumes/A/TANVO\",\"destination\":\"/T\",\"copied\":true,"
          "\"bytes\":5000,\"files\":2}\n",
          "{\"event\":\"copy.begin\",\"source\":\"/Set/Library\",\"destination\":\"/Library/\",\"volume\":0,"
          "\"volumes\":0}\n",
          "{\"event\":\"copy.end\",\"source\":\"/Set/Library\",\"destination\":\"/Library/\",\"copied\":false,"
          "\"bytes\":0,\"files\":0}\n"));
}

TEST_F(EngineAtPipes, ReportsLinesThatAreNoRequestAndSkipsThem) {
  std::thread frontend([this] {
    writeAll(requests.writeEnd, "nonsense\n{\"do\":\"ti");
    await<event::Error>();
    writeAll(requests.writeEnd, "tle\"}\r\n{\"do\":\"leave\"}\n{\"do\":\"forward\"}");
    hangUp();  // the last line has no newline
    await<event::Exit>();
  });
  engine->run();
  frontend.join();
  EXPECT_THAT(TestPage::calls, ElementsAre("title", "exit 0"));
}

TEST_F(EngineRun, AbortsWhenDispatchIsCalledOnTheMainThread) {
  script.onEnter = [](InstallerHost& host) { dispatch(host, [] {}); };
  EXPECT_EXIT(run({Command::enter}), testing::KilledBySignal(SIGABRT),
              "dispatchSync was called on the main thread");
}

}  // namespace
}  // namespace tavenhall::test

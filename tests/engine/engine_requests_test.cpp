#include "host/base/child_process.h"
#include "host/base/files.h"
#include "host/protocol/json_form.h"
#include "tests/engine/engine_run.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <gmock/gmock.h>
#include <memory>
#include <optional>
#include <poll.h>
#include <span>
#include <thread>
#include <unistd.h>
#include <utility>

// An engine with a program at the other end of its pipes.
namespace tavenhall::test {
namespace {

using testing::ElementsAre;

class EngineAtPipes : public EngineRun {
 protected:
  EngineAtPipes()
      : requests(makePipe()),
        events(makePipe()),
        writer(std::in_place, events.writeEnd),
        hub(&*writer),
        engine(std::in_place, hub, ejectNote, [this](ExitStatus, const std::string&) {
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
  EventHub hub;
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
  const auto mayEnd = std::make_shared<std::atomic<bool>>(false);  // the page's thread outlives the test's body
  script.install = [mayEnd](InstallerHost& host) {
    while (!*mayEnd) {
      dispatch(host, [&] { host.status().setTitleWithMnemonic("Installing..."); });
      std::this_thread::sleep_for(std::chrono::microseconds(100));  // as the copy of a small file takes
    }
  };
  std::thread frontend([this] {
    send(Command::enter);
    await<event::Status>();
    send(Command::quit);
  });
  engine->run();
  *mayEnd = true;
  frontend.join();
}

TEST_F(EngineAtPipes, StopsReadingWhileItsInputStaysOpen) {
  writeAll(requests.writeEnd, "nonsense\n");
  await<event::Error>();  // so the thread reads
  engine->stopReading();
  EXPECT_FALSE(engine->inputIsClosed());
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

TEST_F(EngineAtPipes, ReportsEachPhaseOfADisc) {
  script.install = [this](InstallerHost& host) {
    state.currentVolumeNumber = 1;
    state.volumeCount = 3;
    host.discBegun("/Volumes/Tessaphon B");
    for (int look = 0; look < 2; ++look) {
      dispatch(host, [&] { EXPECT_EQ(host.runModal({"Ready", "Insert", kButtons, 1}), 1000); });
      host.discAwaited(10);
    }
    state.sourceFolder = "/Volumes/Tessaphon B/TANVO";
    host.copyBegun({"/Volumes/Tessaphon B/TANVO", "/T"});
    host.copyFinished({"/Volumes/Tessaphon B/TANVO", "/T"}, true);
    host.ejectBegun();
    host.copyBegun({"/Set/Library", "/Library/"});
    host.copyFinished({"/Set/Library", "/Library/"}, true);
  };
  std::thread frontend([this] {
    send(Answer{kAlertFirstButtonReturn});
    send(Answer{kAlertFirstButtonReturn});
    send(Command::enter);
    send(Command::wait);
    send(Command::quit);
    await<event::Idle>();
  });
  engine->run();
  frontend.join();
  std::string phases;
  for (const Event& event : all) {
    if (std::holds_alternative<event::Phase>(event)) {
      phases += encode(event);
    }
  }
  EXPECT_EQ(phases,
            R"({"event":"phase","phase":"waiting","volume":2,"volumes":3,"disc":"Tessaphon B","seconds":0}
{"event":"phase","phase":"looking","volume":2,"volumes":3,"disc":"Tessaphon B","seconds":10}
{"event":"phase","phase":"not-found","volume":2,"volumes":3,"disc":"Tessaphon B","seconds":0}
{"event":"phase","phase":"looking","volume":2,"volumes":3,"disc":"Tessaphon B","seconds":10}
{"event":"phase","phase":"copying","volume":2,"volumes":3,"disc":"Tessaphon B","seconds":0}
{"event":"phase","phase":"checking","volume":2,"volumes":3,"disc":"Tessaphon B","seconds":0}
{"event":"phase","phase":"ejecting","volume":2,"volumes":3,"disc":"Tessaphon B","seconds":0}
{"event":"phase","phase":"copying","volume":0,"volumes":0,"disc":"","seconds":0}
{"event":"phase","phase":"checking","volume":0,"volumes":0,"disc":"","seconds":0}
)");
}

// An alert for the disc, as the page shows it until the disc is there; the answers.
std::vector<int> askForDisc(InstallerHost& host, const char* disc, bool isOptional, int times) {
  std::vector<int> answers;
  host.discBegun(disc);
  for (int i = 0; i < times; ++i) {
    dispatch(host, [&] {
      const auto buttons = std::span(kButtons).first(isOptional ? 2 : 1);
      answers.push_back(host.runModal({"Ready", "Insert", buttons, 1}));
    });
    host.discAwaited(10);
  }
  return answers;
}

TEST_F(EngineAtPipes, UnattendedADiscIsWaitedForAndOptionalOnesAreSkipped) {
  engine->answerUnattended({.discTimeout = std::chrono::minutes(1)});
  std::vector<std::vector<int>> answers;
  script.install = [&](InstallerHost& host) {
    dispatch(host, [&] { answers.push_back({host.runModal({"Detected", "Lite", kButtons, 1})}); });
    answers.push_back(askForDisc(host, "/Volumes/A", false, 3));
    answers.push_back(askForDisc(host, "/Volumes/B", true, 1));
  };
  send(Command::enter);
  send(Command::wait);
  send(Command::quit);
  engine->run();
  EXPECT_THAT(answers, ElementsAre(ElementsAre(1000), ElementsAre(1000, 1000, 1000), ElementsAre(1001)));
}

TEST_F(EngineAtPipes, UnattendedAnOptionalDiscIsWaitedForLikeTheOthersIfAsked) {
  engine->answerUnattended({.discTimeout = std::chrono::minutes(1), .skipsOptionalDiscs = false});
  std::vector<int> answers;
  script.install = [&](InstallerHost& host) { answers = askForDisc(host, "/Volumes/B", true, 2); };
  send(Command::enter);
  send(Command::wait);
  send(Command::quit);
  engine->run();
  EXPECT_THAT(answers, ElementsAre(1000, 1000));
}

TEST_F(EngineAtPipes, TheTimeOfARunIsSplit) {
  static constexpr std::chrono::milliseconds kPause{60};
  script.install = [this](InstallerHost& host) {
    host.discBegun("/Volumes/Tessaphon B");
    std::this_thread::sleep_for(kPause);  // counted as none
    host.discAwaited(10);
    std::this_thread::sleep_for(2 * kPause);
    state.sourceFolder = "/Volumes/Tessaphon B/TANVO";
    host.copyBegun({"/Volumes/Tessaphon B/TANVO", "/T"});
    std::this_thread::sleep_for(4 * kPause);
    host.copyFinished({"/Volumes/Tessaphon B/TANVO", "/T"}, true);
    host.ejectBegun();
    std::this_thread::sleep_for(kPause);
  };
  send(Command::enter);
  send(Command::wait);
  send(Command::quit);
  engine->run();
  summary = engine->summary();
  const double pause = std::chrono::duration<double>(kPause).count();
  EXPECT_GE(summary.waitingSeconds, 2 * pause);
  EXPECT_GE(summary.copyingSeconds, 4 * pause);
  EXPECT_GE(summary.checkingSeconds, 0.0);
  EXPECT_LE(summary.waitingSeconds + summary.copyingSeconds + summary.checkingSeconds,
            summary.seconds - 2 * pause);
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

}  // namespace
}  // namespace tavenhall::test

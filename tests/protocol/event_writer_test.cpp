#include "host/protocol/event_writer.h"

#include "host/base/child_process.h"
#include "host/protocol/json_form.h"

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/ioctl.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tavenhall::test {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

// A writer, and the pipe that it writes to.
class WrittenEvents : public testing::Test {
 protected:
  WrittenEvents() {
    std::signal(SIGPIPE, SIG_IGN);
    pipe_ = makePipe();
    writer_.emplace(pipe_.writeEnd);
  }
  ~WrittenEvents() override {
    closeReader();
    writer_.reset();
    close(pipe_.writeEnd);
  }

  void closeReader() {
    if (pipe_.readEnd >= 0) {
      close(std::exchange(pipe_.readEnd, -1));
    }
  }

  // What has arrived, once `wanted` is in it; waits up to ten seconds.
  std::string readUntil(const std::string& wanted) {
    const auto end = std::chrono::steady_clock::now() + 10s;
    while (received_.find(wanted) == std::string::npos && std::chrono::steady_clock::now() < end) {
      int there = 0;
      if (ioctl(pipe_.readEnd, FIONREAD, &there) == 0 && there > 0) {
        std::array<char, 65536> buffer;
        const ssize_t count = read(pipe_.readEnd, buffer.data(), buffer.size());
        received_.append(buffer.data(), static_cast<std::size_t>(count));
      } else {
        std::this_thread::sleep_for(1ms);
      }
    }
    EXPECT_THAT(received_, HasSubstr(wanted));
    return received_;
  }

  Pipe pipe_;
  std::optional<EventWriter> writer_;
  std::string received_;
};

TEST_F(WrittenEvents, EndWithTheSummaryWhateverAPageThreadStillReports) {
  writer_->write(event::Summary{});
  writer_->write(event::Idle{});
  writer_->finish();
  EXPECT_EQ(readUntil("summary"), encode(event::Summary{}));
}

TEST_F(WrittenEvents, ComeOutInTheirOrder) {
  std::string expected;
  for (int i = 0; i < 1000; ++i) {
    const Event event = i % 3 == 0   ? Event(event::ProgressValue{static_cast<double>(i), {}})
                        : i % 3 == 1 ? Event(event::Status{"file " + std::to_string(i)})
                                     : Event(event::Sheet{"OK", std::to_string(i), ""});
    writer_->write(event);
    expected += encode(event);
  }
  writer_->write(event::Idle{});
  EXPECT_EQ(readUntil("idle"), expected + encode(event::Idle{}));
}

TEST_F(WrittenEvents, AnUrgentEventTakesThoseBeforeItAlong) {
  writer_->write(event::Status{"a"});
  writer_->write(event::Idle{});
  EXPECT_EQ(readUntil("idle"), encode(event::Status{"a"}) + encode(event::Idle{}));
}

TEST_F(WrittenEvents, ProgressAloneComesOutToo) {
  writer_->write(event::ProgressValue{2.0, {}});
  readUntil(encode(event::ProgressValue{2.0, {}}));
}

TEST_F(WrittenEvents, AStalledReaderBlocksNothingAndLosesOnlyProgress) {
  const std::string text(1000, 'x');
  for (int i = 0; i < 5000; ++i) {  // 5 MB, far more than a pipe holds
    writer_->write(event::ProgressValue{static_cast<double>(i), {}});
    writer_->write(event::Sheet{"OK", std::to_string(i) + text, ""});
    writer_->write(event::Status{"file " + std::to_string(i / 100)});
  }
  writer_->write(event::ProgressValue{123456.0, {}});
  writer_->write(event::Summary{});
  std::thread finisher([this] { writer_->finish(); });
  const std::string all = readUntil(R"("event":"summary")");
  finisher.join();
  std::size_t at = 0;
  for (int i = 0; i < 5000; ++i) {
    at = all.find("\"message\":\"" + std::to_string(i) + "x", at);
    ASSERT_NE(at, std::string::npos) << "sheet " << i;
  }
  for (int i = 0; i < 50; ++i) {
    EXPECT_THAT(all, HasSubstr("\"file " + std::to_string(i) + "\""));
  }
  EXPECT_THAT(all, AllOf(HasSubstr("\"value\":0.0"), HasSubstr("\"value\":123456.0")));
  EXPECT_THAT(all, HasSubstr("\"value\":4998.0"));  // the latest before each event that is kept
}

TEST_F(WrittenEvents, AWaitingReaderBoundsTheProgressThatIsKept) {
  for (int i = 0; i < 500000; ++i) {
    writer_->write(event::ProgressValue{static_cast<double>(i), {}});
    writer_->write(event::Status{"Installing... Keyboards"});
  }
  writer_->write(event::Idle{});
  const std::string all = readUntil("idle");
  EXPECT_LT(all.size(), 3 * EventWriter::kMostPending);
  EXPECT_THAT(all, HasSubstr("\"value\":499999.0"));
}

TEST_F(WrittenEvents, AReaderThatIsGoneEndsNothing) {
  closeReader();
  for (int i = 0; i < 1000; ++i) {
    writer_->write(event::Sheet{"OK", std::string(1000, 'x'), ""});
  }
  writer_->finish();
}

TEST_F(WrittenEvents, NothingFollowsTheEnd) {
  writer_->write(event::Idle{});
  writer_->finish();
  writer_->write(event::Entered{});
  EXPECT_EQ(readUntil("idle"), encode(event::Idle{}));
  int there = 0;
  EXPECT_EQ(ioctl(pipe_.readEnd, FIONREAD, &there), 0);
  EXPECT_EQ(there, 0);
}

TEST_F(WrittenEvents, ADescriptorThatDoesNotBlockLosesNothing) {
  fcntl(pipe_.writeEnd, F_SETFL, O_NONBLOCK);
  const std::string text(300000, 'x');
  writer_->write(event::Instructions{text});
  writer_->write(event::Idle{});
  EXPECT_EQ(readUntil("idle"), encode(event::Instructions{text}) + encode(event::Idle{}));
}

TEST_F(WrittenEvents, DrainingWaitsForWhatIsHeldButNotForAReaderThatIsStuck) {
  writer_->write(event::Status{"a"});
  writer_->drain(10s);
  int there = 0;
  EXPECT_EQ(ioctl(pipe_.readEnd, FIONREAD, &there), 0);
  EXPECT_GT(there, 0);

  writer_->write(event::Instructions{std::string(300000, 'x')});
  const auto start = std::chrono::steady_clock::now();
  writer_->drain(50ms);
  EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
}

TEST_F(WrittenEvents, ThreadsMayWriteAtATime) {
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([this, thread] {
      for (int i = 0; i < 2000; ++i) {
        writer_->write(event::Status{std::to_string(thread) + ":" + std::to_string(i)});
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  writer_->write(event::Idle{});
  const std::string all = readUntil("idle");
  for (int thread = 0; thread < 4; ++thread) {
    std::size_t at = 0;
    for (int i = 0; i < 2000; ++i) {
      at = all.find("\"" + std::to_string(thread) + ":" + std::to_string(i) + "\"", at);
      ASSERT_NE(at, std::string::npos);
    }
  }
}

}  // namespace
}  // namespace tavenhall::test

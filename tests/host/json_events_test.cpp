#include "host/protocol/json_events.h"
#include "host/base/child_process.h"

#include <array>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/mman.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace tavenhall::test {
namespace {

// The bytes that saying something writes.
std::string written(const std::function<void(JsonEvents&)>& say) {
  const int file = memfd_create("events", MFD_CLOEXEC);
  JsonEvents events(file);
  say(events);
  events.flush();
  struct stat found {};
  fstat(file, &found);
  std::string bytes(static_cast<std::size_t>(found.st_size), '\0');
  EXPECT_EQ(pread(file, bytes.data(), bytes.size(), 0), found.st_size);
  close(file);
  return bytes;
}

constexpr std::array<const char*, 1> kOneButton{"OK"};
constexpr std::array<const char*, 2> kTwoButtons{"OK", "Skip"};

TEST(JsonEvents, ThePageWasEntered) {
  EXPECT_EQ(written([](JsonEvents& events) { events.plain("entered"); }), "{\"event\":\"entered\"}\n");
}

TEST(JsonEvents, ThePageIsIdle) {
  EXPECT_EQ(written([](JsonEvents& events) { events.plain("idle"); }), "{\"event\":\"idle\"}\n");
}

TEST(JsonEvents, Texts) {
  EXPECT_EQ(written([](JsonEvents& events) {
              events.text("title", "Installing Data");
              events.text("instructions", "a\n\"b\"\\");
              events.text("status", " ");
            }),
            "{\"event\":\"title\",\"text\":\"Installing Data\"}\n"
            "{\"event\":\"instructions\",\"text\":\"a\\n\\\"b\\\"\\\\\"}\n"
            "{\"event\":\"status\",\"text\":\" \"}\n");
}

TEST(JsonEvents, TextsOutsideAsciiAreWrittenAsTheyAre) {
  EXPECT_EQ(written([](JsonEvents& events) { events.text("title", "Größe 音"); }),
            "{\"event\":\"title\",\"text\":\"Größe 音\"}\n");
}

TEST(JsonEvents, BytesThatAreNotUtf8AreReplaced) {
  EXPECT_EQ(written([](JsonEvents& events) { events.text("title", "Caf\xE9, \xFF"); }),
            "{\"event\":\"title\",\"text\":\"Caf\xEF\xBF\xBD, \xEF\xBF\xBD\"}\n");
}

TEST(JsonEvents, ControlCharactersAreEscaped) {
  EXPECT_EQ(written([](JsonEvents& events) { events.text("title", std::string_view("\x1b[\t\0\x7f", 5)); }),
            "{\"event\":\"title\",\"text\":\"\\u001b[\\t\\u0000\x7f\"}\n");
}

TEST(JsonEvents, Numbers) {
  EXPECT_EQ(written([](JsonEvents& events) {
              events.number("progress.min", 0.0);
              events.number("progress.max", 5859.375);
              events.number("progress.value", 10.0);
              events.number("progress.value", 12345678.0);
            }),
            "{\"event\":\"progress.min\",\"value\":0.0}\n"
            "{\"event\":\"progress.max\",\"value\":5859.375}\n"
            "{\"event\":\"progress.value\",\"value\":10.0}\n"
            "{\"event\":\"progress.value\",\"value\":12345678.0}\n");
}

TEST(JsonEvents, Buttons) {
  EXPECT_EQ(written([](JsonEvents& events) {
              events.enabled("previous", false);
              events.enabled("next", true);
            }),
            "{\"event\":\"previous\",\"enabled\":false}\n"
            "{\"event\":\"next\",\"enabled\":true}\n");
}

TEST(JsonEvents, LeavingThePage) {
  EXPECT_EQ(written([](JsonEvents& events) {
              events.exit(0, true);
              events.exit(1, false);
            }),
            "{\"event\":\"exit\",\"direction\":0,\"allowed\":true}\n"
            "{\"event\":\"exit\",\"direction\":1,\"allowed\":false}\n");
}

TEST(JsonEvents, Alerts) {
  EXPECT_EQ(
      written([](JsonEvents& events) {
        events.alert({"Ready for next volume", "Please insert Tessaphon B", kOneButton, 1});
        events.alert({"m", "i\xFF", kTwoButtons, 2});
      }),
      "{\"event\":\"alert\",\"message\":\"Ready for next volume\",\"informative\":\"Please insert Tessaphon "
      "B\",\"buttons\":[\"OK\"],\"style\":1}\n"
      "{\"event\":\"alert\",\"message\":\"m\",\"informative\":\"i\xEF\xBF\xBD\",\"buttons\":[\"OK\",\"Skip\"],"
      "\"style\":2}\n");
}

TEST(JsonEvents, Sheets) {
  EXPECT_EQ(written([](JsonEvents& events) {
              events.sheet({"OK", "100 %s of \"it\""});
            }),
            "{\"event\":\"sheet\",\"button\":\"OK\",\"message\":\"100 %s of \\\"it\\\"\"}\n");
}

TEST(JsonEvents, Assertions) {
  EXPECT_EQ(written([](JsonEvents& events) {
              events.assertion("NoDisplaySleepAssertion", 255, "Tavenhall installation in progress");
              events.assertionReleased("NoDisplaySleepAssertion");
            }),
            "{\"event\":\"assertion\",\"type\":\"NoDisplaySleepAssertion\",\"level\":255,\"name\":\"Tavenhall "
            "installation in progress\"}\n"
            "{\"event\":\"assertion.release\",\"type\":\"NoDisplaySleepAssertion\"}\n");
}

TEST(JsonEvents, Errors) {
  EXPECT_EQ(written([](JsonEvents& events) { events.error("not understood"); }),
            "{\"event\":\"error\",\"message\":\"not understood\"}\n");
}

TEST(JsonEvents, EachIsWrittenAtOnceAndWholeThoughTheReaderIsSlow) {
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
  const std::string text(300000, 'x');  // more than a pipe holds
  std::string received;
  std::thread reader([&] {
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = read(ends[0], buffer.data(), buffer.size())) > 0;) {
      received.append(buffer.data(), static_cast<std::size_t>(count));
    }
  });
  JsonEvents(ends[1]).text("status", text);
  close(ends[1]);
  reader.join();
  close(ends[0]);

  EXPECT_EQ(received, "{\"event\":\"status\",\"text\":\"" + text + "\"}\n");
}

TEST(JsonEvents, NobodyWhoReadsIsNoError) {
  std::signal(SIGPIPE, SIG_IGN);
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
  close(ends[0]);
  JsonEvents events(ends[1]);
  events.plain("idle");
  events.plain("idle");

  EXPECT_FALSE(writeAll(ends[1], "x"));
  close(ends[1]);
}

// What was written when, without flushing.
class HeldEvents : public testing::Test {
 protected:
  ~HeldEvents() override { close(file); }

  [[nodiscard]] std::string written() const {
    std::array<char, 4096> bytes;
    const ssize_t count = pread(file, bytes.data(), bytes.size(), 0);
    return {bytes.data(), static_cast<std::size_t>(count)};
  }

  const int file = memfd_create("events", MFD_CLOEXEC);
  JsonEvents events{file};
};

TEST_F(HeldEvents, TheFirstOfTheCopyIsWrittenAtOnce) {
  events.number("progress.value", 2.0);
  EXPECT_EQ(written(), "{\"event\":\"progress.value\",\"value\":2.0}\n");
  EXPECT_FALSE(events.isHolding());
}

TEST_F(HeldEvents, ThoseThatFollowGoOutTogether) {
  const auto start = std::chrono::steady_clock::now();
  int count = 0;
  std::string all;
  int writings = 0;
  std::string before;
  while (std::chrono::steady_clock::now() - start < JsonEvents::kLongestHold * 5) {
    events.number("progress.value", 1.0);
    events.text("status", "Installing... Voices");
    all +=
        "{\"event\":\"progress.value\",\"value\":1.0}\n{\"event\":\"status\",\"text\":\"Installing... "
        "Voices\"}\n";
    ++count;
    struct stat found {};
    fstat(file, &found);
    if (static_cast<std::size_t>(found.st_size) != before.size()) {
      before.resize(static_cast<std::size_t>(found.st_size));
      ++writings;
    }
  }
  const auto passed = std::chrono::steady_clock::now() - start;
  events.flush();
  std::string bytes(all.size() + 1, '\0');
  const ssize_t length = pread(file, bytes.data(), bytes.size(), 0);
  bytes.resize(static_cast<std::size_t>(length));
  EXPECT_EQ(bytes, all);  // none is left out
  EXPECT_GE(writings, 1);
  EXPECT_LE(writings, passed / JsonEvents::kLongestHold + 1);
  EXPECT_LT(writings, count);
}

TEST_F(HeldEvents, AnyOtherEventTakesThemAlong) {
  events.text("status", "a");
  events.text("status", "b");
  events.plain("idle");
  EXPECT_EQ(
      written(),
      "{\"event\":\"status\",\"text\":\"a\"}\n{\"event\":\"status\",\"text\":\"b\"}\n{\"event\":\"idle\"}\n");
  EXPECT_FALSE(events.isHolding());
}

TEST_F(HeldEvents, FlushingWritesThem) {
  events.plain("entered");
  events.text("status", "a");
  events.flush();
  EXPECT_EQ(written(), "{\"event\":\"entered\"}\n{\"event\":\"status\",\"text\":\"a\"}\n");
}

TEST_F(HeldEvents, TheirNumbersAndTextsHaveTheFormOfAllOthers) {
  events.number("progress.value", 0.0);
  events.number("progress.value", 5859.375);
  events.number("progress.value", 1e15);
  events.number("progress.value", 1e22);
  events.text("status", "\"a\\\n\xE9");
  events.flush();
  EXPECT_EQ(written(),
            "{\"event\":\"progress.value\",\"value\":0.0}\n"
            "{\"event\":\"progress.value\",\"value\":5859.375}\n"
            "{\"event\":\"progress.value\",\"value\":1e+15}\n"
            "{\"event\":\"progress.value\",\"value\":1e+22}\n"
            "{\"event\":\"status\",\"text\":\"\\\"a\\\\\\n\xEF\xBF\xBD\"}\n");
}

}  // namespace
}  // namespace tavenhall::test

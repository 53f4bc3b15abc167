#include "tests/rehearse/rehearsals.h"
#include "tests/support/children.h"
#include "tests/support/files.h"
#include "tests/support/private_root.h"
#include "tests/support/waiting.h"

#include <array>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <ostream>
#include <random>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>

// Commands that are ended at any moment, by a request or for good, and what they leave then. Each moment is
// another one in each run; a failure names its signal and its moment.
namespace tavenhall::test {
namespace {

using testing::AnyOf;
using testing::HasSubstr;
using testing::SizeIs;

const std::string kBoardFile = "/Users/tester/board.html";

using Seconds = std::chrono::duration<double>;

std::vector<std::string> lumaweave(const std::string& command, std::vector<std::string> more = {}) {
  more.insert(more.begin(), {kTavinstall, command, kSetFolder, "--product", "Lumaweave"});
  return more;
}

void makeImages() {
  makeDiscSet();
  turnDiscsIntoImages();
}

void makeLargeImages() {
  makeDiscSet();
  for (const char* disc :
       {"discs/1 Tavenhall Lumaweave/DOVA/large.db", "discs/2 Tavenhall Lumaweave/DOVA/large.db"}) {
    writeFile(inSet(disc), "");
    std::filesystem::resize_file(inSet(disc), 300'000'000);
  }
  turnDiscsIntoImages();
}

void makeLibraryAndSet() {
  for (int file = 0; file < 40; ++file) {
    writeFile("/Users/tester/Library of mine/" + std::to_string(file) + ".db",
              someBytes(3'000'000, static_cast<unsigned>(file)));
  }
  ASSERT_EQ(runThrough({kTavinstall, "new", kSetFolder, "--product", "Lumaweave", "--mode", "discs"}).status,
            0);
}

std::vector<std::string> split(std::vector<std::string> more) {
  more.insert(more.begin(),
              {kTavinstall, "split", "/Users/tester/Library of mine", kSetFolder, "--disc-size", "50m"});
  return more;
}

struct Interrupted {
  const char* name;
  void (*makeSet)();
  std::vector<std::string> command;
  std::string input;
  bool isOrdinaryUsers = false;

  friend void PrintTo(const Interrupted& interrupted, std::ostream* out) { *out << interrupted.name; }
};

// Answers for the discs go ahead of what asks for them.
const std::string kRequests =
    "{\"answer\":1000}\n{\"answer\":1000}\n{\"do\":\"enter\"}\n{\"do\":\"wait\"}\n{\"do\":\"forward\"}\n"
    "{\"do\":\"quit\"}\n";

const std::array<Interrupted, 9> kInterrupted{{
    {"quiet", [] { makeDiscSet(); }, lumaweave("rehearse", {"--ui", "quiet"}), ""},
    {"images", makeImages, lumaweave("rehearse", {"--ui", "quiet"}), ""},
    {"imagesOfAnOrdinaryUser", makeImages, lumaweave("rehearse", {"--ui", "quiet"}), "", true},
    {"json", makeImages, lumaweave("rehearse", {"--ui", "json"}), kRequests},
    {"plain", makeImages, lumaweave("rehearse", {"--ui", "plain"}), "1\n1\n"},
    {"storyboard", makeImages, lumaweave("rehearse", {"--storyboard", kBoardFile}), ""},
    {"manifest", makeLargeImages, lumaweave("manifest"), ""},
    {"splitToSquashfs", makeLibraryAndSet, split({"--copy", "--images", "squashfs"}), ""},
    {"splitToIso", makeLibraryAndSet, split({"--images", "iso"}), ""},
}};

class AnyMoment : public testing::TestWithParam<Interrupted> {
 protected:
  AnyMoment() {
    prctl(PR_SET_CHILD_SUBREAPER, 1);  // what outlives its parent becomes this process's child
    GetParam().makeSet();
    std::filesystem::copy(kSetFolder, kCopy, std::filesystem::copy_options::recursive);
  }

  [[nodiscard]] static bool isSplit() { return GetParam().command[1] == "split"; }

  [[nodiscard]] static std::vector<std::string> command() {
    return GetParam().isOrdinaryUsers ? asOrdinaryUser(GetParam().command) : GetParam().command;
  }

  // The exit status, and what was said on standard error.
  static std::pair<int, std::string> run(const std::function<void(pid_t program)>& meanwhile) {
    ChildProgram program(command());
    program.write(GetParam().input);
    meanwhile(program.pid());
    const int status = program.waitForEnd();
    return {status, program.standardError()};
  }

  static void expectNoProcess() {
    EXPECT_TRUE(comesTrue([] {
      while (waitpid(-1, nullptr, WNOHANG) > 0) {
      }
      return childrenOf(getpid()).empty();
    }));
  }

  static void expectStopped(int signal, int status, const std::string& said) {
    // In its first moments it handles no signal yet, nor has it created anything.
    EXPECT_THAT(status, AnyOf(0, 1, 128 + signal)) << said;
    EXPECT_EQ(status == 1, said.find("stopped") != std::string::npos) << said;
    expectNothingLeft();
    if (status != 0 && said.find("the discs are complete") == std::string::npos) {
      EXPECT_EQ(runThrough({"diff", "-r", kCopy, kSetFolder}).output, "");
    }
  }

  static void expectKilled(int status, const std::string& said) {
    EXPECT_THAT(status, AnyOf(0, 128 + SIGKILL)) << said;
    EXPECT_THAT(temporaryMounts(), SizeIs(0));
    if (isSplit() && runThrough(command()).status != 0) {
      EXPECT_THAT(runThrough(command()).error, HasSubstr(" is there already; remove the set's discs"));
      std::filesystem::remove_all(inSet("discs"));
      EXPECT_EQ(runThrough(command()).error, "");
    }
  }

  static void restore() {
    std::filesystem::remove_all(kSetFolder);
    std::filesystem::copy(kCopy, kSetFolder, std::filesystem::copy_options::recursive);
    std::filesystem::remove(kBoardFile);
    for (const auto& entry : std::filesystem::directory_iterator("/tmp")) {
      std::filesystem::remove_all(entry);
    }
  }

 private:
  static constexpr const char* kCopy = "/Users/tester/Copy of the set";
};

int momentsToTry() {
  const char* asked = std::getenv("TAVINSTALL_MOMENTS");
  return asked != nullptr ? std::stoi(asked) : 40;
}

TEST_P(AnyMoment, IsOneToEnd) {
  if (GetParam().isOrdinaryUsers && !ordinaryUserHasFuse()) {
    GTEST_SKIP() << "no FUSE for ordinary users";
  }
  const auto began = std::chrono::steady_clock::now();
  ASSERT_EQ(run([](pid_t /*program*/) {}).first, 0);
  const Seconds whole = std::chrono::steady_clock::now() - began;

  std::random_device seed;
  std::mt19937 random(seed());
  std::uniform_real_distribution<double> fraction;
  for (int i = 0; i < momentsToTry() && !HasFailure(); ++i) {
    restore();
    constexpr std::array<int, 4> kSignals{SIGTERM, SIGHUP, SIGINT, SIGKILL};
    const int signal = kSignals[random() % kSignals.size()];
    const Seconds moment = whole * std::pow(fraction(random), 3);  // most happens early; later it mostly waits
    SCOPED_TRACE("signal " + std::to_string(signal) + " after " + std::to_string(moment.count()) + " s of " +
                 std::to_string(whole.count()) + " s");
    const auto [status, said] = run([signal, moment](pid_t program) {
      std::this_thread::sleep_for(moment);
      kill(program, signal);
    });
    expectNoProcess();
    signal == SIGKILL ? expectKilled(status, said) : expectStopped(signal, status, said);
  }
}

INSTANTIATE_TEST_SUITE_P(Commands, AnyMoment, testing::ValuesIn(kInterrupted),
                         [](const auto& tried) { return tried.param.name; });

}  // namespace
}  // namespace tavenhall::test

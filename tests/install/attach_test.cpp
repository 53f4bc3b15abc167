#include "tests/install/case_files.h"
#include "tests/install/child_program.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

// The commands that reach an install that runs already.
namespace tavenhall::test {
namespace {

using nlohmann::ordered_json;
using testing::Contains;
using testing::MatchesRegex;

constexpr const char* kSummary = "/tmp/summary.json";
constexpr const char* kContinues = "The installation continues. \"tavinstall attach\" shows it again.";
const std::string kData = std::string(kMakersFolder) + "/TANVO";

// Disc A is there; the page waits for disc B, which may be skipped.
class Attach : public testing::Test {
 protected:
  Attach() {
    layPackage(
        "Mode = InstallFromVolumes\nInstallDataTitle = Tessaphon\nInstallingData = Installing into:\\n%s\n"
        "InstalledData = All is in:\\n%s\nNumberOfVolumes = 2\nTotalSizeMillionsBytes = 1\n");
    layTree(kDiscA, {file("TANVO/Tessaphon/a.db", 12288)});
    std::filesystem::create_directories("/tmp/runtime");
    chmod("/tmp/runtime", 0700);
    setenv("XDG_RUNTIME_DIR", "/tmp/runtime", 1);
  }

  static std::vector<std::string> runCommand(const std::string& frontend) {
    return {kTavinstall, "run", "--package", kPackage, "--ui", frontend, "--summary", kSummary};
  }

  static Outcome tavinstall(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), kTavinstall);
    return runThrough(arguments);
  }

  static void readUntil(ChildProgram& program, const std::string& line) {
    while (true) {
      const auto read = program.readLine();
      ASSERT_TRUE(read) << "the end came before: " << line;
      if (*read == line) {
        return;
      }
    }
  }

  static ordered_json summary() { return ordered_json::parse(readFile(kSummary)); }
};

TEST_F(Attach, WithoutAnInstallEachCommandSaysSo) {
  EXPECT_EQ(tavinstall({"status"}).output, "No installation is running.\n");
  EXPECT_EQ(tavinstall({"status"}).status, 1);
  EXPECT_EQ(tavinstall({"status", "--json"}).output, "{\"running\":false,\"reachable\":false}\n");
  for (const char* command : {"attach", "stop"}) {
    EXPECT_EQ(tavinstall({command}).error, "tavinstall: no installation is running\n");
    EXPECT_EQ(tavinstall({command}).status, 1);
  }
}

TEST_F(Attach, StatusTellsWhatTheInstallDoes) {
  ChildProgram run(runCommand("plain"));
  readUntil(run, "  Please insert Tessaphon B");

  const Outcome line = tavinstall({"status"});
  EXPECT_EQ(line.status, 3) << "it waits for an answer";
  EXPECT_EQ(line.output,
            "Tessaphon: waiting for an answer: Please insert Tessaphon B, 12.3 kB of 1.0 MB (1 %)\n");
  EXPECT_EQ(line.error, "");
  const ordered_json fields = ordered_json::parse(tavinstall({"status", "--json"}).output);
  EXPECT_EQ(fields["running"], true);
  EXPECT_EQ(fields["product"], "Tessaphon");
  EXPECT_EQ(fields["package"], kPackage);
  EXPECT_EQ(fields["phase"], "waiting");
  EXPECT_EQ(fields["disc"], "Tessaphon B");
  EXPECT_EQ(fields["volume"], 2);
  EXPECT_EQ(fields["bytes"], 12288);
  EXPECT_EQ(fields["files"], 1);
  EXPECT_EQ(fields["minutesLeft"], nullptr) << "nothing is copied";
  EXPECT_EQ(fields["prompt"]["informative"], "Please insert Tessaphon B");
  run.closeInput();
  EXPECT_EQ(run.waitForEnd(), 3);
}

TEST_F(Attach, TheSocketIsTheUsersAlone) {
  ChildProgram run(runCommand("plain"));
  readUntil(run, "  Please insert Tessaphon B");

  struct stat folder {};
  ASSERT_EQ(stat("/tmp/runtime/tavinstall", &folder), 0);
  EXPECT_EQ(folder.st_mode & 07777, 0700U);
  for (const auto& entry : std::filesystem::directory_iterator("/tmp/runtime/tavinstall")) {
    struct stat socket {};
    ASSERT_EQ(stat(entry.path().c_str(), &socket), 0);
    EXPECT_TRUE(S_ISSOCK(socket.st_mode));
    EXPECT_EQ(socket.st_mode & 07777, 0700U);
  }
  run.closeInput();
  run.waitForEnd();
  EXPECT_TRUE(std::filesystem::is_empty("/tmp/runtime/tavinstall")) << "the socket is removed at the end";
}

TEST_F(Attach, ARuntimeFolderThatOthersCanEnterIsNotUsed) {
  chmod("/tmp/runtime", 0755);
  std::filesystem::create_directories("/tmp/tavinstall-" + std::to_string(geteuid()));
  chmod(("/tmp/tavinstall-" + std::to_string(geteuid())).c_str(), 0777);
  ChildProgram run(runCommand("plain"));
  readUntil(run, "  Please insert Tessaphon B");

  EXPECT_EQ(tavinstall({"status"}).output, "An installation is running, but it cannot be reached.\n");
  EXPECT_EQ(tavinstall({"status"}).status, 0);
  EXPECT_EQ(tavinstall({"stop"}).error, "tavinstall: an installation is running, but it cannot be reached\n");
  run.closeInput();
  EXPECT_EQ(run.waitForEnd(), 3);
}

TEST_F(Attach, TwoFrontendsSeeTheSameAndAPromptIsAnsweredOnce) {
  ChildProgram run(runCommand("plain"));
  readUntil(run, "  Please insert Tessaphon B");
  ChildProgram attached({kTavinstall, "attach", "--ui", "plain"});
  readUntil(attached, "  Please insert Tessaphon B");
  readUntil(attached, "  1) OK");
  layTree(kDiscB, {file("TANVO/Tessaphon/b.db", 10240)});

  attached.write("1\n");

  readUntil(run, "  Answered: OK");
  run.write("1\n");  // too late for this prompt, and there is no other
  EXPECT_EQ(attached.waitForEnd(), 0);
  EXPECT_EQ(run.waitForEnd(), 0);
  EXPECT_EQ(summary()["alerts"].size(), 1U);
  EXPECT_EQ(summary()["alerts"][0]["answer"], 1000);
  EXPECT_EQ(summary()["audit"]["files"], 2);
}

TEST_F(Attach, AnInstallWhoseFrontendWasKilledWaitsForTheNext) {
  ChildProgram run(runCommand("plain"));
  readUntil(run, "  Please insert Tessaphon B");
  kill(run.pid(), SIGKILL);
  EXPECT_EQ(run.waitForEnd(), 128 + SIGKILL);
  EXPECT_EQ(tavinstall({"status"}).status, 3);
  layTree(kDiscB, {file("TANVO/Tessaphon/b.db", 10240)});

  ChildProgram attached({kTavinstall, "attach", "--ui", "plain"});
  readUntil(attached, "  1) OK");
  attached.write("1\n");
  const std::vector<std::string> lines = attached.readLines();

  EXPECT_EQ(attached.waitForEnd(), 0);
  EXPECT_THAT(lines, Contains(MatchesRegex("Installed 22.5 kB in .*\\.")));
  EXPECT_EQ(summary()["installed"], true);
  EXPECT_TRUE(exists(kData + "/Tessaphon/b.db"));
}

TEST_F(Attach, AFrontendThatAttachedMayLeaveAgain) {
  ChildProgram run(runCommand("plain"));
  readUntil(run, "  Please insert Tessaphon B");
  ChildProgram attached({kTavinstall, "attach", "--ui", "plain"});
  readUntil(attached, "  1) OK");

  kill(attached.pid(), SIGINT);

  readUntil(attached, kContinues);
  EXPECT_EQ(attached.waitForEnd(), 3);
  EXPECT_EQ(tavinstall({"status"}).status, 3);
  run.closeInput();
  EXPECT_EQ(run.waitForEnd(), 3);
}

TEST_F(Attach, StopEndsTheInstallAndSaysWhatIsLeft) {
  ChildProgram run(runCommand("plain"));
  readUntil(run, "  Please insert Tessaphon B");

  const Outcome outcome = tavinstall({"stop"});

  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_EQ(outcome.output,
            "Stopped. The files copied so far are kept. Run the installer again to complete the installation.\n"
            "  Still to install: /Volumes/Tessaphon B/TANVO\n");
  EXPECT_EQ(run.waitForEnd(), 4);
  EXPECT_EQ(summary()["status"], 4);
  EXPECT_EQ(summary()["reason"], "stopped on request");
  ASSERT_EQ(summary()["remaining"].size(), 1U);
  EXPECT_EQ(summary()["remaining"][0]["source"], "/Volumes/Tessaphon B/TANVO");
  EXPECT_EQ(summary()["remaining"][0]["volume"], 2);
  EXPECT_TRUE(exists(kData + "/Tessaphon/a.db"));
}

TEST_F(Attach, AStopBeforeTheFirstFileSaysThatNothingWasInstalled) {
  ChildProgram run(runCommand("json"));
  run.write("{\"do\":\"title\"}\n");
  ASSERT_TRUE(run.readLine());

  const Outcome outcome = tavinstall({"stop"});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output,
            "Stopped. Nothing was installed.\n"
            "  Still to install: /Volumes/Tavenhall Tessaphon A/TANVO\n"
            "  Still to install: /Volumes/Tessaphon B/TANVO\n");
  EXPECT_EQ(run.waitForEnd(), 4);
}

// What has ended cannot be stopped any more, and must not be called stopped.
TEST_F(Attach, AStopAfterTheEndOfTheInstallSaysThatItHadEnded) {
  layTree(kDiscB, {file("TANVO/Tessaphon/b.db", 10240)});
  ChildProgram run(runCommand("json"));
  run.write("{\"do\":\"enter\"}\n{\"do\":\"wait\"}\n");
  readUntil(run, "{\"event\":\"idle\"}");

  const Outcome outcome = tavinstall({"stop"});

  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, "The installation had ended before: everything is installed.\n");
  EXPECT_EQ(run.waitForEnd(), 0);
  EXPECT_EQ(summary()["status"], 0);
  EXPECT_EQ(summary()["installed"], true);
}

// A program answers its prompts itself: an answer from elsewhere would make its next one press a wrong button.
TEST_F(Attach, AProgramsInstallCanBeWatchedAndStopped) {
  ChildProgram run(runCommand("json"));
  run.write("{\"do\":\"enter\"}\n");
  while (tavinstall({"status", "--json"}).output.find("Please insert Tessaphon B") == std::string::npos) {
    usleep(20000);
  }
  EXPECT_EQ(tavinstall({"status"}).status, 0) << "no user's answer is wanted";
  ChildProgram attached({kTavinstall, "attach", "--ui", "plain"});
  readUntil(attached, "  Please insert Tessaphon B");
  attached.write("1\n");

  EXPECT_EQ(tavinstall({"stop"}).status, 0);

  EXPECT_EQ(attached.waitForEnd(), 4);
  EXPECT_EQ(run.waitForEnd(), 4);
  EXPECT_EQ(summary()["alerts"].size(), 1U);
  EXPECT_FALSE(summary()["alerts"][0].contains("answer"));
}

TEST_F(Attach, AFrontendThatReadsNothingHoldsUpNoEnd) {
  ChildProgram run(runCommand("plain"));
  readUntil(run, "  Please insert Tessaphon B");
  ChildProgram attached({kTavinstall, "attach", "--ui", "plain"});
  readUntil(attached, "  1) OK");
  kill(attached.pid(), SIGSTOP);

  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(tavinstall({"stop"}).status, 0);
  EXPECT_EQ(run.waitForEnd(), 4);

  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
  kill(attached.pid(), SIGCONT);
  EXPECT_EQ(attached.waitForEnd(), 4) << "it reads the end that was written for it";
}

TEST_F(Attach, AnEngineThatDoesNotAnswerIsNotWaitedFor) {
  ChildProgram run({kTavinstall, "run", "--package", kPackage, "--ui", "quiet", "--disc-timeout", "600"});
  while (tavinstall({"status"}).output.find("looking") == std::string::npos) {
    usleep(20000);
  }
  kill(run.pid(), SIGSTOP);  // without a frontend it is the engine itself
  const Outcome outcome = tavinstall({"status"});
  kill(run.pid(), SIGCONT);

  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.error, "tavinstall: the installation does not answer\n");
  kill(run.pid(), SIGTERM);
  EXPECT_EQ(run.waitForEnd(), 4);
}

}  // namespace
}  // namespace tavenhall::test

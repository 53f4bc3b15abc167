#include "tests/rehearse/rehearsals.h"
#include "tests/support/private_root.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <netinet/in.h>
#include <sstream>
#include <sys/ipc.h>
#include <sys/mount.h>
#include <sys/shm.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

// What a set's own commands reach: nothing outside the sandbox. An application's name is the way in, since a
// shell reads it.
namespace tavenhall::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr const char* kCommandInName = "$(cd;cd Downloads;cd Installer;sh attack).app";
constexpr const char* kKept = "/tmp/kept";

void listenAt(const sockaddr* address, socklen_t size, int family) {
  const int socket = ::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ASSERT_EQ(bind(socket, address, size), 0) << std::strerror(errno);
  ASSERT_EQ(listen(socket, 8), 0) << std::strerror(errno);
}

void listenAtName(const std::string& name) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, name.data(), name.size());
  const std::size_t size = offsetof(sockaddr_un, sun_path) + name.size() + (name[0] == '\0' ? 0 : 1);
  listenAt(reinterpret_cast<const sockaddr*>(&address), static_cast<socklen_t>(size), AF_UNIX);
}

int listenAtPort() {
  const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  EXPECT_EQ(bind(socket, reinterpret_cast<const sockaddr*>(&address), size), 0) << std::strerror(errno);
  EXPECT_EQ(listen(socket, 8), 0) << std::strerror(errno);
  getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
  return ntohs(address.sin_port);
}

// The attempts by their names: "reached", or "refused" and why.
std::map<std::string, std::string> attemptsIn(const std::string& text) {
  std::map<std::string, std::string> results;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    results[line.substr(0, line.find(' '))] = line.substr(line.find(' ') + 1);
  }
  return results;
}

// An update whose application runs escape_attempts in the set's folder, and what there is outside to be
// reached.
class RehearseSandbox : public testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    makeUpdateSet();
    fs::copy_file(TAVINSTALL_BINARY_DIR "/bin/escape_attempts", inSet("escape_attempts"));
    writeFile(inSet("attack"), "./escape_attempts >\"$HOME/attempts.txt\" 2>&1\n");
    writeFile(inSet(std::string("Applications/") + kCommandInName + "/Contents/program"), "program");

    ASSERT_EQ(mount("tmpfs", "/run", "tmpfs", 0, nullptr), 0) << std::strerror(errno);
    for (const std::string& path : {std::string("/run/socket"), inSet("socket")}) {
      listenAtName(path);
      fs::permissions(path, fs::perms::all);
    }
    fs::permissions(kSetFolder, fs::perms::all);  // only the sandbox keeps another user from writing to it
    const std::string abstractName = "escape-" + std::to_string(getpid());
    listenAtName(std::string(1, '\0') + abstractName);
    writeFile("/run/secret", "secret");
    makeFolder("/tmp/scratch");
    const int runFolder = fcntl(open("/run", O_RDONLY | O_DIRECTORY), F_DUPFD, 100);
    setenv("ESCAPE_SECRET", "secret", 1);
    sharedMemory_ = shmget(getpid(), 4096, IPC_CREAT | 0666);
    ASSERT_GE(sharedMemory_, 0) << std::strerror(errno);
    writeFile(inSet("targets"), "port " + std::to_string(listenAtPort()) +
                                    "\nrun-socket /run/socket\nabstract-socket " + abstractName +
                                    "\nsecret /run/secret\nscratch /tmp\nshared-memory " +
                                    std::to_string(getpid()) + "\nprocess " + std::to_string(getpid()) +
                                    "\ndescriptor " + std::to_string(runFolder) + "\n");
  }

  void TearDown() override { shmctl(sharedMemory_, IPC_RMID, nullptr); }

  static Outcome run(const std::vector<std::string>& command) {
    return runThrough(GetParam() ? asOrdinaryUser(command) : command);
  }

 private:
  int sharedMemory_ = -1;
};

TEST_P(RehearseSandbox, KeepsASetsCommandsInside) {
  // What this machine refuses outside, too, proves nothing.
  const Outcome outside = run({"sh", "-c", "cd " + kSetFolder + " && ./escape_attempts && rm -f written"});
  const auto reachedOutside = attemptsIn(outside.output);
  for (const char* name :
       {"network", "socket-in-run", "socket-in-set", "abstract-socket", "process", "shared-memory",
        "setuid-program", "write-to-set", "read-secret", "inherited-descriptor", "environment"}) {
    EXPECT_EQ(reachedOutside.at(name), "reached") << name;
  }

  const Outcome outcome = run(rehearseCommand({"--ui", "quiet", "--keep", kKept}));
  EXPECT_EQ(outcome.status, 1) << outcome.output << outcome.error;
  EXPECT_THAT(outcome.output, HasSubstr("FAILED: tavinstall check: Applications/$(cd;cd Downloads;cd "
                                        "Installer;sh attack).app: error: "));
  EXPECT_THAT(outcome.output, HasSubstr("the installation left a file that is not in the set: "
                                        "/Users/rehearsal/attempts.txt\n"));
  const auto inside = attemptsIn(readFile(std::string(kKept) + "/Users/rehearsal/attempts.txt"));
  EXPECT_EQ(inside.size(), reachedOutside.size());
  for (const auto& [name, result] : inside) {
    EXPECT_THAT(result, testing::StartsWith("refused")) << name;
  }
  EXPECT_FALSE(exists(inSet("written")));
  EXPECT_EQ(readFile("/run/secret"), "secret");
}

INSTANTIATE_TEST_SUITE_P(Users, RehearseSandbox, testing::Values(false, true), [](const auto& instance) {
  return instance.param ? "AnOrdinaryUser" : "TheTestsOwn";
});

}  // namespace
}  // namespace tavenhall::test

#include "tests/rehearse/rehearsals.h"

#include "tests/support/children.h"
#include "tests/support/private_root.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace tavenhall::test {

namespace fs = std::filesystem;

using nlohmann::json;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::vector<std::string> rehearseCommand(const std::vector<std::string>& arguments) {
  std::vector<std::string> commandLine{kTavinstall, "rehearse", kSetFolder, "--report", kReport};
  commandLine.insert(commandLine.end(), arguments.begin(), arguments.end());
  return commandLine;
}

Outcome rehearse(const std::vector<std::string>& arguments) {
  std::vector<std::string> commandLine = rehearseCommand({"--ui", "quiet"});
  if (std::find(arguments.begin(), arguments.end(), "--ui") != arguments.end()) {
    commandLine = rehearseCommand();
  }
  commandLine.insert(commandLine.end(), arguments.begin(), arguments.end());
  return runThrough(commandLine);
}

json report() { return json::parse(readFile(kReport)); }

json steadyFields(json told) {
  told.erase("seconds");
  told.erase("log");
  EXPECT_EQ(told["events"].front()["event"]["event"], "title");
  EXPECT_EQ(told["events"].back()["event"]["event"], "summary");
  told.erase("events");
  for (json& volume : told["volumes"]) {
    EXPECT_EQ(volume["seconds"].is_number(), volume["bytes"] != 0);
    volume.erase("seconds");
  }
  return told;
}

void expectCheckAgrees(const std::string& set, const nlohmann::json& told,
                       const std::vector<std::string>& arguments) {
  std::vector<std::string> commandLine{kTavinstall, "check", set, "--format", "json"};
  commandLine.insert(commandLine.end(), arguments.begin(), arguments.end());
  const Outcome outcome = runThrough(commandLine);
  const auto checked = nlohmann::json::parse(outcome.output, nullptr, false);
  ASSERT_TRUE(checked.is_object()) << outcome.output << outcome.error;
  const nlohmann::json& plan = checked["plan"];
  EXPECT_EQ(plan["mode"], told["plan"]["mode"]);
  EXPECT_EQ(plan["edition"]["reason"], told["plan"]["edition"]);
  auto libraries = nlohmann::json::array();
  for (const auto& library : plan["edition"]["libraries"]) {
    libraries.push_back(
        {{"folder", library["folder"]}, {"edition", library["lite"] == true ? "Lite" : "Full"}});
  }
  EXPECT_EQ(libraries, told["plan"]["libraries"]);
  ASSERT_EQ(plan["passes"].size(), told["plan"]["passes"].size());
  for (std::size_t i = 0; i < plan["passes"].size(); ++i) {
    EXPECT_EQ(plan["passes"][i]["folder"], told["plan"]["passes"][i]["folder"]);
    EXPECT_EQ(plan["passes"][i]["volumeCount"], told["plan"]["passes"][i]["volumes"]);
  }
  if (told["whole"].is_object()) {
    EXPECT_EQ(plan["size"]["realBytes"], told["whole"]["realBytes"]);
  }
  EXPECT_EQ(checked["errors"].get<int>() > 0, told["status"] == 1)
      << checked["remarks"].dump(2) << told["failures"];
}

std::string withoutTimes(const std::string& text) {
  return std::regex_replace(text, std::regex("in less than 1 s|in [0-9]+ (s|min)"), "in TIME");
}

std::vector<std::string> promptsReported() {
  std::vector<std::string> asked;
  const json told = report();
  for (const auto& prompt : told["prompts"]) {
    asked.push_back(prompt["volume"].get<std::string>() + ": " + prompt["reply"].get<std::string>());
  }
  return asked;
}

std::vector<std::string> fatesReported() {
  std::vector<std::string> fates;
  const json told = report();
  for (const auto& file : told["files"]) {
    const std::string source = file["source"];
    const std::size_t below = std::max(source.rfind("/TANVO/") + 7, source.rfind("/DOVA/") + 6);
    fates.push_back(source.substr(below) + " " + file["fate"].get<std::string>());
  }
  std::sort(fates.begin(), fates.end());
  return fates;
}

std::vector<pid_t> descendantsOf(pid_t process) {
  std::vector<pid_t> all = childrenOf(process);
  for (std::size_t i = 0; i < all.size(); ++i) {
    const std::vector<pid_t> more = childrenOf(all[i]);
    all.insert(all.end(), more.begin(), more.end());
  }
  return all;
}

std::vector<std::string> temporaryMounts() {
  std::vector<std::string> mounts;
  std::ifstream file("/proc/self/mountinfo");
  for (std::string line; std::getline(file, line);) {
    if (line.find("/tavinstall-") != std::string::npos && line.find(" fuse") != std::string::npos) {
      mounts.push_back(line);
    }
  }
  return mounts;
}

void expectNothingLeft(const std::vector<pid_t>& processes) {
  EXPECT_THAT(temporaryMounts(), IsEmpty());
  EXPECT_THAT(treeOf("/tmp"), Not(Contains(HasSubstr("tavinstall-"))));
  std::ranges::for_each(processes, waitForEndOf);
}

void turnDiscsIntoImages() {
  std::vector<fs::path> discs;
  for (const fs::directory_entry& entry : fs::directory_iterator(inSet("discs"))) {
    discs.push_back(entry.path());
  }
  for (const fs::path& disc : discs) {
    const bool isOdd = (disc.filename().string().front() - '0') % 2 == 1;
    const std::string image = disc.string() + (isOdd ? ".squashfs" : ".iso");
    const Outcome outcome = isOdd ? runThrough({"mksquashfs", disc.string(), image, "-quiet", "-no-progress"})
                                  : runThrough({"genisoimage", "-quiet", "-J", "-R", "-input-charset", "utf-8",
                                                "-o", image, disc.string()});
    ASSERT_EQ(outcome.status, 0) << outcome.output << outcome.error;
    fs::remove_all(disc);
  }
}

std::vector<std::string> asOrdinaryUser(const std::vector<std::string>& command) {
  if (!isRealRoot()) {
    return command;
  }
  std::vector<std::string> line{"setpriv", "--reuid=nobody", "--regid=65534", "--clear-groups", "--"};
  line.insert(line.end(), command.begin(), command.end());
  return line;
}

bool ordinaryUserHasFuse() {
  struct stat found {};
  if (isRealRoot() && stat("/dev/fuse", &found) == 0 && (found.st_mode & S_IWOTH) == 0) {
    // A device of the test's own, open to all as on most systems; only this mount namespace has it.
    makeFolder("/.devices");
    EXPECT_EQ(mount("tmpfs", "/.devices", "tmpfs", MS_NOSUID, "mode=755"), 0);
    EXPECT_EQ(mknod("/.devices/fuse", S_IFCHR | 0666, found.st_rdev), 0);
    EXPECT_EQ(chmod("/.devices/fuse", 0666), 0);
    EXPECT_EQ(mount("/.devices/fuse", "/dev/fuse", nullptr, MS_BIND, nullptr), 0);
  }
  return runThrough(asOrdinaryUser({"sh", "-c", "exec 3<>/dev/fuse"})).status == 0;
}

}  // namespace tavenhall::test

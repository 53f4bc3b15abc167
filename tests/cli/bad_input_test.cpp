#include "tests/install/child_program.h"
#include "tests/support/files.h"
#include "tests/support/private_root.h"

#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

// Whatever is given in the place of what is asked for: one line that names it, status 2, and no trace.
namespace tavenhall::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kThing = "/tmp/thing";
constexpr const char* kGoodSet = "/Users/tester/good";

struct BadInput {
  const char* name;
  std::function<void()> lay;
  std::vector<std::string> arguments;
  const char* message;  // after "tavinstall: ", without the newline

  friend std::ostream& operator<<(std::ostream& out, const BadInput& tested) { return out << tested.name; }
};

void nothing() {}
void text() { writeFile(kThing, "only a text\n"); }
void empty() { writeFile(kThing, ""); }
void binary() { writeFile(kThing, someBytes(100000)); }
void hugeLine() { writeFile(kThing, std::string(5000000, 'a')); }
void folder() { makeFolder(kThing); }
void pipeInItsPlace() { mkfifo(kThing, 0600); }
void brokenLink() { fs::create_symlink("/tmp/none", kThing); }

void setWith(const std::string& file, const std::string& contents) {
  writeFile(std::string(kThing) + "/Installer.pkg", "package");
  writeFile(std::string(kThing) + "/" + file, contents);
}

void setWithPipe(const std::string& path) {
  writeFile(std::string(kThing) + "/Installer.pkg", "package");
  fs::create_directories(
      (std::string(kThing) + "/" + path).substr(0, std::string(kThing).size() + path.rfind('/') + 1));
  mkfifo((std::string(kThing) + "/" + path).c_str(), 0600);
}

std::vector<std::string> forSet(const char* command) { return {command, kThing}; }

std::vector<BadInput> badInputs() {
  std::vector<BadInput> inputs;
  // A set, for each of the commands that take one.
  for (const char* command : {"check", "rehearse"}) {
    const char* none = "no installer set at /tmp/thing; a set is a folder with an installer package";
    for (const auto& [name, lay] :
         std::vector<std::pair<const char*, void (*)()>>{{"missing", nothing},
                                                         {"text", text},
                                                         {"empty", empty},
                                                         {"binary", binary},
                                                         {"hugeLine", hugeLine},
                                                         {"pipe", pipeInItsPlace},
                                                         {"brokenLink", brokenLink}}) {
      inputs.push_back({name, lay, forSet(command), none});
    }
    inputs.push_back({"emptyFolder", folder, forSet(command),
                      "cannot list /tmp/thing; a set is a folder with an installer package"});
    inputs.push_back({"noPackage", [] { writeFile("/tmp/thing/readme.txt", "text"); }, forSet(command),
                      "no installer package in /tmp/thing; put one there, its name ending in .pkg"});
    inputs.push_back({"twoPackages", [] { setWith("Other.pkg", "package"); }, forSet(command),
                      "more than one installer package in /tmp/thing (Installer.pkg, Other.pkg); name one in "
                      "rehearsal.json, as \"package\""});
    for (const char* contents : {"", "[", "[]", "null", "7", "\xFF\xFE"}) {
      inputs.push_back({"noObject", [contents] { setWith("rehearsal.json", contents); }, forSet(command),
                        "/tmp/thing/rehearsal.json is not a JSON object; write it as {\"product\": \"NAME\"}"});
    }
    inputs.push_back({"folderForRehearsalFile", [] { setWith("rehearsal.json/x", ""); }, forSet(command),
                      "/tmp/thing/rehearsal.json is not a JSON object; write it as {\"product\": \"NAME\"}"});
    inputs.push_back({"pipeForRehearsalFile", [] { setWithPipe("rehearsal.json"); }, forSet(command),
                      "/tmp/thing/rehearsal.json is a pipe, a socket or a device; put a file in its place"});
    inputs.push_back(
        {"pipeForImage", [] { setWithPipe("discs/1 Tavenhall Tessaphon A.squashfs"); }, forSet(command),
         "/tmp/thing/discs/1 Tavenhall Tessaphon A.squashfs is a pipe, a socket or a device; put a "
         "file in its place"});
    inputs.push_back(
        {"pipeForImage", [] { setWithPipe("discs/1 Tavenhall Tessaphon A.iso"); }, forSet(command),
         "/tmp/thing/discs/1 Tavenhall Tessaphon A.iso is a pipe, a socket or a device; put a file "
         "in its place"});
    inputs.push_back({"noText", [] { setWith("rehearsal.json", R"({"product": 7})"); }, forSet(command),
                      "/tmp/thing/rehearsal.json: \"product\" is not a text; put it in quotes"});
    inputs.push_back({"noKey", [] { setWith("rehearsal.json", R"({"produkt": "Bassoria"})"); }, forSet(command),
                      "/tmp/thing/rehearsal.json: unknown key \"produkt\"; the keys are product, package, "
                      "installType and discSize"});
    inputs.push_back({"noSuchProduct", [] { setWith("rehearsal.json", R"({"product": "Obonia"})"); },
                      forSet(command),
                      "unknown product Obonia; the products are Tessaphon, Lumaweave, Bassoria, TemporaQX"});
    inputs.push_back({"noSuchPackage", [] { setWith("rehearsal.json", R"({"package": "x.pkg"})"); },
                      forSet(command), "/tmp/thing/rehearsal.json: there is no package /tmp/thing/x.pkg"});
    inputs.push_back(
        {"pipeForAttributes", [] { setWithPipe(".InstallationAttributes.dat"); }, forSet(command),
         "/tmp/thing/.InstallationAttributes.dat is a pipe, a socket or a device; put a file in its "
         "place"});
  }
  // An installation log.
  const std::vector<std::string> log{"log", kThing};
  inputs.push_back({"missing", nothing, log, "cannot read the log /tmp/thing: No such file or directory"});
  inputs.push_back({"folder", folder, log, "cannot read the log /tmp/thing: it is a folder"});
  inputs.push_back(
      {"brokenLink", brokenLink, log, "cannot read the log /tmp/thing: No such file or directory"});
  for (const auto& lay : {text, binary, hugeLine}) {
    inputs.push_back({"noLog", lay, log, "/tmp/thing is not an installation log: no line in it is the page's"});
  }
  inputs.push_back({"noneYet",
                    nothing,
                    {"log"},
                    "no installation log at /Users/tester/Library/Caches/Tavenhall/installationLog.txt yet; "
                    "the first installation creates it"});
  // A package and a plug-in.
  const std::vector<std::string> package{"run", "--ui", "plain", "--package", kThing};
  for (const auto& lay : {nothing, brokenLink}) {
    inputs.push_back({"noPackage", lay, package,
                      "no package at /tmp/thing; --package needs the path of an installer package"});
  }
  const std::string good = std::string(kGoodSet) + "/Installer.pkg";
  const std::vector<std::string> bundle{"run",      "--ui", "plain", "--package", good, "--without-attributes",
                                        "--bundle", kThing};
  for (const auto& lay : {nothing, text, folder, pipeInItsPlace, brokenLink}) {
    inputs.push_back({"noBundle", lay, bundle,
                      "cannot load /tmp/thing: it has no Contents/MacOS/InstallDataPane; --bundle takes a "
                      "plug-in's folder"});
  }
  inputs.push_back({"pipeForPlugin", [] { setWithPipe("Contents/MacOS/InstallDataPane"); }, bundle,
                    "/tmp/thing/Contents/MacOS/InstallDataPane is a pipe, a socket or a device; put a file in "
                    "its place"});
  // Places to write to, refused before anything is begun.
  for (const auto& command : {std::vector<std::string>{"run", "--ui", "quiet", "--package", good, "--summary"},
                              std::vector<std::string>{"rehearse", kGoodSet, "--ui", "quiet", "--report"}}) {
    const auto with = [&command](const char* path) {
      std::vector<std::string> arguments = command;
      arguments.emplace_back(path);
      return arguments;
    };
    inputs.push_back(
        {"folderToWriteTo", folder, with(kThing), "cannot write /tmp/thing: it is a folder; name a file"});
    inputs.push_back({"noFolderToWriteIn", nothing, with("/tmp/none/file"),
                      "cannot write /tmp/none/file: No such file or directory"});
    inputs.push_back(
        {"fileForAFolder", text, with("/tmp/thing/file"), "cannot write /tmp/thing/file: Not a directory"});
  }
  inputs.push_back({"keepInAFile",
                    text,
                    {"rehearse", kGoodSet, "--keep", kThing},
                    "the folder /tmp/thing is not empty; --keep needs a new or empty folder"});
  inputs.push_back({"installedIsAFile",
                    text,
                    {"check", kGoodSet, "--installed", kThing},
                    "no folder at /tmp/thing; --installed needs a folder that holds the user's data folders"});
  return inputs;
}

class BadInputs : public testing::TestWithParam<BadInput> {};

TEST_P(BadInputs, GetOneLineAndLeaveNothing) {
  writeFile(std::string(kGoodSet) + "/Installer.pkg", "package");
  GetParam().lay();
  const auto temporary = treeOf("/tmp");
  const auto home = treeOf("/Users/tester");

  std::vector<std::string> command = GetParam().arguments;
  command.insert(command.begin(), kTavinstall);
  const Outcome outcome = runThrough(std::move(command));

  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.error, "tavinstall: " + std::string(GetParam().message) + "\n");
  EXPECT_EQ(treeOf("/tmp"), temporary);
  EXPECT_EQ(treeOf("/Users/tester"), home);
}

INSTANTIATE_TEST_SUITE_P(Each, BadInputs, testing::ValuesIn(badInputs()), [](const auto& tested) {
  return tested.param.arguments[0] + "_" + tested.param.name + "_" + std::to_string(tested.index);
});

// Root may read everything, so another user asks.
TEST(BadInput, AnUnreadableFileIsNamed) {
  if (!isRealRoot()) {
    GTEST_SKIP() << "needs root to be another user";
  }
  writeFile(kThing, "secret");
  ASSERT_EQ(chmod(kThing, 0000), 0);
  const Outcome outcome =
      runThrough({"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups", kTavinstall, "log", kThing});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error, "tavinstall: cannot read the log /tmp/thing: Permission denied\n");
}

// ---- Output that does not arrive ----

Outcome withOutput(const std::string& redirection, const std::string& arguments) {
  return runThrough({"sh", "-c", std::string(kTavinstall) + " " + arguments + " " + redirection});
}

class LostOutput : public testing::TestWithParam<const char*> {
 protected:
  LostOutput() {
    writeFile(std::string(kGoodSet) + "/Installer.pkg", "package");
    writeFile("/tmp/log", "May 01 2026 10:00:00 studio: File exists\n");
  }
};

TEST_P(LostOutput, OnAFullDiskIsAnError) {
  const Outcome outcome = withOutput(">/dev/full", GetParam());
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error, "tavinstall: cannot write to standard output: No space left on device\n");
}

TEST_P(LostOutput, WhereThereIsNoneIsAnError) {
  const auto before = treeOf("/tmp");
  const Outcome outcome = withOutput(">&-", GetParam());
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error, "tavinstall: cannot write to standard output: Bad file descriptor\n");
  EXPECT_EQ(treeOf("/tmp"), before);
}

TEST_P(LostOutput, IsNoConcernWhereThereIsNoInput) {
  const Outcome outcome = withOutput("<&-", GetParam());
  EXPECT_NE(outcome.status, 2);
  EXPECT_EQ(outcome.error, "");
  EXPECT_NE(outcome.output, "");
}

INSTANTIATE_TEST_SUITE_P(Each, LostOutput,
                         testing::Values("--help", "--version", "run --help", "check --help", "rehearse --help",
                                         "log --help", "check /Users/tester/good",
                                         "check /Users/tester/good --format json", "log /tmp/log",
                                         "log /tmp/log --format json"),
                         [](const auto& tested) { return "case" + std::to_string(tested.index); });

}  // namespace
}  // namespace tavenhall::test

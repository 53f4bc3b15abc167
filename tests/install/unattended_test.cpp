#include "tests/install/case_files.h"
#include "tests/install/child_program.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <csignal>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sys/mount.h>
#include <unistd.h>

// Installs that nobody attends: what ends them, with which exit status, line and summary.
namespace tavenhall::test {
namespace {

using nlohmann::ordered_json;
using testing::HasSubstr;
using testing::MatchesRegex;

constexpr const char* kSummary = "/tmp/summary.json";
constexpr const char* kData = "/Users/tester/Library/Application Support/Tavenhall/TANVO";

void layDiscs() {
  layPackage(
      "Mode = InstallFromVolumes\nInstallDataTitle = Tessaphon\nInstallingData = Installing into:\\n%s\n"
      "InstalledData = All is in:\\n%s\nNumberOfVolumes = 2\nTotalSizeMillionsBytes = 1\n");
  layTree(kDiscA, {file("TANVO/Tessaphon/a.db", 12288)});
  layTree(kDiscB, {file("TANVO/Tessaphon/b.db", 10240)});
}

Outcome runUnattended(std::vector<std::string> more) {
  more.insert(more.begin(), {kTavinstall, "run", "--package", kPackage, "--summary", kSummary});
  return runThrough(more);
}

ordered_json summary() { return ordered_json::parse(readFile(kSummary)); }

// The summary is one that the published schema describes, and has no field that it does not name.
void expectValidSummary() {
  const std::string schema = TAVINSTALL_SOURCE_DIR "/docs/summary.schema.json";
  const Outcome outcome = runThrough({"/usr/bin/python3", "-m", "jsonschema", "-i", kSummary, schema});
  EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.error;
  const ordered_json fields = ordered_json::parse(readFile(schema)).at("properties");
  const ordered_json written = summary();
  for (const auto& [name, value] : written.items()) {
    EXPECT_TRUE(fields.contains(name)) << name;
  }
}

struct Refusal {
  const char* name;
  std::function<void()> arrange;  // after two discs and the folder to install into are laid
  std::vector<std::string> arguments;
  int status;
  std::string reason;
};

void PrintTo(const Refusal& refusal, std::ostream* stream) { *stream << refusal.name; }

class UnattendedRefusal : public testing::TestWithParam<Refusal> {};

TEST_P(UnattendedRefusal, HasItsStatusItsLineAndItsSummary) {
  layDiscs();
  GetParam().arrange();

  for (const char* frontend : {"plain", "quiet", "json"}) {
    SCOPED_TRACE(frontend);
    std::vector<std::string> arguments{"--unattended", "--ui", frontend};
    arguments.insert(arguments.end(), GetParam().arguments.begin(), GetParam().arguments.end());
    const Outcome outcome = runUnattended(arguments);

    EXPECT_EQ(outcome.status, GetParam().status);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.error, "tavinstall: " + GetParam().reason + "\n");
    EXPECT_EQ(summary()["status"], GetParam().status);
    EXPECT_EQ(summary()["reason"], GetParam().reason);
    EXPECT_EQ(summary()["installed"], false);
    EXPECT_EQ(summary()["package"], kPackage);
    expectValidSummary();
    EXPECT_FALSE(exists("/Users/tester/Library/Caches/Tavenhall/installationLog.txt"))
        << "the page was entered";
  }
}

void removeTree(const char* path) { std::filesystem::remove_all(path); }

INSTANTIATE_TEST_SUITE_P(
    Each, UnattendedRefusal,
    testing::Values(
        Refusal{"ADisc", [] { removeTree(kDiscB); }, {}, 7, "disc Tessaphon B was not found"},
        Refusal{
            "AllThatIsMissing",
            [] {
              removeTree(kDiscA);
              removeTree(kDiscB);
              removeTree(kData);
            },
            {},
            7,
            "disc Tavenhall Tessaphon A was not found; disc Tessaphon B was not found; the folder to install "
            "into is missing: /Users/tester/Library/Application Support/Tavenhall/TANVO"},
        Refusal{
            "TheFolder",
            [] { removeTree(kData); },
            {"--disc-timeout", "60"},
            9,
            "the folder to install into is missing: /Users/tester/Library/Application Support/Tavenhall/TANVO"},
        Refusal{"Space",
                [] { ASSERT_EQ(mount("small", kData, "tmpfs", 0, "size=8k"), 0); },
                {},
                8,
                "the data needs 22.5 kB more at /Users/tester/Library/Application Support/Tavenhall/TANVO, and "
                "8.2 kB "
                "are free there"},
        Refusal{
            "TheAttributesFile",
            [] { removeTree("/Users/tester/Downloads/Set/.InstallationAttributes.dat"); },
            {"--disc-timeout", "60"},
            6,
            "there is no .InstallationAttributes.dat beside the package in /Users/tester/Downloads/Set or one "
            "folder above; use --without-attributes to install one disc without it"},
        Refusal{
            "APackageThatOthersCanChange",
            [] { std::filesystem::permissions("/Users/tester/Downloads/Set", std::filesystem::perms::all); },
            {},
            6,
            "other users can change /Users/tester/Downloads/Set and thereby what is installed; use --trusted "
            "to "
            "install anyway"},
        Refusal{"APlugin",
                [] {},
                {"--bundle", "/nowhere"},
                2,
                "cannot load /nowhere: it has no Contents/MacOS/InstallDataPane; --bundle takes a plug-in's "
                "folder"}),
    [](const testing::TestParamInfo<Refusal>& refusal) { return refusal.param.name; });

TEST(Unattended, DataThatIsReplacedNeedsNoSpace) {
  layDiscs();
  ASSERT_EQ(mount("small", kData, "tmpfs", 0, "size=32k"), 0);
  layTree(kData, {file("Tessaphon/a.db", 12288), file("Tessaphon/b.db", 10240)});

  EXPECT_EQ(runUnattended({"--unattended"}).status, 0);
}

TEST(Unattended, ASecondInstallEndsWithFive) {
  layDiscs();
  removeTree(kDiscB);
  ChildProgram first({kTavinstall, "run", "--package", kPackage, "--unattended", "--disc-timeout", "600"});
  while (first.readLine().value() != "  Please insert Tessaphon B") {
  }

  const Outcome second = runUnattended({"--unattended"});
  EXPECT_EQ(second.status, 5);
  EXPECT_EQ(summary()["status"], 5);
  EXPECT_THAT(second.error, HasSubstr("another installation"));
  kill(first.pid(), SIGTERM);
  EXPECT_EQ(first.waitForEnd(), 4);
}

TEST(Unattended, AGoodInstallIsDescribedByItsSummary) {
  layDiscs();

  const Outcome outcome = runUnattended({"--unattended"});

  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_EQ(outcome.error, "");
  expectValidSummary();
  const ordered_json facts = summary();
  EXPECT_EQ(facts["status"], 0);
  EXPECT_EQ(facts["reason"], "");
  EXPECT_EQ(facts["product"], "Tessaphon");
  EXPECT_EQ(facts["edition"], "");
  EXPECT_EQ(facts["destination"], kData);
  EXPECT_EQ(facts["volumes"], 2);
  EXPECT_EQ(facts["log"], "/Users/tester/Library/Caches/Tavenhall/installationLog.txt");
  EXPECT_THAT(facts["started"].get<std::string>(), MatchesRegex("20..-..-..T..:..:..Z"));
  EXPECT_EQ(facts["audit"]["files"], 2);
}

TEST(Unattended, AFileThatFailsIsInTheSummary) {
  layDiscs();
  std::filesystem::create_directories(std::string(kData) + "/Tessaphon/b.db");

  const Outcome outcome = runUnattended({"--unattended", "--ui", "quiet"});

  EXPECT_EQ(outcome.status, 1);
  expectValidSummary();
  EXPECT_EQ(summary()["status"], 1);
  EXPECT_EQ(summary()["reason"],
            "not installed: 1; the first: /Volumes/Tessaphon B/TANVO/Tessaphon/b.db (type)");
  EXPECT_EQ(summary()["failedFiles"].size(), 1U);
}

TEST(Unattended, ASignalEndsItWithFourAndASummary) {
  for (const char* frontend : {"plain", "quiet", "json"}) {
    SCOPED_TRACE(frontend);
    layDiscs();
    removeTree(kDiscB);
    removeTree(kSummary);
    ChildProgram program({kTavinstall, "run", "--package", kPackage, "--unattended", "--disc-timeout", "600",
                          "--ui", frontend, "--summary", kSummary});
    if (std::string_view(frontend) == "json") {
      program.write("{\"do\":\"enter\"}\n");
    }
    const std::string log = "/Users/tester/Library/Caches/Tavenhall/installationLog.txt";
    while (!exists(log) ||
           readFile(log).find("Dialog prompting to insert mandatory volume 2") == std::string::npos) {
      usleep(10000);
    }
    kill(program.pid(), SIGTERM);
    EXPECT_EQ(program.waitForEnd(), 4);
    EXPECT_EQ(summary()["status"], 4);
    EXPECT_EQ(summary()["reason"], "stopped by signal 15");
    expectValidSummary();
    removeTree(log.c_str());
  }
}

TEST(RunCommand, ASetOfAnotherProductIsNotInstalledAsTheDefaultOne) {
  layDiscs();
  writeFile("/Users/tester/Downloads/Set/rehearsal.json", R"({"product": "Lumaweave"})");
  const Outcome outcome = runUnattended({"--unattended"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error,
            "tavinstall: rehearsal.json says that this set is for Lumaweave; add --product Lumaweave\n");
  EXPECT_EQ(summary()["status"], 2);
  EXPECT_EQ(runUnattended({"--unattended", "--product", "Tessaphon"}).status, 0) << "the user has said so";
  writeFile("/Users/tester/Downloads/Set/rehearsal.json", R"({"product": "Tessaphon"})");
  EXPECT_EQ(runUnattended({"--unattended"}).status, 0);
  writeFile("/Users/tester/Downloads/Set/rehearsal.json", "nonsense");
  EXPECT_EQ(runUnattended({"--unattended"}).status, 0);
}

// A terminal of the program's own, which only the user of this one could answer at.
TEST(Unattended, NoCommandOfTheInstallHasATerminalToAskOn) {
  layDiscs();
  writeFile("/tmp/tools/drutil",
            "#!/bin/sh\n(exec </dev/tty) 2>/dev/null && echo asked >/tmp/asked || echo not >/tmp/asked\n");
  std::filesystem::permissions("/tmp/tools/drutil", std::filesystem::perms::owner_all);
  for (const char* frontend : {"plain", "quiet"}) {
    removeTree("/tmp/asked");
    const Outcome outcome =
        runThrough({"script", "-qec",
                    std::string(kTavinstall) + " run --unattended --ui " + frontend + " --package " + kPackage,
                    "/dev/null"},
                   {{"PATH", "/tmp/tools:" + usualPath()}});
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_EQ(readFile("/tmp/asked"), "not\n") << frontend;
  }
}

TEST(Unattended, ItsOptionsNeedIt) {
  layDiscs();

  for (const auto& option : {std::pair("--disc-timeout", "5"), std::pair("--optional-discs", "wait")}) {
    const Outcome outcome = runUnattended({"--ui", "plain", option.first, option.second});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.error, std::string("tavinstall: ") + option.first +
                                 " requires --unattended; see tavinstall run --help\n");
  }
  EXPECT_EQ(runUnattended({"--unattended", "--ui", "terminal"}).error,
            "tavinstall: --unattended cannot be combined with --ui terminal; see tavinstall run --help\n");
}

}  // namespace
}  // namespace tavenhall::test

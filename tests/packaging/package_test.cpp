#include "tests/install/child_program.h"
#include "tests/support/files.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

// The packages as cpack makes them, unpacked and run.
namespace tavenhall::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::MatchesRegex;

constexpr const char* kUnpacked = "/tmp/unpacked";

// The package of that kind, made anew.
std::string package(const std::string& generator, const std::string& ending) {
  const Outcome made = runThrough({"cpack", "--config", TAVINSTALL_BINARY_DIR "/CPackConfig.cmake", "-G",
                                   generator, "-B", "/tmp/packages"});
  EXPECT_EQ(made.status, 0) << made.output << made.error;
  for (const fs::directory_entry& entry : fs::directory_iterator("/tmp/packages")) {
    if (entry.path().string().ends_with(ending)) {
      return entry.path();
    }
  }
  return "no package";
}

// The unpacked program does what it does anywhere: finds its plug-ins, checks a set, reads a log.
void expectItRuns(const std::string& prefix) {
  const std::string program = prefix + "/bin/tavinstall";
  EXPECT_THAT(runThrough({program, "--version"}).output, MatchesRegex("tavinstall [0-9.]+\n"));

  writeFile("/Users/tester/set/Installer.pkg", "");
  writeFile("/Users/tester/set/.InstallationAttributes.dat",
            "Mode = Downloaded\nInstallDataTitle = Packed\nInstalledData = In %s\nRelativePath = "
            ".\nTotalSizeMillionsBytes = 1\n");
  writeFile("/Users/tester/set/TANVO/a.db", "data");
  EXPECT_EQ(runThrough({program, "check", "/Users/tester/set", "--product", "Tessaphon"}).status, 0);

  makeFolder("/Users/tester/Library/Application Support/Tavenhall/TANVO");
  const Outcome run =
      runThrough({program, "run", "--ui", "plain", "--package", "/Users/tester/set/Installer.pkg"});
  EXPECT_EQ(run.status, 0) << run.output << run.error;
  EXPECT_THAT(run.output, HasSubstr("Packed\n"));
  EXPECT_EQ(readFile("/Users/tester/Library/Application Support/Tavenhall/TANVO/a.db"), "data");
  EXPECT_THAT(runThrough({program, "log"}).output, HasSubstr("ended, nothing failed"));
}

TEST(DebianPackage, InstallsAProgramThatRuns) {
  const std::string deb = package("DEB", ".deb");
  ASSERT_EQ(runThrough({"dpkg-deb", "-x", deb, kUnpacked}).status, 0);
  expectItRuns(std::string(kUnpacked) + "/usr");
  for (const char* path :
       {"share/man/man1/tavinstall.1.gz", "share/bash-completion/completions/tavinstall",
        "share/zsh/vendor-completions/_tavinstall", "share/fish/vendor_completions.d/tavinstall.fish",
        "share/doc/tavinstall/copyright", "share/doc/tavinstall/changelog.gz",
        "share/doc/tavinstall/changelog.Debian.gz", "share/doc/tavinstall/attributes.md",
        "share/doc/tavinstall/protocol.md", "lib/tavinstall/InstallDataPane.bundle/Contents/Info.plist",
        "libexec/tavinstall/drutil"}) {
    EXPECT_TRUE(exists(std::string(kUnpacked) + "/usr/" + path)) << path;
  }
}

TEST(DebianPackage, StatesItsContentAndItsDependencies) {
  const std::string deb = package("DEB", ".deb");
  const auto field = [&deb](const char* name) { return runThrough({"dpkg-deb", "-f", deb, name}).output; };
  EXPECT_EQ(field("Package"), "tavinstall\n");
  EXPECT_THAT(field("Version"), MatchesRegex("[0-9]+\\.[0-9]+\\.[0-9]+-1\n"));
  EXPECT_EQ(field("Section"), "sound\n");
  EXPECT_THAT(field("Maintainer"), MatchesRegex("[^<]+ <[^@]+@[^>]+>\n"));
  EXPECT_THAT(field("Depends"), HasSubstr("libc6 (>= "));
  EXPECT_THAT(field("Depends"), HasSubstr("libncursesw6"));
  EXPECT_THAT(field("Depends"), HasSubstr("libstdc++6"));
  EXPECT_EQ(field("Recommends"), "bubblewrap, squashfs-tools, xorriso\n");
  EXPECT_THAT(field("Description"), MatchesRegex("[^\n]{10,80}\n( [^\n]+\n)+"));
}

TEST(DebianPackage, ContainsNoForeignAndNoWorldWritableFile) {
  const std::string deb = package("DEB", ".deb");
  const Outcome list = runThrough({"dpkg-deb", "-c", deb});
  std::istringstream lines(list.output);
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    EXPECT_THAT(line, MatchesRegex("[-d]rw[-x]r-[-x]r-[-x] root/root .* \\./(usr/.*)?")) << line;
  }
  EXPECT_GT(count, 20);
}

// What Debian's own checker finds.
TEST(DebianPackage, PassesTheCheckerOfDebian) {
  if (runThrough({"sh", "-c", "command -v lintian"}).status != 0) {
    GTEST_SKIP() << "lintian is not installed";
  }
  const std::string deb = package("DEB", ".deb");
  // A change log of Debian's own archive closes a request for the package; this one is not in it.
  const Outcome outcome = runThrough({"lintian", "--allow-root", "--fail-on", "error,warning",
                                      "--suppress-tags", "initial-upload-closes-no-bugs", deb});
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_EQ(outcome.output, "");
}

// Unpacked anywhere, in a folder whose name has a blank too.
TEST(Archive, ContainsAProgramThatRunsAnywhere) {
  const std::string archive = package("TGZ", ".tar.gz");
  const std::string folder = "/tmp/some where";
  makeFolder(folder);
  ASSERT_EQ(runThrough({"tar", "-xzf", archive, "-C", folder, "--strip-components=1"}).status, 0);
  expectItRuns(folder);
  EXPECT_TRUE(exists(folder + "/share/man/man1/tavinstall.1"));
  EXPECT_TRUE(exists(folder + "/share/doc/tavinstall/CHANGELOG.md"));
}

}  // namespace
}  // namespace tavenhall::test

#include "tests/install/child_program.h"
#include "tests/support/files.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

// scripts/test where the page on AppKit cannot be built: with stand-ins for what it builds, tests and installs
// with.
namespace tavenhall::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kSkip = "\n== cocoa: SKIPPED, since GNUstep cannot be installed here\n";

class TestScript : public testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories("/tmp/project/scripts");
    for (const char* name : {"test", "bootstrap"}) {
      std::filesystem::copy_file(std::string(TAVINSTALL_SOURCE_DIR "/scripts/") + name,
                                 std::string("/tmp/project/scripts/") + name);
    }
    standIn("cmake", "echo cmake \"$@\"");
    standIn("ctest", "echo ctest \"$@\"");
    standIn("apt-get", "exit 100");
    standIn("dpkg-query", "case $* in *gnustep*) exit 1 ;; esac; echo ok installed");
  }

  static Outcome run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "/tmp/project/scripts/test");
    return runThrough(std::move(arguments), {{"PATH", "/tmp/stand-ins:" + usualPath()}});
  }

 private:
  static void standIn(const std::string& name, const std::string& body) {
    const std::string path = "/tmp/stand-ins/" + name;
    writeFile(path, "#!/bin/sh\n" + body + "\n");
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
  }
};

TEST_F(TestScript, SkipsAppKitAndSaysSoFirstAndLast) {
  const Outcome outcome = run({});
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_THAT(outcome.error, HasSubstr("apt-get could not install: libgnustep-gui-dev"));
  EXPECT_THAT(outcome.output, HasSubstr(std::string(kSkip) + "\n== asan: build\n"));
  EXPECT_THAT(outcome.output, EndsWith(kSkip));
  EXPECT_THAT(outcome.output, HasSubstr("ctest --preset release"));
  EXPECT_THAT(outcome.output, Not(HasSubstr("--preset cocoa")));
}

TEST_F(TestScript, MaySkipNothingWhereItIsToBeComplete) {
  const Outcome outcome = run({"--complete"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.error, HasSubstr("apt-get could not install: libgnustep-gui-dev"));
  EXPECT_THAT(outcome.output, Not(HasSubstr("preset")));
}

TEST_F(TestScript, DoesNotSkipWhatIsNamed) {
  EXPECT_EQ(run({"cocoa"}).status, 1);
  EXPECT_EQ(run({"release", "cocoa"}).status, 1);
}

}  // namespace
}  // namespace tavenhall::test

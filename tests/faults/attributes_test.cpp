#include "tests/faults/gated_install.h"
#include "tests/install/case_files.h"
#include "tests/support/files.h"

#include <cerrno>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <string>

// An attributes file that is there and cannot be read. The page finds no key in it, and so would install one
// disc of two.
namespace tavenhall::test {
namespace {

constexpr const char* kAttributes = "/Users/tester/Downloads/Set/.InstallationAttributes.dat";

struct Unreadable {
  const char* name;
  CallKind kind;
  int error;
  const char* text;
};

void PrintTo(const Unreadable& unreadable, std::ostream* out) { *out << unreadable.name; }

class UnreadableAttributes : public testing::TestWithParam<Unreadable> {
 public:
  UnreadableAttributes() {
    layTree(kSet, {textFile(".InstallationAttributes.dat", "Mode = InstallFromVolumes\nNumberOfVolumes = 2\n"),
                   textFile("Installer.pkg", "")});
    layTree(kDiscA, {file("TANVO/a.db", 100)});
    layTree(kDiscB, {file("TANVO/b.db", 200)});
    makeFolder(kTanvo);
  }

  // Every such call on the file fails, and no other.
  [[nodiscard]] static GatedRun installAnyway(const std::vector<std::string>& arguments) {
    return install(arguments, [](const FileCall& call) {
      return call.kind == GetParam().kind && call.path == kAttributes ? failWith(GetParam().error) : kPass;
    });
  }
};

TEST_P(UnreadableAttributes, AreRefused) {
  const GatedRun run = installAnyway({});
  EXPECT_EQ(run.status, 6) << run.output;
  EXPECT_EQ(run.error, std::string("tavinstall: cannot read ") + kAttributes + ": " + GetParam().text + "\n");
  EXPECT_FALSE(exists(kLog));
}

TEST_P(UnreadableAttributes, InstallOneDiscWhereThatIsAskedFor) {
  const GatedRun run = installAnyway({"--without-attributes"});
  EXPECT_EQ(run.status, 0) << run.output << run.error;
  EXPECT_THAT(run.output, testing::HasSubstr("\nInstalled 100 bytes in "));
  EXPECT_FALSE(exists(std::string(kTanvo) + "/b.db"));
}

INSTANTIATE_TEST_SUITE_P(EachWay, UnreadableAttributes,
                         testing::Values(Unreadable{"Denied", CallKind::open, EACCES, "Permission denied"},
                                         Unreadable{"Unopenable", CallKind::open, EIO, "Input/output error"},
                                         Unreadable{"BadSector", CallKind::read, EIO, "Input/output error"}),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
}  // namespace tavenhall::test

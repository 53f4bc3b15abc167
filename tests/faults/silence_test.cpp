#include "tests/faults/gated_install.h"
#include "tests/install/case_files.h"
#include "tests/support/files.h"

#include <cerrno>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <string>

// What the page does not report, and what the host says of it: the table of docs/reliability.md, as far as no
// other test has it.
namespace tavenhall::test {
namespace {

using testing::AllOf;
using testing::AnyOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kPluginsSignature =
    "Library/Audio/Plug-Ins/VST/Tessaphon.vst/Contents/Resources/__Pace_Eden/Signatures/codesign.dsig";

constexpr const char* kMarker =
    "/Users/tester/Library/Application Support/Tavenhall/TANVO/Tessaphon/Soundsources/Factory/"
    "Tessaphon Library/Keyboards/Glassophone.db";

void layDownload(const std::string& attributes = "Mode = DataUpdater\nRelativePath = .\n") {
  layTree(kSet, {textFile(".InstallationAttributes.dat", attributes), textFile("Installer.pkg", ""),
                 file("TANVO/a.db", 100)});
  makeFolder(kTanvo);
  makeFolder(kDova);
}

// Every call of this kind on this path fails, and no other.
Judge failing(CallKind kind, const std::string& path, int error) {
  return [kind, path, error](const FileCall& call) {
    return call.kind == kind && call.path == path ? failWith(error) : kPass;
  };
}

// The page cannot examine it, though the host, which looks at it before, can.
Judge failingLater(CallKind kind, const std::string& path) {
  return [kind, path, isBegun = false](const FileCall& call) mutable {
    isBegun = isBegun || call.path == kLog;
    return isBegun && call.kind == kind && call.path == path ? failWith(EACCES) : kPass;
  };
}

struct Place {
  const char* name;
  CallKind kind;
  const char* path;
};

void PrintTo(const Place& place, std::ostream* out) { *out << place.name; }

// What decides what a product update installs, and where the page sees nothing if it cannot look.
class PlaceThatCannotBeExamined : public testing::TestWithParam<Place> {
 protected:
  PlaceThatCannotBeExamined() {
    layDownload("Mode = TavenhallUpdater\nRelativePath = .\nRelativePath2 = Full\n");
    layTree(kSet, {file("Applications/Tessaphon.app/Contents/program", 100), file("DOVA/b.db", 100),
                   file("Full/TANVO/Tessaphon/full.db", 100)});
    writeFile(kMarker, std::string(2000, 'x'));
  }
};

TEST_P(PlaceThatCannotBeExamined, IsRefused) {
  const GatedRun run = installWith(failing(GetParam().kind, GetParam().path, EACCES));
  EXPECT_EQ(run.status, 6) << run.output;
  EXPECT_EQ(run.error, std::string("tavinstall: cannot read ") + GetParam().path + ": Permission denied\n");
}

TEST_P(PlaceThatCannotBeExamined, IsReportedIfOnlyThePageCannotExamineIt) {
  const GatedRun run = installWith(failingLater(GetParam().kind, GetParam().path));
  EXPECT_EQ(run.status, 1) << run.output;
  EXPECT_THAT(run.output, AnyOf(HasSubstr("\n! Not copied: "), HasSubstr("\n! Cannot be listed: ")));
}

INSTANTIATE_TEST_SUITE_P(
    InAProductUpdate, PlaceThatCannotBeExamined,
    testing::Values(Place{"Applications", CallKind::stat, "/Users/tester/Downloads/Set/Applications"},
                    Place{"DataFolder", CallKind::stat, "/Users/tester/Downloads/Set/./DOVA"},
                    Place{"Libraries", CallKind::list, "/Users/tester/Downloads/Set/Full/TANVO"},
                    Place{"ClosedLibraries", CallKind::open, "/Users/tester/Downloads/Set/Full/TANVO"},
                    Place{"Marker", CallKind::stat, kMarker}),
    [](const auto& instance) { return instance.param.name; });

TEST(Silence, AnEditionWhoseMarkerCannotBeExaminedIsTakenForLite) {
  layDownload("Mode = TavenhallUpdater\nRelativePath = .\nRelativePath2 = Full\n");
  layTree(kSet, {file("Full/TANVO/Tessaphon/full.db", 100)});
  writeFile(kMarker, std::string(2000, 'x'));
  const GatedRun run = installWith(failingLater(CallKind::stat, kMarker));
  EXPECT_THAT(run.output, HasSubstr("Detected Installation Type"));
  EXPECT_THAT(logMessages(), Contains(HasSubstr("Installation is Lite")));
}

TEST(Silence, ASignatureThatIsNotCopiedIsNamedByTheAudit) {
  layDownload("Mode = TavenhallUpdater\nRelativePath = .\n");
  layTree(kSet, {file(kPluginsSignature, 40)});
  const GatedRun run = installWith(
      [](const FileCall& call) { return call.kind == CallKind::startCommand ? failWith(EAGAIN) : kPass; });
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.output, HasSubstr(std::string("\n! Missing: ") + kSet + "/" + kPluginsSignature));
  EXPECT_THAT(logMessages(),
              Contains(AllOf(HasSubstr("copying AAX signature with command:"), HasSubstr(kPluginsSignature))));
}

TEST(Silence, ASetWithoutAFileIsNotInstalled) {
  layDownload();
  std::filesystem::remove(std::string(kSet) + "/TANVO/a.db");
  const GatedRun run = installWith([](const FileCall&) { return kPass; });
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.output, HasSubstr(std::string("\n! No file to install: ") + kSet + "/./TANVO\n"));
}

TEST(Silence, ALogThatCannotBeWrittenIsNotNamedThoughAnEarlierOneIsThere) {
  layDownload();
  writeFile(kLog, "of an earlier run\n");
  const GatedRun run = installWith(failing(CallKind::open, kLog, EROFS));
  EXPECT_EQ(run.status, 0);
  EXPECT_THAT(run.output, Not(HasSubstr("The log is")));
}

TEST(Silence, WithoutALogTheAuditNamesEachFailedFile) {
  layDownload();
  const std::string destination = std::string(kTanvo) + "/a.db";
  const GatedRun run = installWith([&](const FileCall& call) {
    const bool isBad = call.path == kLog || call.path == destination;
    return isBad && call.kind == CallKind::open ? failWith(EROFS) : kPass;
  });
  EXPECT_EQ(run.status, 1);
  EXPECT_FALSE(exists(kLog));
  EXPECT_THAT(run.output, Not(HasSubstr("The log is")));
  EXPECT_THAT(run.output, HasSubstr(std::string("\n! Cannot be written: ") + kSet + "/./TANVO/a.db"));
}

TEST(Silence, AFailedCloseIsNotAFailureIfTheSizeIsRight) {
  layDownload();
  const std::string destination = std::string(kTanvo) + "/a.db";
  bool isReached = false;
  const GatedRun run = installWith([&](const FileCall& call) {
    const bool isClose = call.kind == CallKind::close && call.path == destination;
    isReached = isReached || isClose;
    return isClose ? failWith(EIO) : kPass;
  });
  EXPECT_TRUE(isReached);
  EXPECT_EQ(run.status, 0) << run.output;
}

TEST(Silence, AChoiceOfEditionThatCannotBeReadIsFull) {
  layDownload("Mode = DataUpdater\nRelativePath = .\nRelativePath2 = Full\nNumberOfVolumes = 2\n");
  layTree(kSet, {file("Full/TANVO/full.db", 100)});
  int opens = 0;
  const GatedRun run = install({"--install-type", "Lite"}, [&opens](const FileCall& call) {
    const bool isOpen = call.kind == CallKind::open && call.path == "/tmp/TavInstallType";
    return isOpen && ++opens > 1 ? failWith(EIO) : kPass;  // the first one writes the file
  });
  EXPECT_EQ(run.status, 0) << run.output;
  EXPECT_THAT(logMessages(), Contains("Could not open install type file  /tmp/TavInstallType"));
  EXPECT_TRUE(exists(std::string(kTanvo) + "/full.db"));
}

TEST(Silence, ADiscOfTheRightNameIsCopiedWhateverItHolds) {
  layPackage("Mode = InstallFromVolumes\n");
  layTree(kDiscA, {file("TANVO/Another Library/a.db", 100)});
  EXPECT_EQ(install().status, 0);
  EXPECT_TRUE(exists(std::string(kTanvo) + "/Another Library/a.db"));
}

TEST(Silence, PluginsAndApplicationsOnADiscAreNotInstalled) {
  layPackage("Mode = InstallFromVolumes\n");
  layTree(kDiscA, {file("TANVO/a.db", 100), file("Library/Audio/Plug-Ins/VST/Evil.vst/plugin", 100),
                   file("Applications/Evil.app/program", 100)});
  EXPECT_EQ(install().status, 0);
  EXPECT_FALSE(exists("/Library/Audio/Plug-Ins/VST/Evil.vst"));
  EXPECT_FALSE(exists("/Applications/Evil.app"));
}

TEST(Silence, AFolderThatIsOpenedToAllAfterTheStartIsNotNoticed) {
  layDownload();
  const GatedRun run = installWith([](const FileCall& call) {
    if (call.path == kLog) {
      std::filesystem::permissions(kSet, std::filesystem::perms::all);
    }
    return kPass;
  });
  EXPECT_EQ(run.status, 0) << run.output;
}

TEST(Silence, WithoutACachesFolderTheLogIsAddedToWhatIsInTmp) {
  layDownload();
  writeFile("/Users/tester/notes", "mine\n");
  std::filesystem::create_symlink("/Users/tester/notes", "/tmp/installationLog.txt");
  writeFile("/tmp/TavInstallLoc", std::string(kPackage) + "\n");
  const Outcome outcome = runThrough(
      {"/usr/bin/env", "HOME=/nowhere", kTavinstall, "run", "--ui", "plain", "--no-preinstall", "--trusted"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(readFile("/Users/tester/notes"), testing::StartsWith("mine\n"));
}

}  // namespace
}  // namespace tavenhall::test

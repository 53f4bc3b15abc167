#include "host/base/files.h"
#include "host/engine/pre_install.h"

#include "host/base/exit_status.h"
#include "platform/installer_host.h"
#include "tests/support/files.h"

#include <dlfcn.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavenhall::test {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

std::string bundleRefusal(const fs::path& bundle) {
  try {
    static_cast<void>(loadBundle(bundle));
    return "loaded";
  } catch (const UsageError& error) {
    return error.what();
  }
}

TEST(FindBundle, TheDefaultProductsBundleLiesInTheBuildFolder) {
  EXPECT_EQ(findBundle(""), fs::path(TAVINSTALL_BINARY_DIR "/InstallDataPane.bundle"));
  EXPECT_EQ(findBundle("Tessaphon"), fs::path(TAVINSTALL_BINARY_DIR "/InstallDataPane.bundle"));
}

TEST(FindBundle, AnotherProductsBundleBearsItsName) {
  for (const std::string product : {"Lumaweave", "Bassoria", "TemporaQX"}) {
    EXPECT_EQ(findBundle(product), fs::path(TAVINSTALL_BINARY_DIR "/InstallDataPane-" + product + ".bundle"));
  }
}

TEST(FindBundle, WhereThereIsNoneBothPlacesAreNamed) {
  try {
    static_cast<void>(findBundle("Nothing"));
    ADD_FAILURE() << "there is a bundle for Nothing";
  } catch (const UsageError& error) {
    EXPECT_THAT(error.what(),
                AllOf(HasSubstr(TAVINSTALL_BINARY_DIR "/InstallDataPane-Nothing.bundle"),
                      HasSubstr("/tavinstall/InstallDataPane-Nothing.bundle"), Not(HasSubstr("\n"))));
  }
}

TEST(FindStandIns, TheyLieInTheBuildFolder) {
  EXPECT_EQ(findStandIns(), fs::path(TAVINSTALL_BINARY_DIR "/libexec/tavinstall"));
  EXPECT_TRUE(exists(findStandIns() / "drutil"));
  EXPECT_TRUE(exists(findStandIns() / "sudo"));
}

TEST(LoadBundle, TheBuiltOneMakesAPage) { EXPECT_NE(loadBundle(findBundle("")), nullptr); }

TEST(LoadBundle, APageForAnotherHostIsNotMade) {
  EXPECT_EQ(loadBundle(findBundle(""))(nullptr, kInstallerInterfaceVersion + 1), nullptr);
}

TEST(LoadBundle, AFolderWithoutAProgramIsRefused) {
  makeFolder("/tmp/Empty.bundle/Contents");
  EXPECT_EQ(bundleRefusal("/tmp/Empty.bundle"),
            "cannot load /tmp/Empty.bundle: it has no Contents/MacOS/InstallDataPane; --bundle takes a "
            "plug-in's folder");
}

TEST(LoadBundle, AMissingFolderIsRefused) {
  EXPECT_THAT(bundleRefusal("/tmp/Gone.bundle"), HasSubstr("cannot load /tmp/Gone.bundle: "));
}

TEST(LoadBundle, RefusesAnInvalidProgramWithTheSystemsReason) {
  writeFile("/tmp/Text.bundle/Contents/MacOS/InstallDataPane", "text\n");
  EXPECT_THAT(bundleRefusal("/tmp/Text.bundle"),
              AllOf(testing::StartsWith("cannot load /tmp/Text.bundle: "), Not(HasSubstr("\n"))));
}

TEST(LoadBundle, AProgramThatMakesNoPageIsRefused) {
  void* library = dlopen("libm.so.6", RTLD_NOW);
  ASSERT_NE(library, nullptr);
  Dl_info found{};
  ASSERT_NE(dladdr(dlsym(library, "cbrt"), &found), 0);
  makeFolder("/tmp/Other.bundle/Contents/MacOS");
  fs::create_symlink(fs::canonical(found.dli_fname), "/tmp/Other.bundle/Contents/MacOS/InstallDataPane");
  EXPECT_EQ(bundleRefusal("/tmp/Other.bundle"),
            "cannot load /tmp/Other.bundle: it makes no page (createInstallDataPane is missing)");
}

}  // namespace
}  // namespace tavenhall::test

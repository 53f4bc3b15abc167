#include "pane/install_data_pane.h"
#include "tests/support/files.h"
#include "tests/support/recording_host.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace tavenhall::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SourceVolumes : public testing::Test {
 protected:
  SourceVolumes() { makeFolder("/Users/tester/Library/Caches"); }  // where the log goes
};

// ---- Mount paths ----

struct MountPath {
  const char* plugin;
  std::int32_t volume;
  std::string path;
};

void PrintTo(const MountPath& row, std::ostream* out) { *out << row.plugin << " " << row.volume; }

class SourceVolumesPath : public SourceVolumes, public testing::WithParamInterface<MountPath> {};

TEST_P(SourceVolumesPath, IsTheProductsOwnAndIsLogged) {
  const MountPath& row = GetParam();
  RecordingHost host;
  InstallDataPane pane(host);
  pane.gPluginNameChar.assign(row.plugin);
  BoundedText<kPathSize> path;
  path.assign("what was there before");

  pane.getFullPathOfVolumeNumber(row.volume, path);

  EXPECT_EQ(path.view(), row.path);
  EXPECT_THAT(logMessages(),
              ElementsAre("Volume " + std::to_string(row.volume) + " path should be: " + row.path));
  EXPECT_THAT(host.lines(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Rows, SourceVolumesPath,
                         testing::Values(MountPath{"Tessaphon", 0, "/Volumes/Tavenhall Tessaphon A"},
                                         MountPath{"Tessaphon", 1, "/Volumes/Tessaphon B"},
                                         MountPath{"Tessaphon", 2, "/Volumes/Tessaphon C"},
                                         MountPath{"Tessaphon", 3, "/Volumes/Tessaphon D"},
                                         MountPath{"Tessaphon", 25, "/Volumes/Tessaphon Z"},
                                         MountPath{"Tessaphon", 26, "/Volumes/Tessaphon ["},
                                         MountPath{"Lumaweave", 0, "/Volumes/Tavenhall Lumaweave"},
                                         MountPath{"Lumaweave", 3, "/Volumes/Tavenhall Lumaweave"},
                                         MountPath{"Bassoria", 0, "/Volumes/Tavenhall Bassoria"},
                                         MountPath{"Bassoria", 3, "/Volumes/Tavenhall Bassoria"},
                                         MountPath{"TemporaQX", 0, "/Volumes/Tavenhall Tempora QX"},
                                         MountPath{"TemporaQX", 3, "/Volumes/Tavenhall Tempora QX"},
                                         MountPath{"QX", 0, "/Volumes/Tavenhall Tempora QX"},
                                         MountPath{"Other QX Thing", 1, "/Volumes/Tavenhall Tempora QX"}));

INSTANTIATE_TEST_SUITE_P(LettersWrapInEightBits, SourceVolumesPath,
                         testing::Values(MountPath{"Tessaphon", 190, "/Volumes/Tessaphon \xff"},
                                         MountPath{"Tessaphon", 191, "/Volumes/Tessaphon "},
                                         MountPath{"Tessaphon", 192, "/Volumes/Tessaphon \x01"},
                                         MountPath{"Tessaphon", 257, "/Volumes/Tessaphon B"},
                                         MountPath{"Tessaphon", std::numeric_limits<std::int32_t>::max(),
                                                   "/Volumes/Tessaphon @"}));

INSTANTIATE_TEST_SUITE_P(
    UnknownNames, SourceVolumesPath,
    testing::Values(MountPath{"", 0, "/Volumes/"}, MountPath{"", 1, "/Volumes/"},
                    MountPath{"tessaphon", 0, "/Volumes/"}, MountPath{"TESSAPHON", 1, "/Volumes/"},
                    MountPath{"Tessaphon ", 0, "/Volumes/"}, MountPath{"My Tessaphon", 0, "/Volumes/"},
                    MountPath{"lumaweave", 0, "/Volumes/"}, MountPath{"Lumaweave2", 0, "/Volumes/"},
                    MountPath{"bassoria", 0, "/Volumes/"}, MountPath{"Temporaqx", 0, "/Volumes/"},
                    MountPath{"Tempora Q X", 0, "/Volumes/"}));

// ---- Volume counts from the attributes file ----

struct Count {
  std::string number;  // as the file has it; empty for no line
  std::string logged;
  std::int32_t volumes;
};

void PrintTo(const Count& row, std::ostream* out) { *out << "\"" << row.number << "\""; }

class SourceVolumesCount : public SourceVolumes, public testing::WithParamInterface<Count> {};

TEST_P(SourceVolumesCount, ComesFromTheAttributesFileAndIsLogged) {
  const Count& row = GetParam();
  setAttributes("Title = Set\n" + (row.number.empty() ? "" : "NumberOfVolumes = " + row.number + "\n"));
  RecordingHost host;
  InstallDataPane pane(host);
  pane.gAllTwoComponentInstallChoicesAreLite = 1;

  pane.determineNumVolumesToInstall();

  EXPECT_EQ(pane.gVolumeCount, row.volumes);
  EXPECT_THAT(logMessages(),
              ElementsAre(kFoundLine, "Data from attributes file::   num Vol=" + row.logged + " "));
  EXPECT_EQ(pane.gAllTwoComponentInstallChoicesAreLite, 1);
}

INSTANTIATE_TEST_SUITE_P(WithoutTheOption, SourceVolumesCount,
                         testing::Values(Count{"", "0", 1}, Count{"0", "0", 1}, Count{"1", "1", 1},
                                         Count{"2", "2", 2}, Count{"5", "5", 5}, Count{"-3", "-3", 1},
                                         Count{"none", "0", 1}));

INSTANTIATE_TEST_SUITE_P(
    AbsurdNumbersAreComparedIn64BitsAndStoredIn32, SourceVolumesCount,
    testing::Values(Count{"2147483647", "2147483647", 2147483647},
                    Count{"2147483648", "2147483648", std::numeric_limits<std::int32_t>::min()},
                    Count{"4294967296", "4294967296", 0}, Count{"4294967297", "4294967297", 1},
                    Count{"4294967298", "4294967298", 2}, Count{"-4294967291", "-4294967291", 1},
                    Count{"9223372036854775807", "9223372036854775807", -1}));

TEST_F(SourceVolumes, AMissingAttributesFileMeansOneVolume) {
  setPackage("/Users/tester/Downloads/Set/Installer.pkg");
  RecordingHost host;
  InstallDataPane pane(host);
  pane.determineNumVolumesToInstall();
  EXPECT_EQ(pane.gVolumeCount, 1);
  EXPECT_THAT(logMessages(), ElementsAre("Did not find Installation Attribute File.",
                                         "Data from attributes file::   num Vol=0 "));
}

TEST_F(SourceVolumes, EachRunReadsTheFileAnew) {
  setAttributes("NumberOfVolumes = 2\n");
  RecordingHost host;
  InstallDataPane pane(host);
  pane.determineNumVolumesToInstall();
  setAttributes("NumberOfVolumes = 3\n");
  pane.determineNumVolumesToInstall();
  EXPECT_EQ(pane.gVolumeCount, 3);
}

// ---- With the Lite/Full option ----

class SourceVolumesWithOption : public SourceVolumes {
 protected:
  SourceVolumesWithOption() {
    setAttributes("NumberOfVolumes = 7\n");
    pane.gInstallationHasLiteVsFullOption = 1;
  }

  RecordingHost host;
  InstallDataPane pane{host};
};

TEST_F(SourceVolumesWithOption, ALiteChoiceIsOneVolumeWithoutALogLineInEveryMode) {
  for (const std::int32_t mode : {0, 2, 3}) {
    pane.gInstallMode = mode;
    pane.gTwoComponentInstallChoicesAreLite[0] = 1;
    pane.gAllTwoComponentInstallChoicesAreLite = 0;
    pane.determineNumVolumesToInstall();
    EXPECT_EQ(pane.gVolumeCount, 1) << mode;
    EXPECT_EQ(pane.gAllTwoComponentInstallChoicesAreLite, 1) << mode;
  }
  EXPECT_THAT(logMessages(), IsEmpty());
}

TEST_F(SourceVolumesWithOption, AFullChoiceIsTwoVolumesWithoutALogLineInModes0And3) {
  for (const std::int32_t mode : {0, 3}) {
    pane.gInstallMode = mode;
    pane.gAllTwoComponentInstallChoicesAreLite = 1;
    pane.determineNumVolumesToInstall();
    EXPECT_EQ(pane.gVolumeCount, 2) << mode;
    EXPECT_EQ(pane.gAllTwoComponentInstallChoicesAreLite, 0) << mode;
  }
  EXPECT_THAT(logMessages(), IsEmpty());
}

TEST_F(SourceVolumesWithOption, AFullChoiceInMode2TakesItsCountFromTheFile) {
  setAttributes("NumberOfVolumes = 2\n");
  pane.gInstallMode = 2;
  pane.gAllTwoComponentInstallChoicesAreLite = 1;
  pane.determineNumVolumesToInstall();
  EXPECT_EQ(pane.gVolumeCount, 2);
  EXPECT_EQ(pane.gAllTwoComponentInstallChoicesAreLite, 0);
  EXPECT_THAT(logMessages(), ElementsAre(kFoundLine, "Data from attributes file::   num Vol=2 "));
}

TEST_F(SourceVolumesWithOption, OnlyTheFirstFlagCountsOutsideMode4) {
  pane.gInstallMode = 0;
  pane.gNumTwoComponentInstallFolders = 2;
  pane.gTwoComponentInstallChoicesAreLite[0] = 1;
  pane.gTwoComponentInstallChoicesAreLite[1] = 0;
  pane.determineNumVolumesToInstall();
  EXPECT_EQ(pane.gVolumeCount, 1);
}

struct Flags {
  std::vector<std::int32_t> flags;
  std::int32_t folders;
  std::int32_t volumes;
  std::int32_t allAreLite;
};

TEST_F(SourceVolumesWithOption, Mode4IsTwoVolumesAsSoonAsOneLibraryIsFull) {
  pane.gInstallMode = 4;
  for (const Flags& row : {Flags{{1, 1, 0}, 3, 2, 0}, Flags{{1, 1}, 2, 1, 1}, Flags{{0, 1}, 2, 2, 0},
                           Flags{{0}, 1, 2, 0}, Flags{{1}, 1, 1, 1}, Flags{{1, 0}, 1, 1, 1}}) {
    pane.gTwoComponentInstallChoicesAreLite.fill(0);
    std::copy(row.flags.begin(), row.flags.end(), pane.gTwoComponentInstallChoicesAreLite.begin());
    pane.gNumTwoComponentInstallFolders = row.folders;
    pane.gAllTwoComponentInstallChoicesAreLite = 1 - row.allAreLite;
    pane.determineNumVolumesToInstall();
    EXPECT_EQ(pane.gVolumeCount, row.volumes) << testing::PrintToString(row.flags);
    EXPECT_EQ(pane.gAllTwoComponentInstallChoicesAreLite, row.allAreLite) << testing::PrintToString(row.flags);
  }
  EXPECT_THAT(logMessages(), IsEmpty());
}

TEST_F(SourceVolumesWithOption, Mode4WithAllFiftyLibrariesLiteIsOneVolume) {
  pane.gInstallMode = 4;
  pane.gNumTwoComponentInstallFolders = 50;
  pane.gTwoComponentInstallChoicesAreLite.fill(1);
  pane.determineNumVolumesToInstall();
  EXPECT_EQ(pane.gVolumeCount, 1);
  pane.gTwoComponentInstallChoicesAreLite[49] = 0;
  pane.determineNumVolumesToInstall();
  EXPECT_EQ(pane.gVolumeCount, 2);
}

TEST_F(SourceVolumesWithOption, Mode4WithoutLibrariesIsOneVolume) {
  pane.gInstallMode = 4;
  for (const std::int32_t folders : {0, -1}) {
    pane.gNumTwoComponentInstallFolders = folders;
    pane.gAllTwoComponentInstallChoicesAreLite = 0;
    pane.gVolumeCount = 9;
    pane.determineNumVolumesToInstall();
    EXPECT_EQ(pane.gVolumeCount, 1) << folders;
    EXPECT_EQ(pane.gAllTwoComponentInstallChoicesAreLite, 1) << folders;
  }
}

TEST_F(SourceVolumesWithOption, Mode4WithoutTheOptionTakesItsCountFromTheFile) {
  pane.gInstallMode = 4;
  pane.gInstallationHasLiteVsFullOption = 0;
  pane.determineNumVolumesToInstall();
  EXPECT_EQ(pane.gVolumeCount, 7);
  EXPECT_THAT(logMessages(), ElementsAre(kFoundLine, "Data from attributes file::   num Vol=7 "));
}

}  // namespace

}  // namespace tavenhall::test

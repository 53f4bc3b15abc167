#include "pane/install_data_pane.h"
#include "tests/support/files.h"
#include "tests/support/recording_host.h"
#include "tests/support/recording_platform.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavenhall::test {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

struct Library {
  std::string folder;
  std::int32_t isLite;
};

class DetectedEditions : public testing::Test {
 protected:
  DetectedEditions() { makeFolder("/Users/tester/Library/Caches"); }  // where the log goes

  void setLibraries(const std::vector<Library>& libraries) {
    pane.gInstallMode = 4;
    pane.gInstallationHasLiteVsFullOption = 1;
    pane.gNumTwoComponentInstallFolders = static_cast<std::int32_t>(libraries.size());
    for (std::size_t i = 0; i < libraries.size(); ++i) {
      pane.gTwoComponentInstallFolderNames[i].assign(libraries[i].folder);
      pane.gTwoComponentInstallChoicesAreLite[i] = libraries[i].isLite;
    }
  }

  // The informative text of the one alert.
  std::string textFor(const Library& library) {
    setLibraries({library});
    pane.announceDetectedEditions();
    const auto lines = host.linesThatBegin("alert ");
    const std::string start = "alert Detected Installation Type|";
    const std::string end = "|Continue|1";
    EXPECT_EQ(lines.size(), 1U);
    EXPECT_TRUE(lines[0].starts_with(start) && lines[0].ends_with(end)) << lines[0];
    return lines[0].substr(start.size(), lines[0].size() - start.size() - end.size());
  }

  RecordingHost host;
  InstallDataPane pane{host};
};

// ---- The texts ----

TEST_F(DetectedEditions, ALiteLibrary) {
  EXPECT_EQ(textFor({"Tessaphon", 1}),
            "Lite installation detected for Tessaphon. Performing a Lite data update.");
}

TEST_F(DetectedEditions, AFullLibrary) {
  EXPECT_EQ(textFor({"Tessaphon", 0}),
            "Full installation detected for Tessaphon. Performing a Full data update.");
}

TEST_F(DetectedEditions, AFullMirelPack) {
  EXPECT_EQ(textFor({"Mirel Packs/Velmora", 0}),
            "Full installation detected for Mirel Pack Velmora. Performing a Full data update.");
}

TEST_F(DetectedEditions, ALiteMirelPackIsFxOnly) {
  EXPECT_EQ(textFor({"Mirel Packs/Velmora", 1}),
            "FX only installation detected for Mirel Pack Velmora. Performing an FX only data update.");
}

TEST_F(DetectedEditions, AnyFlagButZeroIsLite) {
  EXPECT_EQ(textFor({"Tessaphon", -1}),
            "Lite installation detected for Tessaphon. Performing a Lite data update.");
}

TEST_F(DetectedEditions, ANameWithMirelPacksButNoSlashIsAnOrdinaryLibraryShownWhole) {
  EXPECT_EQ(textFor({"My Mirel Packs 2", 1}),
            "Lite installation detected for My Mirel Packs 2. Performing a Lite data update.");
}

TEST_F(DetectedEditions, WhatFollowsTheFirstSlashIsTheMirelPack) {
  EXPECT_EQ(textFor({"Mirel Packs/Velmora/2", 0}),
            "Full installation detected for Mirel Pack Velmora/2. Performing a Full data update.");
}

TEST_F(DetectedEditions, PercentSignsInANameStandAsTheyAre) {
  EXPECT_EQ(textFor({"100%s %n", 0}),
            "Full installation detected for 100%s %n. Performing a Full data update.");
}

// ---- Long names ----

TEST_F(DetectedEditions, ADisplayNameOf255BytesIsWhole) {
  const std::string name(255, 'n');
  EXPECT_EQ(textFor({name, 0}), "Full installation detected for " + name + ". Performing a Full data update.");
}

TEST_F(DetectedEditions, AMirelPackOf244BytesIsWhole) {
  const std::string name(244, 'n');
  EXPECT_EQ(textFor({"Mirel Packs/" + name, 0}),
            "Full installation detected for Mirel Pack " + name + ". Performing a Full data update.");
}

TEST_F(DetectedEditions, AMirelPackOf245BytesIsCutTo255BytesOfDisplayName) {
  const std::string shown(244, 'n');
  EXPECT_EQ(textFor({"Mirel Packs/" + shown + "X", 0}),
            "Full installation detected for Mirel Pack " + shown + ". Performing a Full data update.");
}

TEST_F(DetectedEditions, ADisplayNameIsCutAtACharactersEdge) {
  const std::string shown(243, 'n');
  EXPECT_EQ(textFor({"Mirel Packs/" + shown + "é", 1}),
            "FX only installation detected for Mirel Pack " + shown + ". Performing an FX only data update.");
}

TEST_F(DetectedEditions, ACharacterThatJustFitsStays) {
  const std::string shown = std::string(242, 'n') + "é";
  EXPECT_EQ(textFor({"Mirel Packs/" + shown + "é", 0}),
            "Full installation detected for Mirel Pack " + shown + ". Performing a Full data update.");
}

TEST_F(DetectedEditions, AFourByteCharacterIsCutWhole) {
  const std::string shown(241, 'n');
  EXPECT_EQ(textFor({"Mirel Packs/" + shown + "\xF0\x9F\x8E\xB9", 0}),
            "Full installation detected for Mirel Pack " + shown + ". Performing a Full data update.");
}

// ---- Several alerts ----

TEST_F(DetectedEditions, EachLibraryIsLoggedAndThenAnnouncedInOrder) {
  setLibraries({{"Tessaphon", 1}, {"Mirel Packs/Velmora", 0}, {"Mirel Packs/Quorra", 1}});
  std::vector<std::string> events;
  host.onLine = [&](const std::string& line) {
    events.push_back(std::to_string(logMessages().size()) + " " + line);
  };

  pane.announceDetectedEditions();

  EXPECT_THAT(
      events,
      ElementsAre("1 alert Detected Installation Type|Lite installation detected for Tessaphon. "
                  "Performing a Lite data update.|Continue|1",
                  "2 alert Detected Installation Type|Full installation detected for Mirel Pack Velmora. "
                  "Performing a Full data update.|Continue|1",
                  "3 alert Detected Installation Type|FX only installation detected for Mirel Pack Quorra. "
                  "Performing an FX only data update.|Continue|1"));
  EXPECT_THAT(logMessages(), ElementsAre("Displaying Lite Vs Full Informational Prompt 0",
                                         "Displaying Lite Vs Full Informational Prompt 1",
                                         "Displaying Lite Vs Full Informational Prompt 2"));
  EXPECT_EQ(host.dispatches(), 0);
}

TEST_F(DetectedEditions, TheAnswerIsNotLookedAt) {
  setLibraries({{"Tessaphon", 1}, {"Lumaweave", 0}});
  host.answers = {1001, 0};
  pane.announceDetectedEditions();
  EXPECT_EQ(host.linesThatBegin("alert ").size(), 2U);
}

TEST_F(DetectedEditions, TheNumberOfLibrariesIsReadAgainAfterEachAlert) {
  setLibraries({{"Tessaphon", 1}, {"Lumaweave", 0}, {"Bassoria", 0}});
  host.onAlert = [this](const std::string&) { pane.gNumTwoComponentInstallFolders = 2; };
  pane.announceDetectedEditions();
  EXPECT_EQ(host.linesThatBegin("alert ").size(), 2U);
}

TEST_F(DetectedEditions, OutsideMode4NothingIsAnnounced) {
  setLibraries({{"Tessaphon", 1}});
  for (const std::int32_t mode : {0, 2, 3}) {
    pane.gInstallMode = mode;
    pane.announceDetectedEditions();
  }
  EXPECT_THAT(host.lines(), IsEmpty());
  EXPECT_FALSE(exists(kLog));
}

TEST_F(DetectedEditions, WithoutTheOptionNothingIsAnnounced) {
  setLibraries({{"Tessaphon", 1}});
  pane.gInstallationHasLiteVsFullOption = 0;
  pane.announceDetectedEditions();
  EXPECT_THAT(host.lines(), IsEmpty());
}

// ---- From the update's own folders ----

TEST_F(DetectedEditions, AnUpdateAnnouncesWhatTheUserHasInListingOrder) {
  const std::string update = std::string(kSet) + "/Update/TANVO";
  const std::string installed =
      std::string(kTanvo) + "/Mirel Packs/Velmora/Soundsources/Factory/Velmora Library";
  setAttributes("Mode = TavenhallUpdater\nRelativePath2 = Update\n");
  makeFolder(update + "/Tessaphon");
  makeFolder(update + "/Mirel Packs/Velmora");
  writeFile(installed + "/Sub/x.db", someBytes(1000));
  platform().canStartThreads = false;

  pane.didEnterPane(0);

  std::vector<std::string> expected;
  for (const auto& entry : std::filesystem::directory_iterator(update)) {
    expected.emplace_back(
        entry.path().filename() == "Tessaphon"
            ? "alert Detected Installation Type|Lite installation detected for Tessaphon. "
              "Performing a Lite data update.|Continue|1"
            : "alert Detected Installation Type|Full installation detected for Mirel Pack Velmora. "
              "Performing a Full data update.|Continue|1");
  }
  ASSERT_EQ(expected.size(), 2U);
  EXPECT_THAT(host.linesThatBegin("alert "), ElementsAreArray(expected));
  EXPECT_EQ(pane.gVolumeCount, 2);
}

TEST_F(DetectedEditions, TheAlertsComeBeforeTheInstallThreadStarts) {
  const std::string update = std::string(kSet) + "/Update/TANVO";
  setAttributes("Mode = TavenhallUpdater\nRelativePath2 = Update\n");
  makeFolder(update + "/Tessaphon");
  makeFolder(update + "/Lumaweave");
  makeFolder(kTanvo);
  std::size_t threadsAtAlerts = 0;
  host.onAlert = [&](const std::string&) { threadsAtAlerts += platform().callsThatBegin("thread ").size(); };

  pane.didEnterPane(0);
  host.serve();

  EXPECT_EQ(host.linesThatBegin("alert ").size(), 2U);
  EXPECT_EQ(threadsAtAlerts, 0U);
  EXPECT_THAT(platform().callsThatBegin("thread "), Contains("thread doEntireInstall"));
}

TEST_F(DetectedEditions, AnUpdateWithoutLibrariesShowsNoAlertAndSetsNoOption) {
  setAttributes("Mode = TavenhallUpdater\nRelativePath2 = Update\nNumberOfVolumes = 3\n");
  makeFolder(std::string(kSet) + "/Update/TANVO/Mirel Packs");
  makeFolder(kTanvo);
  platform().canStartThreads = false;

  pane.didEnterPane(0);

  EXPECT_EQ(pane.gInstallationHasLiteVsFullOption, 0);
  EXPECT_EQ(pane.gVolumeCount, 3);
  EXPECT_THAT(host.linesThatBegin("alert "), IsEmpty());
  EXPECT_THAT(logMessages(), Not(Contains(StartsWith("Displaying"))));
  EXPECT_THAT(logMessages(), Contains("Data from attributes file::   num Vol=3 ").Times(1));
}

}  // namespace

}  // namespace tavenhall::test

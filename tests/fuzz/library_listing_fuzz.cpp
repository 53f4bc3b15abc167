#include "context/attributes_file.h"
#include "context/folder_listing.h"
#include "context/install_settings.h"
#include "pane/install_data_pane.h"
#include "tests/fuzz/fuzzing.h"
#include "tests/fuzz/page_files.h"
#include "tests/fuzz/stops.h"
#include "tests/fuzz/tree_input.h"
#include "tests/support/recording_host.h"
#include "tests/support/recording_platform.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <vector>

// The input is a tree (tests/fuzz/tree_input.h): what lies in "update" is what an update brings, and what lies
// in "central" is what the user has. The page lists the one and looks for editions in the other; a second walk
// says what has to come of it, in the log too, and whether a path outgrows its buffer.
namespace tavenhall::fuzz {

namespace {

namespace fs = std::filesystem;

constexpr const char* kTree = "/tmp/tree";
constexpr const char* kCentral = "/tmp/tree/central";
constexpr const char* kUpdate = "/tmp/tree/update/TANVO";
constexpr std::size_t kPathRoom = 2048;  // bytes, with the terminator
constexpr std::size_t kSlots = 50;

struct Expected {
  std::vector<std::string> names;
  std::vector<int> areLite;
  std::size_t packs = 0;
  std::vector<std::string> log;
  bool stops = false;  // a path does not fit
};

// The names in a folder, as the system lists them, without the hidden ones.
std::vector<fs::directory_entry> entriesOf(const std::string& folder) {
  std::vector<fs::directory_entry> entries;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    if (entry.path().filename().native()[0] != '.') {
      entries.push_back(entry);
    }
  }
  return entries;
}

bool isRegularFile(const fs::directory_entry& entry) { return !entry.is_symlink() && entry.is_regular_file(); }
bool isRealFolder(const fs::directory_entry& entry) { return !entry.is_symlink() && entry.is_directory(); }

void listUpdate(Expected& expected) {
  expected.log.emplace_back("Data from attributes file::  RelativePath2=tree/update ");
  for (const auto& entry : entriesOf(kUpdate)) {
    const std::string name = entry.path().filename();
    if (expected.names.size() == kSlots) {
      break;
    }
    if (name != "Mirel Packs") {
      expected.names.push_back(name);
      continue;
    }
    expected.log.push_back("Searching for Mirel Packs update data: " + std::string(kUpdate) +
                           "/Mirel Packs \n");
    for (const auto& pack : entriesOf(std::string(kUpdate) + "/Mirel Packs")) {
      if (expected.names.size() < kSlots) {
        expected.names.push_back("Mirel Packs/" + pack.path().filename().string());
        expected.log.push_back("Found Mirel Packs library: " + expected.names.back() + "\n");
        ++expected.packs;
      }
    }
  }
}

// The first database in a folder, by its name; none where it cannot be read.
std::optional<std::string> databaseIn(const std::string& folder) {
  struct stat found {};
  if (stat(folder.c_str(), &found) != 0 || !S_ISDIR(found.st_mode)) {
    return std::nullopt;
  }
  for (const auto& entry : entriesOf(folder)) {
    const std::string name = entry.path().filename();
    const std::size_t dot = name.rfind('.');
    if (isRegularFile(entry) && dot != std::string::npos && name.substr(dot) == ".db") {
      return name;
    }
  }
  return std::nullopt;
}

void detectPack(const std::string& library, int& isLite, Expected& expected) {
  std::string path =
      std::string(kCentral) + "/Mirel Packs/" + library + "/Soundsources/Factory/" + library + " Library";
  expected.log.push_back("Searching: " + path + " \n");
  for (const auto& entry : entriesOf(path)) {
    if (!isRealFolder(entry)) {
      continue;
    }
    path += "/" + entry.path().filename().string();  // it only grows
    if (path.size() >= kPathRoom) {
      expected.stops = true;
      return;
    }
    if (const auto database = databaseIn(path)) {
      path += "/" + *database;
      if (path.size() >= kPathRoom) {
        expected.stops = true;
        return;
      }
      const auto size = fs::file_size(path);
      isLite = size < 1000 ? 1 : 0;
      expected.log.push_back("Found " + path + " file with size = " + std::to_string(size) + "\n");
      expected.log.push_back("Confirmed " + library + " Library Installation is " +
                             (isLite != 0 ? "Lite\n" : "Full\n"));
      return;
    }
  }
}

void detectEditions(Expected& expected) {
  expected.areLite.assign(expected.names.size(), 0);
  for (std::size_t i = 0; i < expected.names.size() && !expected.stops; ++i) {
    const std::string& name = expected.names[i];
    if (name.find("Mirel Packs") != std::string::npos && name.find('/') != std::string::npos) {
      detectPack(name.substr(name.find('/') + 1), expected.areLite[i], expected);
    } else if (name == "Tessaphon") {
      struct stat found {};
      const std::string path =
          std::string(kCentral) + "/Tessaphon/Soundsources/Factory/Tessaphon Library/Keyboards/Glassophone.db";
      expected.areLite[i] = stat(path.c_str(), &found) != 0 ? 1 : 0;
      expected.log.emplace_back(expected.areLite[i] != 0
                                    ? "Confirmed Tessaphon Library Installation is Lite\n"
                                    : "Confirmed Tessaphon Library Installation is Full\n");
    }
  }
}

void checkListing(const std::string& folder) {
  std::vector<std::string> names;
  FolderListing listing(folder.c_str());
  while (const dirent* entry = listing.next()) {
    names.emplace_back(entry->d_name);
  }
  const auto entries = entriesOf(folder);
  require(names.size() == entries.size(), "the number of entries");
  for (std::size_t i = 0; i < names.size(); ++i) {
    requireSame(names[i], entries[i].path().filename().native(), "an entry's name");
  }
  require(folderExistsAndHasContents(folder.c_str()) == (entries.empty() ? 0 : 1),
          "whether the folder has contents");
}

void layOut(std::string_view input) {
  static const bool isLaidOut = [] {
    makeFolders(kTree);
    writeBytes(kLocationFile, "/tmp/Installer.pkg\n");
    writeBytes("/tmp/.InstallationAttributes.dat", "RelativePath2 = tree/update\n");
    test::platform().keepsCalls = false;
    return true;
  }();
  static_cast<void>(isLaidOut);
  clearFolder(kTree);
  layTree(input, kTree);
}

// Brings the page to the point where it settles the editions.
void reset(InstallDataPane& pane) {
  pane.gInstallMode = kModeProductUpdater;
  pane.gTANVOorDOVA_destinationPath = kCentral;
  pane.gNumTwoComponentInstallFolders = 0;
  pane.gNumMirelPacksInstallFolders = 0;
  pane.gTwoComponentInstallChoicesAreLite.fill(0);
}

void checkEditions(InstallDataPane& pane, const Expected& expected) {
  require(pane.gNumTwoComponentInstallFolders == static_cast<int>(expected.names.size()),
          "the number of libraries");
  require(pane.gNumMirelPacksInstallFolders == static_cast<int>(expected.packs), "the number of packs");
  for (std::size_t i = 0; i < expected.names.size(); ++i) {
    requireSame(pane.gTwoComponentInstallFolderNames[i].view(), expected.names[i], "a library's name");
    require(pane.gTwoComponentInstallChoicesAreLite[i] == expected.areLite[i], "a library's edition");
  }
  pane.gInstallationHasLiteVsFullOption = expected.names.empty() ? 0 : 1;
  pane.announceDetectedEditions();
  forgetLog();
  pane.determineNumVolumesToInstall();
  const bool hasFull = std::count(expected.areLite.begin(), expected.areLite.end(), 0) > 0;
  require(pane.gVolumeCount == (hasFull ? 2 : 1), "the number of volumes");
}

}  // namespace

}  // namespace tavenhall::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavenhall;
  using namespace tavenhall::fuzz;
  static auto* const host = [] {
    auto* const made = new test::RecordingHost;
    made->keepsLines = false;
    return made;
  }();
  static auto* const pane = new InstallDataPane(*host);
  layOut(asText(data, size));
  for (const char* folder : {kTree, kCentral, kUpdate}) {
    checkListing(folder);
  }

  Expected expected;
  listUpdate(expected);
  detectEditions(expected);
  static const bool isFound = [] {  // so that no later log has the line that the file was found
    FILE* const file = getInstallationAttributesFile();
    require(file != nullptr, "the attributes file is gone");
    std::fclose(file);
    return true;
  }();
  static_cast<void>(isFound);
  forgetLog();
  reset(*pane);
  const auto stop = stopOf([] {
    pane->storeTwoComponentInstallFolderNames();
    pane->determineInstallationTypesInLocalTANVOFolder();
  });
  requireSame(stop.value_or("it went on"), expected.stops ? stopLine(kPathRoom) : "it went on", "the stop");
  require(openFolders() == 0, "a folder was left open");
  requireLog(expected.log);
  if (!expected.stops) {
    checkEditions(*pane, expected);
  }
  forgetLog();
  return 0;
}

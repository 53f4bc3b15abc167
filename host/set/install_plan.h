#pragma once

#include "context/install_rules.h"
#include "host/set/attributes_reading.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// What the page would do with an installer package, computed with the page's own rules. Reads only: writes no
// log and no file, and keeps no state. Any thread.
namespace tavenhall {

// The two names that the page takes from its bundle's strings.
struct Product {
  std::string pluginName;
  std::string folderName;
};

// Returns the product of that name, or the default product if `name` is empty. Throws UsageError for an unknown
// name.
[[nodiscard]] Product productNamed(const std::string& name);

struct PlanRequest {
  std::string package;  // the package's path, as the page gets it
  Product product;

  // The folder that holds the data folders, as "Tavenhall" in the user's Application Support folder does.
  // None: for no particular user; texts then show "~" for the home, and the user has no libraries, as in a
  // rehearsal.
  std::optional<std::string> dataRoot;

  // "Lite" or "Full" if the pre-install step writes the choice file.
  std::optional<std::string> installType;

  // Whether an existing choice file in /tmp counts where there is no install type. A sandbox has none.
  bool readsChoiceFile = true;

  // Whether the user's libraries decide on their editions in an update; otherwise they are all Full.
  bool detectsEditions = true;

  // The attributes file's bytes, instead of what it contains.
  std::optional<std::string> attributes = {};
};

// Where the page's choice between Lite and Full comes from.
enum class EditionSource {
  none,        // there is no choice: everything is installed
  request,     // the install type that was asked for
  choiceFile,  // an existing file in /tmp
  noChoice,    // there is no choice file, so it is Full
  detection,   // what the user has installed, library by library
};

// A library of an update, and the edition that the user has installed.
struct PlannedLibrary {
  std::string folderName;  // below the data folder; "Mirel Packs/" and the name for a Mirel Pack
  bool isLite = false;
  bool isDetected = false;  // false: unknown, so it counts as Full
};

struct EditionPlan {
  bool isOffered = false;  // the installation has a Lite and a Full edition
  bool allAreLite = false;
  EditionSource source = EditionSource::none;
  std::string choice;  // the content of the choice file, as the page reads it
  std::vector<PlannedLibrary> libraries;
};

struct PlannedVolume {
  std::int32_t number = 0;  // from 0
  std::string root;         // a mount path, or a folder relative to the package's
  std::string primary;      // the data folder there; it wins
  std::string alternate;    // the data folder below "Mac OSX"
  bool isMounted = false;   // the root is a mount path
  bool isOptional = false;
  bool librariesOnly = false;  // only the folders of the libraries that are not Lite are copied from it
};

struct PlannedPass {
  std::string folderName;
  std::string destination;
  std::string text;  // the page's large text while it runs
  std::int32_t volumeCount = 0;
  std::vector<PlannedVolume> volumes;  // in order; an absurd number of them is not listed to its end
};

// A folder beside the package that is copied into the system's folder of the same name.
struct PlannedFolder {
  std::string source;
  std::string destination;
};

struct AnnouncedSize {
  std::int64_t totalMillions = 0;
  std::int64_t componentMillions = 0;  // of the first component, which is all that a Lite edition has
  const char* countedKey = nullptr;
  std::int64_t countedMillions = 0;
  std::int64_t bytes = 0;  // what the page then expects
  bool isKnown = false;    // false: nothing is announced, and the bar keeps the range it had
};

struct InstallPlan {
  AttributesReading attributes;
  Product product;
  std::string packageFolder;
  std::int32_t mode = kModeVolumes;
  FoundText modeFound;  // what the file says of it
  std::string title;
  std::string enteringText;  // the page's large text at first; a pass replaces it
  std::string completionText;
  EditionPlan editions;
  std::int64_t numberOfVolumes = 0;  // what the file says
  std::vector<PlannedFolder> systemFolders;
  std::vector<PlannedPass> passes;
  AnnouncedSize announced;
};

// The page's buffers for the paths of one file, from and to, terminator included.
inline constexpr std::size_t kFilePathSize = 1024;

// Stands for a home of unknown length, that of a user whose name has 20 bytes.
inline constexpr const char* kLongHome = "/Users/12345678901234567890";

// The text that the page derives from the package's path: the folder that holds the package.
[[nodiscard]] std::string packageFolderOf(const std::string& package);

[[nodiscard]] InstallPlan planInstall(const PlanRequest& request);

// The reasons for the plan's mode and for the edition to install: sentences in the current language.
[[nodiscard]] std::string modeReason(const InstallPlan& plan);
[[nodiscard]] std::string editionReason(const InstallPlan& plan);

// ---- An update's libraries, in the order in which the system lists them ----

// The libraries in an update's data folder; by default at most as many as the page handles.
[[nodiscard]] std::vector<PlannedLibrary> listLibraries(const std::string& dataFolder,
                                                        std::size_t limit = kLibrarySlots);

// Sets the edition of each library from the content of the central folder. An empty path is that of a user who
// has no libraries.
void detectInstalledEditions(const std::string& centralFolder, std::vector<PlannedLibrary>& libraries);

// The names in a folder without the hidden ones, in the order of the listing; empty if it cannot be opened.
[[nodiscard]] std::vector<std::string> listNames(const std::string& folder);

}  // namespace tavenhall

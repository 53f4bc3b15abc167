#include "tests/faults/sweep_scenarios.h"

#include "tests/install/case_files.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <array>
#include <string_view>

namespace tavenhall::test {

namespace {

constexpr const char* kOutside = "/Volumes/Data/Sounds/TANVO";

// Lays the entries below a folder and adds those that come below `from` there to what is to be installed below
// `to`.
class Layer {
 public:
  struct Mapping {
    std::string from;
    std::string to;
  };

  void lay(const std::string& folder, const std::vector<Entry>& entries, const std::vector<Mapping>& mappings) {
    layTree(folder, entries);
    for (const Entry& entry : entries) {
      const std::string path = folder + "/" + entry.path;
      for (const Mapping& mapping : mappings) {
        if (path.starts_with(mapping.from + "/") && path.find("/.") == std::string::npos) {
          files_.push_back({path, mapping.to + path.substr(mapping.from.size()), entry.text});
        }
      }
    }
  }

  std::vector<InstalledFile> takeFiles() { return std::move(files_); }

 private:
  std::vector<InstalledFile> files_;
};

// Two discs, one with its folder below "Mac OSX", over some files of an earlier version.
std::vector<InstalledFile> layDiscs() {
  Layer layer;
  layTree(kSet, {textFile(".InstallationAttributes.dat",
                          "Mode = InstallFromVolumes\nInstallDataTitle = Installing Tessaphon Data\n"
                          "NumberOfVolumes = 2\nTotalSizeMillionsBytes = 1\nInstalledData = All is in %s.\n"),
                 textFile("Installer.pkg", "")});
  layTree(kTanvo, {file("Settings/a.db", 500), file("Presets/own.prt", 100)});
  layer.lay(kDiscA,
            {file("TANVO/Settings/a.db", 300), file("TANVO/Tessaphon/.DS_Store", 10),
             file("TANVO/Tessaphon/big.db", 300000), textFile("TANVO/Tessaphon/empty.db", "")},
            {{std::string(kDiscA) + "/TANVO", kTanvo}});
  layer.lay(kDiscB, {file("Mac OSX/TANVO/Voices/v.db", 20480)},
            {{std::string(kDiscB) + "/Mac OSX/TANVO", kTanvo}});
  return layer.takeFiles();
}

// Both parts of a full edition, into a folder behind a link; its paths have no blank, so that the command
// that makes a folder in the page's place can do it.
std::vector<InstalledFile> layUpdate() {
  Layer layer;
  layTree(kOutside, {});
  layTree(kMakersFolder, {link("TANVO", kOutside)});
  const std::string set = kSet;
  layer.lay(set,
            {textFile(".InstallationAttributes.dat",
                      "Mode = DataUpdater\nNumberOfVolumes = 2\nRelativePath = Lite Part\n"
                      "RelativePath2 = Full Part\nTotalSizeMillionsBytes = 1\n"),
             file("Full Part/TANVO/Tessaphon/b.db", 5000), textFile("Installer.pkg", ""),
             file("Lite Part/TANVO/Tessaphon/Patches/a.prt", 700), file("Lite Part/TANVO/c.db", 12000)},
            {{set + "/Lite Part/TANVO", kOutside}, {set + "/Full Part/TANVO", kOutside}});
  return layer.takeFiles();
}

// A plug-in with a signature and an application, each over an older one, and data for both libraries.
std::vector<InstalledFile> layProductUpdate() {
  Layer layer;
  layTree(kMakersFolder,
          {folder("DOVA"),
           file("TANVO/Tessaphon/Soundsources/Factory/Tessaphon Library/Keyboards/Glassophone.db", 2000)});
  layTree("/Library", {file("Audio/Plug-Ins/VST/Tessaphon.vst/Contents/old", 100)});
  layTree("/Applications", {file("Tessaphon.app/Contents/old", 100)});
  const std::string set = kSet;
  layer.lay(
      set,
      {textFile(
           ".InstallationAttributes.dat",
           "Mode = TavenhallUpdater\nRelativePath = .\nRelativePath2 = Full\nTotalSizeMillionsBytes = 1\n"),
       file("Applications/Tessaphon.app/Contents/program", 3000), file("DOVA/Lumaweave/l.db", 1500),
       file("Full/TANVO/Tessaphon/full.db", 2500), textFile("Installer.pkg", ""),
       file("Library/Audio/Plug-Ins/VST/Tessaphon.vst/Contents/Resources/__Pace_Eden/Signatures/codesign.dsig",
            40),
       file("Library/Audio/Plug-Ins/VST/Tessaphon.vst/Contents/plugin", 4000),
       file("TANVO/Tessaphon/lite.db", 1200)},
      {{set + "/Applications", "/Applications"},
       {set + "/DOVA", kDova},
       {set + "/Full/TANVO", kTanvo},
       {set + "/Library", "/Library"},
       {set + "/TANVO", kTanvo}});
  return layer.takeFiles();
}

// Far more failures than a screen, a pipe or a list of the first ones holds.
std::vector<InstalledFile> layLargeSet() {
  constexpr int kFolders = 20;
  constexpr int kFilesEach = 100;
  Layer layer;
  const std::string set = kSet;
  std::vector<Entry> entries{textFile(".InstallationAttributes.dat",
                                      "Mode = FullDownload\nRelativePath = .\nTotalSizeMillionsBytes = 1\n"),
                             textFile("Installer.pkg", "")};
  for (int i = 0; i < kFolders * kFilesEach; ++i) {
    const std::string folder = "TANVO/Folder " + std::to_string(i / kFilesEach);
    entries.push_back(file(folder + "/" + std::to_string(i) + ".db", static_cast<std::size_t>(i % 500)));
  }
  layTree(kTanvo, {});
  layer.lay(set, entries, {{set + "/TANVO", kTanvo}});
  return layer.takeFiles();
}

std::vector<std::string> installing(const std::vector<std::string>& more) {
  std::vector<std::string> arguments{"run", "--ui", "plain", "--package", kPackage};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return arguments;
}

}  // namespace

std::span<const SweepScenario> sweepScenarios() {
  const std::string set = kSet;
  static const std::array<SweepScenario, 4> kScenarios{{
      {"discs",
       installing({}),
       "1\n1\n1\n",
       {std::string(kDiscA) + "/TANVO", std::string(kDiscB) + "/Mac OSX/TANVO"},
       true,
       false,
       layDiscs},
      {"update",
       installing({"--install-type", "Full"}),
       "",
       {set + "/Lite Part/TANVO", set + "/Full Part/TANVO"},
       true,
       false,
       layUpdate},
      {"product",
       installing({}),
       "1\n1\n1\n",
       {set + "/Library", set + "/Applications", set + "/TANVO", set + "/Full/TANVO/Tessaphon", set + "/DOVA"},
       false,
       false,
       layProductUpdate},
      {"large", installing({}), "", {set + "/TANVO"}, true, true, layLargeSet},
  }};
  return kScenarios;
}

}  // namespace tavenhall::test

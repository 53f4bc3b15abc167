#pragma once

#include "host/check/report.h"
#include "tests/support/files.h"

#include <algorithm>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <vector>

// Sound sets, one of each kind, to be broken in one place by a test, and a short way to say what a check is
// to find then.
namespace tavenhall::test {

inline const std::string kSetFolder = "/Users/tester/Installer";

inline std::string inSet(const std::string& path) { return kSetFolder + "/" + path; }

// The attributes file: a set's own lines, and what a test adds.
inline void writeAttributes(const std::string& text) { writeFile(inSet(".InstallationAttributes.dat"), text); }

// The two texts that every set should have.
inline const std::string kTexts = "InstallDataTitle = Installing\nInstalledData = Installed in %s\n";

// Lumaweave on two discs.
inline const std::string kDiscLines =
    "Mode = InstallFromVolumes\n"
    "InstallDataTitle = Installing Lumaweave\n"
    "InstallingData = Now installing to\\n\\n%s\n"
    "InstalledData = Installed in\\n\\n%s\n"
    "NumberOfVolumes = 2\n"
    "TotalSizeMillionsBytes = 1\n";

inline void makeDiscSet(const std::string& attributes = kDiscLines) {
  writeFile(inSet("Installer.pkg"), "package");
  writeAttributes(attributes);
  writeFile(inSet("discs/1 Tavenhall Lumaweave/DOVA/Factory/one.db"), "one");
  writeFile(inSet("discs/2 Tavenhall Lumaweave/DOVA/Factory/two.db"), "two");
}

// An update of Tessaphon's data, in two components.
inline const std::string kDataUpdateLines =
    "Mode = DataUpdater\n"
    "RelativePath = First\n"
    "RelativePath2 = Second\n"
    "InstalledData = Installed in %s\n"
    "NumberOfVolumes = 2\n"
    "TotalSizeMillionsBytes = 1\n"
    "Component1SizeMillionsBytes = 1\n"
    "InstallDataTitle = Installing\n";

inline void makeDataUpdateSet(const std::string& attributes = kDataUpdateLines) {
  writeFile(inSet("Installer.pkg"), "package");
  writeAttributes(attributes);
  writeFile(inSet("First/TANVO/Tessaphon/one.db"), "one");
  writeFile(inSet("Second/TANVO/Tessaphon/two.db"), "two");
}

// A whole installer that was downloaded, its package in a folder of its own.
inline const std::string kDownloadLines =
    "Mode = Downloaded\n"
    "InstalledData = Installed in %s\n"
    "TotalSizeMillionsBytes = 1\n"
    "InstallDataTitle = Installing\n";

inline void makeDownloadSet(const std::string& attributes = kDownloadLines) {
  writeFile(inSet("Package/Installer.pkg"), "package");
  writeFile(inSet("Package/.InstallationAttributes.dat"), attributes);
  writeFile(inSet("TANVO/Tessaphon/one.db"), "one");
}

// A product update: libraries, a plug-in of each kind and an application.
inline const std::string kUpdateLines =
    "Mode = TavenhallUpdater\n"
    "RelativePath = First\n"
    "RelativePath2 = Second\n"
    "InstalledData = Installed in %s\n"
    "TotalSizeMillionsBytes = 1\n"
    "Component1SizeMillionsBytes = 1\n"
    "InstallDataTitle = Installing\n";

inline const std::string kComponent = "Library/Audio/Plug-Ins/Components/Tessaphon.component";

inline void makeUpdateSet(const std::string& attributes = kUpdateLines) {
  writeFile(inSet("Installer.pkg"), "package");
  writeAttributes(attributes);
  for (const char* component : {"First/TANVO/", "Second/TANVO/"}) {
    for (const char* library : {"Tessaphon", "Mirel Packs/Velmora"}) {
      writeFile(inSet(std::string(component) + library + "/readme.txt"), "text");
    }
  }
  writeFile(inSet(kComponent + "/Contents/Tessaphon"), "program");
  writeFile(inSet("Library/Audio/Plug-Ins/VST3/Tessaphon.vst3/Contents/Tessaphon"), "program");
  writeFile(inSet("Applications/Tessaphon.app/Contents/Tessaphon"), "program");
}

// ---- What a check finds ----

struct Found {
  std::string name;
  std::string severity;
  std::string file;
  int line = 0;

  bool operator==(const Found& other) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Found& found) {
  return out << found.name << " (" << found.severity << ") in " << found.file << ":" << found.line;
}

inline CheckResult checkFor(const std::string& product, const std::string& installType = "Full",
                            const std::string& installed = {}) {
  return checkSet({kSetFolder, product, installType, installed, {}});
}

inline std::vector<Found> foundIn(const CheckResult& result) {
  std::vector<Found> found;
  const std::function<void(const Diagnostic&)> take = [&](const Diagnostic& diagnostic) {
    found.push_back({std::string(diagnostic.name()), severityWord(diagnostic.kind->severity),
                     diagnostic.place.file, diagnostic.place.line});
    for (const Diagnostic& consequence : diagnostic.consequences) {
      take(consequence);
    }
  };
  for (const Diagnostic& diagnostic : result.diagnostics.all()) {
    take(diagnostic);
  }
  return found;
}

// Every diagnostic that there is, consequences too, and how the command ends. The two of texts that are missing
// count only where they are expected: many of these sets have none.
inline void expectDiagnostics(CheckResult result, const std::vector<Found>& expected, int exitStatus) {
  result.diagnostics.keepOnly([&expected](std::string_view name) {
    return (name != "title-missing" && name != "text-missing") ||
           std::any_of(expected.begin(), expected.end(),
                       [name](const Found& found) { return found.name == name; });
  });
  EXPECT_THAT(foundIn(result), testing::UnorderedElementsAreArray(expected)) << checkText(result);
  EXPECT_EQ(static_cast<int>(result.diagnostics.exitStatus()), exitStatus);
}

// The sentence of the only diagnostic of that name.
inline std::string sentenceOf(const CheckResult& result, const std::string& name) {
  std::string sentence;
  for (const Diagnostic& diagnostic : result.diagnostics.all()) {
    sentence = diagnostic.name() == name ? diagnostic.sentence : sentence;
    for (const Diagnostic& consequence : diagnostic.consequences) {
      sentence = consequence.name() == name ? consequence.sentence : sentence;
    }
  }
  return sentence;
}

inline const char* const kAttributes = ".InstallationAttributes.dat";

}  // namespace tavenhall::test

#pragma once

#include "tests/check/sets.h"
#include "tests/install/child_program.h"
#include "tests/support/files.h"

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

// The built program in another language than English, and sets with something to report.
namespace tavenhall::test {

using Arguments = std::vector<std::string>;

inline Outcome inLanguage(const std::string& language, Arguments arguments) {
  arguments.insert(arguments.begin(), kTavinstall);
  return runThrough(std::move(arguments), {{"LC_ALL", "C.UTF-8"}, {"LANGUAGE", language}});
}

inline const Arguments kCheckLumaweave{"check", kSetFolder, "--product", "Lumaweave"};

inline Arguments rehearsal(const Arguments& more = {}) {
  Arguments arguments{"rehearse", kSetFolder, "--ui", "quiet"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return arguments;
}

inline void writeShortLog() {
  writeFile(kLog, "May 01 2026 10:00:00 studio: \n\n" + std::string(94, '*') +
                      "\n  Install Data Pane Enter: Version 7.7\n"
                      "May 01 2026 10:00:01 studio: After resolve 1 /the/folder\n"
                      "May 01 2026 10:00:02 studio: Installation complete\n");
}

inline void makeBrokenLinks(int count) {
  for (int i = 0; i < count; ++i) {
    std::filesystem::create_symlink("nothing", inSet("discs/1 Tavenhall Lumaweave/DOVA/" + std::to_string(i)));
  }
}

inline void makeFaultyDiscSet() {
  makeDiscSet("Publisher = Tavenhall\n" + kDiscLines);
  makeBrokenLinks(1);
}

inline void makeFaultyDataUpdateSet() {
  makeDataUpdateSet();
  writeFile(inSet("First/DOVA/Bassoria/lost.db"), "x");
  makeFolder("/Users/tester/had/TANVO/Tessaphon/one.db");
}

}  // namespace tavenhall::test

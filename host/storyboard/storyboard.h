#pragma once

#include "host/storyboard/story.h"

#include <string>
#include <vector>

// One HTML file that shows what users will see of an install, in each language, beside what was measured of it.
// Needs no script and nothing from elsewhere.
namespace tavenhall {

struct StoryLanguage {
  std::string code;           // "de"
  std::string name;           // "Deutsch"
  std::string continueLabel;  // of the installer's own buttons
  std::string goBackLabel;
  std::string passed;  // whether the rehearsal was successful, in a sentence
  bool isPassed = false;
  std::vector<StoryScreen> screens;
  std::string report;       // of the rehearsal, as it prints it
  std::string diagnostics;  // of the check, likewise
  std::string reportHeading;
  std::string diagnosticsHeading;
};

struct Storyboard {
  std::string title;                     // the set's name
  std::string subtitle;                  // what was rehearsed, when and with what
  std::vector<StoryLanguage> languages;  // the first is shown first
};

// The file. Bytes that are not UTF-8 become replacement characters.
[[nodiscard]] std::string storyboardHtml(const Storyboard& storyboard);

}  // namespace tavenhall

#pragma once

#include <string>

namespace tavenhall {

// Fonts by their PostScript names, which are GNUstep's.
struct FontChoice {
  std::string regular;
  std::string bold;
  bool hasLetters = true;  // those of the language
};

// What texts in that language, named as its folder in a bundle is, are shown in: Liberation Sans if it has the
// letters, or else what the system's settings prefer among the fonts that have them. GNUstep itself shows a
// question mark for each letter that its font lacks.
[[nodiscard]] FontChoice chooseFonts(const std::string& language);

}  // namespace tavenhall

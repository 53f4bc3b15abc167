#pragma once

#include <string>

namespace tavenhall {

// Fonts by their PostScript names, which are GNUstep's.
struct FontChoice {
  std::string regular;
  std::string bold;
  bool hasLetters = true;  // those of the language
};

// Chooses the fonts for a language, which is named like its folder in a bundle: Liberation Sans if it has the
// characters, otherwise the font with these characters that the system's settings prefer. GNUstep itself shows
// a question mark for each character that its font lacks.
[[nodiscard]] FontChoice chooseFonts(const std::string& language);

}  // namespace tavenhall

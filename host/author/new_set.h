#pragma once

#include "host/set/install_plan.h"

#include <array>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tavenhall {

// A set as it is first made: with placeholders for the package and the library.
struct NewSet {
  enum class Mode { discs, download, dataUpdate, productUpdate };

  std::filesystem::path folder;
  std::string product;
  Mode mode = Mode::discs;
  bool hasEditions = false;  // a Lite and a Full one; an update of products always has them
  int discs = 2;             // with Mode::discs; 2 with editions
};

struct NewSetMode {
  std::string_view name;
  NewSet::Mode mode;
};
inline constexpr std::array<NewSetMode, 4> kNewSetModes{{{"discs", NewSet::Mode::discs},
                                                         {"download", NewSet::Mode::download},
                                                         {"data-update", NewSet::Mode::dataUpdate},
                                                         {"product-update", NewSet::Mode::productUpdate}}};

// The page's texts for the set, in the language of its users.
struct NewSetTexts {
  std::string title;
  std::string installing;  // with "%s" for the folder
  std::string installed;   // likewise
  std::string choice;      // between the editions
};

inline constexpr int kMostDiscs = 26;  // the page has letters for their names
inline constexpr const char* kPlaceholderName = "Placeholder.db";

// The name of a disc, from 0, as the page looks for it.
[[nodiscard]] std::string discName(const Product& product, int number);

// In the current language.
[[nodiscard]] NewSetTexts newSetTexts(const NewSet& set);

// Makes the set and returns its files. Throws UsageError if there is something in the folder, or it cannot be
// written; what was written then stays.
[[nodiscard]] std::vector<std::filesystem::path> makeSet(const NewSet& set, const NewSetTexts& texts);

}  // namespace tavenhall

#include "context/install_rules.h"

#include "context/contains.h"

#include <cmath>
#include <strings.h>

namespace tavenhall {

namespace {

constexpr std::array<AttributesKey, 14> kKeys{{
    {"Mode", KeyKind::text, nullptr},
    {"InstallDataTitle", KeyKind::text, "Installing Data"},
    {"InstallingData", KeyKind::text,
     "Now installing data from source media to: \n\n%s\n\n"
     "This process is lengthy and can take up to 3 hours.\n"
     "The progress bar will move very slowly at first.\n"
     "Thanks for your patience.\n\n"
     "Please wait for the installation to complete."},
    {"InstalledData", KeyKind::text,
     "Step 1 finished.\n\nPlease run the Data Updater to complete the installation.\n\n"
     "Press Continue button."},
    {"RelativePath", KeyKind::text, ".."},
    {"RelativePath2", KeyKind::text, nullptr},
    {"PreparationTitle", KeyKind::text, "Data Location"},
    {"LiteVsFullPromptText", KeyKind::text, "What installation of Tessaphon are you using?"},
    {"AlternateNameForLiteInstallation", KeyKind::text, "Lite"},
    {"AlternateNameForFullInstallation", KeyKind::text, "Full"},
    {"LiteVsFullPrompt", KeyKind::text, nullptr},
    {"NumberOfVolumes", KeyKind::number, nullptr},
    {"TotalSizeMillionsBytes", KeyKind::number, nullptr},
    {"Component1SizeMillionsBytes", KeyKind::number, nullptr},
}};

struct ModeWord {
  const char* word;
  std::int32_t mode;
};

// The first word that the value contains decides.
constexpr std::array<ModeWord, 4> kModeWords{{
    {"DataUpdater", kModeDataUpdater},
    {"InstallFromVolumes", kModeVolumes},
    {"TavenhallUpdater", kModeProductUpdater},
    {"SupportHub", kModeProductUpdater},
}};

constexpr std::int32_t kFirstOptionalVolume = 2;

constexpr std::array<OptionalDisc, 5> kOptionalDiscs{{
    {"Northfield", "/Volumes/Northfield DOVA Outrider"},
    {"Copper Lanes", "/Volumes/Copper Lanes DOVA Outrider"},
    {"Glass Rivers", "/Volumes/Glass Rivers DOVA Outrider"},
    {"Slow Bloom", "/Volumes/Slow Bloom DOVA Outrider"},
    {"Tin Parade", "/Volumes/Tin Parade DOVA Outrider"},
}};

}  // namespace

std::span<const AttributesKey> attributesKeys() noexcept { return kKeys; }

const char* fallbackText(std::string_view key) noexcept {
  for (const AttributesKey& row : kKeys) {
    if (key == row.name) {
      return row.fallback;
    }
  }
  return nullptr;
}

std::int32_t installModeForValue(std::string_view value) noexcept {
  for (const ModeWord& row : kModeWords) {
    if (contains(value, row.word)) {
      return row.mode;
    }
  }
  return kModeOtherRelative;
}

bool promptIsYes(std::string_view value) noexcept {
  constexpr std::string_view kYes = "Yes";
  return value.size() == kYes.size() && strncasecmp(value.data(), kYes.data(), kYes.size()) == 0;
}

bool choiceIsLite(std::string_view choice) noexcept { return choice == "Lite"; }

bool isMirelPack(std::string_view folderName) noexcept {
  return contains(folderName, "Mirel Packs") && contains(folderName, "/");
}

std::string_view mirelPackLibrary(std::string_view folderName) noexcept {
  return folderName.substr(folderName.find('/') + 1);
}

DisplayName libraryDisplayName(std::string_view folderName) noexcept {
  DisplayName name;
  if (isMirelPack(folderName)) {
    BoundedText<2 * kDisplayNameSize + 16> whole;  // room for every folder name, so that only the end is cut
    whole.assign("Mirel Pack ");
    whole.append(mirelPackLibrary(folderName).substr(0, 2 * kDisplayNameSize));
    name.assignCut(whole.view());
  } else {
    name.assignCut(folderName);
  }
  return name;
}

EditionWords editionWords(std::string_view folderName, bool isLite) noexcept {
  if (!isLite) {
    return {"Full", "a Full"};
  }
  if (isMirelPack(folderName)) {
    return {"FX only", "an FX only"};
  }
  return {"Lite", "a Lite"};
}

bool isDatabaseName(std::string_view name) noexcept {
  const std::size_t dot = name.rfind('.');
  return dot != std::string_view::npos && name.substr(dot + 1) == "db";
}

bool databaseSizeIsLite(std::int32_t size) noexcept { return size < 1000; }

bool volumesOfferEditions(std::int64_t numberOfVolumes) noexcept { return numberOfVolumes == 2; }

std::int32_t volumeCountForNumber(std::int64_t numberOfVolumes) noexcept {
  return numberOfVolumes >= 2 ? static_cast<std::int32_t>(numberOfVolumes) : 1;
}

void volumeMountPath(std::string_view pluginName, std::int32_t number, BoundedText<kPathSize>& path) noexcept {
  path.assign("/Volumes/");
  if (pluginName == "Tessaphon") {
    if (number == 0) {
      path.append("Tavenhall Tessaphon A");
    } else {
      // Required: only the first disc carries the maker's name, since the discs are labelled so. The
      // letter wraps in 8 bits.
      const auto letter =
          static_cast<char>(static_cast<unsigned char>('B' + static_cast<std::uint32_t>(number) - 1U));
      path.append("Tessaphon ");
      path.append(std::string_view(&letter, letter == '\0' ? 0 : 1));
    }
  } else if (pluginName == "Lumaweave") {
    path.append("Tavenhall Lumaweave");
  } else if (pluginName == "Bassoria") {
    path.append("Tavenhall Bassoria");
  } else if (contains(pluginName, "QX")) {
    path.append("Tavenhall Tempora QX");
  }
}

bool rootHasOptionalDiscs(std::string_view root) noexcept {
  return root.starts_with("/Volumes/Tempora QX Disc");
}

const OptionalDisc* optionalDiscForVolume(std::int32_t number) noexcept {
  if (number < kFirstOptionalVolume) {
    return nullptr;
  }
  const auto row = static_cast<std::size_t>(number - kFirstOptionalVolume);
  return row < kOptionalDiscs.size() ? &kOptionalDiscs[row] : nullptr;
}

std::int64_t announcedBytes(std::int64_t millions) noexcept {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(millions) * 1000000U);
}

double barMaximumForBytes(std::int64_t bytes) noexcept { return static_cast<double>(bytes) * 0.0009765625; }

double wrappedBarValue(double value, double maximum) noexcept {
  if (maximum <= 0.0 || value <= maximum) {
    return value;
  }
  const double rest = std::fmod(value, maximum);
  return rest == 0.0 ? maximum : rest;
}

bool isHiddenName(std::string_view name) noexcept { return name.starts_with('.'); }

}  // namespace tavenhall

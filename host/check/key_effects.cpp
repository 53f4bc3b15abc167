#include "host/check/key_effects.h"

#include "context/attributes_line.h"
#include "host/check/words.h"

namespace tavenhall {

namespace {

struct Effect {
  std::string_view key;
  std::string_view sentence;
};

constexpr Effect kEffects[] = {
    {"Mode", "the page installs from discs"},
    {"InstallingData", "the page shows its built-in text while it installs"},
    {"InstalledData", "the page ends with its built-in text, which asks for the Data Updater"},
    {"RelativePath", "the page looks for the data in the folder above the package's"},
    {"RelativePath2", "the page does not know the folder of the second component"},
    {"LiteVsFullPrompt", "an install from discs offers no choice between Lite and Full"},
    {"NumberOfVolumes", "the page installs one volume"},
    {"TotalSizeMillionsBytes", "the page does not know how much data there is, and its bar says nothing true"},
    {"Component1SizeMillionsBytes",
     "the page does not know how much data a Lite install has, and its bar then says nothing true"},
};

}  // namespace

const AttributesKey* knownKey(std::string_view word) noexcept {
  for (const AttributesKey& key : attributesKeys()) {
    if (key.kind == KeyKind::text ? isStringKey(word, key.name) : isNumberKey(word, key.name)) {
      return &key;
    }
  }
  return nullptr;
}

std::string missingKeyEffect(std::string_view key) {
  for (const Effect& effect : kEffects) {
    if (effect.key == key) {
      return std::string(effect.sentence);
    }
  }
  const char* fallback = fallbackText(key);
  return "the installer shows its built-in " + inQuotes(fallback != nullptr ? fallback : "");
}

}  // namespace tavenhall

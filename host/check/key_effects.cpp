#include "host/check/key_effects.h"

#include "context/attributes_line.h"
#include "host/base/text.h"
#include "host/check/spelling.h"

namespace tavenhall {

namespace {

struct Effect {
  std::string_view key;
  const char* clause;
};

constexpr Effect kEffects[] = {
    {"Mode", N_("the page installs from discs")},
    {"InstallingData", N_("the page shows its built-in text while it installs")},
    {"InstalledData", N_("the page ends with its built-in text, which asks for the Data Updater")},
    {"RelativePath", N_("the page looks for the data in the folder above the package's")},
    {"RelativePath2", N_("the page does not know the folder of the second component")},
    {"LiteVsFullPrompt", N_("an installation from discs offers no choice between Lite and Full")},
    {"NumberOfVolumes", N_("the page installs one volume")},
    {"TotalSizeMillionsBytes", N_("the page does not know the size of the data, and its bar is wrong")},
    {"Component1SizeMillionsBytes",
     N_("the page does not know the size of a Lite installation, and its bar is wrong")},
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
      return _(effect.clause);
    }
  }
  const char* fallback = fallbackText(key);
  return format(_("the installer shows its built-in {0}"), {quotedText(fallback != nullptr ? fallback : "")});
}

}  // namespace tavenhall

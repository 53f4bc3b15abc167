#include "host/desktop/gnustep/font_choice.h"

#include <fontconfig/fontconfig.h>
#include <memory>

namespace tavenhall {

namespace {

struct Destroy {
  void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
using Pattern = std::unique_ptr<FcPattern, Destroy>;

// The font that matches a pattern such as "sans-serif:lang=ja:bold" best; null if there is no font.
Pattern nearest(const std::string& description) {
  const Pattern wanted(FcNameParse(reinterpret_cast<const FcChar8*>(description.c_str())));
  FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern);
  FcDefaultSubstitute(wanted.get());
  FcResult result = FcResultNoMatch;
  return Pattern(FcFontMatch(nullptr, wanted.get(), &result));
}

std::string nameOf(const Pattern& font) {
  FcChar8* name = nullptr;
  return font != nullptr && FcPatternGetString(font.get(), FC_POSTSCRIPT_NAME, 0, &name) == FcResultMatch
             ? reinterpret_cast<const char*>(name)
             : std::string();
}

bool hasLettersOf(const std::string& language, const Pattern& font) {
  FcLangSet* languages = nullptr;
  return font != nullptr && FcPatternGetLangSet(font.get(), FC_LANG, 0, &languages) == FcResultMatch &&
         FcLangSetHasLang(languages, reinterpret_cast<const FcChar8*>(language.c_str())) == FcLangEqual;
}

}  // namespace

FontChoice chooseFonts(const std::string& language) {
  const std::string letters = language == "zh-Hans" ? "zh-cn" : language;
  for (const char* family : {"Liberation Sans", "sans-serif"}) {
    const std::string description = family + (":lang=" + letters);
    const Pattern regular = nearest(description);
    const std::string name = nameOf(regular);
    if (!name.empty() && hasLettersOf(letters, regular)) {
      const std::string bold = nameOf(nearest(description + ":bold"));
      return {name, bold.empty() ? name : bold};
    }
  }
  return {"LiberationSans", "LiberationSans-Bold", false};
}

}  // namespace tavenhall

#include "platform/strings_language.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdlib>
#include <string_view>

namespace tavenhall {

namespace {

// The first of the variables that says something. An empty one counts as not set, as it does everywhere.
std::string_view userLanguages() {
  for (const char* name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
    if (const char* value = std::getenv(name); value != nullptr && *value != '\0') {
      return value;
    }
  }
  return {};
}

// A name becomes part of a path, so nothing but a language's own characters may be in it.
bool isLanguage(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char character) {
    return std::isalnum(character) != 0 || character == '-';
  });
}

// Chinese is written in two scripts, which locales distinguish by country and bundles by script.
const char* chineseScript(std::string_view language) {
  if (language == "zh-CN" || language == "zh-SG") {
    return "zh-Hans";
  }
  if (language == "zh-TW" || language == "zh-HK" || language == "zh-MO") {
    return "zh-Hant";
  }
  return nullptr;
}

void addEnglish(std::vector<std::string>& names) {
  names.emplace_back("en");
  names.emplace_back("English");
}

// Adds the names for a locale such as "de_DE.UTF-8@euro": the most exact first, then with one part less, and
// so on, each with '_' and with '-'.
void addNames(std::string_view locale, std::vector<std::string>& names) {
  std::string language(locale.substr(0, locale.find_first_of(".@")));
  if (language == "C" || language == "POSIX") {
    addEnglish(names);
    return;
  }
  std::replace(language.begin(), language.end(), '_', '-');
  if (!isLanguage(language)) {
    return;
  }
  const char* script = chineseScript(language);
  for (std::size_t cut = language.rfind('-'); cut != std::string::npos; cut = language.rfind('-')) {
    std::string withUnderscores = language;
    std::replace(withUnderscores.begin(), withUnderscores.end(), '-', '_');
    names.push_back(std::move(withUnderscores));
    names.push_back(language);
    language.resize(cut);
  }
  if (script != nullptr) {
    names.emplace_back(script);
  }
  if (language == "en") {
    addEnglish(names);
  } else if (!language.empty()) {
    names.push_back(std::move(language));
  }
}

}  // namespace

std::vector<std::string> languageFolderNames() {
  std::vector<std::string> names;
  std::string_view rest = userLanguages();
  while (!rest.empty()) {
    const std::size_t colon = std::min(rest.find(':'), rest.size());
    addNames(rest.substr(0, colon), names);
    rest.remove_prefix(std::min(colon + 1, rest.size()));
  }
  addEnglish(names);
  return names;
}

}  // namespace tavenhall

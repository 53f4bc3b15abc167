#include "host/base/text.h"

#include "host/base/unicode.h"
#include "platform/strings_language.h"

#include <algorithm>
#include <array>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <libintl.h>
#include <optional>
#include <utility>
#include <vector>

namespace tavenhall {

namespace {

constexpr const char* kDomain = "tavinstall";

bool isUntranslated() { return std::string_view(std::setlocale(LC_MESSAGES, nullptr)) == "C"; }

// The languages that the page's texts are looked for in, as the names of catalogs.
std::string catalogNames() {
  std::string names;
  for (const std::string& folder : languageFolderNames()) {
    names += (names.empty() ? "" : ":") + catalogOf(folder);
  }
  return names;
}

// The user's own LANGUAGE while the program speaks another; "" where it is not set.
std::optional<std::string>& languageBefore() {
  static std::optional<std::string> language;
  return language;
}

void bindCatalogs(const std::filesystem::path& catalogs) {
  bindtextdomain(kDomain, catalogs.c_str());
  bind_textdomain_codeset(kDomain, "UTF-8");
}

std::string fillFrom(std::string_view pattern, const std::string_view* values, std::size_t count) {
  std::string text;
  while (!pattern.empty()) {
    const std::size_t brace = std::min(pattern.find('{'), pattern.size());
    text += pattern.substr(0, brace);
    pattern.remove_prefix(brace);
    if (pattern.starts_with("{{")) {
      text += '{';
      pattern.remove_prefix(2);
    } else if (pattern.size() >= 3 && pattern[2] == '}' && pattern[1] >= '0' &&
               static_cast<std::size_t>(pattern[1] - '0') < count) {
      text += values[pattern[1] - '0'];
      pattern.remove_prefix(3);
    } else if (!pattern.empty()) {
      text += '{';  // no place of a value: it stands for itself
      pattern.remove_prefix(1);
    }
  }
  return text;
}

}  // namespace

std::string catalogOf(const std::string& folder) {
  return folder == "zh-Hans" ? "zh_CN" : folder == "English" ? "C" : folder;
}

void speakUsersLanguage(const std::filesystem::path& catalogs) {
  if (const std::optional<std::string> before = std::exchange(languageBefore(), std::nullopt)) {
    setenv("LANGUAGE", before->c_str(), 1);
  }
  if (std::setlocale(LC_MESSAGES, "") == nullptr) {
    // The system lacks the user's locale, as small systems do. The catalogs do not need it: any locale but
    // "C" makes them be looked at, and LANGUAGE says which.
    std::setlocale(LC_MESSAGES, "C.UTF-8");
  }
  if (!isUntranslated()) {
    setenv("LANGUAGE", catalogNames().c_str(), 1);
  }
  bindCatalogs(catalogs);
}

void speakLanguage(const std::string& language, const std::filesystem::path& catalogs) {
  if (std::setlocale(LC_MESSAGES, "C.UTF-8") == nullptr) {
    std::setlocale(LC_MESSAGES, "");
  }
  if (const char* users = std::getenv("LANGUAGE"); !languageBefore()) {
    languageBefore() = users != nullptr ? users : "";
  }
  setenv("LANGUAGE", catalogOf(language).c_str(), 1);
  bindCatalogs(catalogs);
}

void keepToOneLanguage() {
  if (isUntranslated()) {
    unsetenv("LANGUAGE");
  }
}

void speakEnglish() { std::setlocale(LC_MESSAGES, "C"); }

void keepSystemTextsEnglish() {
  bindtextdomain("libc", "/dev/null");  // where no catalog can be
}

InEnglish::InEnglish() : before_(std::setlocale(LC_MESSAGES, nullptr)) { speakEnglish(); }

InEnglish::~InEnglish() { std::setlocale(LC_MESSAGES, before_.c_str()); }

const char* _(const char* english) { return dgettext(kDomain, english); }

std::string format(std::string_view pattern, std::initializer_list<std::string_view> values) {
  return fillFrom(pattern, values.begin(), values.size());
}

std::string plural(const char* one, const char* several, std::int64_t number,
                   std::initializer_list<std::string_view> more) {
  const std::string digits = std::to_string(number);
  std::vector<std::string_view> values{digits};
  values.insert(values.end(), more);
  const auto count = static_cast<unsigned long>(std::max<std::int64_t>(number, 0));
  return fillFrom(dngettext(kDomain, one, several, count), values.data(), values.size());
}

std::string join(std::string_view first, std::string_view second) {
  return format(_("{0} {1}"), {first, second});
}

std::string printableText(std::string_view text) {
  if (!isValidUtf8(text)) {
    return printableText(encodeUtf8(decodeUtf8(text)));
  }
  std::string printable;
  printable.reserve(text.size());
  const auto byteAt = [text](std::size_t at) {
    return at < text.size() ? static_cast<unsigned char>(text[at]) : static_cast<unsigned char>(0);
  };
  for (std::size_t at = 0; at < text.size(); ++at) {
    const unsigned char byte = byteAt(at);
    const bool isControl = (byte < 0x20 && byte != '\n') || byte == 0x7F;
    const bool beginsHighControl = byte == 0xC2 && byteAt(at + 1) >= 0x80 && byteAt(at + 1) < 0xA0;  // in UTF-8
    printable += isControl || beginsHighControl ? '?' : text[at];
    at += beginsHighControl ? 1 : 0;
  }
  return printable;
}

std::string printableLine(std::string_view text) {
  std::string line = printableText(text);
  std::replace(line.begin(), line.end(), '\n', '?');
  return line;
}

namespace {

// The number, written as in C, with the decimal mark of the current language.
std::string localized(std::string_view number) {
  const std::string example = _("1.5");  // translated as the language writes it: "1,5"
  const std::string_view mark = std::string_view(example).substr(1, example.size() - 2);
  const std::size_t point = std::min(number.find('.'), number.size());
  std::string text(number.substr(0, point));
  if (point < number.size()) {
    text.append(mark).append(number.substr(point + 1));
  }
  return text;
}

}  // namespace

std::string sizeText(double bytes) {
  constexpr std::array<const char*, 5> kUnits{"bytes", "kB", "MB", "GB", "TB"};
  constexpr double kRoundsUpToNextUnit = 999.95;
  std::size_t unit = 0;
  while (bytes >= kRoundsUpToNextUnit && unit + 1 < kUnits.size()) {
    bytes /= 1000.0;
    ++unit;
  }
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), unit == 0 ? "%.0f %s" : "%.1f %s", bytes, kUnits[unit]);
  return localized(text.data());
}

std::string megabytesText(std::int64_t bytes) {
  std::array<char, 48> text{};
  std::snprintf(text.data(), text.size(), "%.1f MB", static_cast<double>(bytes) / 1e6);
  return localized(text.data());
}

std::string durationText(double seconds) {
  const auto whole = static_cast<long long>(std::llround(seconds));
  const long long hours = whole / 3600;
  const long long minutes = whole / 60 % 60;
  if (hours > 0) {
    return std::to_string(hours) + " h " + std::to_string(minutes) + " min";
  }
  if (minutes > 0) {
    return std::to_string(minutes) + " min " + std::to_string(whole % 60) + " s";
  }
  return std::to_string(whole) + " s";
}

std::string groupedNumber(std::int64_t number) {
  std::string text = std::to_string(number);
  const std::size_t first = number < 0 ? 1 : 0;
  for (std::size_t at = text.size(); at > first + 3;) {
    at -= 3;
    text.insert(at, " ");
  }
  return text;
}

std::string percentEncoded(std::string_view path) {
  constexpr std::string_view kUnescaped = "-._~/";
  constexpr const char* kDigits = "0123456789ABCDEF";
  std::string text;
  for (const char character : path) {
    const auto byte = static_cast<unsigned char>(character);
    const bool isUnescaped = (byte >= '0' && byte <= '9') || ((byte | 0x20U) >= 'a' && (byte | 0x20U) <= 'z') ||
                             kUnescaped.find(character) != std::string_view::npos;
    if (isUnescaped) {
      text += character;
    } else {
      text += {'%', kDigits[byte >> 4U], kDigits[byte & 15U]};
    }
  }
  return text;
}

}  // namespace tavenhall

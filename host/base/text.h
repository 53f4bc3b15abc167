#pragma once

#include <concepts>
#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>

// AppKit's headers bring a macro of this name on GNUstep.
#ifdef _
#undef _
#endif

// The program's texts in the user's language. Sources have the English text in _() or a similar function; po/
// has the translations. Output for programs (JSON, the engine's lines, the installation log) is never
// translated.
//
// Placeholders for values are {0}, {1} and so on, because their order differs between languages.
namespace tavenhall {

// Switches to the language of the environment if `catalogs` has a catalog for it: the language of the page's
// own texts. Call it once, before any thread is started.
void speakUsersLanguage(const std::filesystem::path& catalogs);

// Switches to the language with this folder name in a bundle, such as "de" or "zh-Hans"; to English without a
// catalog.
void speakLanguage(const std::string& language, const std::filesystem::path& catalogs);

// In the locale "C", in which this program uses English whatever LANGUAGE says, makes the page use English too.
// Call it where the page is shown to users, while there is one thread.
void keepToOneLanguage();

// The name of the catalog for a language's folder in a bundle, as LANGUAGE takes it. Catalogs are named after
// locales, which distinguish the Chinese scripts by country. There is none of English, so "C" keeps what comes
// after it from being taken.
[[nodiscard]] std::string catalogOf(const std::string& folder);

// Switches back to English, also for the C library. Call it while there is one thread.
void speakEnglish();

// Switches only the C library's texts to English: the page writes them to its log. Call it while there is one
// thread.
void keepSystemTextsEnglish();

// Switches to English for its lifetime, for output for programs. While there is one thread.
class InEnglish {
 public:
  InEnglish();
  InEnglish(const InEnglish&) = delete;
  InEnglish& operator=(const InEnglish&) = delete;
  ~InEnglish();

 private:
  std::string before_;
};

// Returns the translation of a text, valid until the process ends. Any thread.
[[nodiscard]] const char* _(const char* english);

// Marks a text in a table; translate it where it is shown.
[[nodiscard]] constexpr const char* N_(const char* english) { return english; }

// Returns the text with its placeholders replaced. "{{" becomes "{". Any thread.
[[nodiscard]] std::string format(std::string_view pattern, std::initializer_list<std::string_view> values);

// Returns the form for `count`, which replaces {0}: plural("{0} file", "{0} files", 2). Each language has its
// own plural rules. Further values, from {1} on, may follow.
[[nodiscard]] std::string plural(const char* one, const char* several, std::int64_t number,
                                 std::initializer_list<std::string_view> more = {});

// Joins two sentences.
[[nodiscard]] std::string join(std::string_view first, std::string_view second);

// A path as a part of an address (RFC 3986): every byte but letters, digits and -._~/ as %XX.
[[nodiscard]] std::string percentEncoded(std::string_view path);

// Replaces control characters except line breaks by "?", so that a file cannot control the terminal; also
// U+0080 to U+009F, which terminals obey. Bytes that are not UTF-8, some of which the others obey, become
// U+FFFD.
[[nodiscard]] std::string printableText(std::string_view text);

// The same, with line breaks replaced too.
[[nodiscard]] std::string printableLine(std::string_view text);

// ---- Numbers for display. Pure, any thread ----

// "1.2 GB", "17 bytes": in powers of 1000, with one decimal from kB on. `bytes` is not negative.
[[nodiscard]] std::string sizeText(double bytes);
[[nodiscard]] std::string sizeText(std::integral auto bytes) { return sizeText(static_cast<double>(bytes)); }

// "12.3 MB" whatever the size, so that sizes can be compared.
[[nodiscard]] std::string megabytesText(std::int64_t bytes);

// "2 h 5 min", "3 min 20 s", "12 s".
[[nodiscard]] std::string durationText(double seconds);

// "12 345": digits in groups of three.
[[nodiscard]] std::string groupedNumber(std::int64_t number);

}  // namespace tavenhall

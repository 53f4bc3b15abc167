#pragma once

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>

// AppKit's headers bring a macro of this name on GNUstep.
#ifdef _
#undef _
#endif

// The program's own words in the user's language. A text stands in the sources in English, within _() or its
// like, which is also how it reads where there is no translation; po/ holds the others. What programs read
// (JSON, the engine's lines, the installation log) is never translated.
//
// Places for values are written {0}, {1} and so on, since their order differs between languages.
namespace tavenhall {

// From now on texts are in the language that the environment names, as far as there is a catalog of it below
// `catalogs`: in the one that the page's own texts come in. Once, before any thread is started.
void speakUsersLanguage(const std::filesystem::path& catalogs);

// The same with the language said: by the name of its folder in a bundle, "de" or "zh-Hans". In English where
// there is no catalog of it.
void speakLanguage(const std::string& language, const std::filesystem::path& catalogs);

// To be called where the page is shown to people: in the locale "C", in which this program speaks English
// whatever LANGUAGE says, the page is to do so too. While there is one thread.
void keepToOneLanguage();

// From now on texts are in English again, those of the C library too. While there is one thread.
void speakEnglish();

// From now on the C library's own texts are in English, whatever the program speaks: for a process that has the
// page in it, which writes them into its log. While there is one thread.
void keepSystemTextsEnglish();

// Texts are in English while this lives: for what programs read, beside what people do. While there is one
// thread.
class InEnglish {
 public:
  InEnglish();
  InEnglish(const InEnglish&) = delete;
  InEnglish& operator=(const InEnglish&) = delete;
  ~InEnglish();

 private:
  std::string before_;
};

// The translation of a text. Lives for the process. Any thread.
[[nodiscard]] const char* _(const char* english);

// Marks a text in a table, to be translated where it is shown.
[[nodiscard]] constexpr const char* N_(const char* english) { return english; }

// The text with the values in their places. "{{" stands for "{". Any thread.
[[nodiscard]] std::string format(std::string_view pattern, std::initializer_list<std::string_view> values);

// The form for one thing or for several, {0} being how many: plural("{0} file", "{0} files", 2). Languages
// have other forms, and rules for them, of their own. Further values, from {1} on, may follow.
[[nodiscard]] std::string plural(const char* one, const char* several, std::int64_t number,
                                 std::initializer_list<std::string_view> more = {});

// Two whole sentences, one after the other.
[[nodiscard]] std::string join(std::string_view first, std::string_view second);

// The text with control characters, line breaks excepted, made visible as "?", so that no file can steer
// the reader's terminal. Those from U+0080 to U+009F are such characters too: terminals obey them.
[[nodiscard]] std::string printableText(std::string_view text);

// The same in one line: line breaks are made visible too.
[[nodiscard]] std::string printableLine(std::string_view text);

}  // namespace tavenhall

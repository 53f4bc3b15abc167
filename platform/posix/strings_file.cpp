#include "platform/strings_file.h"

#include "platform/strings_language.h"
#include "platform/strings_text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <dlfcn.h>
#include <filesystem>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace tavenhall {

namespace {

namespace fs = std::filesystem;

bool isBareCharacter(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
         (character >= '0' && character <= '9') ||
         std::string_view("_$:.-").find(character) != std::string_view::npos;
}

int hexDigit(char character) {
  if (character >= '0' && character <= '9') {
    return character - '0';
  }
  if (character >= 'a' && character <= 'f') {
    return character - 'a' + 10;
  }
  if (character >= 'A' && character <= 'F') {
    return character - 'A' + 10;
  }
  return -1;
}

int octalDigit(char character) { return character >= '0' && character <= '7' ? character - '0' : -1; }

// Reads a file's text from its start to its end. Whatever the input, each entry moves on.
class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  [[nodiscard]] bool isAtEnd() const { return at_ >= text_.size(); }

  // Skips blanks and comments. An unterminated comment extends to the end.
  void skipSpace() {
    while (!isAtEnd()) {
      if (std::string_view(" \t\n\v\f\r").find(text_[at_]) != std::string_view::npos) {
        ++at_;
      } else if (rest().starts_with("//")) {
        at_ = std::min(text_.find_first_of("\r\n", at_), text_.size());
      } else if (rest().starts_with("/*")) {
        moveBehind("*/", at_ + 2);
      } else {
        return;
      }
    }
  }

  // Reads one quoted or bare string; nothing when there is none, or when its closing quote is missing.
  std::optional<std::string> string() {
    skipSpace();
    return take('"') ? quotedString() : bareString();
  }

  // Steps over the mark, if it comes next.
  bool mark(char wanted) {
    skipSpace();
    return take(wanted);
  }

  void skipEntry() { moveBehind(";", at_); }

 private:
  [[nodiscard]] std::string_view rest() const { return text_.substr(at_); }

  void moveBehind(std::string_view wanted, std::size_t from) {
    const std::size_t found = text_.find(wanted, from);
    at_ = found == std::string_view::npos ? text_.size() : found + wanted.size();
  }

  bool take(char wanted) {
    if (isAtEnd() || text_[at_] != wanted) {
      return false;
    }
    ++at_;
    return true;
  }

  std::optional<std::string> bareString() {
    const std::size_t start = at_;
    while (!isAtEnd() && isBareCharacter(text_[at_])) {
      ++at_;
    }
    if (at_ == start) {
      return std::nullopt;
    }
    return std::string(text_.substr(start, at_ - start));
  }

  std::optional<std::string> quotedString() {
    const std::size_t start = at_;
    std::string result;
    while (!isAtEnd()) {
      const char character = text_[at_++];
      if (character == '"') {
        return result;
      }
      if (character == '\\' && !isAtEnd()) {
        appendEscape(result);
      } else {
        result.push_back(character);
      }
    }
    at_ = start;  // so that a forgotten quote does not cost the rest of the file
    return std::nullopt;
  }

  // What a backslash stood before. A character that has no meaning there stands for itself.
  void appendEscape(std::string& result) {
    const char character = text_[at_++];
    switch (character) {
      case 'a': result.push_back('\a'); return;
      case 'b': result.push_back('\b'); return;
      case 'f': result.push_back('\f'); return;
      case 'n': result.push_back('\n'); return;
      case 'r': result.push_back('\r'); return;
      case 't': result.push_back('\t'); return;
      case 'v': result.push_back('\v'); return;
      case 'u':
      case 'U': appendUnicodeEscape(result, character); return;
      default: break;
    }
    if (octalDigit(character) < 0) {
      result.push_back(character);
      return;
    }
    --at_;
    appendUtf8(result, *number(3, 8, octalDigit));
  }

  void appendUnicodeEscape(std::string& result, char letter) {
    const std::optional<char32_t> unit = number(4, 16, hexDigit);
    if (!unit) {
      result.push_back(letter);
      return;
    }
    const std::size_t behindUnit = at_;
    if (isHighSurrogate(*unit) && (rest().starts_with("\\u") || rest().starts_with("\\U"))) {
      at_ += 2;
      if (const std::optional<char32_t> low = number(4, 16, hexDigit); low && isLowSurrogate(*low)) {
        appendUtf8(result, joinSurrogates(*unit, *low));
        return;
      }
      at_ = behindUnit;  // what follows is a character of its own
    }
    appendUtf8(result, *unit);
  }

  // Up to `most` digits; nothing when there is not even one.
  std::optional<char32_t> number(int most, char32_t base, int (*digitOf)(char)) {
    char32_t value = 0;
    int digits = 0;
    while (digits < most && !isAtEnd() && digitOf(text_[at_]) >= 0) {
      value = value * base + static_cast<char32_t>(digitOf(text_[at_++]));
      ++digits;
    }
    return digits == 0 ? std::nullopt : std::optional(value);
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

// Nothing when there is no such file, or when it is no plain file.
std::optional<std::string> readPlainFile(const fs::path& path) {
  std::error_code error;
  if (!fs::is_regular_file(path, error)) {
    return std::nullopt;
  }
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rbe"), std::fclose);
  if (!file) {
    return std::nullopt;
  }
  std::string bytes;
  std::array<char, 4096> piece{};
  while (const std::size_t length = std::fread(piece.data(), 1, piece.size(), file.get())) {
    bytes.append(piece.data(), length);
  }
  return bytes;
}

// The names of all language folders, sorted, without ".lproj".
std::vector<std::string> bundledLanguages(const fs::path& resources) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(resources, error), end; !error && entry != end; entry.increment(error)) {
    if (entry->path().extension() == ".lproj") {
      names.push_back(entry->path().stem().string());
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

// The Contents folder of the bundle that this code lies in, or nothing: a program that is linked with this
// code directly has no bundle. The path is taken as it was loaded, so that a link into a bundle counts as the
// place where it lies.
std::optional<std::string> contentsFolderOfThisCode() {
  Dl_info place{};
  if (dladdr(reinterpret_cast<const void*>(&bundleStrings), &place) == 0 || place.dli_fname == nullptr) {
    return std::nullopt;
  }
  std::error_code error;
  const fs::path programFolder = fs::absolute(place.dli_fname, error).lexically_normal().parent_path();
  const fs::path contents = programFolder.parent_path();
  if (error || programFolder.filename() != "MacOS" || contents.filename() != "Contents") {
    return std::nullopt;
  }
  return contents.string();
}

}  // namespace

StringTable StringTable::parse(std::string_view bytes) {
  StringTable table;
  const std::string text = utf8OfFile(bytes);
  Reader reader(text);
  for (reader.skipSpace(); !reader.isAtEnd(); reader.skipSpace()) {
    std::optional<std::string> key = reader.string();
    std::optional<std::string> value = key;  // a key alone is its own text
    if (key && reader.mark('=')) {
      value = reader.string();
    }
    if (value && (reader.mark(';') || reader.isAtEnd())) {
      table.entries_.insert_or_assign(std::move(*key), std::move(*value));
    } else {
      reader.skipEntry();
    }
  }
  return table;
}

std::string StringTable::text(std::string_view key) const {
  const auto found = entries_.find(key);
  return found == entries_.end() ? std::string(key) : found->second;
}

StringTable loadBundleStrings(const std::string& contentsFolder) {
  const fs::path resources = fs::path(contentsFolder) / "Resources";
  std::vector<std::string> names = languageFolderNames();
  const std::vector<std::string> bundled = bundledLanguages(resources);
  names.insert(names.end(), bundled.begin(), bundled.end());
  for (const std::string& name : names) {
    if (const auto bytes = readPlainFile(resources / (name + ".lproj") / "Localizable.strings")) {
      return StringTable::parse(*bytes);
    }
  }
  return {};
}

const StringTable& bundleStrings() {
  static const StringTable& table = *[] {
    const std::optional<std::string> contents = contentsFolderOfThisCode();
    return new StringTable(contents ? loadBundleStrings(*contents) : StringTable());
  }();
  return table;
}

}  // namespace tavenhall

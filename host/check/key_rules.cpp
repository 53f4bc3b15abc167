#include "context/attributes_line.h"
#include "host/base/text.h"
#include "host/base/unicode.h"
#include "host/check/rules.h"
#include "host/check/spelling.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace tavenhall {

namespace fs = std::filesystem;

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

bool isComment(std::string_view key) {
  return key.starts_with('#') || key.starts_with(';') || key.starts_with("//");
}

bool hasLetterOrDigit(std::string_view word) {
  return std::any_of(word.begin(), word.end(), [](unsigned char byte) { return std::isalnum(byte) != 0; });
}

class KeyRules {
 public:
  KeyRules(const CheckedSet& checked, Diagnostics& diagnostics)
      : checked_(checked), attributes_(checked.plan.attributes), diagnostics_(diagnostics) {
    for (const AttributesKey& key : attributesKeys()) {
      counting_[&key] =
          key.kind == KeyKind::text ? attributes_.findText(key.name).key : attributes_.findNumber(key.name).key;
    }
  }

  void check(const AttributesPiece& piece) {
    const std::string_view word = piece.parts.key;
    const bool isSearched = piece.turn <= kAttributesLineCount;
    if (piece.continuesLine || word.empty() || isComment(word) || word.starts_with(kByteOrderMark)) {
      return;  // the mark was said of the file
    }
    if (const AttributesKey* key = knownKey(word)) {
      isSearched ? checkKnown(piece, *key) : checkLate(piece, *key);
    } else if (isSearched && !checkJoined(piece) && !checkNumberCase(piece)) {
      checkUnknown(piece);
    }
  }

 private:
  // `part` of the line is what is wrong; `correction` replaces it, if it is given.
  void add(std::string_view name, const AttributesPiece& piece, std::string_view part, std::string sentence,
           const std::optional<std::string>& correction = {}) {
    diagnostics_.add(name, checked_.attributesPlace(&piece, part), std::move(sentence),
                     correction ? std::optional(correctionOf(attributes_, part, *correction)) : std::nullopt);
  }

  [[nodiscard]] bool isFound(const AttributesKey& key) const { return counting_.at(&key) != nullptr; }

  void checkKnown(const AttributesPiece& piece, const AttributesKey& key) {
    const AttributesPiece* counting = counting_.at(&key);
    if (counting != &piece) {
      addTwice(piece, key, *counting);
    } else if (hasLetterOrDigit(piece.parts.separator)) {
      const std::string_view word = piece.parts.separator;
      add("separator-missing", piece, word,
          format(_("The page skips the word after a key, so {0} is not part of {1}. Write \"{1} = ...\", with "
                   "blanks."),
                 {quotedText(word), key.name}),
          "= " + std::string(word.substr(std::min(word.find_first_not_of("=:"), word.size()))));
    } else if (piece.parts.value.empty()) {
      checkEmpty(piece, key);
    }
  }

  void addTwice(const AttributesPiece& piece, const AttributesKey& key, const AttributesPiece& counting) {
    add("key-twice", piece, piece.parts.key,
        format(_("{0} is already in line {1}, which is the one that counts. This line is ignored."),
               {key.name, std::to_string(counting.line)}));
  }

  void checkEmpty(const AttributesPiece& piece, const AttributesKey& key) {
    const AttributesPiece* source = key.kind == KeyKind::text ? attributes_.findText(key.name).source
                                                              : attributes_.findNumber(key.name).source;
    add("value-missing", piece, piece.parts.key,
        source == nullptr ? format(_("{0} has no value, so the page reads it as empty or 0."), {key.name})
                          : format(_("{0} has no value, so the page uses the value of line {1}, {2}."),
                                   {key.name, std::to_string(source->line), quotedText(source->parts.value)}));
  }

  void checkLate(const AttributesPiece& piece, const AttributesKey& key) {
    if (const AttributesPiece* counting = counting_.at(&key)) {
      addTwice(piece, key, *counting);
    } else {
      add("key-too-late", piece, piece.parts.key,
          format(_("The page searches the first 999 lines only and does not find {0} here, so {1}."),
                 {key.name, missingKeyEffect(key.name)}));
    }
  }

  // "Mode=Text", without blanks between the three.
  bool checkJoined(const AttributesPiece& piece) {
    const std::string_view word = piece.parts.key;
    const std::string_view start = word.substr(0, word.find_first_of("=:"));
    if (start.size() == word.size()) {
      return false;
    }
    for (const AttributesKey& key : attributesKeys()) {
      if (equalsIgnoringCase(start, key.name)) {
        const std::string_view rest = word.substr(start.size() + 1);
        add("key-joined", piece, word,
            format(_("There is no blank after {0}, so the page does not recognise the key: {1}."),
                   {key.name, missingKeyEffect(key.name)}),
            std::string(key.name) + " =" + (rest.empty() ? "" : " ") + std::string(rest));
        return true;
      }
    }
    return false;
  }

  bool checkNumberCase(const AttributesPiece& piece) {
    for (const AttributesKey& key : attributesKeys()) {
      if (equalsIgnoringCase(piece.parts.key, key.name) && !isFound(key)) {
        add("key-case", piece, piece.parts.key,
            format(_("The key of a number must be spelt exactly {0}, so {1}."),
                   {key.name, missingKeyEffect(key.name)}),
            key.name);
        return true;
      }
    }
    return false;
  }

  void checkUnknown(const AttributesPiece& piece) {
    const std::string word = quotedText(piece.parts.key);
    const AttributesKey* nearest = nullptr;
    for (const AttributesKey& key : attributesKeys()) {
      if (isMisspellingOf(piece.parts.key, key.name) && !isFound(key) &&
          (nearest == nullptr ||
           editDistance(piece.parts.key, key.name) < editDistance(piece.parts.key, nearest->name))) {
        nearest = &key;
      }
    }
    if (nearest != nullptr) {
      add("key-misspelt", piece, piece.parts.key,
          format(_("{0} is probably meant to be {1}, which is missing, so {2}."),
                 {word, nearest->name, missingKeyEffect(nearest->name)}),
          nearest->name);
    } else {
      add("key-unknown", piece, piece.parts.key,
          format(_("The key {0} is unknown, so this line is ignored."), {word}));
    }
  }

  const CheckedSet& checked_;
  const AttributesReading& attributes_;
  Diagnostics& diagnostics_;
  std::map<const AttributesKey*, const AttributesPiece*> counting_;  // the line that counts, or null
};

}  // namespace

void checkKeys(const CheckedSet& checked, Diagnostics& diagnostics) {
  KeyRules rules(checked, diagnostics);
  for (const AttributesPiece& piece : checked.plan.attributes.pieces()) {
    rules.check(piece);
  }
}

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

namespace {

constexpr const char* kFileName = ".InstallationAttributes.dat";

bool isUtf16(std::string_view bytes) { return bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF"); }

// Every other byte of the first line is NUL, as in a text of ASCII letters.
bool isUnmarkedUtf16(std::string_view bytes) {
  const std::string_view start = bytes.substr(0, std::min<std::size_t>(bytes.size(), 64));
  const auto nuls = [start](std::size_t parity) {
    std::size_t count = 0;
    for (std::size_t i = parity; i < start.size(); i += 2) {
      count += start[i] == '\0' ? 1 : 0;
    }
    return count;
  };
  return start.size() >= 4 && (nuls(0) >= start.size() / 2 || nuls(1) >= start.size() / 2);
}

AttributesCorrection wholeFile(const AttributesReading& attributes, std::string text) {
  return {0, attributes.bytes().size(), std::move(text)};
}

std::string withLineFeeds(std::string_view bytes) {
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (bytes[i] != '\r') {
      text += bytes[i];
    } else if (i + 1 == bytes.size() || bytes[i + 1] != '\n') {
      text += '\n';
    }
  }
  return text;
}

// Everything before the first newline is a single line for the page, even if editors show several.
bool hasOldLineEnds(std::string_view bytes) {
  return bytes.find('\n') == std::string_view::npos && bytes.find('\r') < bytes.find_last_not_of(" \t\r\n");
}

// The first file beside the package that somebody may have meant by the attributes file; empty if there is
// none.
fs::path misnamedFile(const fs::path& folder) {
  std::vector<fs::path> files;
  std::error_code error;
  for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
    const std::string name = at->path().filename().string();
    std::error_code ignored;
    if (at->is_regular_file(ignored) &&
        (isMisspellingOf(name, kFileName) || name == std::string(kFileName) + ".txt")) {
      files.push_back(at->path());
    }
  }
  std::sort(files.begin(), files.end());
  return files.empty() ? fs::path() : files.front();
}

void addMissingFile(const CheckedSet& checked, Diagnostics& diagnostics) {
  const fs::path folder = checked.plan.packageFolder;
  const fs::path misnamed = misnamedFile(folder);
  std::string sentence =
      _("There is no .InstallationAttributes.dat beside the package or one folder above, so the page shows its "
        "built-in texts and asks for one disc.");
  std::optional<AttributesCorrection> correction;
  if (!misnamed.empty()) {
    sentence = join(sentence, format(_("Is {0} meant to be it?"), {quotedText(misnamed.filename().string())}));
    std::ifstream stream(misnamed, std::ios::binary);
    correction = AttributesCorrection{0, 0, std::string(std::istreambuf_iterator<char>(stream), {})};
  }
  diagnostics.add("attributes-missing", {checked.shown(folder / kFileName)}, sentence, correction);
}

void checkPlace(const CheckedSet& checked, Diagnostics& diagnostics) {
  const std::string folder = checked.plan.packageFolder;
  if (!checked.plan.attributes.isFilePresent()) {
    addMissingFile(checked, diagnostics);
    return;
  }
  const fs::path above = fs::path(folder) / ".." / kFileName;
  std::error_code error;
  if (fs::exists(above, error) && checked.plan.attributes.path() != above) {
    diagnostics.add(
        "attributes-twice", {checked.shown(above)},
        _("The page reads the .InstallationAttributes.dat beside the package and ignores this one."));
  }
}

// A mark before a comment is harmless.
void checkByteOrderMark(const CheckedSet& checked, const AttributesPiece& first, Diagnostics& diagnostics) {
  if (!first.parts.key.starts_with(kByteOrderMark)) {
    return;
  }
  if (const AttributesKey* key = knownKey(first.parts.key.substr(kByteOrderMark.size()))) {
    const std::string_view mark = first.parts.key.substr(0, kByteOrderMark.size());
    diagnostics.add("byte-order-mark", checked.attributesPlace(&first, mark),
                    format(_("The byte-order mark before {0} is part of the key, so the page does not "
                             "recognise the key: {1}."),
                           {key->name, missingKeyEffect(key->name)}),
                    correctionOf(checked.plan.attributes, mark, ""));
  }
}

void checkBytes(const CheckedSet& checked, const AttributesPiece& piece, Diagnostics& diagnostics) {
  if (piece.text.find('\0') != std::string_view::npos) {
    diagnostics.add("nul-byte", checked.attributesPlace(&piece),
                    _("A NUL byte ends the line, so the page ignores the rest of it."));
  }
  if (piece.isCut && !piece.continuesLine) {
    diagnostics.add("line-too-long", checked.attributesPlace(&piece),
                    _("The page reads at most 2047 bytes of a line, so it truncates this text and treats the "
                      "rest as another line."));
  }
  const std::string_view value = piece.parts.value;
  const std::size_t carriageReturn = value.find('\r');
  if (carriageReturn < value.find_last_not_of(" \t\r") &&
      value.find_last_not_of(" \t\r") != std::string_view::npos) {
    diagnostics.add("carriage-return", checked.attributesPlace(&piece),
                    format(_("A carriage return ends the value, so the page shows {0} and ignores the rest."),
                           {quotedText(value.substr(0, carriageReturn))}));
  }
  const AttributesKey* key = knownKey(piece.parts.key);
  if (key != nullptr && key->kind == KeyKind::text && !piece.isCut && !isValidUtf8(value)) {
    diagnostics.add(
        "text-not-utf8", checked.attributesPlace(&piece),
        format(_("The value of {0} is not UTF-8, so the page shows wrong letters or nothing."), {key->name}));
  }
}

}  // namespace

void checkAttributesFile(const CheckedSet& checked, Diagnostics& diagnostics) {
  checkPlace(checked, diagnostics);
  const AttributesReading& attributes = checked.plan.attributes;
  if (attributes.pieces().empty()) {
    return;
  }
  const Place firstLine = checked.attributesPlace(&attributes.pieces().front());
  if (isUtf16(attributes.bytes())) {
    diagnostics.add(
        "byte-order-mark", firstLine,
        _("The file is UTF-16, in which the page finds no key, so it behaves as if there were no file."),
        wholeFile(attributes, utf8OfUtf16(attributes.bytes())));
    return;
  }
  if (isUnmarkedUtf16(attributes.bytes())) {
    diagnostics.add(
        "utf16-without-mark", firstLine,
        _("The file is UTF-16, in which the page finds no key, so it behaves as if there were no file."),
        wholeFile(attributes, utf8OfUtf16(attributes.bytes())));
    return;
  }
  checkByteOrderMark(checked, attributes.pieces().front(), diagnostics);
  if (hasOldLineEnds(attributes.bytes())) {
    diagnostics.add(
        "carriage-return", firstLine,
        _("The lines end in carriage returns only, so the page sees one line and only its first key."),
        wholeFile(attributes, withLineFeeds(attributes.bytes())));
    return;
  }
  for (const AttributesPiece& piece : attributes.pieces()) {
    checkBytes(checked, piece, diagnostics);
  }
}

}  // namespace tavenhall

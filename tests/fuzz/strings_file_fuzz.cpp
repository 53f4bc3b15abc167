#include "platform/strings_file.h"
#include "platform/strings_text.h"
#include "tests/fuzz/fuzzing.h"

#include <algorithm>
#include <cstdlib>

// The input is a strings file. What is read of it has to come out again from every other way to write the
// same texts: quoted anew, in UTF-16 of either byte order, and from a bundle's folder.
namespace tavenhall::fuzz {

namespace {

using Entries = std::map<std::string, std::string, std::less<>>;

std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char character : text) {
    if (character == '"' || character == '\\') {
      result += '\\';
    }
    result += character;
  }
  return result + "\"";
}

std::string written(const Entries& entries) {
  std::string file;
  for (const auto& [key, text] : entries) {
    file += quoted(key) + " = " + quoted(text) + ";\n";
  }
  return file;
}

// Valid UTF-8 as UTF-16 with a byte-order mark.
std::string asUtf16(std::string_view text, bool isBigEndian) {
  std::string bytes;
  const auto put = [&](unsigned unit) {
    const auto high = static_cast<char>(unit >> 8U);
    const auto low = static_cast<char>(unit & 0xFFU);
    bytes += isBigEndian ? std::string{high, low} : std::string{low, high};
  };
  put(0xFEFF);
  for (std::size_t i = 0; i < text.size();) {
    const auto first = static_cast<unsigned char>(text[i]);
    const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    unsigned character = length == 1 ? first : first & (0xFFU >> (length + 1));
    for (std::size_t more = 1; more < length; ++more) {
      character = character << 6U | (static_cast<unsigned char>(text[i + more]) & 0x3FU);
    }
    i += length;
    if (character < 0x10000) {
      put(character);
    } else {
      put(0xD800 + ((character - 0x10000) >> 10U));
      put(0xDC00 + ((character - 0x10000) & 0x3FFU));
    }
  }
  return bytes;
}

void requireSameEntries(const Entries& is, const Entries& expected, std::string_view what) {
  requireSame(written(is), written(expected), what);
}

}  // namespace

}  // namespace tavenhall::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavenhall;
  using namespace tavenhall::fuzz;
  const std::string_view file = asText(data, size);
  const StringTable table = StringTable::parse(file);
  const Entries& entries = table.entries();

  const std::string text = utf8OfFile(file);
  require(entries.size() <= static_cast<std::size_t>(std::count(text.begin(), text.end(), ';')) + 1,
          "more entries than ends of entries");
  std::size_t entriesSize = 0;
  for (const auto& [key, value] : entries) {
    requireSame(table.text(key), value, "the text of a key");
    require(!isValidUtf8(text) || (isValidUtf8(key) && isValidUtf8(value)), "UTF-8 was broken");
    entriesSize += std::max(key.size(), value.size());
  }
  require(entriesSize <= text.size(), "more text than the file holds");
  requireSame(table.text("no such key"),
              entries.contains("no such key") ? table.text("no such key") : "no such key", "a missing key");

  requireSameEntries(StringTable::parse(written(entries)).entries(), entries, "the entries written anew");
  if (isValidUtf8(text)) {
    requireSameEntries(StringTable::parse("\xEF\xBB\xBF" + text).entries(), entries,
                       "behind a byte-order mark");
    requireSameEntries(StringTable::parse(asUtf16(text, true)).entries(), entries, "UTF-16, big end first");
    requireSameEntries(StringTable::parse(asUtf16(text, false)).entries(), entries, "UTF-16, little end first");
  }

  static const bool isLaidOut = [] {
    makeFolders("/tmp/Contents/Resources/en.lproj");
    return true;
  }();
  static_cast<void>(isLaidOut);
  writeBytes("/tmp/Contents/Resources/en.lproj/Localizable.strings", file);
  requireSameEntries(loadBundleStrings("/tmp/Contents").entries(), entries, "the entries from a bundle");
  return 0;
}

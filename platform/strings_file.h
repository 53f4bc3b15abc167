#pragma once

#include <map>
#include <string>
#include <string_view>

// The string table of a plug-in bundle: Contents/Resources/<language>.lproj/Localizable.strings, the classic
// form of lines `"key" = "value";` with comments and escapes, in UTF-8 or in UTF-16 with a byte-order mark.
namespace tavenhall {

class StringTable {
 public:
  StringTable() = default;

  // Reads a whole file's bytes. What cannot be read as an entry is passed over up to the next ';', so that
  // one bad line costs one text. A later entry with the same key replaces an earlier one.
  [[nodiscard]] static StringTable parse(std::string_view bytes);

  // The text for `key`, UTF-8; the key itself where there is none. Any thread, once parsed.
  [[nodiscard]] std::string text(std::string_view key) const;

  [[nodiscard]] const std::map<std::string, std::string, std::less<>>& entries() const { return entries_; }

 private:
  std::map<std::string, std::string, std::less<>> entries_;
};

// Reads the table of the bundle whose Contents folder is given, in the first language that both the user
// (LANGUAGE, LC_ALL, LC_MESSAGES, LANG) and the bundle have, else in English, else in the first that the bundle
// has by name. Empty when there is none.
[[nodiscard]] StringTable loadBundleStrings(const std::string& contentsFolder);

// The table of the bundle that this code was loaded from; read at the first call, and kept for the process.
// Empty where the code does not lie at <bundle>/Contents/MacOS/<program>. Any thread.
[[nodiscard]] const StringTable& bundleStrings();

}  // namespace tavenhall

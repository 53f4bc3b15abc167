#pragma once

#include "context/attributes_line.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// The InstallationAttributes file as the page reads it, with the place of everything that was read, so that
// a diagnostic can name its line. Only reads: no log, and nothing that is done once a process. Any thread.
namespace tavenhall {

// The result of one read by the page: a line, or a part of a line that is longer than its buffer. The texts
// live as long as the reading.
struct AttributesPiece {
  int turn = 0;                // from 1; the page searches kAttributesLineCount turns
  int line = 0;                // from 1, as an editor counts
  bool continuesLine = false;  // the line began in an earlier piece
  bool isCut = false;          // the line goes on in the next piece
  std::string_view text;       // with its newline
  AttributesLine parts;
};

// The result of a text lookup.
struct FoundText {
  const AttributesPiece* key = nullptr;     // the line that has the key; null: missing
  const AttributesPiece* source = nullptr;  // the line whose value is in `value`; null: none was
  std::string value;                        // the caller's buffer afterwards, also when the key is missing

  explicit operator bool() const { return key != nullptr; }
};

// The result of a number lookup.
struct FoundNumber {
  const AttributesPiece* key = nullptr;     // the line that has the key; null: missing
  const AttributesPiece* source = nullptr;  // the line whose number it is; null: none, or the key is missing
  std::int64_t number = 0;

  explicit operator bool() const { return key != nullptr; }
};

// A location in a set, for a diagnostic.
struct Place {
  std::string file;  // below the set's folder where it is there, else absolute
  int line = 0;      // from 1; 0: the whole file
  int column = 0;    // from 1, in characters; 0: the whole line
  int length = 0;    // characters
};

class AttributesReading {
 public:
  // No file at all.
  AttributesReading();

  // Reads a file's bytes.
  [[nodiscard]] static AttributesReading parse(std::string bytes, std::filesystem::path path = {});

  // Finds and reads the file as the page does: in the package's folder, or else one folder above. Throws
  // UsageError if the file is a pipe or the like, on which the page would block.
  [[nodiscard]] static AttributesReading besidePackage(const std::string& packageFolder);

  [[nodiscard]] bool isFilePresent() const { return isFilePresent_; }
  [[nodiscard]] const std::filesystem::path& path() const { return path_; }  // empty without a file
  [[nodiscard]] std::string_view bytes() const { return *bytes_; }
  [[nodiscard]] const std::vector<AttributesPiece>& pieces() const { return *pieces_; }

  // The page's lookups, with all they are required to do: a text key is found in any case, and the value of
  // every line before it goes through the buffer of `size` bytes (terminator included), which starts empty
  // here. A number key is found in its exact case only, and a value that is no number leaves that of an
  // earlier line. The result points into the reading, so do not call it on a temporary.
  [[nodiscard]] FoundText findText(std::string_view key, std::size_t size = kAttributesValueSize) const&;
  [[nodiscard]] FoundNumber findNumber(std::string_view key) const&;
  FoundText findText(std::string_view key, std::size_t size = kAttributesValueSize) && = delete;
  FoundNumber findNumber(std::string_view key) && = delete;

  // The text for `key` as the page gets it: the built-in one if the key is missing.
  [[nodiscard]] std::string textOrFallback(std::string_view key) const;

 private:
  std::filesystem::path path_;
  bool isFilePresent_ = false;
  std::shared_ptr<const std::string> bytes_;  // shared, since the pieces point into it
  std::shared_ptr<const std::vector<AttributesPiece>> pieces_;
};

}  // namespace tavenhall

#include "host/set/attributes_reading.h"

#include "context/bounded_text.h"
#include "context/install_rules.h"
#include "context/open_file.h"
#include "host/base/exit_status.h"
#include "host/base/files.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>

namespace tavenhall {

namespace {

// Far more than the page searches.
constexpr std::size_t kMostBytes = 16U << 20U;

// Splits the bytes as the page's reads do: at each newline, and where a line does not fit the page's buffer.
std::vector<AttributesPiece> cutIntoPieces(std::string_view bytes) {
  std::vector<AttributesPiece> pieces;
  int line = 1;
  bool continuesLine = false;
  while (!bytes.empty()) {
    const std::string_view read = bytes.substr(0, kAttributesLineSize - 1);
    const std::size_t newline = read.find('\n');
    const std::string_view text = newline == std::string_view::npos ? read : read.substr(0, newline + 1);
    bytes.remove_prefix(text.size());
    const bool endsLine = newline != std::string_view::npos || bytes.empty();
    pieces.push_back(
        {static_cast<int>(pieces.size()) + 1, line, continuesLine, !endsLine, text, parseAttributesLine(text)});
    continuesLine = !endsLine;
    line += endsLine ? 1 : 0;
  }
  return pieces;
}

[[noreturn]] void throwUnreadable(const std::filesystem::path& path) {
  throw UsageError(format(_("cannot read {0}: {1}"), {path.string(), std::strerror(errno)}));
}

// All bytes of the file; none if there is no such file. Throws if it cannot be read to its end: the page would
// take the keys in the rest for missing, and nobody would notice.
std::optional<std::string> readBytes(const std::filesystem::path& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(openToRead(path.c_str()), &std::fclose);
  if (file == nullptr && errno != ENOENT && errno != ENOTDIR) {
    throwUnreadable(path);
  }
  if (file == nullptr) {
    return std::nullopt;
  }
  std::string bytes;
  std::array<char, 65536> chunk;  // filled by the read
  while (bytes.size() < kMostBytes) {
    const std::size_t count = std::fread(chunk.data(), 1, chunk.size(), file.get());
    if (std::ferror(file.get()) != 0) {
      throwUnreadable(path);
    }
    if (count == 0) {
      break;
    }
    bytes.append(chunk.data(), count);
  }
  return bytes;
}

// Passes to the page's search the lines that the page passes to it. Sets `source` to the last line whose value
// it used. Returns the line with the key, or null.
template <typename Search>
const AttributesPiece* searchPieces(const std::vector<AttributesPiece>& pieces, Search& search,
                                    const AttributesPiece*& source) {
  for (const AttributesPiece& piece : pieces) {
    if (piece.turn > kAttributesLineCount) {
      break;
    }
    const bool isFound = search.show(piece.parts);
    if (search.tookValue()) {
      source = &piece;
    }
    if (isFound) {
      return &piece;
    }
  }
  return nullptr;
}

}  // namespace

AttributesReading::AttributesReading()
    : bytes_(std::make_shared<const std::string>()),
      pieces_(std::make_shared<const std::vector<AttributesPiece>>()) {}

AttributesReading AttributesReading::parse(std::string bytes, std::filesystem::path path) {
  AttributesReading reading;
  reading.path_ = std::move(path);
  reading.isFilePresent_ = true;
  reading.bytes_ = std::make_shared<const std::string>(std::move(bytes));
  reading.pieces_ = std::make_shared<const std::vector<AttributesPiece>>(cutIntoPieces(*reading.bytes_));
  return reading;
}

AttributesReading AttributesReading::besidePackage(const std::string& packageFolder) {
  for (const char* tail : {"/.InstallationAttributes.dat", "/../.InstallationAttributes.dat"}) {
    const std::filesystem::path path = packageFolder + tail;
    requireNoSpecialFile(path);
    if (auto bytes = readBytes(path)) {
      return parse(std::move(*bytes), path);
    }
  }
  return {};
}

FoundText AttributesReading::findText(std::string_view key, std::size_t size) const& {
  FoundText found;
  std::vector<char> buffer(size, '\0');
  TextSearch search(key, buffer.data(), size);
  found.key = searchPieces(*pieces_, search, found.source);
  found.value = buffer.data();
  return found;
}

FoundNumber AttributesReading::findNumber(std::string_view key) const& {
  FoundNumber found;
  NumberSearch search(key);
  found.key = searchPieces(*pieces_, search, found.source);
  found.number = search.number();
  return found.key != nullptr ? found : FoundNumber{};
}

std::string AttributesReading::textOrFallback(std::string_view key) const {
  FoundText found = findText(key);
  const char* fallback = fallbackText(key);
  return found || fallback == nullptr ? std::move(found.value) : fallback;
}

}  // namespace tavenhall

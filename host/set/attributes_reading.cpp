#include "host/set/attributes_reading.h"

#include "context/bounded_text.h"
#include "context/install_rules.h"
#include "context/open_file.h"
#include "host/base/errors.h"
#include "host/base/files.h"

#include <array>
#include <cstdio>
#include <optional>

namespace tavenhall {

namespace {

// Far more than the page ever searches; what lies beyond is nobody's attributes file.
constexpr std::size_t kMostBytes = 16U << 20U;

// Cuts the bytes as the page's reads do: at each newline, and where a line does not fit the page's buffer.
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

// All bytes of the file; none where it cannot be opened. A folder can be opened, and holds no line.
std::optional<std::string> readBytes(const std::filesystem::path& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(openToRead(path.c_str()), &std::fclose);
  if (file == nullptr) {
    return std::nullopt;
  }
  std::string bytes;
  std::array<char, 65536> chunk;  // filled by the read
  while (bytes.size() < kMostBytes) {
    const std::size_t count = std::fread(chunk.data(), 1, chunk.size(), file.get());
    if (count == 0) {
      break;
    }
    bytes.append(chunk.data(), count);
  }
  return bytes;
}

// Reading a number leaves what was there when there is none, so only a number gives the same twice.
bool holdsNumber(std::string_view value) {
  std::int64_t one = 1;
  std::int64_t two = 2;
  readAttributesNumber(value, one);
  readAttributesNumber(value, two);
  return one == two;
}

// Shows the lines that the page searches to `isWanted` until it says yes; the line it said so of.
template <typename Test>
const AttributesPiece* searchPieces(const std::vector<AttributesPiece>& pieces, Test isWanted) {
  for (const AttributesPiece& piece : pieces) {
    if (piece.turn > kAttributesLineCount) {
      break;
    }
    if (isWanted(piece)) {
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
  found.key = searchPieces(*pieces_, [&](const AttributesPiece& piece) {
    if (!piece.parts.value.empty()) {
      found.source = &piece;
    }
    return isStringKey(piece.parts.key, key);
  });
  std::vector<char> buffer(size, '\0');
  if (found.source != nullptr) {
    copyCut(buffer.data(), size, found.source->parts.value);
  }
  if (found.key != nullptr) {
    finishAttributesValue(buffer.data());
  }
  found.value = buffer.data();
  return found;
}

FoundNumber AttributesReading::findNumber(std::string_view key) const& {
  FoundNumber found;
  found.key = searchPieces(*pieces_, [&](const AttributesPiece& piece) {
    if (holdsNumber(piece.parts.value)) {
      found.source = &piece;
      readAttributesNumber(piece.parts.value, found.number);
    }
    return isNumberKey(piece.parts.key, key);
  });
  return found.key != nullptr ? found : FoundNumber{};
}

std::string AttributesReading::textOrFallback(std::string_view key) const {
  FoundText found = findText(key);
  const char* fallback = fallbackText(key);
  return found || fallback == nullptr ? std::move(found.value) : fallback;
}

}  // namespace tavenhall

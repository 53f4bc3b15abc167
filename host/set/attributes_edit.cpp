#include "host/set/attributes_edit.h"

#include "host/set/attributes_reading.h"

#include <algorithm>
#include <cstddef>

namespace tavenhall {

namespace {

std::string withLine(const std::string& bytes, const AttributesPiece* found, const std::string& line) {
  if (found == nullptr) {
    const bool isOpen = !bytes.empty() && bytes.back() != '\n';
    const bool hasReturns = bytes.find("\r\n") != std::string::npos;
    const std::string end = hasReturns ? "\r\n" : "\n";
    return bytes + (isOpen ? end : "") + line + end;
  }
  std::size_t begin = 0;
  for (int number = 1; number < found->line; ++number) {
    begin = bytes.find('\n', begin) + 1;
  }
  const std::size_t newline = std::min(bytes.find('\n', begin), bytes.size());
  const std::size_t end = newline > begin && bytes[newline - 1] == '\r' ? newline - 1 : newline;
  return bytes.substr(0, begin) + line + bytes.substr(end);
}

}  // namespace

std::string withText(const std::string& bytes, std::string_view key, std::string_view value) {
  const AttributesReading reading = AttributesReading::parse(bytes);
  return withLine(bytes, reading.findText(key).key, std::string(key) + " = " + std::string(value));
}

std::string withNumber(const std::string& bytes, std::string_view key, long long value) {
  const AttributesReading reading = AttributesReading::parse(bytes);
  return withLine(bytes, reading.findNumber(key).key, std::string(key) + " = " + std::to_string(value));
}

}  // namespace tavenhall

#include "host/set/attributes_edit.h"

#include <algorithm>
#include <vector>

namespace tavenhall {

namespace {

AttributesCorrection lineCorrection(const AttributesReading& attributes, const AttributesPiece* found,
                                    const std::string& line) {
  const std::string_view bytes = attributes.bytes();
  if (found == nullptr) {
    const std::string end = bytes.find("\r\n") != std::string_view::npos ? "\r\n" : "\n";
    const bool isOpen = !bytes.empty() && bytes.back() != '\n';
    return {bytes.size(), bytes.size(), (isOpen ? end : "") + line + end};
  }
  const auto begin = static_cast<std::size_t>(found->text.data() - bytes.data());
  const std::size_t newline = std::min(bytes.find('\n', begin), bytes.size());
  const std::size_t end = newline > begin && bytes[newline - 1] == '\r' ? newline - 1 : newline;
  return {begin, end, line};
}

std::vector<std::string_view> linesOf(std::string_view bytes) {
  std::vector<std::string_view> lines;
  while (!bytes.empty()) {
    std::string_view line = bytes.substr(0, bytes.find('\n'));
    bytes.remove_prefix(std::min(line.size() + 1, bytes.size()));
    line.remove_suffix(line.ends_with('\r') ? 1 : 0);
    lines.push_back(line);
  }
  return lines;
}

// Lines, from 0, that differ.
struct Hunk {
  std::size_t begin;
  std::size_t oldEnd;
  std::size_t newEnd;
};

// Corrections change lines and add some at the end; they never move one.
std::vector<Hunk> hunksBetween(const std::vector<std::string_view>& old,
                               const std::vector<std::string_view>& changed) {
  std::vector<Hunk> hunks;
  const std::size_t common = std::min(old.size(), changed.size());
  const auto reach = [&hunks](std::size_t begin, std::size_t oldEnd, std::size_t newEnd) {
    if (hunks.empty() || hunks.back().oldEnd != begin) {
      hunks.push_back({begin, begin, begin});
    }
    hunks.back().oldEnd = oldEnd;
    hunks.back().newEnd = newEnd;
  };
  for (std::size_t i = 0; i < common; ++i) {
    if (old[i] != changed[i]) {
      reach(i, i + 1, i + 1);
    }
  }
  if (old.size() != changed.size()) {
    reach(common, old.size(), changed.size());
  }
  return hunks;
}

// As `diff` writes it: lines from 1, their number unless it is 1, and of none the line before.
std::string rangeText(std::size_t begin, std::size_t end) {
  const std::size_t count = end - begin;
  return std::to_string(count == 0 ? begin : begin + 1) + (count == 1 ? "" : "," + std::to_string(count));
}

}  // namespace

AttributesCorrection correctionOf(const AttributesReading& attributes, std::string_view part,
                                  std::string_view text) {
  const auto begin = static_cast<std::size_t>(part.data() - attributes.bytes().data());
  return {begin, begin + part.size(), std::string(text)};
}

AttributesCorrection textCorrection(const AttributesReading& attributes, std::string_view key,
                                    std::string_view value) {
  return lineCorrection(attributes, attributes.findText(key).key,
                        std::string(key) + " = " + std::string(value));
}

AttributesCorrection numberCorrection(const AttributesReading& attributes, std::string_view key,
                                      std::int64_t value) {
  return lineCorrection(attributes, attributes.findNumber(key).key,
                        std::string(key) + " = " + std::to_string(value));
}

std::string corrected(std::string_view bytes, const AttributesCorrection& correction) {
  return std::string(bytes.substr(0, correction.begin)) + correction.text +
         std::string(bytes.substr(correction.end));
}

std::int64_t millionsToAnnounce(std::int64_t bytes) {
  constexpr std::int64_t kMillion = 1000000;
  return std::max<std::int64_t>(1, (bytes + kMillion / 2) / kMillion);
}

std::string withText(const std::string& bytes, std::string_view key, std::string_view value) {
  const AttributesReading reading = AttributesReading::parse(bytes);
  return corrected(bytes, textCorrection(reading, key, value));
}

std::string withNumber(const std::string& bytes, std::string_view key, std::int64_t value) {
  const AttributesReading reading = AttributesReading::parse(bytes);
  return corrected(bytes, numberCorrection(reading, key, value));
}

std::string unifiedDiff(std::string_view name, std::string_view before, std::string_view after) {
  if (before == after) {
    return {};
  }
  const std::vector<std::string_view> old = linesOf(before);
  const std::vector<std::string_view> changed = linesOf(after);
  std::string text = "--- " + std::string(name) + "\n+++ " + std::string(name) + "\n";
  for (const Hunk& hunk : hunksBetween(old, changed)) {
    text += "@@ -" + rangeText(hunk.begin, hunk.oldEnd) + " +" + rangeText(hunk.begin, hunk.newEnd) + " @@\n";
    for (std::size_t i = hunk.begin; i < hunk.oldEnd; ++i) {
      text += "-" + std::string(old[i]) + "\n";
    }
    for (std::size_t i = hunk.begin; i < hunk.newEnd; ++i) {
      text += "+" + std::string(changed[i]) + "\n";
    }
  }
  return text;
}

}  // namespace tavenhall

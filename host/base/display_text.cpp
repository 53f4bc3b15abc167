#include "host/base/display_text.h"

#include "host/base/unicode.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <span>
#include <uniwidth.h>
#include <wchar.h>

namespace tavenhall {

namespace {

// A character with the combining ones that follow it.
struct Cluster {
  std::string text;
  int width = 0;

  [[nodiscard]] bool is(char character) const { return text.size() == 1 && text[0] == character; }
};

using Clusters = std::vector<Cluster>;

// These change the writing direction of the rest of a line.
bool turnsWriting(char32_t character) {
  return (character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
}

// The cells that a character takes; -1 where it is a control character or the locale cannot show it.
int cellsOf(char32_t character) {
  return wcwidth(static_cast<wchar_t>(character)) < 0 ? -1 : uc_width(character, "UTF-8");
}

// The characters of a line as they can be shown.
Clusters clustersOf(std::u32string_view line) {
  Clusters clusters;
  for (char32_t character : line) {
    if (character == U'\r' || turnsWriting(character)) {
      continue;
    }
    if (character == U'\t') {
      character = U' ';
    }
    int width = cellsOf(character);
    if (width < 0) {
      character = U'?';
      width = 1;
    }
    if (width > 0) {
      clusters.push_back({encodeUtf8({&character, 1}), width});
    } else if (!clusters.empty() && character != U'\0') {
      clusters.back().text += encodeUtf8({&character, 1});
    }
  }
  return clusters;
}

int widthOf(std::span<const Cluster> clusters) {
  return std::accumulate(clusters.begin(), clusters.end(), 0,
                         [](int sum, const Cluster& cluster) { return sum + cluster.width; });
}

std::string textOf(std::span<const Cluster> clusters) {
  std::string text;
  for (const Cluster& cluster : clusters) {
    text += cluster.text;
  }
  return text;
}

std::span<const Cluster> withoutBlanksAtEnd(std::span<const Cluster> clusters) {
  while (!clusters.empty() && clusters.back().is(' ')) {
    clusters = clusters.first(clusters.size() - 1);
  }
  return clusters;
}

// Chinese and Japanese lines neither begin with the first nor end with the second.
constexpr std::string_view kNeverFirst =
    "、。，．・：；！？）］｝」』】》〉〕”’…ー々ぁぃぅぇぉっゃゅょァィゥェォッャュョ%,.:;!?)]}";
constexpr std::string_view kNeverLast = "（［｛「『【《〈〔“‘([{";

// Whether a line may break between these two.
bool mayBreakBetween(const Cluster& last, const Cluster& next) {
  return (last.width == 2 || next.width == 2) && kNeverFirst.find(next.text) == std::string_view::npos &&
         kNeverLast.find(last.text) == std::string_view::npos;
}

// The number of clusters of `rest`, which is wider than the line, that the next line takes.
std::size_t lineEnd(std::span<const Cluster> rest, int width) {
  std::size_t fits = 0;
  for (int used = 0; fits < rest.size() && used + rest[fits].width <= width; ++fits) {
    used += rest[fits].width;
  }
  if (rest[fits].is(' ')) {
    return fits;
  }
  std::size_t afterSlash = 0;
  for (std::size_t end = fits; end > 0; --end) {
    const Cluster& last = rest[end - 1];
    if (last.is(' ')) {
      return end;
    }
    if (mayBreakBetween(last, rest[end])) {
      return end;
    }
    if (last.is('/') && afterSlash == 0) {
      afterSlash = end;
    }
  }
  // A path without blanks breaks after a folder, a long word where the line is full.
  return afterSlash > 1 ? afterSlash : std::max<std::size_t>(fits, 1);
}

void wrapLine(std::u32string_view line, int width, std::vector<std::string>& lines) {
  const Clusters clusters = clustersOf(line);
  std::span<const Cluster> rest = withoutBlanksAtEnd(clusters);
  while (widthOf(rest) > width) {
    const std::size_t end = lineEnd(rest, width);
    const std::span<const Cluster> shown = withoutBlanksAtEnd(rest.first(end));
    rest = rest.subspan(end);
    while (!rest.empty() && rest.front().is(' ')) {
      rest = rest.subspan(1);
    }
    if (!shown.empty()) {
      lines.push_back(textOf(shown));
    }
  }
  lines.push_back(textOf(rest));
}

const std::string& ellipsis() {
  static const std::string kUnicode = "\u2026";
  static const std::string kPlain = "...";
  return localeShowsUnicode() ? kUnicode : kPlain;
}

Clusters inOneLine(std::string_view text) {
  std::u32string line = decodeUtf8(text);
  std::replace(line.begin(), line.end(), U'\n', U' ');
  return clustersOf(line);
}

}  // namespace

bool localeShowsUnicode() { return wcwidth(L'\u2026') == 1; }

std::string displayText(std::string_view text) {
  std::string shown;
  const std::u32string characters = decodeUtf8(text);
  std::u32string_view rest = characters;
  while (true) {
    const std::size_t end = std::min(rest.find(U'\n'), rest.size());
    shown += textOf(clustersOf(rest.substr(0, end)));
    if (end == rest.size()) {
      return shown;
    }
    shown += '\n';
    rest.remove_prefix(end + 1);
  }
}

int displayWidth(std::string_view text) { return widthOf(inOneLine(text)); }

int widestWord(std::string_view text) {
  int widest = 0;
  int width = 0;
  for (const Cluster& cluster : inOneLine(text)) {
    width = cluster.is(' ') || cluster.width == 2 ? 0 : width + cluster.width;
    widest = std::max(widest, width);
  }
  return widest;
}

std::vector<std::string> wrapText(std::string_view text, int width) {
  std::vector<std::string> lines;
  const std::u32string characters = decodeUtf8(text);
  std::u32string_view rest = characters;
  while (true) {
    const std::size_t end = std::min(rest.find(U'\n'), rest.size());
    wrapLine(rest.substr(0, end), std::max(width, 2), lines);
    if (end == rest.size()) {
      return lines;
    }
    rest.remove_prefix(end + 1);
  }
}

std::string truncateEnd(std::string_view text, int width) {
  const Clusters clusters = inOneLine(text);
  std::span<const Cluster> shown = clusters;
  if (widthOf(shown) <= width) {
    return textOf(shown);
  }
  const int room = width - displayWidth(ellipsis());
  while (!shown.empty() && widthOf(shown) > room) {
    shown = shown.first(shown.size() - 1);
  }
  return room < 0 ? std::string() : textOf(shown) + ellipsis();
}

std::string truncatePath(std::string_view path, int width) {
  const Clusters clusters = inOneLine(path);
  std::span<const Cluster> shown = clusters;
  if (widthOf(shown) <= width) {
    return textOf(shown);
  }
  const int room = width - displayWidth(ellipsis());
  if (room < 0) {
    return {};
  }
  while (!shown.empty() && widthOf(shown) > room) {
    shown = shown.subspan(1);
  }
  const auto folder =
      std::find_if(shown.begin(), shown.end(), [](const Cluster& cluster) { return cluster.is('/'); });
  const bool isWithinName = folder == shown.end();
  return ellipsis() +
         textOf(isWithinName ? shown : shown.subspan(static_cast<std::size_t>(folder - shown.begin())));
}

std::string padRight(std::string_view text, int width) {
  return std::string(text) +
         std::string(static_cast<std::size_t>(std::max(width - displayWidth(text), 1)), ' ');
}

}  // namespace tavenhall

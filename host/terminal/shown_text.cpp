#include "host/terminal/shown_text.h"

#include "host/terminal/wide_text.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <span>
#include <wchar.h>

namespace tavenhall {

namespace {

// A character with the combining ones that stand on it.
struct Cluster {
  std::string text;
  int width = 0;

  [[nodiscard]] bool is(char character) const { return text.size() == 1 && text[0] == character; }
};

using Clusters = std::vector<Cluster>;

// These turn the direction of what follows, across the rest of a line.
bool turnsWriting(wchar_t character) {
  return (character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
}

// The text's characters, save line breaks, as they can be shown.
Clusters clustersOf(std::wstring_view line) {
  Clusters clusters;
  for (wchar_t character : line) {
    if (character == L'\r' || turnsWriting(character)) {
      continue;
    }
    if (character == L'\t') {
      character = L' ';
    }
    int width = wcwidth(character);
    if (width < 0) {
      character = L'?';
      width = 1;
    }
    if (width > 0) {
      clusters.push_back({narrowText({&character, 1}), width});
    } else if (!clusters.empty() && character != L'\0') {
      clusters.back().text += narrowText({&character, 1});
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

// What Chinese and Japanese lines do not begin with, and what they do not end with.
constexpr std::string_view kNeverFirst =
    "、。，．・：；！？）］｝」』】》〉〕”’…ー々ぁぃぅぇぉっゃゅょァィゥェォッャュョ%,.:;!?)]}";
constexpr std::string_view kNeverLast = "（［｛「『【《〈〔“‘([{";

// May a line end between these two?
bool partsBetween(const Cluster& last, const Cluster& next) {
  return (last.width == 2 || next.width == 2) && kNeverFirst.find(next.text) == std::string_view::npos &&
         kNeverLast.find(last.text) == std::string_view::npos;
}

// How many clusters the next line takes of `rest`, which is wider than the line.
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
    if (partsBetween(last, rest[end])) {
      return end;
    }
    if (last.is('/') && afterSlash == 0) {
      afterSlash = end;
    }
  }
  // A path without blanks is broken at its folders; what has nothing of the kind, where the line is full.
  return afterSlash > 1 ? afterSlash : std::max<std::size_t>(fits, 1);
}

void wrapLine(std::wstring_view line, int width, std::vector<std::string>& lines) {
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
  std::wstring line = wideText(text);
  std::replace(line.begin(), line.end(), L'\n', L' ');
  return clustersOf(line);
}

}  // namespace

bool localeShowsUnicode() { return wcwidth(L'\u2026') == 1; }

std::string shownText(std::string_view text) {
  std::string shown;
  const std::wstring wide = wideText(text);
  std::wstring_view rest = wide;
  while (true) {
    const std::size_t end = std::min(rest.find(L'\n'), rest.size());
    shown += textOf(clustersOf(rest.substr(0, end)));
    if (end == rest.size()) {
      return shown;
    }
    shown += '\n';
    rest.remove_prefix(end + 1);
  }
}

int widthOf(std::string_view text) { return widthOf(inOneLine(text)); }

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
  const std::wstring wide = wideText(text);
  std::wstring_view rest = wide;
  while (true) {
    const std::size_t end = std::min(rest.find(L'\n'), rest.size());
    wrapLine(rest.substr(0, end), std::max(width, 2), lines);
    if (end == rest.size()) {
      return lines;
    }
    rest.remove_prefix(end + 1);
  }
}

std::string cutAtEnd(std::string_view text, int width) {
  const Clusters clusters = inOneLine(text);
  std::span<const Cluster> shown = clusters;
  if (widthOf(shown) <= width) {
    return textOf(shown);
  }
  const int room = width - widthOf(ellipsis());
  while (!shown.empty() && widthOf(shown) > room) {
    shown = shown.first(shown.size() - 1);
  }
  return room < 0 ? std::string() : textOf(shown) + ellipsis();
}

std::string shortPath(std::string_view path, int width) {
  const Clusters clusters = inOneLine(path);
  std::span<const Cluster> shown = clusters;
  if (widthOf(shown) <= width) {
    return textOf(shown);
  }
  const int room = width - widthOf(ellipsis());
  if (room < 0) {
    return {};
  }
  while (!shown.empty() && widthOf(shown) > room) {
    shown = shown.subspan(1);
  }
  const auto folder = std::ranges::find_if(shown, [](const Cluster& cluster) { return cluster.is('/'); });
  const bool isWithinName = folder == shown.end();
  return ellipsis() +
         textOf(isWithinName ? shown : shown.subspan(static_cast<std::size_t>(folder - shown.begin())));
}

}  // namespace tavenhall

#include "host/ui/introduction.h"

#include "host/base/text.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace tavenhall {

namespace {

constexpr int kLeastIndent = 8;

// In bytes; 0 where there is no such file.
std::int64_t sizeOfFile(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  return error ? 0 : static_cast<std::int64_t>(size);
}

void appendPlaces(std::vector<Line>& lines, const std::string& label, const std::vector<std::string>& places,
                  int indent, int width) {
  std::string left = label;
  for (const std::string& place : places) {
    append(lines, labelledLines(left, place, indent, width));
    left.clear();
  }
}

}  // namespace

std::string shortRoomText(const Introduction& introduction) {
  return format(_("The data needs {0}; the disk has {1} free."),
                {sizeText(*introduction.neededBytes), sizeText(*introduction.freeBytes)});
}

std::vector<Line> introductionLines(const Introduction& introduction, int width) {
  const char* from = _("From");
  const char* to = _("To");
  const char* size = _("Size");
  const char* free = _("Free");
  const int indent = std::max(labelColumns({from, to, size, free}), kLeastIndent);

  std::vector<Line> lines = wrappedLines(introduction.what, width);
  lines.emplace_back();
  appendPlaces(lines, from, introduction.from, indent, width);
  lines.emplace_back();
  appendPlaces(lines, to, introduction.to, indent, width);
  lines.emplace_back();
  append(lines, labelledLines(
                    size, introduction.neededBytes ? sizeText(*introduction.neededBytes) : _("not announced"),
                    indent, width));
  if (introduction.freeBytes) {
    append(lines, labelledLines(free, format(_("{0} on that disk"), {sizeText(*introduction.freeBytes)}),
                                indent, width, introduction.isRoomShort() ? Style::bad : Style::text));
  }
  if (introduction.isRoomShort()) {
    lines.emplace_back();
    append(lines, wrappedLines(join(_("There may not be enough space."), shortRoomText(introduction)), width,
                               Style::bad));
  }
  if (!introduction.isDestinationThere) {
    lines.emplace_back();
    append(lines,
           wrappedLines(format(_("The folder for the data does not exist yet. Install {0} itself first."),
                               {introduction.productName}),
                        width, Style::bad));
  }
  lines.emplace_back();
  append(lines, wrappedLines(_("Press Continue to begin."), width, Style::dim));
  return lines;
}

void RunDescription::watchLog(std::string path) {
  log = std::move(path);
  logStart = sizeOfFile(log);
}

std::string RunDescription::writtenLog() const { return logStart < 0 || sizeOfFile(log) > logStart ? log : ""; }

}  // namespace tavenhall

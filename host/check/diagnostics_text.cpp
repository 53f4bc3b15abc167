#include "host/base/display_text.h"
#include "host/base/text.h"
#include "host/base/unicode.h"
#include "host/check/report.h"

#include <algorithm>

namespace tavenhall {

namespace {

constexpr const char* kBold = "\033[1m";
constexpr const char* kRed = "\033[1;31m";
constexpr const char* kYellow = "\033[1;33m";
constexpr const char* kBlue = "\033[1;34m";
constexpr const char* kGreen = "\033[32m";
constexpr const char* kPlain = "\033[0m";

const char* colourOf(Severity severity) {
  switch (severity) {
    case Severity::error: return kRed;
    case Severity::warning: return kYellow;
    case Severity::note: break;
  }
  return kBlue;
}

std::string placeText(const Place& place) {
  std::string text = printableLine(place.file);
  if (place.line > 0) {
    text += ":" + std::to_string(place.line);
  }
  if (place.column > 0) {
    text += ":" + std::to_string(place.column);
  }
  return text;
}

// The pattern is for the place, the severity, the sentence and the name.
std::string diagnosticLineBy(const std::string& pattern, const Diagnostic& diagnostic) {
  return format(pattern, {placeText(diagnostic.place), _(severityWord(diagnostic.severity)),
                          printableLine(diagnostic.sentence), std::string(diagnostic.name())});
}

class DiagnosticPrinter {
 public:
  DiagnosticPrinter(const CheckResult& result, const ReportStyle& style)
      : attributes_(result.checked.plan.attributes),
        attributesFile_(attributes_.isFilePresent() ? result.checked.attributesPlace().file : ""),
        style_(style) {}

  [[nodiscard]] std::string text(const Diagnostic& diagnostic, std::size_t indent) const {
    std::string text = headline(diagnostic, indent);
    if (indent == kIndent) {
      text += excerpt(diagnostic) + remedy(diagnostic);
    }
    for (const Diagnostic& consequence : diagnostic.consequences) {
      text += this->text(consequence, indent + kConsequence);
    }
    return text;
  }

  static constexpr std::size_t kIndent = 2;

 private:
  static constexpr std::size_t kConsequence = 4;
  static constexpr const char* kGutter = "      | ";

  [[nodiscard]] std::string coloured(const char* colour, const std::string& text) const {
    return style_.hasColour ? colour + text + kPlain : text;
  }

  [[nodiscard]] std::string linked(std::string_view name) const {
    const std::string text(name);
    return style_.document.empty() ? text
                                   : "\033]8;;file://" + percentEncoded(style_.document.string()) + "#" + text +
                                         "\033\\" + text + "\033]8;;\033\\";
  }

  // Wraps before it adds what a terminal does not show.
  [[nodiscard]] std::string headline(const Diagnostic& diagnostic, std::size_t indent) const {
    const std::string place = placeText(diagnostic.place);
    const std::string severity = _(severityWord(diagnostic.severity));
    const std::string name(diagnostic.name());
    std::string text = indent > kIndent ? diagnosticLineBy(_("so {0}: {1}: {2} [{3}]"), diagnostic)
                                        : diagnosticLine(diagnostic);
    if (style_.columns > 0) {
      std::string wrapped;
      for (const std::string& line : wrapText(text, style_.columns - static_cast<int>(indent) - 2)) {
        wrapped += (wrapped.empty() ? "" : "\n" + std::string(indent + 2, ' ')) + line;
      }
      text = wrapped;
    }
    if (const std::size_t at = text.rfind("[" + name + "]"); at != std::string::npos) {
      text.replace(at + 1, name.size(), linked(name));
    }
    if (const std::size_t at = text.find(" " + severity + ":"); at != std::string::npos) {
      text.replace(at + 1, severity.size(), coloured(colourOf(diagnostic.severity), severity));
    }
    if (const std::size_t at = text.find(place); style_.hasColour && at != std::string::npos) {
      text.replace(at, place.size(), coloured(kBold, place));
    }
    return std::string(indent, ' ') + text + "\n";
  }

  [[nodiscard]] bool isInAttributes(const Diagnostic& diagnostic) const {
    return diagnostic.place.line > 0 && diagnostic.place.column > 0 && diagnostic.place.file == attributesFile_;
  }

  // The line, or as much of it around the place as a screen holds, with carets below the place.
  [[nodiscard]] std::string excerpt(const Diagnostic& diagnostic) const {
    if (!isInAttributes(diagnostic)) {
      return {};
    }
    constexpr std::size_t kBefore = 30;
    constexpr std::size_t kShown = 68;
    std::u32string line = decodeUtf8(lineOf(diagnostic.place.line));
    const auto column = static_cast<std::size_t>(diagnostic.place.column - 1);
    const std::size_t start = line.size() > kShown && column > kBefore ? column - kBefore : 0;
    const std::string shown = printableLine(encodeUtf8(line.substr(std::min(start, line.size()), kShown)));
    const int before = displayWidth(printableLine(encodeUtf8(line.substr(start, column - start))));
    const int room = displayWidth(shown) - before;
    const int wanted = displayWidth(printableLine(encodeUtf8(
        line.substr(std::min(column, line.size()), static_cast<std::size_t>(diagnostic.place.length)))));
    const std::string number = std::to_string(diagnostic.place.line);
    return std::string(std::max<std::size_t>(6, number.size() + 1) - number.size() - 1, ' ') + number + " | " +
           shown + "\n" + std::string(6, ' ') + "| " +
           std::string(static_cast<std::size_t>(std::max(0, before)), ' ') +
           coloured(kGreen, std::string(static_cast<std::size_t>(std::max(1, std::min(wanted, room))), '^')) +
           "\n";
  }

  [[nodiscard]] std::string_view lineOf(int number) const {
    std::string_view rest = attributes_.bytes();
    for (int line = 1; line < number; ++line) {
      rest.remove_prefix(std::min(rest.find('\n'), rest.size() - 1) + 1);
    }
    return rest.substr(0, rest.find_first_of("\r\n"));
  }

  // The corrected line, or what to do in general.
  [[nodiscard]] std::string remedy(const Diagnostic& diagnostic) const {
    std::string text = _(diagnostic.kind->remedy);
    // Of a Mode that does not fit, one of several that do is no advice.
    if (diagnostic.correction && diagnostic.name() != "mode-unfit" && attributes_.isFilePresent()) {
      const std::string bytes(attributes_.bytes());
      const bool isOneLine = diagnostic.correction->end - diagnostic.correction->begin < bytes.size();
      const std::string after = corrected(bytes, *diagnostic.correction);
      const std::size_t begin =
          diagnostic.correction->begin == 0 ? 0 : after.rfind('\n', diagnostic.correction->begin - 1) + 1;
      std::string line = after.substr(begin, after.find_first_of("\r\n", begin) - begin);
      if (isOneLine && !line.empty() && isValidUtf8(line)) {
        text = format(_("Write: {0}"), {printableLine(line)});
      }
    }
    std::string lines;
    for (const std::string& line :
         style_.columns > 0 ? wrapText(text, style_.columns - 10) : std::vector<std::string>{text}) {
      lines += (lines.empty() ? "      = " : "        ") + line + "\n";
    }
    return lines;
  }

  const AttributesReading& attributes_;
  const std::string attributesFile_;
  const ReportStyle& style_;
};

}  // namespace

std::string diagnosticLine(const Diagnostic& diagnostic) {
  return diagnosticLineBy(_("{0}: {1}: {2} [{3}]"), diagnostic);
}

std::string diagnosticsText(const CheckResult& result, const ReportStyle& style) {
  const Diagnostics& diagnostics = result.diagnostics;
  if (diagnostics.all().empty() && diagnostics.more().empty()) {
    return std::string(_("No problems found.")) + "\n";
  }
  std::string text = std::string(_("Diagnostics")) + "\n";
  const DiagnosticPrinter printer(result, style);
  for (const Diagnostic& diagnostic : diagnostics.all()) {
    text += printer.text(diagnostic, DiagnosticPrinter::kIndent);
  }
  for (const auto& [name, count] : diagnostics.more()) {
    text += "  " + format(_("and {0} more of {1}"), {std::to_string(count), name}) + "\n";
  }
  return text + "\n" +
         format(_("{0}, {1}, {2}"),
                {plural("{0} error", "{0} errors", diagnostics.count(Severity::error)),
                 plural("{0} warning", "{0} warnings", diagnostics.count(Severity::warning)),
                 plural("{0} note", "{0} notes", diagnostics.count(Severity::note))}) +
         "\n" + format(_("For an explanation: {0}"), {"tavinstall check --explain NAME"}) + "\n";
}

}  // namespace tavenhall

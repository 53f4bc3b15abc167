#include "host/check/diagnostic_table.h"

#include "host/base/display_text.h"
#include "host/base/text.h"

namespace tavenhall {

namespace {

constexpr int kDocumentColumns = 118;
constexpr int kScreenColumns = 79;

std::string linesOfText(const std::string& text, int columns) {
  std::string lines;
  for (const std::string& line : wrapText(text, columns)) {
    lines += line + "\n";
  }
  return lines;
}

std::string indentedLines(std::string_view text) {
  std::string lines = "    ";
  for (const char character : text) {
    lines += character;
    lines += character == '\n' ? "    " : "";
  }
  return lines + "\n";
}

std::string exampleText(const DiagnosticKind& kind) {
  if (kind.right.empty()) {
    return {};
  }
  return "\nWrong:\n\n" + indentedLines(kind.wrong) + "\nRight:\n\n" + indentedLines(kind.right);
}

}  // namespace

const char* severityWord(Severity severity) {
  switch (severity) {
    case Severity::note: return N_("note");
    case Severity::warning: return N_("warning");
    case Severity::error: break;
  }
  return N_("error");
}

std::vector<DiagnosticTopic> diagnosticTopics() {
  std::vector<DiagnosticTopic> topics = attributesTopics();
  for (const DiagnosticTopic& topic : setTopics()) {
    topics.push_back(topic);
  }
  return topics;
}

std::vector<DiagnosticKind> diagnosticKinds() {
  std::vector<DiagnosticKind> kinds;
  for (const DiagnosticTopic& topic : diagnosticTopics()) {
    kinds.insert(kinds.end(), topic.kinds.begin(), topic.kinds.end());
  }
  return kinds;
}

const DiagnosticKind* findDiagnosticKind(std::string_view name) {
  for (const DiagnosticTopic& topic : diagnosticTopics()) {
    for (const DiagnosticKind& kind : topic.kinds) {
      if (kind.name == name) {
        return &kind;
      }
    }
  }
  return nullptr;
}

std::string explanationText(const DiagnosticKind& kind) {
  return std::string(kind.name) + " (" + severityWord(kind.severity) + ")\n\n" +
         linesOfText(std::string(kind.explanation), kScreenColumns) + "\n" +
         linesOfText(std::string("What to do: ") + kind.remedy, kScreenColumns) +
         (kind.isFixable ? "`tavinstall check --fix` does it where the right value is known.\n" : "") +
         exampleText(kind);
}

std::string diagnosticsDocument() {
  std::string text = "# Diagnostics of `tavinstall check`\n\n";
  text += linesOfText(
      "A diagnostic has a name, a severity, a place, and the consequence for the user. An **error** means that "
      "the user "
      "does not get what the set should install. A **warning** means that the installation succeeds with an "
      "unexpected "
      "result. A **note** is information. What follows from another diagnostic is shown below that one, and is "
      "not "
      "counted; a cause is as severe as its worst consequence. `tavinstall check --explain NAME` prints what "
      "is said "
      "here. `--fix` also corrects what differs in letter case alone. Made from the program's own table.",
      kDocumentColumns);
  for (const DiagnosticTopic& topic : diagnosticTopics()) {
    text += "\n## " + std::string(topic.title) + "\n";
    if (!topic.text.empty()) {
      text += "\n" + linesOfText(std::string(topic.text), kDocumentColumns);
    }
    for (const DiagnosticKind& kind : topic.kinds) {
      const std::string name(kind.name);
      text +=
          "\n<a id=\"" + name + "\"></a>\n### " + name + "\n\n" +
          linesOfText("**" + std::string(severityWord(kind.severity)) + "**: " + std::string(kind.explanation),
                      kDocumentColumns) +
          "\n" +
          linesOfText("What to do: " + std::string(kind.remedy) +
                          (kind.isFixable ? " `--fix` does it where the right value is known." : ""),
                      kDocumentColumns) +
          exampleText(kind);
    }
  }
  return text;
}

}  // namespace tavenhall

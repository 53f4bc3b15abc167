#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

// Every kind of diagnostic there is. Each has a stable name, which programs and people may rely on, and an
// anchor of that name in docs/diagnostics.md, which is made from this table.
namespace tavenhall {

enum class Severity {
  note,     // good to know
  warning,  // the install goes through, and somebody will wonder
  error,    // the user of the installer does not get what the set is for
};

// In English, as programs know it.
[[nodiscard]] const char* severityWord(Severity severity);

struct DiagnosticKind {
  std::string_view name;
  Severity severity;
  bool isFixable;                // `check --fix` corrects it where the correction is known
  const char* remedy;            // a sentence, to be translated
  std::string_view explanation;  // English, with Markdown's backquotes
  std::string_view wrong;        // an example, in lines; empty: none
  std::string_view right;
};

struct DiagnosticTopic {
  std::string_view title;
  std::string_view text;  // of all its kinds; may be empty
  std::span<const DiagnosticKind> kinds;
};

// In the order of the document.
[[nodiscard]] std::vector<DiagnosticTopic> attributesTopics();
[[nodiscard]] std::vector<DiagnosticTopic> setTopics();
[[nodiscard]] std::vector<DiagnosticTopic> diagnosticTopics();  // both

[[nodiscard]] std::vector<DiagnosticKind> diagnosticKinds();

// The kind of that name, or null.
[[nodiscard]] const DiagnosticKind* findDiagnosticKind(std::string_view name);

// What `check --explain` prints, and docs/diagnostics.md. In English.
[[nodiscard]] std::string explanationText(const DiagnosticKind& kind);
[[nodiscard]] std::string diagnosticsDocument();

}  // namespace tavenhall

#pragma once

#include "host/base/exit_status.h"
#include "host/set/attributes_reading.h"

#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// What a check has to say of a set. Each kind of diagnostic has a stable name, which programs and people may
// rely on, and an anchor of that name in docs/attributes.md.
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
};

// Every kind there is.
[[nodiscard]] std::span<const DiagnosticKind> diagnosticKinds();

struct Diagnostic {
  std::string_view name;
  Severity severity = Severity::note;
  Place place;
  std::string sentence;  // what the user of the installer would see, in the language that was spoken

  [[nodiscard]] std::string reference() const;  // "docs/attributes.md#<name>"
};

class Diagnostics {
 public:
  // `name` is that of a kind. Of one kind only so many are kept; how many more there are is counted.
  void add(std::string_view name, Place place, std::string sentence);

  [[nodiscard]] const std::vector<Diagnostic>& all() const { return diagnostics_; }

  // How many were not kept, by kind.
  [[nodiscard]] const std::map<std::string_view, int>& more() const { return more_; }

  [[nodiscard]] int count(Severity severity) const;  // the ones not kept, too

  // How a command ends that has these to say.
  [[nodiscard]] ExitStatus exitStatus() const;

  // By file and line, as a reader goes through them; those of one place stay in their order.
  void sort();

 private:
  std::vector<Diagnostic> diagnostics_;
  std::map<std::string_view, int> kept_;
  std::map<std::string_view, int> more_;
};

}  // namespace tavenhall

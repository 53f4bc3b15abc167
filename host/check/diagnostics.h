#pragma once

#include "host/base/exit_status.h"
#include "host/check/diagnostic_table.h"
#include "host/set/attributes_edit.h"
#include "host/set/attributes_reading.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavenhall {

struct Diagnostic {
  const DiagnosticKind* kind = nullptr;
  Severity severity = Severity::note;  // the kind's, or that of its worst consequence
  Place place;
  std::string sentence;  // what the user of the installer would see, in the language that was spoken

  // What to write in the attributes file instead, where that is known.
  std::optional<AttributesCorrection> correction;

  std::vector<Diagnostic> consequences;  // that would not be there without this one

  [[nodiscard]] std::string_view name() const { return kind->name; }
  [[nodiscard]] std::string reference() const;               // "docs/diagnostics.md#<name>"
  [[nodiscard]] bool isSame(const Diagnostic& other) const;  // by name and place
};

// What a check has to say of a set.
class Diagnostics {
 public:
  // `name` is that of a kind. Of one kind only so many are kept; how many more there are is counted.
  void add(std::string_view name, Place place, std::string sentence,
           std::optional<AttributesCorrection> correction = {});

  [[nodiscard]] const std::vector<Diagnostic>& all() const { return diagnostics_; }

  // How many were not kept, by kind.
  [[nodiscard]] const std::map<std::string_view, int>& more() const { return more_; }

  [[nodiscard]] int count(Severity severity) const;  // the ones not kept, too; without consequences

  // How a command ends that has these to say.
  [[nodiscard]] ExitStatus exitStatus() const;

  // By file and line, as a reader goes through them; those of one place stay in their order.
  void sort();

  // Moves the diagnostics that satisfy the condition below number `cause` of all().
  void moveBelow(std::size_t cause, const std::function<bool(const Diagnostic&)>& isConsequence);

  // Keeps those that satisfy the condition, with their consequences.
  void keepOnly(const std::function<bool(std::string_view name)>& isKept);

 private:
  std::vector<Diagnostic> diagnostics_;
  std::map<std::string_view, int> kept_;
  std::map<std::string_view, int> more_;
};

}  // namespace tavenhall

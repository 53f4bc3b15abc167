#pragma once

#include "host/base/exit_status.h"
#include "host/set/attributes_reading.h"

#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// What a check has to say of a set. Each kind of remark has a stable name, which programs and people may
// rely on, and an anchor of that name in docs/attributes.md.
namespace tavenhall {

enum class Severity {
  note,     // good to know
  warning,  // the install goes through, and somebody will wonder
  error,    // the user of the installer does not get what the set is for
};

// In English, as programs know it.
[[nodiscard]] const char* severityWord(Severity severity);

struct RemarkKind {
  std::string_view name;
  Severity severity;
};

// Every kind there is.
[[nodiscard]] std::span<const RemarkKind> remarkKinds();

struct Remark {
  std::string_view name;
  Severity severity = Severity::note;
  Place place;
  std::string sentence;  // what the user of the installer would see, in the language that was spoken

  [[nodiscard]] std::string reference() const;  // "docs/attributes.md#<name>"
};

class Remarks {
 public:
  // `name` is that of a kind. Of one kind only so many are kept; how many more there are is counted.
  void add(std::string_view name, Place place, std::string sentence);

  [[nodiscard]] const std::vector<Remark>& all() const { return remarks_; }

  // How many were not kept, by kind.
  [[nodiscard]] const std::map<std::string_view, int>& more() const { return more_; }

  [[nodiscard]] int count(Severity severity) const;  // the ones not kept, too

  // How a command ends that has these to say.
  [[nodiscard]] ExitStatus exitStatus() const;

  // By file and line, as a reader goes through them; those of one place stay in their order.
  void sort();

 private:
  std::vector<Remark> remarks_;
  std::map<std::string_view, int> kept_;
  std::map<std::string_view, int> more_;
};

}  // namespace tavenhall

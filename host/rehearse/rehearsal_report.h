#pragma once

#include "host/rehearse/findings.h"

#include <nlohmann/json_fwd.hpp>
#include <string>

// The report of a rehearsal; docs/rehearsal.md describes each field.
namespace tavenhall {

// The report in the user's language, with a newline at the end. Long lists are shortened.
[[nodiscard]] std::string reportText(const RehearsalFindings& findings, const Verdict& verdict);

// The whole report in English. Call it while there is one thread.
[[nodiscard]] nlohmann::ordered_json reportJson(const RehearsalFindings& findings);

}  // namespace tavenhall

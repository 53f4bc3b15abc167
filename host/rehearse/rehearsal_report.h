#pragma once

#include "host/rehearse/findings.h"
#include "host/rehearse/verdict.h"

#include <nlohmann/json_fwd.hpp>
#include <string>

// What a rehearsal says at its end; docs/rehearsal.md has each field.
namespace tavenhall {

// For people, in their language: several lines, newline at the end. Of long lists it has the first ones.
[[nodiscard]] std::string reportText(const RehearsalFindings& findings, const Verdict& verdict);

// For programs, in English: everything. While there is one thread.
[[nodiscard]] nlohmann::ordered_json reportJson(const RehearsalFindings& findings);

}  // namespace tavenhall

#pragma once

#include "host/log/logged_run.h"

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace tavenhall {

// One run as a person at support reads it: several lines, newline at the end. `number` counts from 1.
// `mayStillRun`: the log's last record is so young that the run may only be waiting.
[[nodiscard]] std::string reportText(const LoggedRun& run, int number, bool mayStillRun = false);

// The result of one volume, as a line without a newline.
[[nodiscard]] std::string volumeText(const RunVolume& volume);

// The failure in the user's language and without a full stop: "cannot write /a/b: No space left on device".
// The record's own text if the failure is of an unknown kind.
[[nodiscard]] std::string failureText(const RunFailure& failure);

// A run as one JSON object.
[[nodiscard]] nlohmann::ordered_json reportJson(const LoggedRun& run, int number, bool mayStillRun = false);

}  // namespace tavenhall

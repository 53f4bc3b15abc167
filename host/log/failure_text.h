#pragma once

#include "host/log/run_story.h"

#include <string>

namespace tavenhall {

// What failed, in a sentence without its end, in the user's language: "cannot write /a/b: No space left on
// device". The record's own words where nothing better is known.
[[nodiscard]] std::string failureText(const RunFailure& failure);

}  // namespace tavenhall

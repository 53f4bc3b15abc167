#pragma once

#include "host/rehearse/rehearsal.h"

#include <filesystem>
#include <string>
#include <vector>

namespace tavenhall {

// Rehearses the set once in each of the languages (all of them, if none is named), shows what users see of it
// in an HTML file, and prints how each rehearsal ended. Returns the worst status. Throws UsageError.
[[nodiscard]] ExitStatus rehearseStoryboard(const RehearsalRequest& request, const std::filesystem::path& file,
                                            std::vector<std::string> languages);

}  // namespace tavenhall

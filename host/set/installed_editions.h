#pragma once

#include "host/set/install_plan.h"

#include <string>
#include <vector>

// Which libraries an update carries, and in which edition a user has them: what the page looks at, in the
// order in which the system lists it. Only reads. Any thread.
namespace tavenhall {

// The libraries in an update's data folder; by default at most as many as the page handles.
[[nodiscard]] std::vector<PlannedLibrary> listLibraries(const std::string& dataFolder,
                                                        std::size_t limit = kLibrarySlots);

// Sets the edition of each library from what lies in the central folder. With an empty path nothing is
// known of any user: every library stays Full and undetected.
void detectInstalledEditions(const std::string& centralFolder, std::vector<PlannedLibrary>& libraries);

// The names in a folder without the hidden ones, in the order of the listing; empty where it cannot be
// opened.
[[nodiscard]] std::vector<std::string> listNames(const std::string& folder);

}  // namespace tavenhall

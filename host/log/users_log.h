#pragma once

#include <string>

namespace tavenhall {

// Where the page writes the installation log of the user of this process, whether or not there is one.
[[nodiscard]] std::string usersInstallationLog();

}  // namespace tavenhall

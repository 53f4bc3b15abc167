#pragma once

#include <string>

namespace tavenhall {

// The current user's home folder: HOME, or what the system's list of users has. False, with `home` untouched,
// when there is none. Any thread.
[[nodiscard]] bool homeFolder(std::string& home) noexcept;

}  // namespace tavenhall

#pragma once

#include <string>
#include <string_view>

namespace tavenhall {

// The attributes file's bytes with that value for the key: in the line in which the page finds it, whose ending
// stays, or in a new last line. Pure. Any thread.
[[nodiscard]] std::string withText(const std::string& bytes, std::string_view key, std::string_view value);
[[nodiscard]] std::string withNumber(const std::string& bytes, std::string_view key, long long value);

}  // namespace tavenhall

#pragma once

#include <string>
#include <string_view>

namespace tavenhall {

// Fills in a text that comes from a file and serves as a format. The first "%s" receives `argument`
// ("(null)" when it is null), "%%" becomes a percent sign, and everything else stands as it is, a second
// "%s" and a "%n" included: such a text never reaches printf. Any thread.
[[nodiscard]] std::string expandFormat(std::string_view format, const char* argument) noexcept;

}  // namespace tavenhall

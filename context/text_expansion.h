#pragma once

#include <string>
#include <string_view>

namespace tavenhall {

// Formats a text from a file that serves as a format. Replaces the first "%s" by `argument` ("(null)" if it is
// null) and "%%" by a percent sign. Everything else is unchanged, including a second "%s" and a "%n": such a
// text never reaches printf. Any thread.
[[nodiscard]] std::string expandFormat(std::string_view format, const char* argument) noexcept;

}  // namespace tavenhall

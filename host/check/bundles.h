#pragma once

#include <string_view>

namespace tavenhall {

// Does the path lie inside a bundle (a plug-in, an application, a framework)? The bundle itself does not.
[[nodiscard]] bool isInBundle(std::string_view path) noexcept;

}  // namespace tavenhall

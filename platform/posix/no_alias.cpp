#include "platform/system.h"

namespace tavenhall {

// Finder's aliases are a thing of macOS alone.
bool resolveAlias(const char* /*path*/, std::string& /*target*/) noexcept { return false; }

}  // namespace tavenhall

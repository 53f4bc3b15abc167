#pragma once

#include <string>

namespace tavenhall::test {

// From now on the file at `path` is an alias of `target`, which need not be there. An empty target: an alias
// that cannot be resolved.
void layAlias(const std::string& path, const std::string& target);

}  // namespace tavenhall::test

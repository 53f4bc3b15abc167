#pragma once

#include "host/set/source_tree.h"

#include <filesystem>
#include <optional>
#include <string>

namespace tavenhall {

// Everything in a disc image, SquashFS or ISO 9660 (with Rock Ridge or Joliet), by its extension; none if it
// cannot be listed. Any thread.
[[nodiscard]] std::optional<SourceTree> treeOfImage(const std::filesystem::path& image);

// Parses the output of `unsquashfs -lln`.
[[nodiscard]] SourceTree treeOfSquashfsListing(const std::string& listing);

}  // namespace tavenhall

#pragma once

#include <filesystem>
#include <string>

// Where the files are that belong to this program, in a build folder or installed: relative to the program
// itself, so that an installed tree can be moved. Any thread.
namespace tavenhall {

// The bundle of `product`, or of the default product when it is empty. Throws UsageError, naming where it
// looked.
[[nodiscard]] std::filesystem::path findBundle(const std::string& product);

// The folder of the translations, whether or not it exists.
[[nodiscard]] std::filesystem::path findCatalogs();

// The folder of the tools that stand in for missing ones; empty when it does not exist.
[[nodiscard]] std::filesystem::path findStandIns();

}  // namespace tavenhall

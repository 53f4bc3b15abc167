#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

// What support needs of an installation, in one file.
namespace tavenhall {

// A file of the bundle: a text, or as many bytes of a file as there are when it is opened.
struct BundleFile {
  std::string name;  // in the bundle
  std::string text;
  std::filesystem::path source;  // empty: the text
};

// The bytes of the file; -1 if it cannot be read.
[[nodiscard]] std::int64_t sizeOf(const BundleFile& file);

// Writes them as a new ZIP archive that nobody else can read. Throws UsageError, and leaves no archive, if one
// of them cannot be read, if the archive cannot be written, or if there is a file in its place.
void writeBundle(const std::filesystem::path& archive, const std::vector<BundleFile>& files);

}  // namespace tavenhall

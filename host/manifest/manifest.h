#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

// The list of every file that a set installs, with its digest: a text that `sha256sum --check` reads in the
// folder that holds the data folders. Lines that begin with "#" are comments for that program, and say which
// product, volumes and sizes these are.
namespace tavenhall {

inline constexpr const char* kManifestName = "Manifest.sha256";  // the page installs no such file

struct ManifestVolume {
  std::int32_t number = 0;  // from 1; 0 for the folders beside the package of an update
  std::string name;         // of its disc; empty where it comes from beside the package
  bool isFullOnly = false;  // not part of a Lite edition
};

struct ManifestFile {
  std::string path;    // "TANVO/Tessaphon/a.db"; absolute below /Library and /Applications
  std::string digest;  // SHA-256, 64 lower-case hexadecimal digits
  std::int64_t size = 0;
  std::int32_t volume = 0;
};

struct Manifest {
  std::string product;
  std::vector<ManifestVolume> volumes;
  std::vector<ManifestFile> files;

  // The volume of that number; null if the manifest does not list it.
  [[nodiscard]] const ManifestVolume* volume(std::int32_t number) const;
};

[[nodiscard]] std::string manifestText(const Manifest& manifest);

// Throws UsageError, with the line, where it cannot be read, is no manifest, or names a file outside of the
// folder.
[[nodiscard]] Manifest readManifest(const std::filesystem::path& file);

// Writes it in place of an older one. Throws UsageError.
void writeManifest(const std::filesystem::path& file, const Manifest& manifest);

}  // namespace tavenhall

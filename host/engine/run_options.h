#pragma once

#include <filesystem>
#include <string>

namespace tavenhall {

enum class Face { json, plain, quiet, terminal };

// What `tavinstall run` was asked to do.
struct RunOptions {
  std::filesystem::path package;  // empty: the pre-install step is left out
  std::string installType;        // "Lite", "Full", or empty: none is written
  std::filesystem::path bundle;   // the plug-in's folder
  Face face = Face::plain;
  std::filesystem::path summary;  // empty: none is written
};

}  // namespace tavenhall

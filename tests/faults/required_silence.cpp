#include "tests/faults/required_silence.h"

#include <algorithm>
#include <filesystem>
#include <string_view>

namespace tavenhall::test {

namespace {

bool isBelow(std::string_view path, std::string_view folder) {
  return path == folder || (path.starts_with(folder) && path[folder.size()] == '/');
}

bool isSourceFolder(const SweepScenario& scenario, const std::string& path) {
  return std::filesystem::is_directory(path) &&
         std::ranges::any_of(scenario.sources, [&path](const std::string& source) {
           return isBelow(path, source) || isBelow(source, path);
         });
}

}  // namespace

const char* requiredSilence(const SweepScenario& scenario, const FileCall& call) {
  const std::string path = std::filesystem::path(call.path).lexically_normal();
  if (path.ends_with("/.InstallationAttributes.dat") || path == "/tmp/TavInstallLoc" ||
      path == "/tmp/TavInstallType") {
    return "what cannot be read in the attributes file, or in one of the files in /tmp, is taken for missing";
  }
  if (call.kind == CallKind::startCommand) {
    return "the result of the command that copies a signature is not looked at";
  }
  if (path.ends_with("/Glassophone.db")) {
    return "an edition whose marker cannot be looked at is taken for Lite";
  }
  const bool isListing =
      call.kind == CallKind::open || call.kind == CallKind::list || call.kind == CallKind::stat;
  if (isListing && isSourceFolder(scenario, path)) {
    return call.kind == CallKind::stat ? "a folder of an update that cannot be looked at is taken for missing"
                                       : "a folder of the source that cannot be listed counts as copied";
  }
  return nullptr;
}

}  // namespace tavenhall::test

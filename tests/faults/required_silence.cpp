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

bool covers(const Silence& silence, std::string_view source) {
  return silence.scope.empty() || isBelow(source, silence.scope) || source.ends_with(silence.scope);
}

std::optional<Silence> requiredSilence(const SweepScenario& scenario, const FileCall& call) {
  const std::string path = std::filesystem::path(call.path).lexically_normal();
  if (path.ends_with("/.InstallationAttributes.dat") || path == "/tmp/TavInstallLoc" ||
      path == "/tmp/TavInstallType") {
    return Silence{
        "what cannot be read in the attributes file, or in one of the files in /tmp, is taken for missing", ""};
  }
  if (call.kind == CallKind::startCommand) {
    return Silence{"the result of the command that copies a signature is not looked at", "/codesign.dsig"};
  }
  if (path.ends_with("/Glassophone.db")) {
    return Silence{"an edition whose marker cannot be looked at is taken for Lite", ""};
  }
  if (!isSourceFolder(scenario, path)) {
    return std::nullopt;
  }
  if (call.kind == CallKind::open || call.kind == CallKind::list) {
    return Silence{"a folder of the source that cannot be listed counts as copied", path};
  }
  if (call.kind == CallKind::stat) {
    return Silence{"a folder of the source that cannot be looked at is taken for missing", path};
  }
  return std::nullopt;
}

}  // namespace tavenhall::test

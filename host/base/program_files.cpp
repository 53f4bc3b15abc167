#include "host/base/program_files.h"

#include "host/base/build_facts.h"
#include "host/base/exit_status.h"
#include "host/base/text.h"
#include "platform/host_system.h"

#include <vector>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

// Relative to the program's own folder: installed, and in a build folder.
constexpr const char* kBundleFolders[] = {kInstalledBundles, ".."};
constexpr const char* kStandInFolders[] = {kInstalledStandIns, "../libexec/tavinstall"};

fs::path programFolder() { return programPath().parent_path(); }

}  // namespace

fs::path findBundle(const std::string& product) {
  const std::string suffix = product.empty() || product == kDefaultProduct ? "" : "-" + product;
  const fs::path name = "InstallDataPane" + suffix + ".bundle";
  std::vector<std::string> tried;
  for (const char* folder : kBundleFolders) {
    fs::path bundle = (programFolder() / folder / name).lexically_normal();
    std::error_code error;
    if (fs::is_directory(bundle, error)) {
      return bundle;
    }
    tried.push_back(bundle.string());
  }
  throw UsageError(format(_("no plug-in at {0} or {1}; --bundle names another"), {tried[0], tried[1]}));
}

fs::path findCatalogs() {
  fs::path catalogs = (programFolder() / kInstalledCatalogs).lexically_normal();
  std::error_code error;
  return fs::is_directory(catalogs, error) ? catalogs
                                           : (programFolder() / "../share/locale").lexically_normal();
}

fs::path findStandIns() {
  for (const char* folder : kStandInFolders) {
    fs::path standIns = (programFolder() / folder).lexically_normal();
    std::error_code error;
    if (fs::is_directory(standIns, error)) {
      return standIns;
    }
  }
  return {};
}

}  // namespace tavenhall

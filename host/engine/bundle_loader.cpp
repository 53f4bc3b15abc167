#include "host/engine/bundle_loader.h"

#include "host/base/build_facts.h"
#include "host/base/errors.h"
#include "host/base/text.h"
#include "platform/host_system.h"

#include <cstdlib>
#include <dlfcn.h>
#include <vector>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr const char* kBundleProgram = "Contents/MacOS/InstallDataPane";

// Folders relative to the program's own: installed, and in a build folder.
constexpr const char* kBundleFolders[] = {kInstalledBundles, ".."};
constexpr const char* kStandInFolders[] = {kInstalledStandIns, "../libexec/tavinstall"};

fs::path programFolder() { return programPath().parent_path(); }

}  // namespace

fs::path findBundle(const std::string& product) {
  const std::string ending = product.empty() || product == kDefaultProduct ? "" : "-" + product;
  const fs::path name = "InstallDataPane" + ending + ".bundle";
  std::vector<std::string> looked;
  for (const char* folder : kBundleFolders) {
    fs::path bundle = (programFolder() / folder / name).lexically_normal();
    std::error_code error;
    if (fs::is_directory(bundle, error)) {
      return bundle;
    }
    looked.push_back(bundle.string());
  }
  throw UsageError(format(_("no plug-in at {0} or {1}; --bundle names another"), {looked[0], looked[1]}));
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

void addStandInsToPath() {
  const std::string standIns = findStandIns().string();
  if (standIns.empty()) {
    return;
  }
  const char* path = std::getenv("PATH");
  setenv("PATH", ((path != nullptr ? path : "/usr/local/bin:/usr/bin:/bin") + (":" + standIns)).c_str(), 1);
}

PageFactory loadBundle(const fs::path& bundle) {
  const fs::path program = fs::absolute(bundle) / kBundleProgram;
  std::error_code error;
  if (!fs::exists(program, error)) {
    throw UsageError(format(_("cannot load {0}: it has no {1}; --bundle takes a plug-in's folder"),
                            {bundle.string(), kBundleProgram}));
  }
  requireNoSpecialFile(program);
  void* handle = dlopen(program.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    throw UsageError(format(_("cannot load {0}: {1}"), {bundle.string(), dlerror()}));
  }
  auto factory = reinterpret_cast<PageFactory>(dlsym(handle, kPageFactoryName));
  if (factory == nullptr) {
    throw UsageError(
        format(_("cannot load {0}: it makes no page ({1} is missing)"), {bundle.string(), kPageFactoryName}));
  }
  return factory;
}

}  // namespace tavenhall

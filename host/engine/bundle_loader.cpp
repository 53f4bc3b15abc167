#include "host/engine/bundle_loader.h"

#include "host/base/exit_status.h"
#include "host/base/files.h"
#include "host/base/text.h"

#include <dlfcn.h>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr const char* kBundleProgram = "Contents/MacOS/InstallDataPane";

}  // namespace

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

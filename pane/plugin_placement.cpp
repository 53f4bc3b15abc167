#include "pane/plugin_placement.h"

#include "context/installation_log.h"
#include "context/placement_rules.h"
#include "pane/install_data_pane.h"
#include "platform/system.h"

#include <cstdio>
#include <unistd.h>

namespace tavenhall {

namespace {

constexpr std::size_t kPlacementCommandSize = 2048;
constexpr std::size_t kProbePathSize = 1024;
constexpr std::int16_t kEverybody = 0777;

using OncePerProduct = std::array<std::int32_t, pluginNames.size()>;

// Set for each kind and product at its first item, and never cleared: items inside a bundle match like the
// bundle itself, and must not delete it again. The copy engine's thread.
OncePerProduct deletedAAXwrapper{};
OncePerProduct deletedStandaloneApp{};
OncePerProduct deletedAUplugin{};
OncePerProduct deletedVST3plugin{};
OncePerProduct deletedVSTplugin{};

OncePerProduct& flagsOf(PluginKind kind) {
  switch (kind) {
    case PluginKind::aaxWrapper: return deletedAAXwrapper;
    case PluginKind::standaloneApp: return deletedStandaloneApp;
    case PluginKind::auPlugin: return deletedAUplugin;
    case PluginKind::vst3Plugin: return deletedVST3plugin;
    case PluginKind::vstPlugin: break;
  }
  return deletedVSTplugin;
}

void removeExisting(const char* dest) {
  RemovalError error;
  if (isRemovable(dest)) {
    error = removeItem(dest);
    addEventToInstallationLog(
        error.failed ? "Unable to delete existing p/w/a at %s" : "Successfully deleted existing p/w/a at %s",
        dest);
  }
  addEventToInstallationLog(" ...  %s %s", error.localizedDescription.c_str(),
                            error.localizedFailureReason.c_str());
}

// Only logs. Required: right after a removal both test a path that is gone, and log a failure.
void probeDestination(const char* dest) {
  addEventToInstallationLog(statFileSystem(dest) ? " ...  statfs call on p/w/a  successful."
                                                 : " ...  statfs call on p/w/a failed.");
  BoundedText<kProbePathSize> probe;
  probe.assign(dest);
  probe.append("/deleteMe.txt");
  if (std::FILE* file = std::fopen(probe.c_str(), "w")) {
    std::fclose(file);
    unlink(probe.c_str());
    addEventToInstallationLog(" ... successfully wrote dummy file into p/w/a folder.");
  } else {
    addEventToInstallationLog(" ... failed to write dummy file into p/w/a folder.");
  }
}

}  // namespace

void InstallDataPane::placePlugin(const char* source, const char* dest) const noexcept {
  if (gInstallMode != kModeProductUpdater) {
    return;
  }
  const auto kind = pluginKindOf(dest);
  const auto product = kind ? productIn(source) : std::nullopt;
  if (!product) {
    return;
  }
  std::int32_t& isDone = flagsOf(*kind)[*product];
  if (isDone != 0) {
    return;
  }
  isDone = 1;

  const bool isPlugin = isPluginDestination(dest);
  if (!isPlugin && !isApplicationDestination(dest)) {
    return;
  }
  if (isPlugin) {
    addEventToInstallationLog("Configuring VST and Comp");
    setPermissionTo_777("/Library/Audio/Plug-Ins/VST", 0);
    setPermissionTo_777("/Library/Audio/Plug-Ins/VST3", 0);
    setPermissionTo_777("/Library/Audio/Plug-Ins/Components", 0);
  }
  addEventToInstallationLog("Deleting pre-existing plugin/wrapper/application at %s", dest);
  removeExisting(dest);
  probeDestination(dest);
}

// Required for every call, so each item inside an application gets its own recursive command.
void InstallDataPane::openApplicationPermissions(const char* dest) const noexcept {
  if (gInstallMode == kModeProductUpdater && isApplicationDestination(dest)) {
    setPermissionTo_777(dest, 1);
  }
}

void setPermissionTo_777(const char* path, int recursive) noexcept {
  BoundedText<kPlacementCommandSize> command;
  command.format(recursive != 0 ? "sudo chmod -R 777 %s" : "sudo chmod 777 %s", path);
  const int result = runShellCommand(command.c_str());
  addEventToInstallationLog("%s   ... result = %d\n", command.c_str(), result);
  setPosixPermissions(path, kEverybody);
}

}  // namespace tavenhall

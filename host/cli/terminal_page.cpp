#include "host/cli/terminal_page.h"

#include "host/log/users_log.h"
#include "host/set/install_plan.h"
#include "host/ui/run_outcome.h"
#include "platform/installer_pane.h"
#include "platform/strings_file.h"
#include "platform/system.h"

#include <fstream>

namespace tavenhall {

namespace {

std::string packagePath(const RunOptions& options) {
  std::string path = options.package.string();
  if (path.empty()) {
    std::ifstream location(kLocationFile);
    std::getline(location, path);
  }
  return path;
}

Introduction introductionFor(const RunOptions& options) {
  const StringTable strings = loadBundleStrings((options.bundle / "Contents").string());
  PlanRequest request;
  request.package = packagePath(options);
  request.product = {strings.text("PluginName"), strings.text("FolderName")};
  if (std::string support; firstUserSearchPath(SearchPath::applicationSupport, support)) {
    request.dataRoot = support + "/Tavenhall";
  }
  if (!options.installType.empty()) {
    request.installType = options.installType;
  }
  return introduce(planInstall(request), freeBytesAt);
}

}  // namespace

TerminalPage terminalPageFor(const RunOptions& options) {
  TerminalPage page;
  page.introduction = introductionFor(options);
  page.logPath = usersInstallationLog();
  page.logShown = page.logPath;
  page.logStart = logSize(page.logPath);
  return page;
}

}  // namespace tavenhall

#pragma once

#include "host/set/install_plan.h"
#include "host/set/installer_set.h"

#include <filesystem>
#include <string>
#include <vector>

namespace tavenhall {

// Something by which a set leaves its own folder. Who gets the set does not have what it leads to.
struct OutsideReference {
  enum class Kind {
    link,            // an absolute link, or one that leads out of the set or out of its disc
    package,         // the package itself
    attributesFile,  // one folder above the set
    relativePath,    // a value of RelativePath or RelativePath2
  };
  Kind kind = Kind::link;
  std::filesystem::path place;  // the link, the package, or the attributes file
  int line = 0;                 // from 1, in the attributes file; 0: none
  std::string target;
};

// Reads the whole set's folder, hidden names included, but no disc image. In the order of `Kind`; links sorted.
// A folder that cannot be listed is passed over. Any thread.
[[nodiscard]] std::vector<OutsideReference> outsideReferences(const InstallerSet& set, const InstallPlan& plan);

}  // namespace tavenhall

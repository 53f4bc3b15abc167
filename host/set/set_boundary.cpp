#include "host/set/set_boundary.h"

#include "context/install_rules.h"
#include "host/set/source_tree.h"

#include <algorithm>
#include <system_error>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

bool isAtOrBelow(const fs::path& path, const fs::path& folder) {
  return std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first == folder.end();
}

// Follows links. What cannot be followed, as a link to itself, leads nowhere.
bool isWithin(const fs::path& path, const fs::path& folder) {
  std::error_code error;
  const fs::path real = fs::weakly_canonical(path, error);
  return error || isAtOrBelow(real, folder);
}

// A disc is a volume of its own: on it a link to the rest of the set leads nowhere.
fs::path boundaryOf(const InstallerSet& set, const fs::path& entry) {
  for (const Disc& disc : set.discs) {
    if (entry != disc.path && isAtOrBelow(entry, disc.path)) {
      return disc.path;
    }
  }
  return set.folder;
}

void addLinks(const InstallerSet& set, std::vector<OutsideReference>& references) {
  const SourceTree tree = SourceTree::ofFolder(set.folder);
  for (const TreeEntry& entry : tree.entries()) {
    const fs::path path = set.folder / entry.path;
    std::error_code error;
    if (!fs::is_symlink(path, error)) {
      continue;
    }
    const fs::path target = fs::read_symlink(path, error);
    if (target.is_absolute() || !isWithin(path.parent_path() / target, boundaryOf(set, path))) {
      references.push_back({OutsideReference::Kind::link, path, 0, target.string()});
    }
  }
}

// Whether the page takes data from there; where no key says so, only if it finds some.
bool isUsed(const InstallPlan& plan, const std::string& root, bool isNamed) {
  const auto isData = [&root, isNamed](const PlannedVolume& volume) {
    std::error_code error;
    return !volume.isMounted && volume.root == root &&
           (isNamed || fs::exists(volume.primary, error) || fs::exists(volume.alternate, error));
  };
  return std::any_of(plan.passes.begin(), plan.passes.end(), [&isData](const PlannedPass& pass) {
    return std::any_of(pass.volumes.begin(), pass.volumes.end(), isData);
  });
}

void addRelativePaths(const InstallerSet& set, const InstallPlan& plan,
                      std::vector<OutsideReference>& references) {
  for (const char* key : {"RelativePath", "RelativePath2"}) {
    const FoundText found = plan.attributes.findText(key);
    // A missing key has a built-in path, or what the lookup left.
    const char* fallback = found ? nullptr : fallbackText(key);
    const std::string value = fallback != nullptr ? fallback : found.value;
    const std::string root = plan.packageFolder + "/" + value;
    if (isUsed(plan, root, found.key != nullptr) && !isWithin(root, set.folder)) {
      references.push_back(
          {OutsideReference::Kind::relativePath, plan.attributes.path(), found ? found.key->line : 0, value});
    }
  }
}

}  // namespace

std::vector<OutsideReference> outsideReferences(const InstallerSet& set, const InstallPlan& plan) {
  std::vector<OutsideReference> references;
  addLinks(set, references);
  if (!isWithin(set.package, set.folder)) {
    references.push_back({OutsideReference::Kind::package, set.package, 0, set.package.string()});
    return references;  // the rest lies where the package is
  }
  if (plan.attributes.isFilePresent() && !isWithin(plan.attributes.path(), set.folder)) {
    references.push_back(
        {OutsideReference::Kind::attributesFile, plan.attributes.path(), 0, plan.attributes.path().string()});
  }
  addRelativePaths(set, plan, references);
  return references;
}

}  // namespace tavenhall

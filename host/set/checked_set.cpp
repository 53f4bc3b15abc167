#include "host/set/checked_set.h"

#include "host/base/unicode.h"
#include "host/set/disc_image.h"

#include <algorithm>
#include <utility>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr std::int64_t kMillion = 1000000;
constexpr std::int64_t kTolerance = 20;  // a size may be off by one part in so many, and by the rounding

std::int64_t copiedBytes(const SourceTree& tree) {
  std::int64_t bytes = 0;
  for (const TreeEntry& entry : tree.entries()) {
    bytes += entry.isHidden ? 0 : entry.size;
  }
  return bytes;
}

void chooseFolder(CheckedVolume& checked) {
  checked.chosen = checked.hasPrimary     ? checked.folderName
                   : checked.hasAlternate ? "Mac OSX/" + checked.folderName
                                          : std::string();
}

void lookIntoFolder(const fs::path& root, CheckedVolume& checked) {
  std::error_code error;
  checked.isThere = fs::exists(root, error);
  checked.isListed = true;
  checked.top = listNames(root.string());
  checked.hasPrimary = fs::exists(root / checked.folderName, error);
  checked.hasAlternate = fs::exists(root / "Mac OSX" / checked.folderName, error);
  chooseFolder(checked);
  if (!checked.chosen.empty()) {
    checked.folder = root / checked.chosen;
    checked.tree = SourceTree::ofFolder(checked.folder);
  }
}

void lookIntoImage(const fs::path& image, CheckedVolume& checked) {
  checked.isThere = true;
  const std::optional<SourceTree> tree = treeOfImage(image);
  checked.isListed = tree.has_value();
  if (tree) {
    for (const TreeEntry& entry : tree->entries()) {
      if (entry.path.find('/') == std::string::npos) {
        checked.top.push_back(entry.path);
      }
    }
    checked.hasPrimary = tree->exists(checked.folderName);
    checked.hasAlternate = tree->exists("Mac OSX/" + checked.folderName);
    chooseFolder(checked);
    checked.tree = tree->below(checked.chosen);
  }
}

const Disc* discOf(const InstallerSet& set, std::int32_t volumeNumber) {
  for (const Disc& disc : set.discs) {
    if (disc.number == volumeNumber + 1) {
      return &disc;
    }
  }
  return nullptr;
}

bool isInLibraries(const std::string& path, const std::vector<PlannedLibrary>& libraries) {
  return std::any_of(libraries.begin(), libraries.end(), [&path](const PlannedLibrary& library) {
    return path.starts_with(library.folderName + "/");
  });
}

void keepLibrariesOnly(const std::vector<PlannedLibrary>& libraries, CheckedVolume& volume) {
  for (const TreeEntry& entry : volume.tree.entries()) {
    const bool holdsLibraries =
        std::any_of(libraries.begin(), libraries.end(), [&entry](const PlannedLibrary& library) {
          return library.folderName == entry.path || library.folderName.starts_with(entry.path + "/");
        });
    if (!entry.isHidden && entry.path.find('/') == std::string::npos && !holdsLibraries) {
      volume.leftOut.push_back(entry.path);
    }
  }
  volume.tree.keepOnly([&libraries](const TreeEntry& entry) { return isInLibraries(entry.path, libraries); });
}

CheckedVolume lookInto(const CheckedSet& checked, const PlannedPass& pass, const PlannedVolume& planned) {
  CheckedVolume volume;
  volume.volume = planned;
  volume.folderName = pass.folderName;
  volume.destination = pass.destination;
  if (!planned.isMounted) {
    volume.shownRoot = checked.shown(planned.root);
    lookIntoFolder(planned.root, volume);
  } else if (const Disc* disc = discOf(checked.set, planned.number)) {
    volume.shownRoot = checked.shown(disc->path);
    if (disc->isImage) {
      lookIntoImage(disc->path, volume);
    } else {
      lookIntoFolder(disc->path, volume);
    }
  }
  if (planned.librariesOnly) {
    keepLibrariesOnly(checked.whole.editions.libraries, volume);
  }
  return volume;
}

}  // namespace

std::string CheckedVolume::shown(const std::string& path) const {
  const std::string below = path.empty() ? chosen : chosen + "/" + path;
  return shownRoot == "." ? below : shownRoot + "/" + below;
}

std::string CheckedSet::shown(const fs::path& path) const {
  std::error_code error;
  fs::path clean = fs::weakly_canonical(path.parent_path(), error) / path.filename();
  std::string text = (error ? path : clean).lexically_normal().string();
  if (text.size() > 1 && text.ends_with('/')) {
    text.pop_back();
  }
  const std::string start = set.folder.string() + "/";
  return text + "/" == start ? "." : text.starts_with(start) ? text.substr(start.size()) : text;
}

Place CheckedSet::attributesPlace(const AttributesPiece* piece, std::string_view part) const {
  Place place{shown(plan.attributes.path()), piece != nullptr ? piece->line : 0};
  if (!part.empty()) {
    const std::string_view bytes = plan.attributes.bytes();
    const auto at = static_cast<std::size_t>(part.data() - bytes.data());
    const std::size_t start = at == 0 ? 0 : bytes.rfind('\n', at - 1) + 1;  // npos + 1 is 0
    place.column = 1 + static_cast<int>(decodeUtf8(bytes.substr(start, at - start)).size());
    place.length = static_cast<int>(decodeUtf8(part).size());
  }
  return place;
}

RealSizes CheckedSet::realSizes() const {
  RealSizes sizes;
  sizes.whole = 0;
  sizes.component = 0;
  for (const CheckedVolume& volume : volumes) {
    const bool isKnown = volume.isListed || !volume.isThere;
    const std::int64_t bytes = copiedBytes(volume.tree);
    sizes.whole = sizes.whole && isKnown ? std::optional(*sizes.whole + bytes) : std::nullopt;
    if (volume.volume.number == 0) {
      sizes.component = sizes.component && isKnown ? std::optional(*sizes.component + bytes) : std::nullopt;
    }
  }
  for (const CheckedFolder& folder : systemFolders) {
    sizes.systemFolders += copiedBytes(folder.tree);
  }
  return sizes;
}

bool RealSizes::areClose(std::int64_t announced, std::int64_t real) const {
  const std::int64_t most = real + systemFolders;
  return announced >= real - real / kTolerance - kMillion && announced <= most + most / kTolerance + kMillion;
}

CheckedSet openCheckedSet(const CheckRequest& request) {
  return openCheckedSet(openInstallerSet(request.folder), request);
}

CheckedSet openCheckedSet(InstallerSet set, const CheckRequest& request) {
  CheckedSet checked;
  checked.set = std::move(set);
  const std::string product = request.product.empty() ? checked.set.product : request.product;
  checked.isProductAssumed = product.empty();
  checked.product = productNamed(product);
  checked.allowsOutside = request.allowsOutside;

  PlanRequest asked{checked.set.package.string(), checked.product, {}, {}};
  asked.readsChoiceFile = !request.isRehearsal;
  asked.attributes = request.attributes;
  PlanRequest whole = asked;
  whole.detectsEditions = false;
  whole.installType = "Full";
  const std::string installType = request.installType.empty() ? checked.set.installType : request.installType;
  if (!installType.empty()) {
    asked.installType = installType;
  }
  if (!request.installed.empty()) {
    checked.isInstalledKnown = true;
    checked.dataRoot = dataRootIn(request.installed);
    asked.dataRoot = checked.dataRoot;
  }
  checked.plan = planInstall(asked);
  checked.whole = planInstall(whole);

  for (const PlannedPass& pass : checked.whole.passes) {
    for (const PlannedVolume& volume : pass.volumes) {
      checked.volumes.push_back(lookInto(checked, pass, volume));
    }
  }
  for (const PlannedFolder& folder : checked.whole.systemFolders) {
    checked.systemFolders.push_back(
        {folder, checked.shown(folder.source), SourceTree::ofFolder(folder.source)});
  }
  return checked;
}

}  // namespace tavenhall

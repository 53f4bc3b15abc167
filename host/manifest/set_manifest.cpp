#include "host/manifest/set_manifest.h"

#include "context/placement_rules.h"
#include "host/base/exit_status.h"
#include "host/base/text.h"
#include "host/manifest/digests.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <utility>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

// A file, and where it is.
using FoundFiles = std::map<std::string, std::pair<ManifestFile, fs::path>>;

void addTree(FoundFiles& found, const SourceTree& tree, const fs::path& folder, const std::string& destination,
             std::int32_t volume) {
  for (const TreeEntry& entry : tree.entries()) {
    const bool isFile = entry.kind == EntryKind::file || entry.kind == EntryKind::linkToFile;
    if (isFile && !entry.isHidden && !isAttributesFile((folder / entry.path).c_str())) {
      const std::string path = destination + "/" + entry.path;
      found.insert_or_assign(path, std::pair(ManifestFile{path, "", entry.size, volume}, folder / entry.path));
    }
  }
}

// The disc in the set that the volume is; null where it comes from beside the package.
const Disc* discOf(const CheckedSet& set, const CheckedVolume& volume) {
  const std::string name = fs::path(volume.volume.root).filename().string();
  const auto& discs = set.set.discs;
  const auto found = std::find_if(discs.begin(), discs.end(), [&](const Disc& disc) {
    return volume.volume.isMounted && disc.number == volume.volume.number + 1 && disc.volumeName == name;
  });
  return found != discs.end() ? &*found : nullptr;
}

}  // namespace

SetFiles filesOfSet(const CheckedSet& set) {
  FoundFiles found;
  SetFiles files;
  files.manifest.product = set.product.pluginName;
  if (!set.systemFolders.empty()) {
    files.manifest.volumes.push_back({0, "", false});
  }
  for (const CheckedFolder& folder : set.systemFolders) {
    std::string destination = folder.folder.destination;
    destination.erase(destination.find_last_not_of('/') + 1);
    addTree(found, folder.tree, folder.folder.source, destination, 0);
  }
  for (const CheckedVolume& volume : set.volumes) {
    if (!volume.volume.isMounted && volume.folder.empty()) {
      continue;  // the page copies nothing of a folder that is not there
    }
    if (volume.folder.empty()) {
      throw UsageError(format(_("{0} is missing, so its files cannot be read; put it into the set"),
                              {volume.isThere ? volume.shownRoot : volume.volume.root}));
    }
    const std::int32_t number = volume.volume.number + 1;
    const std::string name = volume.volume.isMounted ? fs::path(volume.volume.root).filename().string() : "";
    if (files.manifest.volume(number) == nullptr) {
      files.manifest.volumes.push_back({number, name, volume.volume.librariesOnly});
    }
    addTree(found, volume.tree, volume.folder, volume.folderName, number);
  }
  for (auto& [path, file] : found) {
    files.bytes += file.first.size;
    files.manifest.files.push_back(std::move(file.first));
    files.sources.push_back(std::move(file.second));
  }
  if (files.manifest.files.empty()) {
    throw UsageError(_("the set installs no file"));
  }
  return files;
}

void addDigests(SetFiles& files, const std::function<void(std::int64_t bytes)>& progress,
                const StopRequest* stop) {
  std::string problem;
  digestFiles(
      files.sources,
      [&](std::size_t index, const FileDigest& digest) {
        ManifestFile& file = files.manifest.files[index];
        file.digest = digest.digest;
        if (digest.error != 0) {
          problem =
              format(_("cannot read {0}: {1}"), {files.sources[index].string(), std::strerror(digest.error)});
        } else if (digest.size != file.size) {
          problem = format(_("{0} has changed while it was read"), {files.sources[index].string()});
        }
      },
      progress, stop);
  if (stop != nullptr) {
    stop->throwIfCome();
  }
  if (!problem.empty()) {
    throw UsageError(problem, ExitStatus::failure);
  }
}

std::vector<fs::path> writeManifests(const CheckedSet& set, const Manifest& manifest) {
  std::vector<fs::path> written{set.set.package.parent_path() / kManifestName};
  writeManifest(written.front(), manifest);
  for (const CheckedVolume& volume : set.volumes) {
    const Disc* disc = discOf(set, volume);
    if (disc == nullptr || disc->isImage || disc->isMounted) {
      continue;
    }
    Manifest part{manifest.product, {}, {}};
    for (const ManifestFile& file : manifest.files) {
      if (file.volume == disc->number) {
        part.files.push_back(file);
      }
    }
    if (const ManifestVolume* known = manifest.volume(disc->number); known != nullptr && !part.files.empty()) {
      part.volumes.push_back(*known);
      written.push_back(disc->path / kManifestName);
      writeManifest(written.back(), part);
    }
  }
  return written;
}

}  // namespace tavenhall

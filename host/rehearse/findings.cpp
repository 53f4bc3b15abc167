#include "host/rehearse/findings.h"

#include "context/install_rules.h"
#include "host/log/log_records.h"
#include "host/protocol/run_record.h"
#include "platform/installer_pane.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <unordered_set>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

std::string readWhole(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// The sandbox is new, so there is one run.
void readLog(const fs::path& log, RehearsalFindings& findings) {
  findings.logText = readWhole(log);
  LoggedRuns runs([&findings](const LoggedRun& run) {
    findings.run = run;
    findings.pageWasEntered = true;
  });
  LogRecords records([&runs](const LogRecord& record) { runs.add(record); });
  records.add(findings.logText);
  records.finish();
  runs.finish();
}

// Discs may share a volume name. Which of them a copy read follows from its position among the copies from that
// name.
Locate locatorFor(const Stage& stage, const std::vector<std::size_t>& insertedDiscs) {
  auto copiesOf = std::make_shared<std::map<std::string, std::vector<int>>>();
  return [&stage, insertedDiscs, copiesOf](const std::string& path, int copy) {
    const std::string volume = path.substr(0, path.find('/', std::string("/Volumes/").size()));
    std::vector<int>& copies = (*copiesOf)[volume];
    auto place = std::find(copies.begin(), copies.end(), copy);
    if (place == copies.end()) {
      place = copies.insert(copies.end(), copy);
    }
    return stage.outside(path, insertedDiscs, static_cast<int>(place - copies.begin()));
  };
}

// ---- What was copied from where ----

class VolumeTotals {
 public:
  VolumeTotals(const std::vector<CopiedFolder>& folders, const std::vector<FileFate>& files) {
    for (const CopiedFolder& folder : folders) {
      ++totals_[folder.copy].folders;
    }
    for (const FileFate& file : files) {
      ++totals_[file.copy].files;
      totals_[file.copy].bytes += file.bytes;
    }
  }

  // Adds the next copy's to a volume.
  void addNext(CopiedVolume& volume) {
    const CopiedVolume& next = totals_[copy_++];
    volume.bytes += next.bytes;
    volume.files += next.files;
    volume.folders += next.folders;
  }

 private:
  std::map<int, CopiedVolume> totals_;  // by copy
  int copy_ = 0;
};

std::optional<double> secondsOf(const RunVolume& volume) {
  const std::time_t begin = timeOfRecord(volume.begin);
  const std::time_t end = timeOfRecord(volume.end);
  return begin < 0 || end < begin ? std::nullopt : std::optional(static_cast<double>(end - begin));
}

// An update copies its system folders before the volumes.
void sumUp(const std::vector<CopiedFolder>& folders, RehearsalFindings& findings) {
  VolumeTotals totals(folders, findings.files);
  for (const PlannedFolder& system : findings.plan.systemFolders) {
    CopiedVolume copied;
    copied.folder = system.destination;
    totals.addNext(copied);
    findings.systemFolders.push_back(copied);
  }
  for (const RunVolume& volume : findings.run.volumes) {
    CopiedVolume copied;
    copied.number = volume.number;
    copied.folder = volume.folder;
    copied.seconds = secondsOf(volume);
    for (int i = 0; i < volume.copies; ++i) {
      totals.addNext(copied);
    }
    findings.volumes.push_back(copied);
  }
}

// ---- What nothing installed ----

fs::path discPath(const InstallerSet& set, int number) {
  for (const Disc& disc : set.discs) {
    if (disc.number == number) {
      return disc.path;
    }
  }
  return {};
}

// The folders that only a Full edition has, where the user's is Lite.
std::vector<fs::path> fullEditionFolders(const CheckedSet& checked) {
  std::vector<fs::path> folders;
  const EditionPlan& editions = checked.plan.editions;
  for (const CheckedVolume& volume : checked.volumes) {
    if (!editions.isOffered || volume.volume.number == 0 || volume.chosen.empty()) {
      continue;
    }
    const fs::path root = volume.volume.isMounted ? discPath(checked.set, volume.volume.number + 1)
                                                  : fs::path(volume.volume.root);
    if (!volume.volume.librariesOnly && editions.allAreLite) {
      folders.push_back(root / volume.chosen);
    }
    for (const PlannedLibrary& library : editions.libraries) {
      if (volume.volume.librariesOnly && library.isLite) {
        folders.push_back(root / volume.chosen / library.folderName);
      }
    }
  }
  for (fs::path& folder : folders) {
    std::error_code error;
    folder = fs::weakly_canonical(folder, error);
  }
  return folders;
}

bool isBelow(const fs::path& path, const fs::path& folder) {
  return path.string().starts_with(folder.string() + "/");
}

bool hasDataFolder(const fs::path& path) {
  return std::any_of(path.begin(), path.end(),
                     [](const fs::path& part) { return part == "TANVO" || part == "DOVA"; });
}

class LeftFiles {
 public:
  LeftFiles(const Stage& stage, const CheckedSet& checked, RehearsalFindings& findings)
      : stage_(stage), checked_(checked), findings_(findings), fullEdition_(fullEditionFolders(checked)) {}

  void collectAll() {
    collect(checked_.set.folder, {});
    for (const Disc& disc : checked_.set.discs) {
      if (!isBelow(disc.path, checked_.set.folder)) {
        collect(disc.path, stage_.nameInSet(disc));
      }
    }
  }

 private:
  // What lies in `folder`, which the report calls `shown`.
  void collect(const fs::path& folder, const fs::path& shown) {
    for (const std::string& name : filesNotCopied(folder, findings_.files)) {
      const fs::path path = folder / name;
      if (!isForInstaller(path)) {
        const bool isOfFull = std::any_of(fullEdition_.begin(), fullEdition_.end(),
                                          [&path](const fs::path& full) { return isBelow(path, full); });
        findings_.leftFiles.push_back({(shown / name).string(), isData(path, name), isOfFull});
      }
    }
  }

  // The package, what a rehearsal itself reads or writes, and images, which are looked into instead.
  [[nodiscard]] bool isForInstaller(const fs::path& path) const {
    const InstallerSet& set = checked_.set;
    return path == set.package || isBelow(path, set.package) || path == set.folder / "rehearsal.json" ||
           isBelow(path, stage_.root()) ||
           std::any_of(set.discs.begin(), set.discs.end(),
                       [&](const Disc& disc) { return path == set.folder / stage_.nameInSet(disc); });
  }

  [[nodiscard]] bool isData(const fs::path& path, const fs::path& below) const {
    const auto& folders = checked_.plan.systemFolders;
    return hasDataFolder(below) ||
           std::any_of(folders.begin(), folders.end(),
                       [&path](const PlannedFolder& folder) { return isBelow(path, folder.source); });
  }

  const Stage& stage_;
  const CheckedSet& checked_;
  RehearsalFindings& findings_;
  std::vector<fs::path> fullEdition_;
};

void collectGoneFiles(const CheckedSet& checked, RehearsalFindings& findings) {
  const auto collect = [&findings](const SourceTree& tree, const fs::path& folder, const auto& shown) {
    for (const TreeEntry& entry : tree.entries()) {
      std::error_code error;
      if (!entry.isHidden &&
          fs::symlink_status(folder / entry.path, error).type() == fs::file_type::not_found) {
        findings.goneFiles.push_back(shown(entry.path));
      }
    }
  };
  for (const CheckedVolume& volume : checked.volumes) {
    if (!volume.folder.empty()) {
      collect(volume.tree, volume.folder, [&volume](const std::string& path) { return volume.shown(path); });
    }
  }
  for (const CheckedFolder& folder : checked.systemFolders) {
    collect(folder.tree, folder.folder.source,
            [&folder](const std::string& path) { return folder.shownRoot + "/" + path; });
  }
}

// What a command of the set has made, for one.
void collectExtraFiles(const Stage& stage, RehearsalFindings& findings) {
  std::unordered_set<std::string> explained{
      findings.insidePath(stage.log().string()),
      findings.insidePath((stage.log().parent_path() / kRunRecordName).string()), kLocationFile,
      kInstallTypeFile};
  for (const FileFate& file : findings.files) {
    explained.insert(fs::path(file.destination).lexically_normal().string());
  }
  const SourceTree after = SourceTree::ofFolder(stage.root());
  for (const TreeEntry& entry : after.entries()) {
    const std::string path = "/" + entry.path;
    const bool isDisc = path.starts_with("/Volumes/");  // a link to it, while it is inserted
    if (entry.kind != EntryKind::folder && !isDisc && !explained.contains(path) &&
        stage.before().find(entry.path) == nullptr) {
      findings.extraFiles.push_back(path);
    }
  }
}

void collectUnusedDiscs(const Stage& stage, RehearsalFindings& findings) {
  if (findings.plan.editions.isOffered && findings.plan.editions.allAreLite) {
    return;  // a Lite edition needs its first component alone
  }
  const auto& inserted = findings.record.insertedDiscs;
  for (std::size_t i = 0; i < stage.set().discs.size(); ++i) {
    if (std::find(inserted.begin(), inserted.end(), i) == inserted.end()) {
      findings.unusedDiscs.push_back(stage.nameInSet(stage.set().discs[i]).string());
    }
  }
}

}  // namespace

std::string RehearsalFindings::insidePath(const std::string& path) const {
  return path.starts_with(sandbox + "/") ? path.substr(sandbox.size()) : path;
}

RehearsalFindings gatherFindings(const Stage& stage, const CheckedSet& checked, const RehearsalRecord& record,
                                 const StopRequest& stop) {
  RehearsalFindings findings;
  findings.set = checked.set.folder.string();
  findings.sandbox = stage.root().string();
  findings.plan = checked.plan;
  findings.realSizes = checked.realSizes();
  findings.record = record;
  readLog(stage.log(), findings);
  const std::vector<CopiedFolder> folders = copiedFolders(stage.log(), locatorFor(stage, record.insertedDiscs));
  findings.files = compareFiles(folders, [&stop] { stop.throwIfCome(); });
  sumUp(folders, findings);
  LeftFiles(stage, checked, findings).collectAll();
  collectUnusedDiscs(stage, findings);
  collectGoneFiles(checked, findings);
  collectExtraFiles(stage, findings);
  return findings;
}

}  // namespace tavenhall

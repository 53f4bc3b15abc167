#include "host/rehearse/findings.h"

#include "context/install_rules.h"
#include "host/base/text.h"
#include "host/log/log_records.h"
#include "host/ui/run_result.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string_view>
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
  return findings;
}

namespace {

AnnouncedComparison compareSizes(std::int64_t announcedMillions, std::int64_t real, const RealSizes& sizes) {
  AnnouncedComparison comparison;
  comparison.announced = announcedBytes(announcedMillions);
  comparison.real = real;
  comparison.isFar = comparison.announced <= 0 || !sizes.areClose(comparison.announced, real);
  return comparison;
}

// The two patterns are for a size that is not announced, {0} being the real one, and for one that is.
void diagnosticIfFar(const char* notAnnounced, const char* announced, const AnnouncedComparison& sizes,
                     Verdict& verdict) {
  if (sizes.isFar) {
    verdict.diagnostics.push_back(format(sizes.announced <= 0 ? notAnnounced : announced,
                                         {sizeText(sizes.real), sizeText(sizes.announced)}));
  }
}

std::string missingDiscText(const RehearsalRecord& record) {
  return format(record.missingDiscWasIn
                    ? _("the page finds no data folder on the disc and asks for it again: {0}")
                    : _("the page asks for a disc that the set does not have: {0}"),
                {record.missingDisc});
}

std::string sheetText(const std::string& sheet, int times) {
  return times > 1 ? plural("a sheet appeared {0} time: {1}", "a sheet appeared {0} times: {1}", times, {sheet})
                   : format(_("a sheet appeared: {0}"), {sheet});
}

void judgeRun(const RehearsalFindings& findings, Verdict& verdict) {
  if (!findings.pageWasEntered) {
    verdict.failures.emplace_back(_("the page was not entered"));
    return;
  }
  if (!findings.record.missingDisc.empty()) {
    verdict.failures.push_back(missingDiscText(findings.record));
  } else if (findings.run.outcome == RunEnd::noDataFolder) {
    verdict.failures.emplace_back(_("the data folder did not exist, so nothing was installed"));
  } else if (findings.run.outcome != RunEnd::complete) {
    verdict.failures.emplace_back(_("the installation did not finish"));
  } else if (!findings.record.hasLeft) {
    verdict.failures.emplace_back(_("the page refused Continue"));
  }
  for (const auto& [sheet, times] : findings.record.countedSheets()) {
    verdict.failures.push_back(sheetText(sheet, times));
  }
}

// What the comparison of contents has not reported already.
void judgeAudit(const RehearsalFindings& findings, Verdict& verdict) {
  std::unordered_set<std::string_view> reported;
  for (const FileFate& file : findings.files) {
    if (file.fate == Fate::differs || file.fate == Fate::missing) {
      reported.insert(file.source);
    }
  }
  for (const FailedEntry& failure : findings.record.auditFailures.first) {
    if (!reported.contains(failure.name)) {
      verdict.failures.push_back(failureText(failure));
    }
  }
}

void judgeFiles(const RehearsalFindings& findings, Verdict& verdict) {
  if (findings.files.empty()) {
    verdict.failures.emplace_back(_("no file was copied"));
  }
  for (const FileFate& file : findings.files) {
    if (file.fate == Fate::differs) {
      verdict.failures.push_back(format(_("content differs: {0}"), {file.source}));
    } else if (file.fate == Fate::missing) {
      verdict.failures.push_back(format(_("not installed: {0}"), {file.source}));
    } else if (file.fate == Fate::overwritten && findings.plan.mode == kModeVolumes) {
      verdict.diagnostics.push_back(
          format(_("a later disc has another file of the same path: {0}"), {file.source}));
    }
  }
  for (const LeftFile& file : findings.leftFiles) {
    if (file.isData && !file.isOfFullEdition) {
      verdict.diagnostics.push_back(format(_("nothing installs {0}"), {file.path}));
    }
  }
  for (const std::string& disc : findings.unusedDiscs) {
    verdict.diagnostics.push_back(format(_("the page never asked for {0}"), {disc}));
  }
}

void judgeSizes(const RehearsalFindings& findings, Verdict& verdict) {
  const RealSizes& real = findings.realSizes;
  const AnnouncedSize& announced = findings.plan.announced;
  if (!real.whole || !findings.record.missingDisc.empty()) {
    return;  // without all of the set, the sizes say nothing
  }
  verdict.whole = compareSizes(announced.totalMillions, *real.whole, real);
  diagnosticIfFar(_("the total size is not announced (it is {0})"),
                  _("the total size is announced as {1} but is {0}: the bar will end early or late"),
                  verdict.whole, verdict);
  if (findings.plan.editions.isOffered && real.component) {
    verdict.hasFirstComponent = true;
    verdict.firstComponent = compareSizes(announced.componentMillions, *real.component, real);
    diagnosticIfFar(
        _("the size of the first component is not announced (it is {0})"),
        _("the size of the first component is announced as {1} but is {0}: the bar will end early or late"),
        verdict.firstComponent, verdict);
  }
}

}  // namespace

ExitStatus Verdict::status() const {
  if (!failures.empty()) {
    return ExitStatus::failure;
  }
  return diagnostics.empty() ? ExitStatus::success : ExitStatus::warnings;
}

Verdict judge(const RehearsalFindings& findings) {
  Verdict verdict;
  judgeRun(findings, verdict);
  judgeFiles(findings, verdict);
  judgeAudit(findings, verdict);
  judgeSizes(findings, verdict);
  return verdict;
}

RehearsalRecord::Bar volumeBar(const RehearsalRecord& record) {
  RehearsalRecord::Bar highest;
  for (std::size_t i = 0; i + 1 < record.bars.size(); ++i) {
    if (record.bars[i].highest >= highest.highest) {
      highest = record.bars[i];
    }
  }
  return highest;
}

}  // namespace tavenhall

#include "host/rehearse/findings.h"

#include "context/install_rules.h"
#include "host/base/text.h"
#include "host/ui/run_result.h"

#include <string_view>
#include <unordered_set>

namespace tavenhall {

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

// `one` and `many` have the number, and {1} for the first path.
void diagnosticForModes(const RehearsalFindings& findings, bool FileFate::*isLost, const char* one,
                        const char* many, Verdict& verdict) {
  std::int64_t count = 0;
  const FileFate* first = nullptr;
  for (const FileFate& file : findings.files) {
    count += file.*isLost ? 1 : 0;
    first = file.*isLost && first == nullptr ? &file : first;
  }
  if (first != nullptr) {
    verdict.diagnostics.push_back(plural(one, many, count, {first->source}));
  }
}

void judgeChanges(const RehearsalFindings& findings, Verdict& verdict) {
  for (const std::string& file : findings.goneFiles) {
    verdict.failures.push_back(format(_("disappeared from the set during the rehearsal: {0}"), {file}));
  }
  for (const std::string& file : findings.extraFiles) {
    verdict.diagnostics.push_back(
        format(_("the installation left a file that is not in the set: {0}"), {file}));
  }
  diagnosticForModes(
      findings, &FileFate::losesSetId,
      "{0} file loses its setuid or setgid bit, since the copy keeps no permissions: {1}",
      "{0} files lose their setuid or setgid bits, since the copy keeps no permissions: {1} and others",
      verdict);
  diagnosticForModes(
      findings, &FileFate::losesPrivacy,
      "{0} file that only its owner may read can be read by others after the installation: {1}",
      "{0} files that only their owner may read can be read by others after the installation: {1} and "
      "others",
      verdict);
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

// What no installation on this machine shows: names that differ in case, a disc too large for its medium.
void judgeCheck(const RehearsalFindings& findings, Verdict& verdict) {
  if (!findings.check) {
    return;
  }
  const CheckVerdict check = findings.check();
  for (const std::string& error : check.errors) {
    verdict.failures.push_back("tavinstall check: " + error);
  }
  if (check.warnings > 0) {
    verdict.diagnostics.push_back(plural("tavinstall check has {0} warning for this set",
                                         "tavinstall check has {0} warnings for this set", check.warnings));
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
  judgeChanges(findings, verdict);
  judgeSizes(findings, verdict);
  verdict.isInstalled = verdict.failures.empty();
  judgeCheck(findings, verdict);
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

#include "host/rehearse/verdict.h"

#include "host/plain_printer.h"

namespace tavenhall {

namespace {

std::string sizeOf(std::int64_t bytes) { return sizeText(static_cast<double>(bytes)); }

AnnouncedComparison compareSizes(std::int64_t announcedMillions, std::int64_t real, const RealSizes& sizes) {
  AnnouncedComparison comparison;
  comparison.announced = announcedBytes(announcedMillions);
  comparison.real = real;
  comparison.isFar = comparison.announced <= 0 || !sizes.areClose(comparison.announced, real);
  return comparison;
}

std::string farText(const std::string& what, const AnnouncedComparison& sizes) {
  if (sizes.announced <= 0) {
    return "the size of " + what + " is not announced (it is " + sizeOf(sizes.real) + ")";
  }
  return what + " is announced as " + sizeOf(sizes.announced) + " and is " + sizeOf(sizes.real) +
         ": the bar will end early or late";
}

std::string missingDiscText(const RehearsalRecord& record) {
  return record.missingDiscWasIn
             ? "the page finds no data folder on the disc and asks for it again: " + record.missingDisc
             : "the page asks for a disc that the set does not have: " + record.missingDisc;
}

void judgeRun(const RehearsalFindings& findings, Verdict& verdict) {
  if (!findings.pageWasEntered) {
    verdict.failures.emplace_back("the page was not entered");
    return;
  }
  if (!findings.record.missingDisc.empty()) {
    verdict.failures.push_back(missingDiscText(findings.record));
  } else if (findings.story.outcome == RunEnd::noDataFolder) {
    verdict.failures.emplace_back("the data folder was not there, so nothing was begun");
  } else if (findings.story.outcome != RunEnd::complete) {
    verdict.failures.emplace_back("the install did not come to its end");
  } else if (!findings.record.hasLeft) {
    verdict.failures.emplace_back("the page did not let itself be left forwards");
  }
  for (const auto& [sheet, times] : findings.record.countedSheets()) {
    verdict.failures.push_back("a sheet said" + (times > 1 ? " " + std::to_string(times) + " times" : "") +
                               ": " + sheet);
  }
}

void judgeFiles(const RehearsalFindings& findings, Verdict& verdict) {
  if (findings.files.empty()) {
    verdict.failures.emplace_back("not one file was copied");
  }
  for (const FileFate& file : findings.files) {
    if (file.fate == Fate::differs) {
      verdict.failures.push_back("content differs: " + file.source);
    } else if (file.fate == Fate::missing) {
      verdict.failures.push_back("not installed: " + file.source);
    }
  }
  for (const LeftFile& file : findings.leftFiles) {
    if (file.isData && !file.isOfFullEdition) {
      verdict.remarks.push_back("nothing installs " + file.path);
    }
  }
  for (const std::string& disc : findings.unusedDiscs) {
    verdict.remarks.push_back("the page never asked for " + disc);
  }
}

void judgeSizes(const RehearsalFindings& findings, Verdict& verdict) {
  const RealSizes& real = findings.realSizes;
  const AnnouncedSize& announced = findings.plan.announced;
  if (!real.whole || !findings.record.missingDisc.empty()) {
    return;  // without all of the set, the sizes say nothing
  }
  verdict.whole = compareSizes(announced.totalMillions, *real.whole, real);
  if (verdict.whole.isFar) {
    verdict.remarks.push_back(farText("the whole", verdict.whole));
  }
  if (findings.plan.editions.isOffered && real.component) {
    verdict.hasFirstComponent = true;
    verdict.firstComponent = compareSizes(announced.componentMillions, *real.component, real);
    if (verdict.firstComponent.isFar) {
      verdict.remarks.push_back(farText("the first component", verdict.firstComponent));
    }
  }
}

}  // namespace

ExitStatus Verdict::status() const {
  if (!failures.empty()) {
    return ExitStatus::failure;
  }
  return remarks.empty() ? ExitStatus::success : ExitStatus::remarks;
}

Verdict judge(const RehearsalFindings& findings) {
  Verdict verdict;
  judgeRun(findings, verdict);
  judgeFiles(findings, verdict);
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

#include "host/log/log_headline.h"

#include "host/base/text.h"
#include "host/log/log_report.h"

#include <algorithm>
#include <string_view>

namespace tavenhall {

namespace {

constexpr std::string_view kVolumesFolder = "/Volumes/";

std::string discOf(std::string_view path) {
  if (!path.starts_with(kVolumesFolder)) {
    return {};
  }
  path.remove_prefix(kVolumesFolder.size());
  return std::string(path.substr(0, path.find('/')));
}

// The path by which a failure is grouped.
const std::string& placeOf(const RunFailure& failure) {
  const bool isOfTarget = failure.kind == "target" || failure.kind == "size";
  return isOfTarget && !failure.target.empty() ? failure.target : failure.file;
}

bool isOfFullDisk(const FailureGroup& group) {
  return group.kind == "size" || group.reason == "No space left on device";
}

// The disc that all these failures come from; empty if there is none.
std::string onlyDisc(const std::vector<FailureGroup>& groups) {
  const std::string& disc = groups.front().disc;
  const bool isOnly = std::all_of(groups.begin(), groups.end(),
                                  [&disc](const FailureGroup& group) { return group.disc == disc; });
  return isOnly ? disc : std::string();
}

std::string readRemedy(const std::vector<FailureGroup>& unreadable, std::int64_t count) {
  const std::string what = plural("{0} file could not be read.", "{0} files could not be read.", count);
  if (const std::string disc = onlyDisc(unreadable); !disc.empty()) {
    return join(what, format(_("What failed is on disc {0}: clean the disc or replace it."), {disc}));
  }
  const bool isOfDiscs = std::any_of(unreadable.begin(), unreadable.end(),
                                     [](const FailureGroup& group) { return !group.disc.empty(); });
  return join(what, isOfDiscs ? _("Several discs are concerned: clean them, and check the drive.")
                              : _("Check the disk, or download the package again."));
}

std::string writeRemedy(const std::vector<FailureGroup>& unwritten, std::int64_t count) {
  const bool isFull = std::any_of(unwritten.begin(), unwritten.end(), isOfFullDisk);
  return join(plural("{0} file could not be written.", "{0} files could not be written.", count),
              isFull ? _("The disk is full. Free space, then run the installer again.")
                     : _("Check who may write the folder, then run the installer again."));
}

// The cause of most failures, and what to do about it.
std::string remedyText(const LoggedRun& run) {
  std::vector<FailureGroup> unreadable;
  std::vector<FailureGroup> unwritten;
  std::int64_t unreadableCount = 0;
  std::int64_t unwrittenCount = 0;
  for (FailureGroup& group : groupsOf(run)) {
    if (group.kind == "source") {
      unreadableCount += group.count;
      unreadable.push_back(std::move(group));
    } else if (group.kind == "target" || group.kind == "size" || group.kind == "folder") {
      unwrittenCount += group.count;
      unwritten.push_back(std::move(group));
    } else if (group.kind == "no-destination") {
      return _("The data folder was missing: install the product first, then run this installer again.");
    } else if (group.kind == "not-found") {
      return _("The data was not beside the package: copy or download the whole installer again.");
    }
  }
  if (unreadableCount == 0 && unwrittenCount == 0) {
    return _("See the failures below.");
  }
  return unreadableCount >= unwrittenCount ? readRemedy(unreadable, unreadableCount)
                                           : writeRemedy(unwritten, unwrittenCount);
}

// The disc that the run asked for last, and did not get.
std::string openPrompt(const LoggedRun& run) {
  const bool isOpen = !run.prompts.empty() && run.prompts.back().found.empty() && !run.prompts.back().isSkipped;
  return isOpen ? run.prompts.back().volume : std::string();
}

// Why the log has no end of the run. `disc` is the one that it waited for; empty: none.
std::string unendedText(const std::string& disc, RunEnding ending) {
  switch (ending) {
    case RunEnding::ended:
      return _(
          "The last run has ended, but its end is missing from the log, which could not be written any more.");
    case RunEnding::diskFull:
      return _(
          "The last run has ended, but its end is missing from the log: the disk was full. Make room first.");
    case RunEnding::stopped:
      return disc.empty() ? std::string(_("The last run was stopped before its end."))
                          : format(_("The last run was stopped while it waited for disc {0}."), {disc});
    case RunEnding::killed:
      return disc.empty()
                 ? std::string(_("The last run was killed, or the computer was switched off."))
                 : format(_("The last run was killed, or the computer was switched off, while it waited "
                            "for disc {0}."),
                          {disc});
    case RunEnding::unknown: break;
  }
  return disc.empty()
             ? std::string(_("The last run did not end: it was stopped or killed, the computer was "
                             "switched off, or the log could not be written any more."))
             : format(_("The last run did not end: it was stopped or killed while it waited for disc {0}."),
                      {disc});
}

}  // namespace

RunState stateOf(const LoggedRun& run, bool mayStillRun, const RunNote& note) {
  switch (run.outcome) {
    case RunEnd::complete:
      return run.failureCount == 0 && note.isInstalled.value_or(true) ? RunState::good : RunState::failed;
    case RunEnd::noDataFolder: return RunState::failed;
    case RunEnd::never: break;
  }
  return mayStillRun ? RunState::stillRunning : RunState::notEnded;
}

std::vector<FailureGroup> groupsOf(const LoggedRun& run) {
  std::vector<FailureGroup> groups;
  for (const RunFailure& failure : run.failures) {
    const std::string& path = placeOf(failure);
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : path.substr(0, slash);
    const std::string name = path.empty() ? failureText(failure) : path.substr(slash + 1);
    const std::string disc = discOf(failure.file);
    const auto known = std::find_if(groups.begin(), groups.end(), [&](const FailureGroup& group) {
      return group.kind == failure.kind && group.reason == failure.reason && group.disc == disc &&
             group.folder == folder;
    });
    FailureGroup& group = known != groups.end() ? *known : groups.emplace_back();
    if (group.count == 0) {
      group.example = failure;
    }
    group.kind = failure.kind;
    group.reason = failure.reason;
    group.disc = disc;
    group.folder = folder;
    ++group.count;
    if (group.first.size() < FailureGroup::kMostNames) {
      group.first.push_back(name);
    }
  }
  return groups;
}

std::string groupText(const FailureGroup& group) {
  if (group.count == 1) {
    return failureText(group.example);
  }
  std::string names;
  for (const std::string& name : group.first) {
    names += (names.empty() ? "" : ", ") + name;
  }
  const auto more = group.count - static_cast<std::int64_t>(group.first.size());
  if (more > 0) {
    names += ", " + format(_("and {0} more"), {std::to_string(more)});
  }
  RunFailure folder = group.example;
  folder.file = group.folder;
  folder.target = group.folder;
  return plural("{0} file: {1} ({2})", "{0} files: {1} ({2})", group.count, {failureText(folder), names});
}

std::string headlineText(const LoggedRun& run, RunState state, const RunNote& note) {
  switch (state) {
    case RunState::good:
      if (note.isInstalled) {
        return plural("The last run has ended: {0} file was found installed, and nothing failed.",
                      "The last run has ended: {0} files were found installed, and nothing failed.",
                      note.files);
      }
      return _(
          "The last run has ended, and the log records no failure. It does not prove that every file is there: "
          "the summary of the run does.");
    case RunState::failed:
      if (run.outcome == RunEnd::noDataFolder) {
        return join(
            _("The last run has not begun."),
            _("The data folder was missing: install the product first, then run this installer again."));
      }
      if (run.failureCount == 0) {
        return join(format(_("The last run has ended, and the log records no failure, but not everything was "
                             "installed ({0})."),
                           {note.reason}),
                    _("Run the installer again."));
      }
      return join(plural("The last run has ended with {0} failure.",
                         "The last run has ended with {0} failures.", run.failureCount),
                  remedyText(run));
    case RunState::stillRunning: {
      const std::string disc = openPrompt(run);
      if (!disc.empty()) {
        return format(_("The last run has not ended. It waits for disc {0}."), {disc});
      }
      return note.ending == RunEnding::unknown ? _("The last run has not ended. It is running, or may be.")
                                               : _("The last run has not ended. It is running.");
    }
    case RunState::notEnded: break;
  }
  return join(unendedText(openPrompt(run), note.ending),
              run.failureCount > 0 ? remedyText(run) : std::string(_("Run the installer again.")));
}

}  // namespace tavenhall

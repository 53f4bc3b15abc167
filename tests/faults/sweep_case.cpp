#include "tests/faults/sweep_case.h"

#include "tests/install/case_files.h"
#include "tests/install/child_program.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace tavenhall::test {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kVolumes = "/Volumes/";

std::vector<std::string> commandLine(const SweepScenario& scenario) {
  std::vector<std::string> line{kTavinstall};
  line.insert(line.end(), scenario.arguments.begin(), scenario.arguments.end());
  return line;
}

bool isShown(const SweepScenario& scenario, const FileCall& call) {
  return scenario.sweepsLog || (call.path != kLog && call.path != fs::path(kLog).parent_path().native());
}

std::string contentsOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<const InstalledFile*> wrongFiles(const std::vector<InstalledFile>& files) {
  std::vector<const InstalledFile*> wrong;
  for (const InstalledFile& file : files) {
    if (!exists(file.destination) || contentsOf(file.destination) != file.contents) {
      wrong.push_back(&file);
    }
  }
  return wrong;
}

std::vector<std::string> installedTree() {
  std::vector<std::string> folders{"/Applications", "/Library", kMakersFolder};
  if (exists("/Volumes/Data")) {
    folders.emplace_back("/Volumes/Data");
  }
  return describeTree(folders);
}

// What is in the one and not in the other, a line of the first of it.
std::string firstOf(const std::vector<std::string>& one, const std::vector<std::string>& other) {
  const auto isMissing = [&other](const std::string& line) {
    return std::ranges::find(other, line) == other.end();
  };
  const auto found = std::ranges::find_if(one, isMissing);
  return found == one.end() ? "" : *found;
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  while (start < text.size()) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    lines.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return lines;
}

// The audit's lines name a file, or a folder above it that was not listed or not copied, by its source:
// "! Missing: /Volumes/A/TANVO/a.db (No such file or directory)". A disc that was never in the drive is named
// by the folder that would have been copied: "! Not copied: /Volumes/A/TANVO".
bool isNamed(const InstalledFile& file, const std::vector<std::string>& output) {
  static constexpr std::string_view kNotCopied = "! Not copied: ";
  return std::ranges::any_of(output, [&file](const std::string& line) {
    if (line.starts_with(std::string(kNotCopied).append(kVolumes))) {
      const std::string disc = line.substr(kNotCopied.size());
      return file.source.starts_with(disc.substr(0, disc.find('/', kVolumes.size()) + 1));
    }
    const std::size_t path = line.find(": /");
    if (!line.starts_with("! ") || path == std::string::npos) {
      return false;
    }
    const auto isAtOrAbove = [&file](const std::string& name) {
      const std::string source = fs::path(name).lexically_normal().native();
      return file.source == source || file.source.starts_with(source + "/");
    };
    const std::string name = line.substr(path + 2);
    return isAtOrAbove(name) || isAtOrAbove(name.substr(0, name.rfind(" (")));
  });
}

// Refused before anything was begun.
bool wasRefused(const GatedRun& run) { return run.status == 2 || run.status == 6; }

// What went wrong in how the program ended; empty if nothing.
std::string badEnd(const GatedRun& run) {
  if (run.isHung) {
    return "it did not end";
  }
  if (run.status > 3 && !wasRefused(run)) {
    return "it ended with " + std::to_string(run.status);
  }
  if (run.output.find("engine ended before its time") != std::string::npos) {
    return "its engine ended before its time: " + run.error;
  }
  if (run.error.find("Sanitizer") != std::string::npos ||
      run.error.find("runtime error:") != std::string::npos) {
    return "a sanitizer reports: " + run.error;
  }
  return "";
}

// The last word, in a line of its own: of success for 0 and of a failure for all else.
bool lastWordFits(const GatedRun& run) {
  const std::vector<std::string> lines = linesOf(run.output);
  const auto count = [&lines](std::string_view start) {
    return std::ranges::count_if(lines, [start](const std::string& line) { return line.starts_with(start); });
  };
  if (run.status == 0) {
    return count("Installed ") == 1;
  }
  const bool refersToOtherLines =
      count("! Not installed completely: see the lines that begin with \"!\".") == 1 && count("! ") > 1;
  return count("Installed ") == 0 &&
         (wasRefused(run) ? run.error.starts_with("tavinstall: ")
                          : refersToOtherLines || count("! Stopped: a prompt needs an answer") == 1);
}

// What the page, or the host, says when nothing is copied any more.
bool wasGivenUp(const GatedRun& run) {
  return wasRefused(run) || run.status == 3 ||
         run.output.find("! Files to be installed not found.") != std::string::npos ||
         run.output.find("! The folder for the Tessaphon data was not found.") != std::string::npos;
}

// Whether a file or folder that this call does not find may go to another place than without the fault: to the
// folder of another edition, or into one that would have been replaced. It stays there in a second run.
bool mayLeadAstray(const SweepScenario& scenario, const FileCall& call) {
  const std::string path = fs::path(call.path).lexically_normal();
  const auto isAtOrBelow = [](const std::string& one, const std::string& other) {
    return one == other || one.starts_with(other + "/");
  };
  return path.ends_with("/.InstallationAttributes.dat") || path == "/tmp/TavInstallLoc" ||
         path == "/tmp/TavInstallType" || path.ends_with("/Glassophone.db") ||
         (fs::is_directory(path) && std::ranges::any_of(scenario.sources, [&](const std::string& source) {
            return isAtOrBelow(path, source) || isAtOrBelow(source, path);
          }));
}

CaseResult judgeRun(const GatedRun& run, const std::vector<InstalledFile>& files) {
  if (const std::string bad = badEnd(run); !bad.empty()) {
    return {Ending::lost, bad};
  }
  if (!lastWordFits(run)) {
    return {Ending::lost, "its last word does not fit its status " + std::to_string(run.status) + ": " +
                              run.output + run.error};
  }
  const auto wrong = wrongFiles(files);
  if (wrong.empty()) {
    return {run.status == 0 ? Ending::whole : Ending::falseAlarm, ""};
  }
  if (run.status == 0) {
    return {Ending::lost, "it claims success, and " + wrong.front()->destination + " is wrong\n" + run.output};
  }
  const std::vector<std::string> output = linesOf(run.output);
  const auto unnamed =
      std::ranges::find_if_not(wrong, [&output](const InstalledFile* file) { return isNamed(*file, output); });
  if (unnamed == wrong.end()) {
    return {Ending::named, ""};
  }
  if (wasGivenUp(run)) {
    return {Ending::stopped, ""};
  }
  return {Ending::lost, "status " + std::to_string(run.status) + ", and nothing names " +
                            (*unnamed)->destination + "\n" + run.output};
}

// The engine is gone, and its frontend says so; or the frontend itself, before it had started the engine.
CaseResult judgeKilled(const GatedRun& run) {
  const bool saysSo =
      run.status == 1 && run.output.find("! The installer's engine ended unexpectedly.\n") != std::string::npos;
  if (run.isHung || (!saysSo && run.status != 128 + SIGKILL)) {
    return {Ending::lost, "killed, it ended with " + std::to_string(run.status) + "\n" + run.output};
  }
  return {Ending::killed, ""};
}

}  // namespace

const char* endingName(Ending ending) {
  switch (ending) {
    case Ending::whole: return "whole";
    case Ending::falseAlarm: return "false alarm";
    case Ending::named: return "named";
    case Ending::stopped: return "stopped";
    case Ending::killed: return "killed";
    case Ending::notReached: return "not reached";
    case Ending::lost: break;
  }
  return "lost";
}

std::span<const KindOfFault> kindsOfFaults() {
  static const std::vector<KindOfFault> kKinds{
      {CallKind::open,
       "open",
       {failWith(ENOENT), failWith(EACCES), failWith(EIO), failWith(ENOSPC), failWith(EROFS), failWith(EMFILE),
        failWith(EINTR), kKill}},
      {CallKind::read, "read", {failWith(EIO), failWith(EINTR), kShorten, kKill}},
      {CallKind::write, "write", {failWith(ENOSPC), failWith(EIO), failWith(EINTR), kShorten, kKill}},
      {CallKind::reserve,
       "reserve",
       {failWith(ENOSPC), failWith(EIO), failWith(EOPNOTSUPP), failWith(EINTR), kKill}},
      {CallKind::close, "close", {failWith(EIO), failWith(ENOSPC), failWith(EINTR), kKill}},
      {CallKind::stat, "stat", {failWith(ENOENT), failWith(EACCES), failWith(EIO), kKill}},
      {CallKind::makeFolder,
       "mkdir",
       {failWith(ENOENT), failWith(EACCES), failWith(EIO), failWith(ENOSPC), failWith(EROFS), kKill}},
      {CallKind::list, "getdents", {failWith(EIO), failWith(ENOENT), kKill}},
      {CallKind::remove, "unlink", {failWith(EACCES), failWith(EIO), failWith(EROFS), failWith(ENOENT), kKill}},
      {CallKind::rename, "rename", {failWith(EACCES), failWith(EIO), failWith(EROFS), failWith(ENOSPC), kKill}},
      {CallKind::permissions, "chmod", {failWith(EACCES), failWith(EIO), failWith(EROFS), kKill}},
      {CallKind::fileSystem, "statfs", {failWith(EACCES), failWith(EIO), kKill}},
      {CallKind::readLink, "readlink", {failWith(EACCES), failWith(EIO), failWith(ENOENT), kKill}},
      {CallKind::seek, "lseek", {failWith(EIO), kKill}},
      {CallKind::startThread, "thread", {failWith(EAGAIN), kKill}},
      {CallKind::startCommand, "command", {failWith(EAGAIN), kKill}},
  };
  return kKinds;
}

std::string verdictName(Verdict verdict) {
  if (verdict.kind == Verdict::Kind::kill) {
    return "kill";
  }
  static constexpr std::array<std::pair<int, const char*>, 10> kNames{{{ENOENT, "ENOENT"},
                                                                       {EACCES, "EACCES"},
                                                                       {EIO, "EIO"},
                                                                       {ENOSPC, "ENOSPC"},
                                                                       {EROFS, "EROFS"},
                                                                       {EMFILE, "EMFILE"},
                                                                       {EINTR, "EINTR"},
                                                                       {EAGAIN, "EAGAIN"},
                                                                       {EOPNOTSUPP, "EOPNOTSUPP"},
                                                                       {0, "short"}}};
  return std::ranges::find(kNames, verdict.error, &std::pair<int, const char*>::first)->second;
}

Undisturbed runUndisturbed(const SweepScenario& scenario) {
  const std::vector<InstalledFile> files = scenario.lay();
  Undisturbed undisturbed{std::vector<int>(kindsOfFaults().size(), 0), {}};
  const GatedRun run = runGated(commandLine(scenario), scenario.input, [&](const FileCall& call) {
    const auto kinds = kindsOfFaults();
    if (isShown(scenario, call)) {
      ++undisturbed.calls[std::ranges::find(kinds, call.kind, &KindOfFault::kind) - kinds.begin()];
    }
    return kPass;
  });
  const auto wrong = wrongFiles(files);
  if (run.status != 0 || !wrong.empty() || !badEnd(run).empty() || !lastWordFits(run)) {
    throw std::runtime_error(std::string("undisturbed, \"") + scenario.name + "\" ends with " +
                             std::to_string(run.status) + "\n" + run.output + run.error +
                             (wrong.empty() ? "" : "wrong: " + wrong.front()->destination));
  }
  undisturbed.tree = installedTree();
  return undisturbed;
}

CaseResult runCase(const SweepScenario& scenario, const Fault& fault,
                   const std::vector<std::string>& undisturbedTree) {
  const std::vector<InstalledFile> files = scenario.lay();
  std::string firstPath;
  bool mayHaveStrayed = false;
  int calls = 0;
  const GatedRun run = runGated(commandLine(scenario), scenario.input, [&](const FileCall& call) {
    if (call.kind != fault.kind || !isShown(scenario, call)) {
      return kPass;
    }
    ++calls;
    if (calls < fault.nth || (calls > fault.nth && !fault.isLasting)) {
      return kPass;
    }
    if (firstPath.empty()) {
      firstPath = call.path;
    }
    mayHaveStrayed = mayHaveStrayed || mayLeadAstray(scenario, call);
    return fault.verdict;
  });
  if (calls < fault.nth) {
    const CaseResult undisturbed = judgeRun(run, files);
    return undisturbed.ending == Ending::whole ? CaseResult{Ending::notReached, ""} : undisturbed;
  }
  const bool isKill = fault.verdict.kind == Verdict::Kind::kill;
  CaseResult result = isKill ? judgeKilled(run) : judgeRun(run, files);
  if (result.ending == Ending::lost) {
    return {Ending::lost, "at " + firstPath + ": " + result.why};
  }

  const std::string log = exists(kLog) ? contentsOf(kLog) : "";
  const GatedRun again = runGated(commandLine(scenario), scenario.input, [](const FileCall&) { return kPass; });
  const auto wrong = wrongFiles(files);
  if (again.status != 0 || !wrong.empty() || !badEnd(again).empty()) {
    return {Ending::lost, "a second run, undisturbed, ends with " + std::to_string(again.status) + "\n" +
                              again.output + again.error + (wrong.empty() ? "" : wrong.front()->destination)};
  }
  const std::vector<std::string> tree = installedTree();
  if (const std::string missing = firstOf(undisturbedTree, tree); !missing.empty()) {
    return {Ending::lost, "after a second run there is no " + missing};
  }
  if (const std::string extra = firstOf(tree, undisturbedTree); !extra.empty() && (isKill || !mayHaveStrayed)) {
    return {Ending::lost, "after a second run there is also " + extra};
  }
  if (!contentsOf(kLog).starts_with(log)) {
    return {Ending::lost, "a second run changes what the log said"};
  }
  return result;
}

}  // namespace tavenhall::test

#include "tests/faults/sweep_case.h"

#include "host/rehearse/comparison.h"
#include "tests/faults/required_silence.h"
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

// The log's lines of failures name a file by its destination, and a folder that has none by its source.
bool isNamed(const InstalledFile& file, const std::vector<std::string>& log) {
  return std::ranges::any_of(log, [&](const std::string& line) {
    const auto has = [&line](const std::string& text) { return line.find(text) != std::string::npos; };
    const bool isOfFile =
        has("Source error ") || has("Target error ") || has("File copy failure: sizes differ: ");
    if (isOfFile) {
      return has(file.destination);
    }
    constexpr std::string_view kWithout = "no destination for ";
    const std::size_t without = line.find(kWithout);
    return without != std::string::npos &&
           file.source.starts_with(
               fs::path(line.substr(without + kWithout.size())).lexically_normal().native());
  });
}

// The audit's lines name a file, or a folder above it that was not listed or not copied, by its source:
// "! Missing: /Volumes/A/TANVO/a.db (No such file or directory)".
bool isNamedByAudit(const InstalledFile& file, const std::vector<std::string>& output) {
  return std::ranges::any_of(output, [&file](const std::string& line) {
    const std::size_t path = line.find(": /");
    if (!line.starts_with("! ") || path == std::string::npos) {
      return false;
    }
    const std::string named = line.substr(path + 2, line.rfind(" (") - path - 2);
    const std::string source = fs::path(named).lexically_normal().native();
    const std::string whole = fs::path(line.substr(path + 2)).lexically_normal().native();
    return file.source == whole || file.source.starts_with(whole + "/") || file.source == source ||
           file.source.starts_with(source + "/");
  });
}

// What went wrong in how the program ended; empty if nothing.
std::string badEnd(const GatedRun& run) {
  if (run.isHung) {
    return "it did not end";
  }
  if (run.status > 3) {
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
  const auto hasLine = [&lines](std::string_view start) {
    return std::ranges::any_of(lines, [start](const std::string& line) { return line.starts_with(start); });
  };
  switch (run.status) {
    case 0: return hasLine("Installed ");
    case 2: return run.error.starts_with("tavinstall: ") && !hasLine("Installed ");
    default:
      return (hasLine("! Not installed completely") || hasLine("! Stopped: a prompt needs an answer")) &&
             !hasLine("Installed ");
  }
}

// What the page, or the host, says when nothing is copied any more.
bool wasGivenUp(const GatedRun& run, const std::vector<std::string>& log) {
  const auto hasNoThread = [](const std::string& line) {
    return line.ends_with("spawnBackgroundInstallJob: could not start the install thread");
  };
  return run.status == 2 || run.status == 3 ||
         run.output.find("! Files to be installed not found.") != std::string::npos ||
         run.output.find("! The folder for the Tessaphon data was not found.") != std::string::npos ||
         std::ranges::any_of(log, hasNoThread);
}

bool rehearsalFindsIt(const SweepScenario& scenario) {
  const auto here = [](const std::string& path, int) { return fs::path(path); };
  const std::vector<FileFate> fates = compareFiles(copiedFolders(kLog, here));
  if (std::ranges::any_of(fates, [](const FileFate& fate) { return fate.fate != Fate::same; })) {
    return true;
  }
  return std::ranges::any_of(scenario.sources,
                             [&](const std::string& source) { return !filesNotCopied(source, fates).empty(); });
}

struct Hits {
  int count = 0;
  std::string firstPath;
  bool onLog = false;
  std::vector<Silence> silences;
};

// Sheets that tell of one file each.
std::size_t sheetsOfFiles(const GatedRun& run) {
  const std::vector<std::string> lines = linesOf(run.output);
  return static_cast<std::size_t>(std::ranges::count_if(lines, [](const std::string& line) {
    return line.starts_with("! Failed to ") || line.starts_with("! Cannot install plugin.");
  }));
}

CaseResult judgeRun(const SweepScenario& scenario, const GatedRun& run, const Hits& hits,
                    const std::vector<InstalledFile>& files) {
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
  const std::vector<std::string> log = linesOf(exists(kLog) ? contentsOf(kLog) : "");
  const std::vector<std::string> output = linesOf(run.output);
  if (run.status == 0) {
    return {Ending::lost, "it claims success, and " + wrong.front()->destination + " is wrong\n" + run.output};
  }
  const auto isNamedSomewhere = [&](const InstalledFile* file) {
    return isNamed(*file, log) || isNamedByAudit(*file, output);
  };
  if (std::ranges::all_of(wrong, isNamedSomewhere)) {
    return {Ending::named, ""};
  }
  if (wasGivenUp(run, log)) {
    return {Ending::stopped, ""};
  }
  if (hits.onLog && sheetsOfFiles(run) >= wrong.size()) {
    return {Ending::sheetsOnly, ""};
  }
  for (const InstalledFile* file : wrong) {
    const auto isAbout = [file](const Silence& silence) { return covers(silence, file->source); };
    const bool isReported = isNamed(*file, log) || (hits.onLog && sheetsOfFiles(run) > 0);
    if (!isReported && std::ranges::none_of(hits.silences, isAbout)) {
      return {Ending::lost, "status " + std::to_string(run.status) + ", and nothing tells of " +
                                file->destination + "\n" + run.output};
    }
  }
  if (hits.silences.empty()) {
    return {Ending::lost, "fewer sheets than files that are wrong\n" + run.output};
  }
  if (!hits.onLog && !rehearsalFindsIt(scenario)) {
    return {Ending::lost, std::string("a rehearsal finds nothing, though ") + hits.silences.front().why};
  }
  return {Ending::silent, hits.silences.front().why};
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
    case Ending::sheetsOnly: return "sheets only";
    case Ending::silent: return "silent";
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
  Hits hits;
  int calls = 0;
  const GatedRun run = runGated(commandLine(scenario), scenario.input, [&](const FileCall& call) {
    if (call.kind != fault.kind || !isShown(scenario, call)) {
      return kPass;
    }
    ++calls;
    if (calls < fault.nth || (calls > fault.nth && !fault.isLasting)) {
      return kPass;
    }
    if (hits.count++ == 0) {
      hits.firstPath = call.path;
    }
    hits.onLog = hits.onLog || call.path.starts_with("/Users/tester/Library/Caches");
    if (auto silence = requiredSilence(scenario, call)) {
      hits.silences.push_back(std::move(*silence));
    }
    return fault.verdict;
  });
  if (hits.count == 0) {
    const CaseResult undisturbed = judgeRun(scenario, run, hits, files);
    return undisturbed.ending == Ending::whole ? CaseResult{Ending::notReached, ""} : undisturbed;
  }
  CaseResult result =
      fault.verdict.kind == Verdict::Kind::kill ? judgeKilled(run) : judgeRun(scenario, run, hits, files);
  if (result.ending == Ending::lost) {
    return {Ending::lost, "at " + hits.firstPath + ": " + result.why};
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
  // What was taken for missing may have sent files or folders to another place, where they stay.
  const bool mayHaveStrayed = !hits.silences.empty() && fault.verdict.kind != Verdict::Kind::kill;
  if (const std::string extra = firstOf(tree, undisturbedTree); !extra.empty() && !mayHaveStrayed) {
    return {Ending::lost, "after a second run there is also " + extra};
  }
  if (!contentsOf(kLog).starts_with(log)) {
    return {Ending::lost, "a second run changes what the log said"};
  }
  return result;
}

}  // namespace tavenhall::test

#include "host/command_line.h"
#include "host/file_checks.h"
#include "host/json_events.h"
#include "host/plain_face.h"
#include "host/rehearse/comparison.h"
#include "host/rehearse/conductor.h"
#include "host/rehearse/rehearsal_report.h"
#include "host/rehearse/stage.h"
#include "host/rehearse/temporary_folder.h"
#include "host/usage_error.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <fstream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

struct RehearseArguments {
  std::string set;
  std::string product;
  std::string installType;
  std::string installed;
  std::string keep;
  std::string report;
  std::string ui = "plain";
  int late = 0;
};

// Sees the run through in this process, and leaves its record where another process can read it.
ExitStatus conduct(const Stage& stage, const RehearseArguments& arguments, const std::string& installType,
                   const EngineLines& face, const fs::path& recordFile) {
  DiscTray tray(stage.volumes(), stage.discs(), arguments.late);
  Conductor conductor(stage.engineCommand(installType), stage.summary(), tray, face);
  const ExitStatus status = conductor.run();
  std::ofstream(recordFile) << jsonLine(conductor.record().toJson());
  return status;
}

ExitStatus show(const Stage& stage, const RehearseArguments& arguments, const std::string& installType,
                const fs::path& recordFile) {
  if (arguments.ui == "json") {
    return conduct(stage, arguments, installType, {STDIN_FILENO, STDOUT_FILENO, -1}, recordFile);
  }
  if (arguments.ui == "quiet") {
    return conduct(stage, arguments, installType, {}, recordFile);
  }
  const EngineProcess engine = startEngineProcess(
      [&](const EngineLines& face) { return conduct(stage, arguments, installType, face, recordFile); });
  return runPlainFace(engine, stage.log().string());
}

RehearsalRecord readRecord(const fs::path& recordFile) {
  std::ifstream file(recordFile);
  const auto json = nlohmann::ordered_json::parse(file, nullptr, false);
  return json.is_object() ? RehearsalRecord::fromJson(json) : RehearsalRecord();
}

// The last run of the log is the one that was rehearsed.
void readLog(const fs::path& log, RehearsalFindings& findings) {
  RunStories stories([&findings](const RunStory& story) {
    findings.story = story;
    findings.pageWasEntered = true;
  });
  LogRecords records([&stories](const LogRecord& record) { stories.add(record); });
  std::ifstream file(log, std::ios::binary);
  std::string piece(65536, '\0');
  while (file.read(piece.data(), static_cast<std::streamsize>(piece.size())) || file.gcount() > 0) {
    records.add({piece.data(), static_cast<std::size_t>(file.gcount())});
  }
  records.finish();
  stories.finish();
}

// Discs may share a volume name; which of them a copy read is told by its place among the copies from that
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

void compare(const Stage& stage, const InstallerSet& set, RehearsalFindings& findings) {
  findings.folders = copiedFolders(stage.log(), locatorFor(stage, findings.record.insertedDiscs));
  findings.files = compareFiles(findings.folders);
  int lastCopy = -1;
  for (const CopiedFolder& folder : findings.folders) {
    if (folder.copy != lastCopy) {
      lastCopy = folder.copy;
      for (const std::string& path : filesNotCopied(folder.sourceOutside, findings.files)) {
        findings.notCopied.push_back(folder.source + "/" + path);
      }
    }
  }
  if (findings.plan.editions.isOffered && findings.plan.editions.allAreLite) {
    return;  // a Lite edition needs its first component alone
  }
  for (std::size_t i = 0; i < set.discs.size(); ++i) {
    const auto& inserted = findings.record.insertedDiscs;
    if (std::find(inserted.begin(), inserted.end(), i) == inserted.end()) {
      findings.unusedDiscs.push_back(set.discs[i].path.filename().string());
    }
  }
}

void writeReport(const std::string& file, const nlohmann::ordered_json& report) {
  std::ofstream out(file);
  out << report.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << "\n";
  if (!out.flush()) {
    throw UsageError("cannot write the report " + file);
  }
}

ExitStatus rehearse(const RehearseArguments& arguments) {
  if (!arguments.report.empty()) {
    requireWritable(arguments.report);
  }
  const InstallerSet set = openInstallerSet(arguments.set);
  const Product product = productNamed(arguments.product.empty() ? set.product : arguments.product);
  const std::string installType = arguments.installType.empty() ? set.installType : arguments.installType;
  const TemporaryFolder work;
  const fs::path root = arguments.keep.empty() ? work.path() / "root" : fs::path(arguments.keep);
  const Stage stage(set, product, root, work.path(), arguments.installed);

  RehearsalFindings findings;
  findings.set = set.folder.string();
  findings.sandbox = stage.root().string();
  // Nobody has chosen in the sandbox's own /tmp unless the rehearsal does, and without a choice it is Full.
  findings.plan = planInstall({set.package.string(), product,
                               (stage.home() / "Library/Application Support/Tavenhall").string(),
                               installType.empty() ? "Full" : installType});
  const fs::path recordFile = work.path() / "record.json";
  findings.engineStatus = show(stage, arguments, installType, recordFile);
  if (findings.engineStatus == ExitStatus::badUsage) {
    return ExitStatus::badUsage;  // the engine has said why
  }
  findings.record = readRecord(recordFile);
  findings.log = arguments.keep.empty() ? "" : stage.log().string();
  readLog(stage.log(), findings);
  compare(stage, set, findings);

  const RehearsalReport report = judge(findings);
  // The JSON lines have standard output to themselves.
  std::FILE* out = arguments.ui == "json" ? stderr : stdout;
  std::fprintf(out, "\n%s", reportText(findings, report).c_str());
  if (!arguments.report.empty()) {
    writeReport(arguments.report, reportJson(findings, report));
  }
  return report.status();
}

}  // namespace

void addRehearseCommand(CommandLine& commandLine) {
  const auto arguments = std::make_shared<RehearseArguments>();
  CLI::App* command = commandLine.program.add_subcommand(
      "rehearse", "Install a whole set in a sandbox, and say whether it is right");
  command->add_option("SET", arguments->set, "The set's folder: the package, its attributes file, and discs/")
      ->required();
  command->add_option("--product", arguments->product, "The product, where the set does not say")
      ->type_name("NAME");
  command
      ->add_option("--install-type", arguments->installType, "The edition to install, where there is a choice")
      ->check(CLI::IsMember({"Lite", "Full"}).description(""))
      ->type_name("Lite|Full");
  command
      ->add_option("--installed", arguments->installed,
                   "What the user has: a home, or a folder of data folders")
      ->check(CLI::ExistingDirectory.description(""))
      ->type_name("FOLDER");
  command->add_option("--late", arguments->late, "How often each disc is asked for in vain first")
      ->check(CLI::NonNegativeNumber.description(""))
      ->type_name("N");
  command->add_option("--keep", arguments->keep, "Keep what was installed, with the log, in this new folder")
      ->type_name("DIR");
  command->add_option("--report", arguments->report, "Write the report to this file too, as JSON")
      ->type_name("FILE");
  command->add_option("--ui", arguments->ui, "How the page is shown")
      ->check(CLI::IsMember({"json", "plain", "quiet"}).description(""))
      ->type_name("json|plain|quiet")
      ->capture_default_str();
  command->callback(
      [&commandLine, arguments] { commandLine.chosen = [arguments] { return rehearse(*arguments); }; });
}

}  // namespace tavenhall

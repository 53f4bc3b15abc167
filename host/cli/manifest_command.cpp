#include "host/base/exit_status.h"
#include "host/base/text.h"
#include "host/cli/command_line.h"
#include "host/engine/pre_install.h"
#include "host/manifest/set_manifest.h"
#include "host/manifest/verification.h"
#include "host/ui/progress_meter.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <unistd.h>

// The commands that list what a set installs, and compare it with what is installed.
namespace tavenhall {

namespace {

using nlohmann::ordered_json;

// A line on standard error that is written over, where that is a terminal.
class ReadingProgress {
 public:
  explicit ReadingProgress(std::int64_t total) : isShown_(isatty(STDERR_FILENO) != 0) {
    constexpr double kUnit = 1024.0;
    const auto now = ProgressMeter::Clock::now();
    meter_.start(now);
    meter_.setMaximum(static_cast<double>(total) / kUnit);
    meter_.setCopying(true, now);
  }
  ReadingProgress(const ReadingProgress&) = delete;
  ReadingProgress& operator=(const ReadingProgress&) = delete;
  ~ReadingProgress() {
    if (isShown_) {
      std::fputs("\r\033[K", stderr);
    }
  }

  void add(std::int64_t bytes) {
    constexpr auto kPause = std::chrono::milliseconds(200);
    const auto now = ProgressMeter::Clock::now();
    bytes_ += bytes;
    meter_.setBytes(bytes_, now);
    if (!isShown_ || now - shownAt_ < kPause) {
      return;
    }
    shownAt_ = now;
    std::string line = amountText(meter_);
    if (const auto rate = meter_.rate(now)) {
      line += ", " + sizeText(*rate) + "/s";
    }
    if (const auto minutes = meter_.minutesLeft(now)) {
      line += ", " + timeLeftText(*minutes);
    }
    std::fprintf(stderr, "\r%s\033[K", line.c_str());
    std::fflush(stderr);
  }

 private:
  const bool isShown_;
  ProgressMeter meter_;
  std::int64_t bytes_ = 0;
  ProgressMeter::Time shownAt_;
};

ExitStatus makeManifest(const CheckRequest& request) {
  const CheckedSet set = openCheckedSet(request);
  SetFiles files = filesOfSet(set);
  {
    ReadingProgress progress(files.bytes);
    addDigests(files, [&progress](std::int64_t bytes) { progress.add(bytes); });
  }
  const auto written = writeManifests(set, files.manifest);
  std::puts(plural("{0} file, {1}.", "{0} files, {1}.", static_cast<std::int64_t>(files.sources.size()),
                   {sizeText(static_cast<double>(files.bytes))})
                .c_str());
  for (const std::filesystem::path& file : written) {
    std::puts(format(_("Written: {0}"), {printableLine(file.string())}).c_str());
  }
  return ExitStatus::success;
}

struct VerifyArguments {
  std::string package;
  std::string manifest;
  std::string installType;
  std::string folder;
  bool asJson = false;
};

std::string volumeText(const ManifestVolume* volume) {
  if (volume == nullptr || volume->number == 0) {
    return {};
  }
  const std::string number = std::to_string(volume->number);
  return volume->name.empty() ? format(_("volume {0}"), {number})
                              : format(_("disc {0}, {1}"), {number, printableLine(volume->name)});
}

std::string problemText(VerifiedProblem::Kind kind) {
  switch (kind) {
    case VerifiedProblem::Kind::missing: return _("Missing");
    case VerifiedProblem::Kind::shorter: return _("Too short");
    case VerifiedProblem::Kind::longer: return _("Too long");
    case VerifiedProblem::Kind::different: return _("Different");
    case VerifiedProblem::Kind::notReadable: break;
  }
  return _("Cannot be read");
}

std::map<std::int32_t, std::int64_t> problemsOfVolumes(const Manifest& manifest,
                                                       const VerificationResult& result) {
  std::map<std::int32_t, std::int64_t> counts;
  for (const VerifiedProblem& problem : result.problems) {
    ++counts[manifest.files[problem.file].volume];
  }
  return counts;
}

void printText(const Manifest& manifest, const VerificationResult& result) {
  for (const VerifiedProblem& problem : result.problems) {
    const ManifestFile& file = manifest.files[problem.file];
    const std::string detail = problem.detail.empty() ? "" : " (" + problem.detail + ")";
    std::printf("! %s: %s%s\n", problemText(problem.kind).c_str(), printableLine(file.path).c_str(),
                detail.c_str());
  }
  for (const std::string& path : result.extraFiles) {
    std::printf("  %s\n", format(_("Not in the manifest: {0}"), {printableLine(path)}).c_str());
  }
  for (const auto& [number, count] : problemsOfVolumes(manifest, result)) {
    const std::string text = volumeText(manifest.volume(number));
    if (!text.empty()) {
      std::puts(plural("{0} file is to be installed again from {1}.",
                       "{0} files are to be installed again from {1}.", count, {text})
                    .c_str());
    }
  }
  const std::string size = sizeText(static_cast<double>(result.bytes));
  std::puts(result.problems.empty()
                ? plural("Whole: {0} file, {1}, is as the manifest says.",
                         "Whole: {0} files, {1}, are as the manifest says.", result.files, {size})
                      .c_str()
                : plural("Not whole: {0} file is missing or wrong.",
                         "Not whole: {0} files are missing or wrong.",
                         static_cast<std::int64_t>(result.problems.size()))
                      .c_str());
}

void printJson(const Manifest& manifest, const VerificationResult& result) {
  ordered_json problems = ordered_json::array();
  for (const VerifiedProblem& problem : result.problems) {
    const ManifestFile& file = manifest.files[problem.file];
    problems.push_back({{"problem", problemName(problem.kind)},
                        {"path", file.path},
                        {"volume", file.volume},
                        {"detail", problem.detail}});
  }
  ordered_json volumes = ordered_json::array();
  for (const auto& [number, count] : problemsOfVolumes(manifest, result)) {
    const ManifestVolume* volume = manifest.volume(number);
    volumes.push_back({{"volume", number}, {"disc", volume != nullptr ? volume->name : ""}, {"files", count}});
  }
  const ordered_json object = {{"whole", result.problems.empty()},
                               {"files", result.files},
                               {"bytes", result.bytes},
                               {"problems", problems},
                               {"volumes", volumes},
                               {"extra", result.extraFiles}};
  std::puts(object.dump(-1, ' ', false, ordered_json::error_handler_t::replace).c_str());
}

std::filesystem::path manifestOf(const VerifyArguments& arguments) {
  if (!arguments.manifest.empty()) {
    return arguments.manifest;
  }
  if (arguments.package.empty()) {
    throw UsageError(_("--package or --manifest is required; see tavinstall verify --help"));
  }
  return packageLocation(arguments.package).parent_path() / kManifestName;
}

ExitStatus verify(const VerifyArguments& arguments) {
  const Manifest manifest = readManifest(manifestOf(arguments));
  std::filesystem::path folder = arguments.folder;
  if (folder.empty()) {
    folder = installLockFolder() + "/Tavenhall";
  }
  if (!std::filesystem::is_directory(folder)) {
    throw UsageError(format(_("there is no folder {0}"), {folder.string()}));
  }
  std::int64_t total = 0;
  for (const ManifestFile& file : manifest.files) {
    total += file.size;
  }
  VerificationResult result;
  {
    ReadingProgress progress(total);
    result = verifyInstalled(manifest, folder, arguments.installType == "Lite",
                             [&progress](std::int64_t bytes) { progress.add(bytes); });
  }
  arguments.asJson ? printJson(manifest, result) : printText(manifest, result);
  return !result.problems.empty()     ? ExitStatus::failure
         : !result.extraFiles.empty() ? ExitStatus::warnings
                                      : ExitStatus::success;
}

}  // namespace

void addManifestCommands(CommandLine& commandLine) {
  struct ManifestArguments {
    std::string set;
    std::string product;
  };
  const auto arguments = std::make_shared<ManifestArguments>();
  CLI::App* make = commandLine.program.add_subcommand(
      "manifest", _("Write the digests of what a set installs, for verify and sha256sum"));
  make->add_option("SET", arguments->set, _("Folder with the package, its attributes file and discs/"))
      ->required();
  make->add_option("--product", arguments->product,
                   format(_("Product, unless the set's rehearsal.json names it: {0}"),
                          {CLI::detail::join(productNames(), ", ")}))
      ->check(oneOf(productNames()))
      ->type_name("NAME");
  make->callback([&commandLine, arguments] {
    commandLine.chosen = [arguments] { return makeManifest({arguments->set, arguments->product, "", {}}); };
  });

  const auto wanted = std::make_shared<VerifyArguments>();
  CLI::App* check = commandLine.program.add_subcommand(
      "verify", _("Compare what is installed with the digests of a manifest"));
  check->add_option("FOLDER", wanted->folder, _("Folder that holds TANVO and DOVA; by default the user's own"));
  CLI::Option* package =
      check->add_option("--package", wanted->package, _("Use the manifest beside this package"))
          ->type_name("PATH");
  check->add_option("--manifest", wanted->manifest, _("Use this manifest"))
      ->type_name("FILE")
      ->excludes(package);
  check
      ->add_option("--install-type", wanted->installType,
                   _("Edition that is installed: Lite or Full (default)"))
      ->transform(edition())
      ->type_name("TYPE");
  check->add_flag("--json", wanted->asJson, _("Print it as JSON"));
  check->callback([&commandLine, wanted] { commandLine.chosen = [wanted] { return verify(*wanted); }; });
}

}  // namespace tavenhall

#include "host/base/exit_status.h"
#include "host/base/text.h"
#include "host/cli/command_line.h"
#include "host/cli/reading_progress.h"
#include "host/cli/verify_text.h"
#include "host/engine/pre_install.h"
#include "host/manifest/set_manifest.h"
#include "host/manifest/verification.h"
#include "host/set/image_mount.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

// The commands that list what a set installs, and compare it with what is installed.
namespace tavenhall {

namespace {

using nlohmann::ordered_json;

ExitStatus makeManifest(const CheckRequest& request) try {
  const StopRequest stop;  // what is mounted goes when the command is stopped
  InstallerSet opened = openInstallerSet(request.folder);
  const DiscMounts mounts(opened, stop);
  const CheckedSet set = openCheckedSet(std::move(opened), request);
  SetFiles files = filesOfSet(set);
  const auto written = writeManifestsWithProgress(set, files, &stop);
  std::puts(plural("{0} file, {1}.", "{0} files, {1}.", static_cast<std::int64_t>(files.sources.size()),
                   {sizeText(static_cast<double>(files.bytes))})
                .c_str());
  printWritten(written);
  const auto mounted = std::count_if(set.set.discs.begin(), set.set.discs.end(),
                                     [](const Disc& disc) { return disc.isMounted; });
  if (mounted > 0) {
    std::puts(plural("{0} disc is an image, into which nothing was written.",
                     "{0} discs are images, into which nothing was written.", mounted)
                  .c_str());
  }
  return ExitStatus::success;
} catch (const Stopped&) {
  showError(UsageError(_("stopped; no manifest was written")));
  return ExitStatus::failure;
}

struct VerifyArguments {
  std::string package;
  std::string manifest;
  std::string installType;
  std::string folder;
  bool asJson = false;
};

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
  for (const auto& [number, count] : problemsByVolume(manifest, result)) {
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
  const VerificationResult result = verifyWithProgress(manifest, folder, arguments.installType == "Lite");
  if (arguments.asJson) {
    printJson(manifest, result);
  } else {
    printProblems(manifest, result);
    printVerdict(result);
  }
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
  addProductOption(*make, arguments->product);
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

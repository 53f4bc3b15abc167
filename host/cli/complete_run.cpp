#include "host/cli/complete_run.h"

#include "host/base/text.h"
#include "host/cli/verify_text.h"
#include "host/engine/pre_install.h"
#include "host/manifest/repair.h"
#include "host/manifest/verification.h"
#include "host/protocol/run_record.h"

#include <chrono>
#include <cstdio>
#include <map>
#include <poll.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::seconds kPauseBetweenLooks{1};

bool isThere(const std::string& path) {
  struct stat found {};
  return stat(path.c_str(), &found) == 0;
}

class Completion {
 public:
  Completion(const EngineOptions& options, const InstallPlan& plan, Manifest manifest)
      : options_(options), plan_(plan), manifest_(std::move(manifest)) {}

  ExitStatus run() {
    event::Summary summary;
    summary.facts = options_.facts;
    VerificationResult result = verify(manifest_);
    if (!result.problems.empty()) {
      printProblems(manifest_, result);
      for (const auto& [volume, problems] : byVolume(result)) {
        const ExitStatus status = complete(volume, problems);
        if (status != ExitStatus::success) {
          return end(summary, status);
        }
      }
      result = verifyAgain(result);
    }
    for (const VerifiedProblem& problem : result.problems) {
      const ManifestFile& file = manifest_.files[problem.file];
      summary.failedFiles.push_back(
          {problemName(problem.kind), sourceOf(file), installed(file).string(), file.volume, problem.detail});
    }
    summary.audit.files = result.files;
    summary.audit.bytes = result.bytes;
    summary.audit.failures = static_cast<std::int64_t>(result.problems.size());
    summary.isInstalled = summary.audit.isClean();
    printVerdict(result);
    reason_ =
        summary.isInstalled ? "" : "files are missing or wrong: " + std::to_string(result.problems.size());
    return end(summary, summary.isInstalled ? ExitStatus::success : ExitStatus::failure);
  }

 private:
  using Problems = std::vector<const VerifiedProblem*>;

  [[nodiscard]] bool isLite() const { return plan_.editions.isOffered && plan_.editions.allAreLite; }
  [[nodiscard]] static fs::path folder() { return installLockFolder() + "/Tavenhall"; }
  [[nodiscard]] static fs::path installed(const ManifestFile& file) { return installedPath(file, folder()); }

  [[nodiscard]] VerificationResult verify(const Manifest& manifest) const {
    return verifyWithProgress(manifest, folder(), isLite());
  }

  [[nodiscard]] std::map<std::int32_t, Problems> byVolume(const VerificationResult& result) const {
    std::map<std::int32_t, Problems> volumes;
    for (const VerifiedProblem& problem : result.problems) {
      volumes[manifest_.files[problem.file].volume].push_back(&problem);
    }
    return volumes;
  }

  // The files that were wrong, with what is known of the others.
  [[nodiscard]] VerificationResult verifyAgain(const VerificationResult& before) const {
    Manifest part{manifest_.product, manifest_.volumes, {}};
    for (const VerifiedProblem& problem : before.problems) {
      part.files.push_back(manifest_.files[problem.file]);
    }
    VerificationResult result = verify(part);
    for (VerifiedProblem& problem : result.problems) {
      problem.file = before.problems[problem.file].file;
    }
    result.files += before.files;
    result.bytes += before.bytes;
    return result;
  }

  // Where the page would copy the file from; empty where the plan has no such place.
  [[nodiscard]] std::string sourceOf(const ManifestFile& file) const {
    if (file.path.front() == '/') {
      for (const PlannedFolder& folder : plan_.systemFolders) {
        if (file.path.starts_with(folder.destination)) {
          return folder.source + "/" + file.path.substr(folder.destination.size());
        }
      }
      return {};
    }
    for (const PlannedPass& pass : plan_.passes) {
      for (const PlannedVolume& volume : pass.volumes) {
        if (volume.number + 1 == file.volume && file.path.starts_with(pass.folderName + "/")) {
          const std::string below = file.path.substr(pass.folderName.size());
          return (isThere(volume.primary) ? volume.primary : volume.alternate) + below;
        }
      }
    }
    return {};
  }

  // Waits until one of the volume's files is there; another status than success if nobody gets it.
  ExitStatus awaitDisc(std::int32_t number, const Problems& problems) {
    const ManifestVolume* volume = manifest_.volume(number);
    const auto deadline = std::chrono::steady_clock::now() +
                          (options_.unattended ? options_.unattended->discTimeout : std::chrono::seconds(0));
    while (!isThere(sourceOf(manifest_.files[problems.front()->file]))) {
      const std::string name = volume != nullptr ? volume->name : "";
      reason_ = name.empty() ? "volume " + std::to_string(number) + " was not found"
                             : "disc " + name + " was not found";
      if (options_.unattended) {
        if (std::chrono::steady_clock::now() >= deadline) {
          return ExitStatus::discMissing;
        }
        poll(nullptr, 0, static_cast<int>(std::chrono::milliseconds(kPauseBetweenLooks).count()));
        continue;
      }
      const ExitStatus answer =
          ask(name.empty() ? format(_("Volume {0} was not found."), {std::to_string(number)})
                           : format(_("Please insert disc {0}, {1}."), {std::to_string(number), name}));
      if (answer != ExitStatus::success) {
        return answer;
      }
    }
    return ExitStatus::success;
  }

  static ExitStatus ask(const std::string& prompt) {
    std::printf("? %s\n  1) %s\n  2) %s\n", printableLine(prompt).c_str(), _("Continue"), _("Stop"));
    std::fflush(stdout);
    char line[16] = {};
    if (std::fgets(line, sizeof line, stdin) == nullptr) {
      return ExitStatus::noAnswer;
    }
    return line[0] == '2' ? ExitStatus::stopped : ExitStatus::success;
  }

  ExitStatus complete(std::int32_t volume, const Problems& problems) {
    if (const ExitStatus status = awaitDisc(volume, problems); status != ExitStatus::success) {
      return status;
    }
    for (const VerifiedProblem* problem : problems) {
      const ManifestFile& file = manifest_.files[problem->file];
      const std::string failure = repairFile(sourceOf(file), installed(file), file);
      std::printf(
          "%s%s\n", failure.empty() ? "" : "! ",
          printableLine(failure.empty() ? format(_("Installed: {0}"), {file.path}) : file.path + ": " + failure)
              .c_str());
    }
    return ExitStatus::success;
  }

  ExitStatus end(event::Summary& summary, ExitStatus status) {
    summary.status = static_cast<int>(status);
    summary.reason = status == ExitStatus::success ? "" : status == ExitStatus::stopped ? "stopped" : reason_;
    if (status != ExitStatus::success && status != ExitStatus::failure) {
      std::fprintf(stderr, "tavinstall: %s\n", printableLine(summary.reason).c_str());
    }
    writeSummary(options_, summary);
    return status;
  }

  const EngineOptions& options_;
  const InstallPlan& plan_;
  const Manifest manifest_;
  std::string reason_;
};

}  // namespace

ExitStatus completeInstall(const EngineOptions& options, const InstallPlan& plan) {
  Manifest manifest = readManifest(options.package.parent_path() / kManifestName);
  const InstallLock lock(true);
  return Completion(options, plan, std::move(manifest)).run();
}

}  // namespace tavenhall

#include "host/cli/verify_text.h"

#include "host/base/text.h"
#include "host/cli/reading_progress.h"

#include <cstdio>
#include <string>

namespace tavenhall {

namespace {

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

}  // namespace

VerificationResult verifyWithProgress(const Manifest& manifest, const std::filesystem::path& folder,
                                      bool lite) {
  std::int64_t total = 0;
  for (const ManifestFile& file : manifest.files) {
    total += file.size;
  }
  ReadingProgress progress(total);
  return verifyInstalled(manifest, folder, lite, [&progress](std::int64_t bytes) { progress.add(bytes); });
}

std::vector<std::filesystem::path> writeManifestsWithProgress(const CheckedSet& set, SetFiles& files,
                                                              const StopRequest* stop) {
  {
    ReadingProgress progress(files.bytes);
    addDigests(
        files, [&progress](std::int64_t bytes) { progress.add(bytes); }, stop);
  }
  return writeManifests(set, files.manifest);
}

void printWritten(const std::vector<std::filesystem::path>& files) {
  for (const std::filesystem::path& file : files) {
    std::puts(format(_("Written: {0}"), {printableLine(file.string())}).c_str());
  }
}

void printProblems(const Manifest& manifest, const VerificationResult& result) {
  for (const VerifiedProblem& problem : result.problems) {
    const ManifestFile& file = manifest.files[problem.file];
    const std::string detail = problem.detail.empty() ? "" : " (" + problem.detail + ")";
    std::printf("! %s: %s%s\n", problemText(problem.kind).c_str(), printableLine(file.path).c_str(),
                detail.c_str());
  }
  for (const std::string& path : result.extraFiles) {
    std::printf("  %s\n", format(_("Not in the manifest: {0}"), {printableLine(path)}).c_str());
  }
  for (const auto& [number, count] : problemsByVolume(manifest, result)) {
    const std::string text = volumeText(manifest.volume(number));
    if (!text.empty()) {
      std::puts(plural("{0} file is to be installed again from {1}.",
                       "{0} files are to be installed again from {1}.", count, {text})
                    .c_str());
    }
  }
}

void printVerdict(const VerificationResult& result) {
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

}  // namespace tavenhall

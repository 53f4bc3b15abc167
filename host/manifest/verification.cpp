#include "host/manifest/verification.h"

#include "host/base/text.h"
#include "host/manifest/digests.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <set>
#include <sys/stat.h>
#include <unordered_set>
#include <utility>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

using Kind = VerifiedProblem::Kind;

constexpr std::array<std::pair<Kind, const char*>, 5> kProblemNames{{{Kind::missing, "missing"},
                                                                     {Kind::shorter, "short"},
                                                                     {Kind::longer, "long"},
                                                                     {Kind::different, "different"},
                                                                     {Kind::notReadable, "not-readable"}}};

std::string sizesText(std::int64_t found, std::int64_t expected) {
  return std::to_string(found) + " of " + std::to_string(expected) + " bytes";
}

// "TANVO/Tessaphon" of "TANVO/Tessaphon/a.db": the folder of one library, since the data folder has those of
// other products, too.
std::string libraryOf(const std::string& path) {
  const std::size_t first = path.find('/');
  const std::size_t second = first == std::string::npos ? first : path.find('/', first + 1);
  return second == std::string::npos ? std::string() : path.substr(0, second);
}

std::vector<std::string> extraFilesIn(const Manifest& manifest, const fs::path& folder) {
  std::set<std::string> libraries;
  std::unordered_set<std::string> known;
  for (const ManifestFile& file : manifest.files) {
    known.insert(file.path);
    if (file.path.front() != '/' && !libraryOf(file.path).empty()) {
      libraries.insert(libraryOf(file.path));
    }
  }
  std::vector<std::string> extra;
  for (const std::string& library : libraries) {
    std::error_code error;
    const fs::path top = folder / library;
    for (fs::recursive_directory_iterator it(top, fs::directory_options::skip_permission_denied, error), end;
         !error && it != end; it.increment(error)) {
      const std::string path = library + it->path().native().substr(top.native().size());
      const bool isHidden = it->path().filename().native().starts_with('.');
      if (!it->is_directory(error) && !isHidden && !known.contains(path)) {
        extra.push_back(path);
      }
    }
  }
  std::sort(extra.begin(), extra.end());
  return extra;
}

}  // namespace

std::map<std::int32_t, std::int64_t> problemsByVolume(const Manifest& manifest,
                                                      const VerificationResult& result) {
  std::map<std::int32_t, std::int64_t> counts;
  for (const VerifiedProblem& problem : result.problems) {
    ++counts[manifest.files[problem.file].volume];
  }
  return counts;
}

const char* problemName(Kind kind) {
  return std::find_if(kProblemNames.begin(), kProblemNames.end(),
                      [kind](const auto& row) { return row.first == kind; })
      ->second;
}

fs::path installedPath(const ManifestFile& file, const fs::path& folder) {
  return file.path.front() == '/' ? fs::path(file.path) : folder / file.path;
}

VerificationResult verifyInstalled(const Manifest& manifest, const fs::path& folder, bool lite,
                                   const std::function<void(std::int64_t bytes)>& progress) {
  VerificationResult result;
  std::vector<fs::path> paths;      // whose sizes are right
  std::vector<std::size_t> places;  // of them in the manifest
  for (std::size_t i = 0; i < manifest.files.size(); ++i) {
    const ManifestFile& file = manifest.files[i];
    const ManifestVolume* volume = manifest.volume(file.volume);
    if (lite && volume != nullptr && volume->isFullOnly) {
      continue;
    }
    fs::path path = installedPath(file, folder);
    struct stat found {};
    if (stat(path.c_str(), &found) != 0) {
      const bool isMissing = errno == ENOENT || errno == ENOTDIR;
      result.problems.push_back(
          {isMissing ? Kind::missing : Kind::notReadable, i, isMissing ? "" : std::strerror(errno)});
    } else if (!S_ISREG(found.st_mode)) {
      result.problems.push_back({Kind::different, i, "not a file"});
    } else if (found.st_size != file.size) {
      result.problems.push_back(
          {found.st_size < file.size ? Kind::shorter : Kind::longer, i, sizesText(found.st_size, file.size)});
    } else {
      paths.push_back(std::move(path));
      places.push_back(i);
    }
  }
  digestFiles(
      paths,
      [&](std::size_t index, const FileDigest& digest) {
        const ManifestFile& file = manifest.files[places[index]];
        if (digest.error != 0) {
          result.problems.push_back({Kind::notReadable, places[index], std::strerror(digest.error)});
        } else if (digest.digest != file.digest) {
          result.problems.push_back({Kind::different, places[index], ""});
        } else {
          ++result.files;
          result.bytes += file.size;
        }
      },
      progress);
  std::sort(result.problems.begin(), result.problems.end(),
            [](const VerifiedProblem& one, const VerifiedProblem& other) { return one.file < other.file; });
  result.extraFiles = extraFilesIn(manifest, folder);
  return result;
}

}  // namespace tavenhall

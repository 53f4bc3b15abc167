#include "host/manifest/manifest.h"

#include "host/base/exit_status.h"
#include "host/base/files.h"
#include "host/base/regular_file.h"
#include "host/base/text.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <string_view>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kFirstLine = "# tavinstall manifest 1";
constexpr std::string_view kProductLine = "# product ";
constexpr std::string_view kVolumeLine = "# volume ";
constexpr std::string_view kFullVolumeLine = "# full volume ";
constexpr std::string_view kFileLine = "# file ";
constexpr std::size_t kDigestLength = 64;

// sha256sum writes a name with one of these characters with backslashes, and marks its line by one.
std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    result += c == '\\' ? "\\\\" : c == '\n' ? "\\n" : c == '\r' ? "\\r" : std::string(1, c);
  }
  return result;
}

std::string unescaped(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + 1 < text.size()) {
      ++i;
      result += text[i] == 'n' ? '\n' : text[i] == 'r' ? '\r' : text[i];
    } else {
      result += text[i];
    }
  }
  return result;
}

// "12 rest": the number, and what is behind its blank; false if it does not begin with one.
bool takeNumber(std::string_view& text, std::int64_t& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || number < 0) {
    return false;
  }
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  text.remove_prefix(text.starts_with(' ') ? 1 : 0);
  return true;
}

// A path that leads nowhere but below the folder, or below the two folders of an update.
bool isAllowed(const std::string& path) {
  if (path.empty() ||
      (path.front() == '/' && !path.starts_with("/Library/") && !path.starts_with("/Applications/"))) {
    return false;
  }
  const fs::path parts(path);
  return std::none_of(parts.begin(), parts.end(),
                      [](const fs::path& part) { return part == ".." || part == "."; });
}

class ManifestReader {
 public:
  explicit ManifestReader(const fs::path& file) : file_(file) {}

  Manifest read() {
    requireNoSpecialFile(file_);
    std::ifstream stream(file_);
    if (!stream.is_open() || fs::is_directory(file_)) {
      throw UsageError(format(_("cannot read {0}: {1}"), {file_.string(), std::strerror(errno)}));
    }
    for (std::string line; std::getline(stream, line);) {
      ++lineNumber_;
      take(line);
    }
    if (lineNumber_ == 0 || manifest_.files.empty()) {
      fail(_("it lists no file"));
    }
    return std::move(manifest_);
  }

 private:
  [[noreturn]] void fail(const std::string& reason) const {
    throw UsageError(format(_("{0}, line {1}: {2}"), {file_.string(), std::to_string(lineNumber_), reason}));
  }

  void take(std::string_view line) {
    if (lineNumber_ == 1) {
      if (line != kFirstLine) {
        fail(_("this is no manifest of tavinstall"));
      }
    } else if (line.starts_with(kProductLine)) {
      manifest_.product = line.substr(kProductLine.size());
    } else if (line.starts_with(kVolumeLine)) {
      takeVolume(line.substr(kVolumeLine.size()), false);
    } else if (line.starts_with(kFullVolumeLine)) {
      takeVolume(line.substr(kFullVolumeLine.size()), true);
    } else if (line.starts_with(kFileLine)) {
      line.remove_prefix(kFileLine.size());
      std::int64_t volume = 0;
      if (!takeNumber(line, volume) || !takeNumber(line, nextSize_) || !line.empty()) {
        fail(_("a volume and a size belong here"));
      }
      nextVolume_ = static_cast<std::int32_t>(volume);
    } else if (!line.starts_with('#') && !line.empty()) {
      takeFile(line);
    }
  }

  void takeVolume(std::string_view text, bool isFullOnly) {
    std::int64_t number = 0;
    if (!takeNumber(text, number)) {
      fail(_("a volume's number belongs here"));
    }
    manifest_.volumes.push_back({static_cast<std::int32_t>(number), unescaped(text), isFullOnly});
  }

  void takeFile(std::string_view line) {
    const bool isEscaped = line.starts_with('\\');
    line.remove_prefix(isEscaped ? 1 : 0);
    const std::string_view digest = line.substr(0, kDigestLength);
    const bool isDigest = digest.size() == kDigestLength &&
                          digest.find_first_not_of("0123456789abcdef") == std::string_view::npos;
    if (!isDigest || line.substr(kDigestLength, 2) != "  " || nextSize_ < 0) {
      fail(_("a digest, two blanks and a path belong here, behind a line with the size"));
    }
    const std::string_view name = line.substr(kDigestLength + 2);
    const std::string path = isEscaped ? unescaped(name) : std::string(name);
    if (!isAllowed(path)) {
      fail(format(_("the path {0} leads out of the folder"), {path}));
    }
    manifest_.files.push_back({path, std::string(digest), nextSize_, nextVolume_});
    nextSize_ = -1;
  }

  const fs::path& file_;
  Manifest manifest_;
  int lineNumber_ = 0;
  std::int64_t nextSize_ = -1;
  std::int32_t nextVolume_ = 0;
};

}  // namespace

const ManifestVolume* Manifest::volume(std::int32_t number) const {
  const auto found = std::find_if(volumes.begin(), volumes.end(),
                                  [number](const ManifestVolume& volume) { return volume.number == number; });
  return found != volumes.end() ? &*found : nullptr;
}

std::string manifestText(const Manifest& manifest) {
  std::string text = std::string(kFirstLine) + "\n";
  text += std::string(kProductLine) + manifest.product + "\n";
  for (const ManifestVolume& volume : manifest.volumes) {
    text += std::string(volume.isFullOnly ? kFullVolumeLine : kVolumeLine) + std::to_string(volume.number) +
            " " + escaped(volume.name) + "\n";
  }
  for (const ManifestFile& file : manifest.files) {
    const std::string path = escaped(file.path);
    text += std::string(kFileLine) + std::to_string(file.volume) + " " + std::to_string(file.size) + "\n";
    text += (path != file.path ? "\\" : "") + file.digest + "  " + path + "\n";
  }
  return text;
}

Manifest readManifest(const fs::path& file) { return ManifestReader(file).read(); }

void writeManifest(const fs::path& file, const Manifest& manifest) {
  replaceFile(file, manifestText(manifest));
}

}  // namespace tavenhall

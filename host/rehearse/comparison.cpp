#include "host/rehearse/comparison.h"

#include "context/install_rules.h"
#include "host/base/files.h"
#include "host/log/log_records.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <unordered_map>
#include <unordered_set>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kCopyingFolder = "Copying folder ";
constexpr std::string_view kBeginCopy = "Begin copySingleVolume";

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

File openFile(const fs::path& path) { return {std::fopen(path.c_str(), "rbe"), std::fclose}; }

bool isFolder(const fs::path& path) {
  std::error_code error;
  return !path.empty() && fs::is_directory(path, error);
}

// The two folders of a "Copying folder" record. Paths hold blanks, so the place where the second begins is
// the one that makes two folders of them.
std::optional<CopiedFolder> folderPair(std::string_view text, const Locate& locate, int copy) {
  for (std::size_t at = text.find(" /"); at != std::string_view::npos; at = text.find(" /", at + 1)) {
    CopiedFolder pair;
    pair.source = text.substr(0, at);
    pair.destination = text.substr(at + 1);
    pair.sourceOutside = locate(pair.source, copy);
    pair.destinationOutside = locate(pair.destination, copy);
    pair.copy = copy;
    if (isFolder(pair.sourceOutside) && isFolder(pair.destinationOutside)) {
      pair.sourceOutside = fs::canonical(pair.sourceOutside);
      return pair;
    }
  }
  return std::nullopt;
}

Fate fateOf(const FileFate& file, const fs::path& destination, const std::function<void()>& goOn) {
  std::error_code error;
  if (!fs::exists(destination, error)) {
    return Fate::missing;
  }
  return haveSameContents(file.sourceOutside, destination, goOn) ? Fate::same : Fate::differs;
}

void compareModes(const fs::path& destination, FileFate& file) {
  struct stat source {};
  struct stat installed {};
  if (stat(file.sourceOutside.c_str(), &source) != 0 || stat(destination.c_str(), &installed) != 0) {
    return;
  }
  file.losesSetId = (source.st_mode & ~installed.st_mode & (S_ISUID | S_ISGID)) != 0;
  file.losesPrivacy = (source.st_mode & 077) == 0 && (installed.st_mode & 077) != 0;
}

}  // namespace

std::vector<CopiedFolder> copiedFolders(const fs::path& log, const Locate& locate) {
  std::vector<CopiedFolder> folders;
  int copy = -1;
  std::string topSource;
  LogRecords records([&](const LogRecord& record) {
    std::string_view message = record.message;
    if (message.starts_with(kBeginCopy)) {
      topSource.clear();  // the next folder begins a copy of its own
    }
    if (!message.starts_with(kCopyingFolder)) {
      return;
    }
    message.remove_prefix(kCopyingFolder.size());
    if (message.ends_with('\n')) {
      message.remove_suffix(1);
    }
    const bool isBelowTop = !topSource.empty() && message.starts_with(topSource + "/");
    copy += isBelowTop ? 0 : 1;
    if (auto pair = folderPair(message, locate, copy)) {
      if (!isBelowTop) {
        topSource = pair->source;
      }
      folders.push_back(std::move(*pair));
    }
  });
  const File file = openFile(log);
  std::array<char, 65536> buffer;
  while (const std::size_t count = file ? std::fread(buffer.data(), 1, buffer.size(), file.get()) : 0) {
    records.add({buffer.data(), count});
  }
  records.finish();
  return folders;
}

std::vector<FileFate> compareFiles(const std::vector<CopiedFolder>& folders,
                                   const std::function<void()>& goOn) {
  std::vector<FileFate> files;
  std::vector<fs::path> destinations;
  std::unordered_map<std::string, std::size_t> lastFor;
  for (const CopiedFolder& folder : folders) {
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder.sourceOutside, error)) {
      const std::string name = entry.path().filename();
      if (isHiddenName(name) || (entry.is_directory(error) && !entry.is_symlink(error))) {
        continue;
      }
      FileFate file;
      file.source = folder.source + "/" + name;
      file.destination = folder.destination + "/" + name;
      file.sourceOutside = entry.path();
      file.copy = folder.copy;
      std::error_code sizeError;
      const auto size = fs::file_size(entry.path(), sizeError);
      file.bytes = sizeError ? 0 : static_cast<std::int64_t>(size);
      destinations.push_back(folder.destinationOutside / name);
      lastFor[destinations.back().string()] = files.size();
      files.push_back(std::move(file));
    }
  }
  for (std::size_t i = 0; i < files.size(); ++i) {
    const bool isLast = lastFor[destinations[i].string()] == i;
    if (isLast) {
      files[i].fate = fateOf(files[i], destinations[i], goOn);
      compareModes(destinations[i], files[i]);
    } else {
      const bool isSame = haveSameContents(files[i].sourceOutside, destinations[i], goOn);
      files[i].fate = isSame ? Fate::replaced : Fate::overwritten;
    }
  }
  return files;
}

std::vector<std::string> filesNotCopied(const fs::path& folder, const std::vector<FileFate>& fates) {
  std::unordered_set<std::string> copied;
  for (const FileFate& file : fates) {
    copied.insert(file.sourceOutside.string());
  }
  std::vector<std::string> left;
  std::error_code error;
  for (fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied, error),
       end;
       !error && entry != end; entry.increment(error)) {
    if (isHiddenName(entry->path().filename().native())) {
      entry.disable_recursion_pending();
    } else if (std::error_code unknown;
               !entry->is_directory(unknown) && !copied.contains(entry->path().string())) {
      left.push_back(entry->path().lexically_relative(folder).string());
    }
  }
  std::sort(left.begin(), left.end());
  return left;
}

}  // namespace tavenhall

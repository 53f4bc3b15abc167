#include "context/folder_listing.h"
#include "context/installation_log.h"
#include "context/placement_rules.h"
#include "pane/copy_streams.h"
#include "pane/install_data_pane.h"
#include "pane/process_wide.h"
#include "platform/copy_hints.h"
#include "platform/system.h"

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>

namespace tavenhall {

float progressSizeForLoggingUnitBytes = 0;
std::int32_t progressCounterForLogging = 0;

namespace {

constexpr std::size_t kChildPathSize = 1024;
constexpr std::size_t kCommandSize = 2048;
constexpr std::size_t kErrorTextSize = 1024;
constexpr int kChunksBetweenUpdates = 100;
constexpr float kBytesBetweenProgressLines = 100000000.0F;
constexpr mode_t kFolderMode = 0777;  // before the umask

constexpr const char* kInputSheet = "Failed to open input file.";
constexpr const char* kOutputSheet = "Failed to open output file.";
constexpr const char* kPluginOutputSheet =
    "Cannot install plugin.  Use Finder to give write permission to all system plugin folders: \n\n"
    "/Library/Audio/Plug-Ins/Components \n"
    "/Library/Audio/Plug-Ins/VST \n"
    "/Library/Audio/Plug-Ins/VST3\n\n"
    "Then re-run this installer.";
constexpr const char* kSizesDifferSheet =
    "Failed to copy file.  Perhaps out of disk space on destination drive?   Contact customer support.";

// Does not check that the folder exists afterwards: otherwise its files fail to open.
void createFolder(const char* path) {
  const int result = mkdir(path, kFolderMode);
  // Required: logs the current errno; after success it is from the failed test for existence.
  addEventToInstallationLog("mkdir %d %d %s", result, errno, path);
  if (result == -1) {
    BoundedText<kCommandSize> command;
    command.format("sudo mkdir %s", path);  // required: unquoted
    const int status = runShellCommand(command.c_str());
    addEventToInstallationLog("mkdir2 %s %d %d %s", command.c_str(), status, errno, path);
  }
}

// Logs a line for each 100 MB; the bytes beyond are not carried over.
void countForProgressLog(std::size_t bytes) {
  progressSizeForLoggingUnitBytes += static_cast<float>(bytes);
  if (progressSizeForLoggingUnitBytes > kBytesBetweenProgressLines) {
    addEventToInstallationLog("Data copy progress %d (x 100MB)", progressCounterForLogging);
    ++progressCounterForLogging;
    progressSizeForLoggingUnitBytes = 0;
  }
}

std::int64_t sizeOf(const FilePlace& file) {
  struct stat found {};
  fstatat(file.folder, file.name, &found, 0);  // required: a failure counts as a size of 0
  return found.st_size;
}

}  // namespace

std::int32_t InstallDataPane::copyDirectoryOrFile(const char* source, const char* dest, const char* tailName,
                                                  bool isADir) noexcept {
  if (dest == nullptr) {
    addEventToInstallationLog("copyDirectoryOrFile: no destination for %s", source);
    return 0;
  }
  return copyEntry({source}, {dest}, tailName, isADir);
}

std::int32_t InstallDataPane::copyEntry(const FilePlace& source, const FilePlace& dest, const char* tailName,
                                        bool isADir) noexcept {
  placePlugin(source.path, dest.path);
  const std::int32_t result = isADir ? copyDirectory(source.path, dest.path, tailName) : copyFile(source, dest);
  openApplicationPermissions(dest.path);
  return result;
}

std::int32_t InstallDataPane::copyTree(const char* source, const char* dest, const char* tailName) noexcept {
  const TreeCopy copy{source, dest};
  host().copyBegun(copy);
  const std::int32_t result = copyDirectoryOrFile(source, dest, tailName, true);
  host().copyFinished(copy, result != 0);
  return result;
}

std::int32_t InstallDataPane::copyDirectory(const char* source, const char* dest,
                                            const char* tailName) noexcept {
  addEventToInstallationLog("Copying folder %s %s\n", source, dest);
  gItemCurrentlyBeingInstalled.assign(tailName);
  struct stat found {};
  if (stat(dest, &found) != 0) {
    createFolder(dest);
  }

  // Required: a source folder that cannot be opened counts as copied, and nothing reports it. No failed child
  // stops the walk, and entries of unknown type are copied as files.
  std::int32_t result = 1;
  FolderListing listing(source);
  const OpenFolder destFolder(dest);
  while (const dirent* entry = listing.next()) {
    BoundedText<kChildPathSize> childSource;
    BoundedText<kChildPathSize> childDest;
    childSource.format("%s/%s", source, entry->d_name);
    childDest.format("%s/%s", dest, entry->d_name);
    result &=
        copyEntry({childSource.c_str(), listing.descriptor(), entry->d_name},
                  destFolder.place(childDest.c_str(), entry->d_name), entry->d_name, entry->d_type == DT_DIR);
  }
  return result;
}

std::int32_t InstallDataPane::copyFile(const FilePlace& source, const FilePlace& dest) noexcept {
  ReadAhead::cameToFile();
  currentFile = source.path;
  ++filesBegun;
  if (isAttributesFile(source.path)) {
    ++filesDone;
    addEventToInstallationLog("copyDirectoryOrFile: skipping copy of Inst. Attrib file");
    return 1;
  }
  if (isAaxSignature(source.path)) {
    // The shell's cp keeps the attributes that the signature needs.
    BoundedText<kCommandSize> command;
    command.format("cp  -a  \"%s\" \"%s\"", source.path, dest.path);
    addEventToInstallationLog("copying AAX signature with command:  %s", command.c_str());
    runShellCommand(command.c_str());
    ++filesDone;
    return 1;
  }
  const std::int32_t result = copyBytes(source, dest);
  ++filesDone;
  updateProgress();
  return result;
}

std::int32_t InstallDataPane::copyBytes(const FilePlace& source, const FilePlace& dest) noexcept {
  CopySource in(source);
  CopyDestination out(dest, in);
  const int outError = errno;

  if (!in.isOpen()) {
    addEventToInstallationLog("Source error %s %s\n", source.path, dest.path);
    showSheetFromWorker(kInputSheet);
    return 0;
  }
  if (!out.isOpen()) {
    std::array<char, kErrorTextSize> text{};
    errorText(outError, text.data(), text.size());
    addEventToInstallationLog("Target error %s %s %s\n", source.path, dest.path, text.data());
    showSheetFromWorker(isAudioPluginDestination(dest.path) ? kPluginOutputSheet : kOutputSheet);
    return 0;
  }

  int chunkNumber = 0;
  for (auto bytes = in.next(); !bytes.empty(); bytes = in.next()) {
    bytesWritten += static_cast<std::int64_t>(out.write(bytes));  // the sizes below reveal a short write
    while (!bytes.empty()) {
      const std::size_t chunk = std::min(bytes.size(), kChunkSize);
      bytes = bytes.subspan(chunk);
      kBytesCopied += static_cast<std::int64_t>(chunk >> 10);  // required: each chunk is rounded down
      countForProgressLog(chunk);
      if (++chunkNumber % kChunksBetweenUpdates == 0) {
        updateProgress();
      }
    }
  }
  in.close();
  out.close();

  // Required: a different size is reported to the user, and the copy still counts as done.
  const std::int64_t sourceSize = sizeOf(source);
  const std::int64_t destSize = sizeOf(dest);
  if (sourceSize != destSize) {
    addEventToInstallationLog("File copy failure: sizes differ: %s (size is %lld) %s  (size is %lld)  \n",
                              source.path, static_cast<long long>(sourceSize), dest.path,
                              static_cast<long long>(destSize));
    showSheetFromWorker(kSizesDifferSheet);
  }
  return 1;
}

}  // namespace tavenhall

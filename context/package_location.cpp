#include "context/first_line.h"
#include "context/installation_log.h"
#include "context/internal_lookups.h"
#include "platform/installer_pane.h"

#include <mutex>

namespace tavenhall {

constinit thread_local BoundedText<kPackageFolderSize> sOutputPathWithCallersSubfolder;

namespace {

// Set before the first open, so that a failed open is never repeated. A second thread waits until the first one
// has read the file.
constinit std::once_flag sHaveReadTavLocFile;

// Written once, under sHaveReadTavLocFile.
constinit BoundedText<kFirstLineSize> sContentsOfTavLocFile;

bool isSeparator(char character) { return character == '/' || character == '\\'; }

}  // namespace

void getFolderContainingPKGfile(const char* subfolder) noexcept {
  sOutputPathWithCallersSubfolder.clear();

  bool couldNotOpen = false;
  std::call_once(sHaveReadTavLocFile,
                 [&couldNotOpen] { couldNotOpen = !readFirstLine(kLocationFile, sContentsOfTavLocFile); });
  if (couldNotOpen) {
    addEventToInstallationLog("getFolderContainingPKGfile: could not open preinstall file  %s", kLocationFile);
    return;
  }

  BoundedText<kPackageFolderSize> folder;
  folder.assign(sContentsOfTavLocFile.view());
  if (folder.empty()) {
    addEventToInstallationLog("getFolderContainingPKGfile: preinstall file is empty");
    return;
  }

  // Together these two remove one trailing separator.
  if (!isSeparator(folder.view().back())) {
    folder.append("/");
  }
  folder.data()[folder.length() - 1] = '\0';

  const std::size_t lastSeparator = folder.view().find_last_of("/\\");
  if (lastSeparator != std::string_view::npos) {
    folder.data()[lastSeparator] = '\0';
  }

  if (subfolder != nullptr) {
    sOutputPathWithCallersSubfolder.format("%s/%s", folder.c_str(), subfolder);
  } else {
    sOutputPathWithCallersSubfolder.assign(folder.view());
  }
}

}  // namespace tavenhall

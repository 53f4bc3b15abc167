#pragma once

#include "context/bounded_text.h"
#include "context/install_rules.h"
#include "platform/installer_host.h"
#include "platform/installer_pane.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <string>

namespace tavenhall {

struct FilePlace;

inline constexpr std::size_t kFolderNameSize = 512;

// The page. Its methods are in these files, in the order in which an install goes through them:
//
//   pane_lifecycle      entering and leaving the page, its title, buttons and sheets
//   progress_display    the bar and the status line
//   central_folder      where the data goes, through links and aliases
//   install_job_start   what to install, decided before the install thread starts
//   edition_detection   the libraries in an update, and the editions that the user has
//   source_volumes      how many volumes, and where they are mounted
//   install_driver      the install thread
//   volume_loop         every volume of one data folder: prompts, folders, copy, eject
//   volume_copy         the copy thread
//   copy_engine         folders and files
//   plugin_placement    plug-ins and applications of an update
//
// Three threads meet here: the main thread (the installer's calls, dialogs), the install thread, and one
// copy thread at a time. Every member is public, since methods and tests are its only readers: hosts see
// the page as an InstallerPane. There is no lock; each group of members says who writes it and when. The
// start of a thread orders what the starter wrote before it, copySingleVolumeRunning orders what the copy
// thread wrote, and a dispatch to the main thread orders both ways.
class InstallDataPane final : public InstallerPane {
 public:
  explicit InstallDataPane(InstallerHost& host) noexcept;

  // ---- Controls: set at construction ----

  TextField* instructions;  // the large text
  TextField* status;        // one line under the bar
  Button* uiButton;         // connected in the layout; nothing reads or writes it
  ProgressIndicator* progressIndicator;

  // ---- Progress ----

  // Nonzero once the latest volume copy succeeded. Written on entry and by the copy thread, read anywhere.
  std::atomic<std::int32_t> readyToProceed = 0;

  // Units of 1024 bytes. Written on entry, then by the thread that runs the copy engine.
  std::int64_t kBytesCopied = 0;

  // Bytes. Written on entry, then by the install thread.
  std::int64_t totalNumBytesExpectedAcrossAllVolumes = 0;

  // For snapshot(): bytes that write(2) has taken, files that the copy engine is done with, and the file that
  // it copies now or copied last. Written on entry, then by the thread that runs the copy engine.
  std::int64_t bytesWritten = 0;
  std::int64_t filesBegun = 0;
  std::int64_t filesDone = 0;
  std::string currentFile;

  // ---- The copy that runs: written by the install thread before it starts a copy thread ----

  const char* copySrcPath = nullptr;  // points at one of the path buffers below
  const char* copyDstPath = nullptr;  // the same pointer as gTANVOorDOVA_destinationPath

  // The central data folder, or null. Kept alive by findCentralFolder for the process. Written on entry,
  // then by the install thread.
  const char* gTANVOorDOVA_destinationPath = nullptr;

  // Written before the install thread starts, then by it.
  std::int32_t gVolumeCount = 0;
  std::int32_t gCurrentVolumeNumber = 0;  // from 0; not reset on entry

  // 1 while a copy thread runs. Set by the install thread, cleared by the copy thread as its last act, with
  // release order; the install thread polls it with acquire order.
  std::atomic<std::int32_t> copySingleVolumeRunning = 0;

  // Written before the install thread starts; not reset on entry. Read anywhere.
  std::atomic<std::int32_t> gInstallMode = 0;

  // ---- Names and paths: emptied on entry; written before the install thread starts, then by it ----

  BoundedText<128> gTANVOorDOVAnameOnly;
  BoundedText<kPathSize> gPathOfSourceDataExcludingTANVOtail;
  BoundedText<kPathSize> gPathOfSourceDataIncludingTANVOtail;
  BoundedText<kPathSize> gAltSrcFolder;
  BoundedText<512> gPluginNameChar;
  BoundedText<kPathSize> gCompletionMessage;  // a format; its "%s" takes the destination path

  // The folder being copied. Written by the thread that runs the copy engine.
  BoundedText<kFolderNameSize> gItemCurrentlyBeingInstalled;

  // ---- Editions: written before the install thread starts, which only reads them, except the second, which it
  // ---- updates with the volume count

  std::int32_t gInstallationHasLiteVsFullOption = 0;  // not reset on entry
  std::int32_t gAllTwoComponentInstallChoicesAreLite = 0;
  std::array<std::int32_t, kLibrarySlots> gTwoComponentInstallChoicesAreLite{};  // 1 = Lite
  std::array<BoundedText<kFolderNameSize>, kLibrarySlots> gTwoComponentInstallFolderNames;
  std::int32_t gNumTwoComponentInstallFolders = 0;
  std::int32_t gNumMirelPacksInstallFolders = 0;

  // ---- pane_lifecycle: main thread, unless it says otherwise ----

  void didEnterPane(std::int64_t direction) noexcept override;
  [[nodiscard]] bool shouldExitPane(std::int64_t direction) noexcept override;
  [[nodiscard]] std::string title() noexcept override;
  void controlTextDidChange() noexcept override;
  void updateText() noexcept override;  // an action target of the layout; does nothing
  [[nodiscard]] std::int32_t isReadyToProceed() const noexcept override;
  [[nodiscard]] PaneSnapshot snapshot() const noexcept override;

  [[nodiscard]] bool _entriesAreValid() const noexcept;                               // any thread
  void _updateNextButtonState() noexcept;                                             // any thread
  [[nodiscard]] static std::string _localizedStringForKey(const char* key) noexcept;  // any thread
  void displayCompletionMessage() noexcept;                                           // the install thread

  // Begin a sheet with one button, the localised "OK_BUTTON". The second, for worker threads, dispatches to the
  // main thread and returns when the sheet has begun.
  void showSheet(const char* message) noexcept;
  void showSheetFromWorker(const char* message) noexcept;

  // ---- progress_display: a worker thread ----

  void updateProgress() noexcept;

  // ---- central_folder: the main or the install thread, never both at once ----

  // Returns the path of the data folder `name` (null or empty: the localised "FolderName"), or null if nothing
  // exists there. The result is valid as long as the process.
  [[nodiscard]] static const char* findCentralFolder(const char* name) noexcept;

  // ---- install_job_start and edition_detection: main thread ----

  void spawnBackgroundInstallJob() noexcept;
  void settleEditionOption() noexcept;
  void readEditionChoiceFile() noexcept;
  void settleSourceRoot() noexcept;
  void announceDetectedEditions() noexcept;
  void storeTwoComponentInstallFolderNames() noexcept;
  void determineInstallationTypesInLocalTANVOFolder() noexcept;

  // ---- source_volumes: the main or the install thread, never both at once ----

  void determineNumVolumesToInstall() noexcept;
  void getFullPathOfVolumeNumber(std::int32_t number, BoundedText<kPathSize>& outputPath) const noexcept;

  // ---- install_driver and volume_loop: the install thread ----

  void doEntireInstall() noexcept;
  void copySupportHubExternalFolders() noexcept;
  void installAllVolumesForOneOf_TANVOorDOVA() noexcept;

  // Sets the root of the current volume. Returns the optional disc that it is, or null.
  [[nodiscard]] const OptionalDisc* chooseVolumeRoot(bool hasOptionalDiscs) noexcept;

  // Waits for the current volume's disc. Returns false if the user skips an optional disc.
  [[nodiscard]] bool waitForVolume(const OptionalDisc* optionalDisc) noexcept;
  [[nodiscard]] int askForOptionalDisc(const OptionalDisc& disc) noexcept;
  void askForMandatoryVolume() noexcept;
  void prepareFirstVolume() noexcept;

  // Returns the folder of the current volume that holds the data, or null if it has neither.
  [[nodiscard]] const char* chooseFolderToCopy() noexcept;
  void copyVolumeOnItsThread(const char* folder) noexcept;

  // ---- volume_copy: the copy thread ----

  void copySingleVolume() noexcept;

  // ---- copy_engine: the copy thread, or the install thread ----

  // Copies a folder with everything below it, or a file. Returns 1 for success, 0 for failure. A null `dest`
  // copies nothing and returns 0. `tailName` is what the user sees while a folder is copied. Aborts if a path
  // does not fit its buffer.
  std::int32_t copyDirectoryOrFile(const char* source, const char* dest, const char* tailName,
                                   bool isADir) noexcept;
  [[nodiscard]] std::int32_t copyEntry(const FilePlace& source, const FilePlace& dest, const char* tailName,
                                       bool isADir) noexcept;
  [[nodiscard]] std::int32_t copyDirectory(const char* source, const char* dest, const char* tailName) noexcept;
  [[nodiscard]] std::int32_t copyFile(const FilePlace& source, const FilePlace& dest) noexcept;
  [[nodiscard]] std::int32_t copyBytes(const FilePlace& source, const FilePlace& dest) noexcept;

  // copyDirectoryOrFile for a whole tree, between the host's two notifications.
  std::int32_t copyTree(const char* source, const char* dest, const char* tailName) noexcept;

  // ---- plugin_placement: the thread of the copy engine ----

  void placePlugin(const char* source, const char* dest) const noexcept;
  void openApplicationPermissions(const char* dest) const noexcept;

  // Runs `block` on the main thread and returns when it has run. Worker threads only.
  template <typename Block>
  void onMainThread(Block block) noexcept {
    host().dispatchSync([](void* context) { (*static_cast<Block*>(context))(); }, &block);
  }
};

}  // namespace tavenhall

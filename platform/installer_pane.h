#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tavenhall {

class InstallerHost;

// The files by which the installer's pre-install step passes to the page where the package is, and which
// edition
// ("Lite" or "Full") the user chose. Each holds one line.
inline constexpr const char* kLocationFile = "/tmp/TavInstallLoc";
inline constexpr const char* kInstallTypeFile = "/tmp/TavInstallType";

inline constexpr std::int64_t kDirectionForward = 0;
inline constexpr std::int64_t kDirectionBackward = 1;

// A copy of the page's state, for hosts that present it.
struct PaneSnapshot {
  std::int32_t readyToProceed = 0;
  std::int32_t installMode = 0;
  std::int64_t kBytesCopied =
      0;  // the page's own count: units of 1024 bytes, each chunk of a file rounded down
  std::int64_t bytesWritten = 0;         // since the page was entered; what write(2) has taken
  std::int64_t filesBegun = 0;           // since the page was entered; one more than filesDone within a file
  std::int64_t filesDone = 0;            // since the page was entered; copied, failed and skipped ones
  std::string currentFile;               // the file copied now or last, at the source; empty before the first
  std::int32_t currentVolumeNumber = 0;  // from 0
  std::int32_t volumeCount = 0;          // of the current pass
  std::string sourceFolder;              // of the volume copied last; empty before the first
  std::string destinationFolder;         // the central data folder; empty where there is none
};

// The volume, from 1, that a copy of this source is of; 0 for a folder beside the package. Of a snapshot that
// is taken while the copy begins or ends.
[[nodiscard]] inline std::int32_t volumeOf(std::string_view source, const PaneSnapshot& snapshot) {
  const bool isVolume = !snapshot.sourceFolder.empty() && source.starts_with(snapshot.sourceFolder);
  return isVolume ? snapshot.currentVolumeNumber + 1 : 0;
}

// A page of the installer, as the installer sees it. The host calls it on its main thread, and enters it again
// only when every page thread has ended.
class InstallerPane {
 public:
  InstallerPane(const InstallerPane&) = delete;
  InstallerPane& operator=(const InstallerPane&) = delete;
  virtual ~InstallerPane() = default;

  // The page is shown. Main thread.
  virtual void didEnterPane(std::int64_t direction) noexcept = 0;

  // May the page be left? Main thread.
  [[nodiscard]] virtual bool shouldExitPane(std::int64_t direction) noexcept = 0;

  // The page's name, UTF-8; asked for at any time. Main thread.
  [[nodiscard]] virtual std::string title() noexcept = 0;

  // A text of the layout was edited; an action of the layout was sent. Main thread.
  virtual void controlTextDidChange() noexcept = 0;
  virtual void updateText() noexcept = 0;

  // The flag may be read at any time on any thread. A snapshot may be taken while no page thread runs, inside
  // dispatchSync, and inside a notification by the thread that sends it.
  [[nodiscard]] virtual std::int32_t isReadyToProceed() const noexcept = 0;
  [[nodiscard]] virtual PaneSnapshot snapshot() const noexcept = 0;

 protected:
  explicit InstallerPane(InstallerHost& host) noexcept : host_(host) {}

  [[nodiscard]] InstallerHost& host() const noexcept { return host_; }

 private:
  InstallerHost& host_;
};

// What a bundle exports with C linkage as kPageFactoryName. Returns the bundle's page, which the caller owns
// and never destroys while a page thread runs; null when the interface versions differ.
using PageFactory = InstallerPane* (*)(InstallerHost* host, std::uint32_t interfaceVersion);
inline constexpr const char* kPageFactoryName = "createInstallDataPane";

}  // namespace tavenhall

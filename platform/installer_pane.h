#pragma once

#include <cstdint>
#include <string>

namespace tavenhall {

class InstallerHost;

// The files by which the installer's pre-install step tells the page where the package is, and which edition
// ("Lite" or "Full") the user chose. Each holds one line.
inline constexpr const char* kLocationFile = "/tmp/TavInstallLoc";
inline constexpr const char* kInstallTypeFile = "/tmp/TavInstallType";

inline constexpr std::int64_t kDirectionForward = 0;
inline constexpr std::int64_t kDirectionBackward = 1;

// The page's state, copied for a host.
struct PaneSnapshot {
  std::int32_t readyToProceed = 0;
  std::int32_t installMode = 0;
  std::int64_t kBytesCopied = 0;         // units of 1024 bytes
  std::int32_t currentVolumeNumber = 0;  // from 0
  std::int32_t volumeCount = 0;
  std::string sourceFolder;       // of the volume copied last; empty before the first
  std::string destinationFolder;  // the central data folder; empty where there is none
};

// A page of the installer, as the installer sees it. The host calls from its main thread, and enters again
// only when every thread that the page has started has ended.
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

  // The two flags may be read at any time and on any thread; the whole only while no page thread runs, from
  // inside a hand-off, or from a page thread's own notification.
  [[nodiscard]] virtual std::int32_t isReadyToProceed() const noexcept = 0;
  [[nodiscard]] virtual PaneSnapshot snapshot() const noexcept = 0;

 protected:
  explicit InstallerPane(InstallerHost& host) noexcept : host_(host) {}

  [[nodiscard]] InstallerHost& host() const noexcept { return host_; }

 private:
  InstallerHost& host_;
};

// What a bundle exports, with C linkage under kPageFactoryName: makes its one page, owned by the caller,
// which never destroys it while a page thread runs. Null when the interface versions differ.
using PageFactory = InstallerPane* (*)(InstallerHost* host, std::uint32_t interfaceVersion);
inline constexpr const char* kPageFactoryName = "createInstallDataPane";

}  // namespace tavenhall

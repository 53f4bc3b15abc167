#pragma once

#include <cstdint>
#include <span>

// What the program that shows the page gives it: the page's controls, the installer's buttons, alerts and
// sheets, and synchronous dispatch to the main thread. One build of the page is shown by many hosts, so this is
// a run-time interface. Texts are NUL-terminated byte strings, UTF-8 unless a file said otherwise, and valid
// only during the call. Nothing here throws.
namespace tavenhall {

// Raised whenever this header or installer_pane.h changes. The page refuses a host of another version.
inline constexpr std::uint32_t kInstallerInterfaceVersion = 4;

// A text field of the page. Any thread.
class TextField {
 public:
  virtual void setTitleWithMnemonic(const char* text) noexcept = 0;
  virtual void setNeedsDisplay() noexcept = 0;

 protected:
  ~TextField() = default;
};

// Connected in the page's layout. The page neither reads nor writes it.
class Button {};

// The progress bar. Its range is 0 to 100 and its value 0 until the page sets them. Any thread.
class ProgressIndicator {
 public:
  virtual void setMinValue(double value) noexcept = 0;
  virtual void setMaxValue(double value) noexcept = 0;
  virtual void setDoubleValue(double value) noexcept = 0;
  [[nodiscard]] virtual double maxValue() const noexcept = 0;
  [[nodiscard]] virtual double doubleValue() const noexcept = 0;
  virtual void displayIfNeeded() noexcept = 0;

 protected:
  ~ProgressIndicator() = default;
};

inline constexpr int kAlertFirstButtonReturn = 1000;
inline constexpr int kAlertSecondButtonReturn = 1001;
inline constexpr int kAlertStyleInformational = 1;

struct Alert {
  const char* messageText;
  const char* informativeText;
  std::span<const char* const> buttons;  // in order; at least one
  int style;
};

struct Sheet {
  const char* defaultButton;
  const char* message;  // shown as it stands, percent signs included
};

// A folder tree that the page copies. The paths are valid only during the call.
struct TreeCopy {
  const char* source;
  const char* destination;  // null where there is no destination folder; then nothing is copied
};

class InstallerHost {
 public:
  // The controls, which live as long as the host. Main thread.
  virtual TextField& instructions() noexcept = 0;
  virtual TextField& status() noexcept = 0;
  virtual Button& uiButton() noexcept = 0;
  virtual ProgressIndicator& progressIndicator() noexcept = 0;

  // The installer's own buttons. Any thread.
  virtual void setNextEnabled(bool enabled) noexcept = 0;
  virtual void setPreviousEnabled(bool enabled) noexcept = 0;

  // Shows the alert and blocks until it is answered. Returns kAlertFirstButtonReturn for the first button, and
  // on from there. Main thread, or a block that dispatchSync runs.
  [[nodiscard]] virtual int runModal(const Alert& alert) noexcept = 0;

  // Begins a sheet with one button and returns without waiting for the user. Main thread, or a block that
  // dispatchSync runs.
  virtual void beginInformationalSheet(const Sheet& sheet) noexcept = 0;

  // Runs `block(context)` on the main thread, or on the calling thread while it excludes the main thread, and
  // returns when it has run. Never from the main thread itself. May not return once the host has quit.
  virtual void dispatchSync(void (*block)(void*), void* context) noexcept = 0;

  // Bracket changes of the bar that are not to be animated. Any thread.
  virtual void beginAnimationGrouping() noexcept = 0;
  virtual void setAnimationDuration(double seconds) noexcept = 0;
  virtual void endAnimationGrouping() noexcept = 0;

  // ---- Notifications. Any thread; the page holds no lock. ----

  // A page thread starts or ends; `name` is "doEntireInstall" or "copySingleVolume". The thread reports its end
  // itself, as its last act.
  virtual void pageThreadStarted(const char* name) noexcept = 0;
  virtual void pageThreadEnded(const char* name) noexcept = 0;

  // The copy of a tree begins or ends, on the thread that copies. At the end the tree's volume is still
  // mounted; `isCopied` is the page's own result, which is false when a file could not be opened. In between,
  // InstallerPane::snapshot() may be called on that thread.
  virtual void copyBegun(const TreeCopy& copy) noexcept = 0;
  virtual void copyFinished(const TreeCopy& copy, bool isCopied) noexcept = 0;

  // The page turns to a disc, or to an optional one that the user may skip. `root` is where the disc is
  // mounted; InstallerPane::snapshot() may be called, and has the disc's number.
  virtual void discBegun(const char* root) noexcept = 0;

  // The page waits `seconds` from now on, then looks for the disc of the latest discBegun() again. In the
  // dispatch that has asked for it.
  virtual void discAwaited(unsigned seconds) noexcept = 0;

  // The page runs the command that ejects the disc; its next notification or dispatch comes afterwards.
  virtual void ejectBegun() noexcept = 0;

  // A power assertion is taken or released, whether or not the system grants it.
  virtual void assertionTaken(const char* type, std::uint32_t level, const char* name) noexcept = 0;
  virtual void assertionReleased(const char* type) noexcept = 0;

 protected:
  ~InstallerHost() = default;
};

}  // namespace tavenhall

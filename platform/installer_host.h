#pragma once

#include <cstdint>
#include <span>

// What the program that shows the page gives it: the controls of the page, the installer's buttons, alerts,
// and the way to the main thread. One build of the page is shown by many hosts, so this is a run-time
// interface. Texts are NUL-terminated byte strings, UTF-8 unless a file said otherwise, and valid only
// during the call. Nothing here throws.
namespace tavenhall {

// Raised whenever this header or installer_pane.h changes its meaning; page and host must agree.
inline constexpr std::uint32_t kInstallerInterfaceVersion = 1;

// A text on the page. Any thread.
class TextField {
 public:
  virtual void setTitleWithMnemonic(const char* text) noexcept = 0;
  virtual void setNeedsDisplay() noexcept = 0;

 protected:
  ~TextField() = default;
};

// Connected in the page's layout; the page neither reads nor writes it.
class Button {};

// The bar. Starts as 0 of 0 to 100 or as the host's layout has it. Any thread.
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

class InstallerHost {
 public:
  // The controls. They live as long as the host; main thread.
  virtual TextField& instructions() noexcept = 0;
  virtual TextField& status() noexcept = 0;
  virtual Button& uiButton() noexcept = 0;
  virtual ProgressIndicator& progressIndicator() noexcept = 0;

  // The installer's own buttons. Any thread.
  virtual void setNextEnabled(bool enabled) noexcept = 0;
  virtual void setPreviousEnabled(bool enabled) noexcept = 0;

  // Shows the alert and waits for its answer: kAlertFirstButtonReturn for the first button, and on from
  // there. Main thread only.
  [[nodiscard]] virtual int runModal(const Alert& alert) noexcept = 0;

  // Begins a sheet with one button and returns without waiting for the user. Main thread only.
  virtual void beginInformationalSheet(const Sheet& sheet) noexcept = 0;

  // Runs `block(context)` on the main thread and returns when it has run. Never from the main thread: it
  // would wait for itself. After the host has quit, it does not return.
  virtual void dispatchSync(void (*block)(void*), void* context) noexcept = 0;

  // Brackets changes of the bar that are not to be animated. Any thread.
  virtual void beginAnimationGrouping() noexcept = 0;
  virtual void setAnimationDuration(double seconds) noexcept = 0;
  virtual void endAnimationGrouping() noexcept = 0;

  // What a host may want to know of the page; any thread, and no lock of the page's is held.
  // A thread's name is "doEntireInstall" or "copySingleVolume". Ended is said by the thread itself, as its
  // last act.
  virtual void pageThreadStarted(const char* name) noexcept = 0;
  virtual void pageThreadEnded(const char* name) noexcept = 0;
  virtual void assertionTaken(const char* type, std::uint32_t level, const char* name) noexcept = 0;
  virtual void assertionReleased(const char* type) noexcept = 0;

 protected:
  ~InstallerHost() = default;
};

}  // namespace tavenhall

#pragma once

#include "host/base/exit_status.h"
#include "host/protocol/messages.h"
#include "host/ui/styled_text.h"

#include <cstdint>
#include <string>
#include <vector>

// The run that the window shows: the texts before and after the page, the pre-install step, and the numbers
// beside the bar. Main thread, unless a function says otherwise. Nothing here throws, so Objective-C can call
// it.
namespace tavenhall {

// One of the installer's own pages: a heading and unwrapped lines.
struct DesktopText {
  Span heading;
  std::vector<Line> lines;
};

// The page's bar, and the bytes that the page has written since it was entered.
struct DesktopProgress {
  double minimum = 0.0;
  double maximum = 0.0;
  double value = 0.0;
  std::int64_t bytesWritten = 0;
};

class DesktopRun {
 public:
  [[nodiscard]] virtual const std::string& productName() const noexcept = 0;
  [[nodiscard]] virtual const std::string& bundlePath() const noexcept = 0;
  [[nodiscard]] virtual DesktopText introduction() const noexcept = 0;

  // Performs the pre-install step and takes the install lock. Returns what is wrong, or an empty text. Call it
  // before the page starts a thread.
  [[nodiscard]] virtual std::string prepare() noexcept = 0;

  // The page is entered.
  virtual void begin() noexcept = 0;

  // The bar has changed. Any thread.
  virtual void setProgress(const DesktopProgress& progress) noexcept = 0;

  // Compares a copy that has ended with its source, which must still be mounted. `isCopied` is the page's own
  // result. A thread of the page.
  virtual void auditCopy(const event::CopyBegin& copy, bool isCopied) noexcept = 0;

  // The page reports a failure to the user, at this file of the source; empty while it copies none. A thread of
  // the page.
  virtual void addFailure(const std::string& source) noexcept = 0;

  // What the page does: turns to the disc of a volume (`number` from 0, of `count`), looks for it after so many
  // seconds, copies (`volume` from 1; 0 for a folder beside the package), and ejects it. A thread of the page.
  virtual void beginDisc(const std::string& root, int number, int count) noexcept = 0;
  virtual void awaitDisc(unsigned seconds) noexcept = 0;
  virtual void beginCopy(int volume, int count) noexcept = 0;
  virtual void beginEject() noexcept = 0;

  // An alert is up, or none any more.
  virtual void setAsking(bool isAsking) noexcept = 0;

  // The page was left forwards.
  virtual void end() noexcept = 0;

  // The user has closed the window before that.
  virtual void stop() noexcept = 0;

  // What the install does now: "Disc 2 of 3: Tessaphon B - copying", and "34 %, 812.4 MB of 1.9 GB, 54.2 MB/s,
  // about 3 min left"; empty while nothing is known.
  [[nodiscard]] virtual std::string phaseText() noexcept = 0;
  [[nodiscard]] virtual std::string progressText() noexcept = 0;

  // The result. Call it after end().
  [[nodiscard]] virtual DesktopText summary() const noexcept = 0;
  [[nodiscard]] virtual ExitStatus exitStatus() const noexcept = 0;

 protected:
  ~DesktopRun() = default;
};

}  // namespace tavenhall

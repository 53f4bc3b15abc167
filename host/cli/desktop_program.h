#pragma once

#include "host/base/mutex.h"
#include "host/cli/run_description.h"
#include "host/desktop/desktop_run.h"
#include "host/engine/pre_install.h"
#include "host/engine/run_engine.h"
#include "host/engine/run_phases.h"
#include "host/protocol/run_record.h"
#include "host/ui/phase_line.h"
#include "host/ui/progress_meter.h"
#include "host/ui/run_result.h"

#include <memory>
#include <optional>
#include <string>

namespace tavenhall {

// What `tavinstall-desktop` does besides showing its window.
class DesktopProgram final : public DesktopRun {
 public:
  // Selects the language of the installer's own texts, by the name of its folder in a bundle.
  static void setLanguage(const std::string& language) noexcept;

  // Reads the options, each from the arguments or else from the environment. When there is nothing to show (a
  // request for help, or a usage error), prints it and returns the exit status. Call it before any thread is
  // started.
  [[nodiscard]] std::optional<ExitStatus> read(int argumentCount, char** arguments) noexcept;

  [[nodiscard]] const std::string& productName() const noexcept override;
  [[nodiscard]] const std::string& bundlePath() const noexcept override { return bundlePath_; }
  [[nodiscard]] DesktopText introduction() const noexcept override;
  [[nodiscard]] std::string prepare() noexcept override;
  void begin() noexcept override;
  void setProgress(const DesktopProgress& progress) noexcept override;
  void auditCopy(const event::CopyBegin& copy, bool isCopied) noexcept override;
  void addFailure(const std::string& source) noexcept override;
  void beginDisc(const std::string& root, int number, int count) noexcept override;
  void awaitDisc(unsigned seconds) noexcept override;
  void beginCopy(int volume, int count) noexcept override;
  void beginEject() noexcept override;
  void setAsking(bool isAsking) noexcept override;
  void end() noexcept override;
  void stop() noexcept override;
  [[nodiscard]] std::string phaseText() noexcept override;
  [[nodiscard]] std::string progressText() noexcept override;
  [[nodiscard]] DesktopText summary() const noexcept override;
  [[nodiscard]] ExitStatus exitStatus() const noexcept override;

 private:
  void show(const event::Phase& phase) REQUIRES(meterMutex_);
  void record(ExitStatus status, const event::Audit& sums, bool isInstalled) const;

  EngineOptions options_;
  bool isTrusted_ = false;
  bool isWithoutAttributes_ = false;
  std::string bundlePath_;
  RunDescription description_;
  std::unique_ptr<InstallLock> lock_;
  std::optional<InstallTypePlace> installTypePlace_;  // from prepare() until the page has been left
  RunRecorder recorder_;
  Mutex meterMutex_;
  ProgressMeter meter_ GUARDED_BY(meterMutex_);
  RunPhases phases_ GUARDED_BY(meterMutex_);
  PhaseLine phase_ GUARDED_BY(meterMutex_);
  bool isAsking_ GUARDED_BY(meterMutex_) = false;
  Mutex auditMutex_;
  std::optional<InstallAudit> audit_ GUARDED_BY(auditMutex_);  // since the page was entered
  Failures failures_ GUARDED_BY(auditMutex_);                  // that it has found
  bool hasFailed_ GUARDED_BY(auditMutex_) = false;             // as the page has reported
  RunResult result_;
};

}  // namespace tavenhall

#include "host/rehearse/rehearsal.h"

#include "host/base/exit_status.h"
#include "host/base/files.h"
#include "host/base/temporary_folder.h"
#include "host/base/text.h"
#include "host/rehearse/driver.h"
#include "host/rehearse/findings.h"
#include "host/set/set_boundary.h"
#include "platform/host_system.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

// One rehearsal, from the open set to the report.
class Rehearsal {
 public:
  Rehearsal(RehearsalRequest request, const RehearsalView& view, StopRequest& stop)
      : request_(std::move(request)),
        view_(view),
        stop_(stop),
        set_(openInstallerSet(request_.set)),
        product_(productNamed(request_.product.empty() ? set_.product : request_.product)),
        installType_(request_.installType.empty() ? set_.installType : request_.installType) {}

  ExitStatus run() {
    if (!request_.report.empty()) {
      requireWritable(request_.report);  // before a long install rather than after it
    }
    if (!request_.allowsOutside) {
      requireWholeSet();
    }
    if (!request_.keep.empty()) {
      kept_.emplace(request_.keep);
    }
    stage_.emplace(set_, product_, kept_ ? kept_->path() : work_.path() / "root", request_.installed, stop_);
    checked_ = openCheckedSet(stage_->set(), {.folder = {},
                                              .product = product_.pluginName,
                                              .installType = installType_,
                                              .installed = stage_->home(),
                                              .isRehearsal = true});
    checkRoom();
    stop_.throwIfCome();
    if (kept_) {
      kept_->keep();
    }
    show();
    stop_.takeSignals();
    return report();
  }

 private:
  // A link would lead to another file in the sandbox than out here, where the files are compared.
  void requireWholeSet() const {
    const InstallPlan plan = planInstall({set_.package.string(), product_, {}, "Full"});
    const std::vector<OutsideReference> outside = outsideReferences(set_, plan);
    if (!outside.empty()) {
      throw UsageError(
          format(_("{0} leads out of the set, to {1}; put that into the set, or use --allow-outside. "
                   "tavinstall check names every such path"),
                 {outside.front().place.string(), outside.front().target}));
    }
  }

  void checkRoom() const {
    const RealSizes sizes = checked_.realSizes();
    const std::int64_t needed = sizes.whole.value_or(0) + sizes.systemFolders;
    const auto free = freeBytesAt(stage_->root().string());
    if (free && *free < needed) {
      throw UsageError(
          format(_("the installation needs {0}, but {2} has {1} free; use --keep DIR for another place"),
                 {sizeText(needed), sizeText(*free), stage_->root().string()}));
    }
  }

  // Drives the engine, in this process or in a child of it, and leaves the record in a file for the other.
  ExitStatus drive(const EngineEnds& frontend, const StopRequest& stop) const {
    DiscTray tray(stage_->volumes(), stage_->discs(), request_.late);
    RehearsalDriver driver(stage_->engineCommand(installType_), tray, frontend, stop);
    try {
      const ExitStatus status = driver.run();
      std::ofstream(recordFile()) << driver.record().toJson().dump(
                                         -1, ' ', false, nlohmann::ordered_json::error_handler_t::replace)
                                  << "\n";
      return status;
    } catch (const Stopped&) {
      return ExitStatus::failure;
    }
  }

  void show() {
    switch (view_.kind) {
      case RehearsalView::Kind::program:
        static_cast<void>(drive({.requests = STDIN_FILENO, .events = STDOUT_FILENO}, stop_));
        break;
      case RehearsalView::Kind::nobody: static_cast<void>(drive({}, stop_)); break;
      case RehearsalView::Kind::frontend: {
        const EngineConnection engine = startDriver();
        view_.run(engine, {.plan = checked_.plan,
                           .sandbox = stage_->root().string(),
                           .log = stage_->log().string(),
                           .keptFolder = kept_ ? kept_->path().string() : ""});
        endDriver(engine);
        break;
      }
    }
  }

  [[nodiscard]] EngineConnection startDriver() const {
    const auto body = [this, parent = getpid()](const EngineEnds& ends) {
      try {
        const StopRequest stop;
        return endWithParentProcess(parent) ? drive(ends, stop) : ExitStatus::failure;
      } catch (const std::exception& error) {  // what the rehearsal has created belongs to its parent process
        showError(error);
        return ExitStatus::failure;
      }
    };
    return startEngineProcess(body, view_.process);
  }

  // An installation continues without its frontend; a rehearsal does not.
  static void endDriver(const EngineConnection& engine) {
    int status = 0;
    if (waitpid(engine.process, &status, WNOHANG) == 0) {
      kill(engine.process, SIGTERM);
      static_cast<void>(waitpid(engine.process, &status, 0));
    }
  }

  ExitStatus report() {
    const std::optional<RehearsalRecord> record = readRecord();
    if (!record) {
      throw Stopped();
    }
    RehearsalFindings findings = gatherFindings(*stage_, checked_, *record, stop_);
    findings.check = request_.check;
    findings.log = kept_ ? stage_->log().string() : "";
    const Verdict verdict = judge(findings);
    // Standard output is for the JSON lines alone.
    std::FILE* out = view_.kind == RehearsalView::Kind::program ? stderr : stdout;
    std::fprintf(out, "\n%s", reportText(findings, verdict).c_str());
    std::fflush(out);
    return writeReport(findings) ? verdict.status() : ExitStatus::failure;
  }

  // None where the run did not come to an end of its own.
  [[nodiscard]] std::optional<RehearsalRecord> readRecord() const {
    std::ifstream file(recordFile());
    const auto json = nlohmann::ordered_json::parse(file, nullptr, false);
    return json.is_object() ? std::optional(RehearsalRecord::fromJson(json)) : std::nullopt;
  }

  [[nodiscard]] bool writeReport(const RehearsalFindings& findings) const {
    if (request_.report.empty()) {
      return true;
    }
    std::ofstream out(request_.report);
    out << reportJson(findings).dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << "\n";
    if (!out.flush()) {
      showError(UsageError(
          format(_("cannot write the report {0}: {1}"), {request_.report.string(), std::strerror(errno)})));
      return false;
    }
    return true;
  }

  [[nodiscard]] fs::path recordFile() const { return work_.path() / "record.json"; }

  const RehearsalRequest request_;
  const RehearsalView& view_;
  StopRequest& stop_;
  const InstallerSet set_;
  const Product product_;
  const std::string installType_;
  const TemporaryFolder work_;
  std::optional<KeptFolder> kept_;
  std::optional<Stage> stage_;  // after the folders that it lies in
  CheckedSet checked_;
};

}  // namespace

CheckRequest checkRequestFor(const RehearsalRequest& request) {
  return {.folder = request.set,
          .product = request.product,
          .installType = request.installType,
          .installed = request.installed,
          .isRehearsal = true,
          .allowsOutside = request.allowsOutside};
}

ExitStatus rehearse(const RehearsalRequest& request, const RehearsalView& view) {
  StopRequest stop;
  try {
    return Rehearsal(request, view, stop).run();
  } catch (const Stopped&) {
    showError(UsageError(_("the rehearsal was stopped; there is no report")));
    return ExitStatus::failure;
  }
}

}  // namespace tavenhall

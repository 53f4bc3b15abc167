#include "host/rehearse/rehearsal.h"

#include "host/base/errors.h"
#include "host/base/text.h"
#include "host/base/units.h"
#include "host/plain/plain_frontend.h"
#include "host/protocol/json_events.h"
#include "host/rehearse/driver.h"
#include "host/rehearse/findings.h"
#include "host/rehearse/rehearsal_report.h"
#include "host/rehearse/temporary_folder.h"
#include "host/terminal/terminal_frontend.h"

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
  Rehearsal(RehearsalRequest request, StopRequest& stop)
      : request_(std::move(request)),
        stop_(stop),
        set_(openInstallerSet(request_.set)),
        product_(productNamed(request_.product.empty() ? set_.product : request_.product)),
        installType_(request_.installType.empty() ? set_.installType : request_.installType) {}

  ExitStatus run() {
    if (!request_.report.empty()) {
      requireWritable(request_.report);  // a long install must not end with a report that nobody can have
    }
    if (!request_.keep.empty()) {
      kept_.emplace(request_.keep);
    }
    stage_.emplace(set_, product_, kept_ ? kept_->path() : work_.path() / "root", work_.path(),
                   request_.installed, stop_);
    // Nobody has chosen in the sandbox's own /tmp unless the rehearsal does, and without a choice it is Full.
    checked_ = openCheckedSet(
        stage_->set(),
        {{}, product_.pluginName, installType_.empty() ? "Full" : installType_, stage_->home().string()});
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
  void checkRoom() const {
    const RealSizes sizes = checked_.realSizes();
    const std::int64_t needed = sizes.whole.value_or(0) + sizes.systemFolders;
    const auto free = freeBytesAt(stage_->root().string());
    if (free && *free < needed) {
      throw UsageError(
          format(_("the install takes {0} and there is {1} free in {2}; --keep DIR takes another place"),
                 {sizeText(needed), sizeText(*free), stage_->root().string()}));
    }
  }

  // Sees the run through in this process, whichever that is, and leaves its record where another process can
  // read it.
  ExitStatus conduct(const EngineLines& face, const StopRequest& stop) const {
    DiscTray tray(stage_->volumes(), stage_->discs(), request_.late);
    Conductor conductor(stage_->engineCommand(installType_), stage_->summary(), tray, face, stop);
    try {
      const ExitStatus status = conductor.run();
      std::ofstream(recordFile()) << jsonLine(conductor.record().toJson());
      return status;
    } catch (const Stopped&) {
      return ExitStatus::failure;
    }
  }

  void show() {
    switch (request_.face) {
      case Face::json: static_cast<void>(conduct({STDIN_FILENO, STDOUT_FILENO, -1, -1}, stop_)); return;
      case Face::quiet: static_cast<void>(conduct({}, stop_)); return;
      case Face::plain: {
        const EngineProcess engine = startEngine(Errors::shared);
        static_cast<void>(runPlainFace(engine, {kept_ ? stage_->log().string() : "", afterStop()}));
        endEngine(engine);
        return;
      }
      case Face::terminal: break;
    }
    const TerminalPage page = terminalPage();
    const EngineProcess engine = startEngine(Errors::aLine);
    static_cast<void>(runTerminalFace(engine, page));
    endEngine(engine);
  }

  [[nodiscard]] EngineProcess startEngine(Errors errors) const {
    const auto body = [this](const EngineLines& face) {
      try {
        return conduct(face, StopRequest());
      } catch (const std::exception& error) {  // all that is laid out belongs to the process above
        showError(error);
        return ExitStatus::failure;
      }
    };
    return startEngineProcess(body, errors);
  }

  // A terminal that goes away leaves its engine running; a rehearsal that nobody sees is of no use.
  static void endEngine(const EngineProcess& engine) {
    int status = 0;
    if (waitpid(engine.pid, &status, WNOHANG) == 0) {
      kill(engine.pid, SIGTERM);
      static_cast<void>(waitForEngineProcess(engine));
    }
  }

  [[nodiscard]] TerminalPage terminalPage() const {
    TerminalPage page;
    page.introduction = introduce(checked_.plan, freeBytesAt);
    page.introduction.what = join(page.introduction.what, _("It is a rehearsal, in folders of its own."));
    page.introduction.destination = insidePath(page.introduction.destination);
    for (std::string& place : page.introduction.to) {
      place = insidePath(place);
    }
    page.logPath = stage_->log().string();
    page.logShown = kept_ ? page.logPath : "";
    page.afterStop = afterStop();
    return page;
  }

  // As the page calls it.
  [[nodiscard]] std::string insidePath(const std::string& path) const {
    const std::string root = stage_->root().string();
    return path.starts_with(root + "/") ? path.substr(root.size()) : path;
  }

  [[nodiscard]] std::string afterStop() const {
    return kept_ ? format(_("What was installed so far is in {0}."), {kept_->path().string()})
                 : _("Nothing of it is left.");
  }

  ExitStatus report() {
    const std::optional<RehearsalRecord> record = readRecord();
    if (!record) {
      throw Stopped();
    }
    RehearsalFindings findings = gatherFindings(*stage_, checked_, *record, stop_);
    findings.log = kept_ ? stage_->log().string() : "";
    const Verdict verdict = judge(findings);
    // The JSON lines have standard output to themselves.
    std::FILE* out = request_.face == Face::json ? stderr : stdout;
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

ExitStatus rehearse(const RehearsalRequest& request) {
  StopRequest stop;
  try {
    return Rehearsal(request, stop).run();
  } catch (const Stopped&) {
    showError(UsageError(_("the rehearsal was stopped, so there is no report")));
    return ExitStatus::failure;
  }
}

}  // namespace tavenhall

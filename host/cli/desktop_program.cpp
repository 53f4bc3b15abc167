#include "host/cli/desktop_program.h"

#include "host/base/build_facts.h"
#include "host/base/exit_status.h"
#include "host/base/files.h"
#include "host/base/text.h"
#include "host/cli/command_line.h"
#include "host/engine/pre_install.h"
#include "host/engine/stand_ins.h"
#include "host/log/log_records.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <fcntl.h>
#include <sstream>
#include <unistd.h>

namespace tavenhall {

namespace {

using Clock = ProgressMeter::Clock;

constexpr int kUnwrapped = 10000;  // wider than any text: the window wraps

// Objective-C must not see an exception: prints it on standard error and returns `answer` instead.
template <typename Answer, typename Work>
Answer orElse(Answer answer, Work work) noexcept {
  try {
    return work();
  } catch (const std::exception& error) {
    showError(error);
    return answer;
  }
}

// The commands that the page runs read nothing.
void closeInput() {
  const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
  if (nothing >= 0) {
    dup2(nothing, STDIN_FILENO);
    close(nothing);
  }
}

EngineOptions readOptions(CLI::App& program, int argumentCount, char** arguments, bool& isTrusted,
                          bool& isWithoutAttributes) {
  EngineOptions options;
  std::string package;
  std::string product;
  std::string bundle;
  program.formatter_fn(
      [](const CLI::App* app, const std::string&, CLI::AppFormatMode) { return helpText(*app); });
  program.set_help_flag("-h,--help", _("Show this help"));
  program.set_version_flag("--version", std::string("tavinstall-desktop ") + kVersion, _("Show the version"));
  program.add_option("--package", package, _("Installer package; its data is beside it or on discs"))
      ->type_name("PATH")
      ->envname("TAVINSTALL_PACKAGE")
      ->required();
  program
      .add_option("--install-type", options.installType,
                  _("Edition to install if there is a choice: Lite or Full"))
      ->transform(edition())
      ->type_name("TYPE")
      ->envname("TAVINSTALL_INSTALL_TYPE");
  CLI::Option* productOption =
      program
          .add_option("--product", product,
                      format(_("Product to install: {0}"), {CLI::detail::join(productNames(), ", ")}))
          ->check(oneOf(productNames()))
          ->type_name("NAME")
          ->envname("TAVINSTALL_PRODUCT");
  program.add_option("--bundle", bundle, _("Load this plug-in bundle instead of the product's"))
      ->type_name("DIR")
      ->envname("TAVINSTALL_BUNDLE")
      ->excludes(productOption);
  program.add_flag("--trusted", isTrusted, _("Install even if other users can change the package"))
      ->envname("TAVINSTALL_TRUSTED");
  program
      .add_flag("--without-attributes", isWithoutAttributes,
                _("Install one disc even if there is no attributes file"))
      ->envname("TAVINSTALL_WITHOUT_ATTRIBUTES");
  program.parse(argumentCount, arguments);
  options.package = packageLocation(package);
  if (product.empty() && bundle.empty()) {
    requireNamedProduct(options.package);
  }
  options.bundle =
      std::filesystem::absolute(bundle.empty() ? findBundle(product) : std::filesystem::path(bundle));
  return options;
}

}  // namespace

void DesktopProgram::setLanguage(const std::string& language) noexcept {
  orElse(false, [&] {
    speakLanguage(language, findCatalogs());
    return true;
  });
}

std::optional<ExitStatus> DesktopProgram::read(int argumentCount, char** arguments) noexcept {
  return orElse(std::optional(ExitStatus::badUsage), [&]() -> std::optional<ExitStatus> {
    CLI::App program{_("Install the data of an installer package, in a window."), "tavinstall-desktop"};
    try {
      options_ = readOptions(program, argumentCount, arguments, isTrusted_, isWithoutAttributes_);
    } catch (const CLI::Success& request) {
      std::ostringstream text;
      program.exit(request, text);  // help or version
      std::fputs(text.str().c_str(), stdout);
      return ExitStatus::success;
    }
    bundlePath_ = options_.bundle.string();
    description_ = describeRun(planFor(options_));
    const Lock lock(meterMutex_);
    meter_ = ProgressMeter(description_.introduction.barWraps);
    closeInput();
    return std::nullopt;
  });
}

const std::string& DesktopProgram::productName() const noexcept {
  return description_.introduction.productName;
}

DesktopText DesktopProgram::introduction() const noexcept {
  return orElse(DesktopText{}, [this] {
    return DesktopText{{format(_("Welcome to the {0} installer"), {productName()}), Style::heading},
                       introductionLines(description_.introduction, kUnwrapped)};
  });
}

std::string DesktopProgram::prepare() noexcept {
  try {
    if (options_.installType.empty()) {
      installTypePlace_.emplace();
    }
    const InstallPlan plan = planFor(options_);
    if (!isTrusted_) {
      for (std::string refusal : {refusalToTrust(options_), refusalToTrust(plan)}) {
        if (!refusal.empty()) {
          return refusal;
        }
      }
    }
    if (std::string refusal = refusalToCopyOntoItself(plan); !refusal.empty()) {
      return refusal;
    }
    if (!isWithoutAttributes_ && !plan.attributes.isFilePresent()) {
      return missingAttributes(plan);
    }
    if (const auto places = unexaminedPlaces(plan); !places.empty()) {
      return cannotExamine(places.front());
    }
    options_.copies = expectedCopies(plan);
    lock_ = std::make_unique<InstallLock>(true);
    runPreInstallStep(options_.package, options_.installType);
    options_.facts.started = isoTimeNow();
    options_.facts.version = kVersion;
    options_.facts.log = usersInstallationLog();
    options_.facts.package = options_.package;
    addFacts(plan, options_.facts);
    addStandInsToPath();
    keepSystemTextsEnglish();
    return {};
  } catch (const std::exception& error) {
    return error.what();
  }
}

void DesktopProgram::begin() noexcept {
  orElse(false, [this] {
    recorder_.begin(options_.facts);
    return true;
  });
  {
    const Lock lock(meterMutex_);
    meter_.start(Clock::now());
    phases_ = {};
    phase_.clear();
    isAsking_ = false;
  }
  const Lock lock(auditMutex_);
  failures_ = {};
  hasFailed_ = false;
  audit_.emplace([this](const event::AuditFailure& failure) {
    auditMutex_.assertHeld();  // by the caller of the audit
    failures_.add({failure.problem, failure.source, failure.detail});
  });
}

void DesktopProgram::auditCopy(const event::CopyBegin& copy, bool isCopied) noexcept {
  orElse(false, [&] {
    {
      const Lock lock(meterMutex_);
      show(phases_.beginChecking(Clock::now()));
    }
    const Lock lock(auditMutex_);
    hasFailed_ = hasFailed_ || !isCopied;
    audit_->compare(copy);
    return true;
  });
}

void DesktopProgram::addFailure(const std::string& source) noexcept {
  orElse(false, [&] {
    const Lock lock(auditMutex_);
    hasFailed_ = true;
    if (!source.empty()) {
      audit_->addRefusal(source);
    }
    return true;
  });
}

void DesktopProgram::setProgress(const DesktopProgress& progress) noexcept {
  const Lock lock(meterMutex_);
  meter_.setMinimum(progress.minimum);
  meter_.setMaximum(progress.maximum);
  meter_.setValue(progress.value);
  meter_.setBytes(progress.bytesWritten, Clock::now());
}

void DesktopProgram::show(const event::Phase& phase) {
  phase_.set(phase, Clock::now());
  meter_.setCopying(phase.kind == event::Phase::Kind::copying, Clock::now());
}

void DesktopProgram::beginDisc(const std::string& root, int number, int count) noexcept {
  const Lock lock(meterMutex_);
  phases_.beginDisc(root, number, count, Clock::now());
}

void DesktopProgram::awaitDisc(unsigned seconds) noexcept {
  const Lock lock(meterMutex_);
  isAsking_ = false;
  show(phases_.beginLooking(seconds, Clock::now()));
}

void DesktopProgram::beginCopy(int volume, int count) noexcept {
  const Lock lock(meterMutex_);
  show(phases_.beginCopy(volume, count, Clock::now()));
}

void DesktopProgram::beginEject() noexcept {
  const Lock lock(meterMutex_);
  show(phases_.beginEjecting(Clock::now()));
}

void DesktopProgram::setAsking(bool isAsking) noexcept {
  const Lock lock(meterMutex_);
  if (isAsking && !isAsking_) {
    show(phases_.beginWaiting(Clock::now()));
  }
  isAsking_ = isAsking;
}

void DesktopProgram::end() noexcept {
  orElse(false, [this] {
    installTypePlace_.reset();
    const Lock lock(meterMutex_);
    meter_.finish(Clock::now());
    phases_.end(Clock::now());
    phase_.clear();
    const Lock auditLock(auditMutex_);
    audit_->requireCopies(options_.copies, options_.failures);
    Failures inLog = failuresInLog(description_.log, description_.logStart);
    if (!hasFailed_ && inLog.count == 0) {
      audit_->requireFiles();
    }
    const event::Audit& sums = audit_->sums();
    const bool isInstalled = !hasFailed_ && sums.isClean();
    result_.status = isInstalled ? ExitStatus::success : ExitStatus::failure;
    result_.hasSummary = true;
    result_.bytes = static_cast<double>(sums.bytes);
    result_.time = meter_.passed(Clock::now());
    event::Summary times;
    phases_.addTimes(times, Clock::now());
    result_.copyingSeconds = times.copyingSeconds;
    result_.waitingSeconds = times.waitingSeconds;
    result_.destination = description_.introduction.destination;
    result_.log = description_.writtenLog();
    result_.failures = failures_.count > 0 ? failures_ : std::move(inLog);
    record(result_.status, sums, isInstalled);
    return true;
  });
}

void DesktopProgram::stop() noexcept {
  orElse(false, [this] {
    record(ExitStatus::stopped, {}, false);
    return true;
  });
}

void DesktopProgram::record(ExitStatus status, const event::Audit& sums, bool isInstalled) const {
  event::Summary summary;
  summary.facts = options_.facts;
  summary.status = static_cast<int>(status);
  summary.reason = result_.failures.first.empty() ? "" : failureText(result_.failures.first.front());
  summary.audit = sums;
  summary.isInstalled = isInstalled;
  recorder_.end(summary);
}

std::string DesktopProgram::phaseText() noexcept {
  return orElse(std::string(), [this] {
    const Lock lock(meterMutex_);
    const auto texts = phase_.texts(Clock::now());
    return texts.empty() ? std::string() : texts.front();
  });
}

std::string DesktopProgram::progressText() noexcept {
  return orElse(std::string(), [this] {
    const Lock lock(meterMutex_);
    const auto now = Clock::now();
    std::vector<std::string> parts;
    if (const auto percent = meter_.percent()) {
      parts.push_back(std::to_string(*percent) + " %");
    }
    if (const std::string amount = amountText(meter_); !amount.empty()) {
      parts.push_back(amount);
    }
    if (const auto rate = meter_.rate(now)) {
      parts.push_back(sizeText(*rate) + "/s");
    }
    if (const auto minutes = meter_.minutesLeft(now)) {
      parts.push_back(timeLeftText(*minutes));
    }
    return CLI::detail::join(parts, ", ");
  });
}

DesktopText DesktopProgram::summary() const noexcept {
  return orElse(DesktopText{}, [this] {
    return DesktopText{resultHeading(result_), resultLines(result_, kUnwrapped)};
  });
}

ExitStatus DesktopProgram::exitStatus() const noexcept { return result_.exitStatus(); }

}  // namespace tavenhall

#include "host/desktop/desktop_run.h"

#include "host/base/build_facts.h"
#include "host/base/errors.h"
#include "host/base/text.h"
#include "host/base/units.h"
#include "host/cli/command_line.h"
#include "host/cli/help_text.h"
#include "host/engine/bundle_loader.h"
#include "host/engine/pre_install.h"

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

// What Objective-C calls must not throw; `answer` is what it then gets, and standard error says why.
template <typename Answer, typename Work>
Answer orElse(Answer answer, Work work) noexcept {
  try {
    return work();
  } catch (const std::exception& error) {
    showError(error);
    return answer;
  }
}

// Commands that the page runs are to have nothing to read.
void closeInput() {
  const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
  if (nothing >= 0) {
    dup2(nothing, STDIN_FILENO);
    close(nothing);
  }
}

RunOptions readOptions(CLI::App& program, int argumentCount, char** arguments) {
  RunOptions options;
  std::string package;
  std::string product;
  std::string bundle;
  program.formatter_fn(
      [](const CLI::App* app, const std::string&, CLI::AppFormatMode) { return helpText(*app); });
  program.set_help_flag("-h,--help", _("Say this"));
  program.set_version_flag("--version", std::string("tavinstall-desktop ") + kVersion,
                           _("Say which version this is"));
  program.add_option("--package", package, _("The installer package; its data lies beside it or on discs"))
      ->type_name("PATH")
      ->envname("TAVINSTALL_PACKAGE")
      ->required();
  program
      .add_option("--install-type", options.installType,
                  _("Lite or Full: the edition to install, where there is a choice"))
      ->check(oneOf({"Lite", "Full"}))
      ->type_name("TYPE")
      ->envname("TAVINSTALL_INSTALL_TYPE");
  CLI::Option* productOption = program
                                   .add_option("--product", product,
                                               format(_("The product whose plug-in shows the page: {0}"),
                                                      {CLI::detail::join(productNames(), ", ")}))
                                   ->check(oneOf(productNames()))
                                   ->type_name("NAME")
                                   ->envname("TAVINSTALL_PRODUCT");
  program.add_option("--bundle", bundle, _("The plug-in bundle, instead of a product's own"))
      ->type_name("DIR")
      ->envname("TAVINSTALL_BUNDLE")
      ->excludes(productOption);
  program.parse(argumentCount, arguments);
  options.package = packageLocation(package);
  options.bundle =
      std::filesystem::absolute(bundle.empty() ? findBundle(product) : std::filesystem::path(bundle));
  return options;
}

}  // namespace

void DesktopRun::speak(const std::string& language) noexcept {
  orElse(false, [&] {
    speakLanguage(language, findCatalogs());
    return true;
  });
}

std::optional<ExitStatus> DesktopRun::read(int argumentCount, char** arguments) noexcept {
  return orElse(std::optional(ExitStatus::badUsage), [&]() -> std::optional<ExitStatus> {
    CLI::App program{_("Plays the installer around the data page, in a window."), "tavinstall-desktop"};
    try {
      options_ = readOptions(program, argumentCount, arguments);
    } catch (const CLI::Success& request) {
      std::ostringstream text;
      program.exit(request, text);  // help or version
      std::fputs(text.str().c_str(), stdout);
      return ExitStatus::success;
    }
    bundlePath_ = options_.bundle.string();
    page_ = terminalPageFor(options_);
    meter_ = ProgressMeter(page_.introduction.barWraps);
    closeInput();
    return std::nullopt;
  });
}

DesktopText DesktopRun::introduction() const noexcept {
  return orElse(DesktopText{}, [this] {
    return DesktopText{{format(_("Welcome to the {0} installer"), {productName()}), Style::heading},
                       introductionLines(page_.introduction, kUnwrapped)};
  });
}

std::string DesktopRun::prepare() noexcept {
  try {
    lock_ = std::make_unique<InstallLock>(true);
    runPreInstallStep(options_);
    addStandInsToPath();
    keepSystemTextsEnglish();
    return {};
  } catch (const std::exception& error) {
    return error.what();
  }
}

void DesktopRun::begin() noexcept {
  const std::lock_guard lock(meterMutex_);
  meter_.start(Clock::now());
}

void DesktopRun::lookAtBar(double minimum, double maximum, double value) noexcept {
  const std::lock_guard lock(meterMutex_);
  const auto now = Clock::now();
  meter_.setMinimum(minimum);
  meter_.setMaximum(maximum, now);
  meter_.setValue(value, now);
}

void DesktopRun::setPaused(bool isPaused) noexcept {
  const std::lock_guard lock(meterMutex_);
  if (isPaused) {
    meter_.pause(Clock::now());
  } else {
    meter_.resume(Clock::now());
  }
}

void DesktopRun::end() noexcept {
  orElse(false, [this] {
    const std::lock_guard lock(meterMutex_);
    meter_.finish(Clock::now());
    outcome_.status = ExitStatus::success;
    outcome_.isTold = true;
    outcome_.bytesCopied = meter_.copied();
    // A full bar holds back what came beyond it.
    if (outcome_.bytesCopied == meter_.total()) {
      outcome_.bytesCopied.reset();
    }
    outcome_.time = meter_.passed(Clock::now());
    outcome_.destination = page_.introduction.destination;
    outcome_.logPath = page_.logShown;
    readFailures(page_.logPath, page_.logStart, outcome_);
    return true;
  });
}

std::string DesktopRun::paceText() noexcept {
  return orElse(std::string(), [this] {
    const std::lock_guard lock(meterMutex_);
    const auto now = Clock::now();
    const auto rate = meter_.rate(now);
    const auto minutes = meter_.minutesLeft(now);
    std::string text = rate ? sizeText(*rate) + "/s" : "";
    if (minutes) {
      text += (text.empty() ? "" : ", ") + timeLeftText(*minutes);
    }
    return text;
  });
}

DesktopText DesktopRun::summary() const noexcept {
  return orElse(DesktopText{}, [this] {
    return DesktopText{outcomeHeading(outcome_), outcomeLines(outcome_, kUnwrapped)};
  });
}

ExitStatus DesktopRun::exitStatus() const noexcept { return outcome_.exitStatus(); }

}  // namespace tavenhall

#include "host/cli/rehearse_storyboard.h"

#include "host/base/build_facts.h"
#include "host/base/child_process.h"
#include "host/base/files.h"
#include "host/base/regular_file.h"
#include "host/base/stop_request.h"
#include "host/base/temporary_folder.h"
#include "host/base/text.h"
#include "host/check/report.h"
#include "host/cli/run_description.h"
#include "host/protocol/json_form.h"
#include "host/rehearse/rehearsal_record.h"
#include "host/storyboard/storyboard.h"
#include "platform/host_system.h"

#include <array>
#include <chrono>
#include <clocale>
#include <ctime>
#include <fstream>
#include <iterator>
#include <list>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>
#include <thread>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr std::int64_t kSmallSet = 1000000000;  // bytes: of these, the rehearsals in all languages run at once

struct NamedLanguage {
  std::string_view code;
  const char* name;
};
constexpr std::array<NamedLanguage, 7> kLanguageNames{{{"en", "English"},
                                                       {"de", "Deutsch"},
                                                       {"fr", "Français"},
                                                       {"es", "Español"},
                                                       {"it", "Italiano"},
                                                       {"ja", "日本語"},
                                                       {"zh-Hans", "简体中文"}}};

const char* nativeNameOf(const std::string& code) {
  for (const NamedLanguage& language : kLanguageNames) {
    if (language.code == code) {
      return language.name;
    }
  }
  return "";
}

// The rehearsal in one language, in a process of its own: languages are those of a process.
class LanguageRehearsal {
 public:
  LanguageRehearsal(const RehearsalRequest& request, std::string language, const fs::path& folder)
      : language_(std::move(language)), report_(folder / (language_ + ".json")), process_(command(request)) {}

  [[nodiscard]] const std::string& language() const { return language_; }

  // Blocks until it has ended. Throws UsageError where there is no report, and Stopped.
  [[nodiscard]] nlohmann::ordered_json report(const StopRequest& stop) {
    constexpr auto kPause = std::chrono::milliseconds(20);
    while (!process_.hasEnded()) {
      stop.throwIfCome();
      std::this_thread::sleep_for(kPause);
    }
    status_ = process_.wait();
    std::ifstream file(report_);
    auto json = nlohmann::ordered_json::parse(file, nullptr, false);
    if (!json.is_object()) {
      constexpr std::string_view kOwnName = "tavinstall: ";
      std::string reason = process_.lastLine();
      reason.erase(0, reason.starts_with(kOwnName) ? kOwnName.size() : 0);
      throw UsageError(reason, status_ == 2 ? ExitStatus::badUsage : ExitStatus::failure);
    }
    return json;
  }

  [[nodiscard]] int status() const { return status_; }
  [[nodiscard]] std::string output() const { return process_.output(); }
  [[nodiscard]] std::string lastLine() const { return process_.lastLine(); }

 private:
  [[nodiscard]] std::vector<std::string> command(const RehearsalRequest& request) const {
    std::vector<std::string> words{"env",
                                   "LC_ALL=C.UTF-8",
                                   "LANGUAGE=" + catalogOf(language_),
                                   programPath(),
                                   "rehearse",
                                   fs::absolute(request.set).string(),
                                   "--ui",
                                   "quiet",
                                   "--report",
                                   report_.string(),
                                   "--late",
                                   std::to_string(request.late)};
    const auto add = [&words](const char* option, const std::string& value) {
      if (!value.empty()) {
        words.insert(words.end(), {option, value});
      }
    };
    add("--product", request.product);
    add("--install-type", request.installType);
    add("--installed", request.installed.empty() ? "" : fs::absolute(request.installed).string());
    if (request.allowsOutside) {
      words.emplace_back("--allow-outside");
    }
    return words;
  }

  const std::string language_;
  const fs::path report_;
  ToolProcess process_;
  int status_ = 0;
};

std::vector<StoryEvent> eventsOf(const nlohmann::ordered_json& report) {
  std::vector<StoryEvent> events;
  for (const auto& timed : report.at("events")) {
    if (auto event = decodeEvent(timed.at("event").dump())) {
      events.push_back({timed.at("at").get<double>(), std::move(*event)});
    }
  }
  return events;
}

// With the program's texts in the report's language.
StoryLanguage storyOf(LanguageRehearsal& rehearsal, const nlohmann::ordered_json& report,
                      const CheckRequest& request) {
  speakLanguage(rehearsal.language(), findCatalogs());
  const CheckResult checked = checkSet(request);
  Introduction introduction = introduce(
      checked.checked.plan, [](const std::string& /*path*/) { return std::optional<std::int64_t>(); });
  introduction.isDestinationThere = true;
  StoryLanguage story;
  story.code = rehearsal.language();
  story.name = nativeNameOf(rehearsal.language());
  story.continueLabel = _("Continue");
  story.goBackLabel = _("Go Back");
  story.passed = rehearsal.lastLine();
  story.isPassed = rehearsal.status() == 0 || rehearsal.status() == static_cast<int>(ExitStatus::warnings);
  const std::vector<StoryEvent> events = eventsOf(report);
  if (events.size() == RehearsalRecord::kMostEvents) {
    story.passed = join(story.passed, _("Not all that happened is shown: it was too much."));
  }
  story.screens = screensOf(introduction, events);
  story.report = rehearsal.output();
  story.report.erase(0, story.report.find_first_not_of('\n'));
  story.diagnostics = diagnosticsText(checked, {});
  story.reportHeading = format(_("Rehearsal of {0}"), {checked.checked.set.folder.filename().string()});
  story.diagnosticsHeading = _("Diagnostics");
  return story;
}

std::string today() {
  const std::time_t now = std::time(nullptr);
  std::array<char, 32> text{};
  std::tm local{};
  localtime_r(&now, &local);
  return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", &local)};
}

// Locales decide which characters texts may have; the file is UTF-8.
class InUtf8 {
 public:
  InUtf8() : before_(std::setlocale(LC_CTYPE, nullptr)) { std::setlocale(LC_CTYPE, "C.UTF-8"); }
  InUtf8(const InUtf8&) = delete;
  InUtf8& operator=(const InUtf8&) = delete;
  ~InUtf8() {
    speakUsersLanguage(findCatalogs());
    std::setlocale(LC_CTYPE, before_.c_str());
  }

 private:
  const std::string before_;
};

ExitStatus makeStoryboard(const RehearsalRequest& request, const fs::path& file,
                          std::vector<std::string> languages, const StopRequest& stop) {
  requireWritable(file);
  if (languages.empty()) {
    languages.assign(std::begin(kLanguages), std::end(kLanguages));
  }
  const CheckRequest checkRequest = checkRequestFor(request);
  const CheckedSet set = openCheckedSet(checkRequest);
  const bool isSmall = set.realSizes().whole.value_or(kSmallSet) < kSmallSet;
  const TemporaryFolder folder;
  std::list<LanguageRehearsal> rehearsals;
  Storyboard storyboard{set.set.folder.filename().string(),
                        set.product.pluginName + " · tavinstall " + kVersion + " · " + today(),
                        {}};
  ExitStatus worst = ExitStatus::success;
  {
    const InUtf8 utf8;
    if (isSmall) {
      for (const std::string& language : languages) {
        rehearsals.emplace_back(request, language, folder.path());
      }
    }
    auto next = rehearsals.begin();
    for (const std::string& language : languages) {
      LanguageRehearsal& rehearsal =
          isSmall ? *next++ : rehearsals.emplace_back(request, language, folder.path());
      const nlohmann::ordered_json report = rehearsal.report(stop);
      storyboard.languages.push_back(storyOf(rehearsal, report, checkRequest));
      worst = worseOf(worst, static_cast<ExitStatus>(rehearsal.status()));
    }
  }
  replaceFile(file, storyboardHtml(storyboard));
  for (const StoryLanguage& language : storyboard.languages) {
    std::puts((language.name + ": " + printableLine(language.passed)).c_str());
  }
  std::puts(format(_("Written: {0}"), {printableLine(file.string())}).c_str());
  return worst;
}

}  // namespace

ExitStatus rehearseStoryboard(const RehearsalRequest& request, const fs::path& file,
                              std::vector<std::string> languages) {
  const StopRequest stop;
  try {
    return makeStoryboard(request, file, std::move(languages), stop);
  } catch (const Stopped&) {
    showError(UsageError(_("the rehearsal was stopped; there is no report")));
    return ExitStatus::failure;
  }
}

}  // namespace tavenhall

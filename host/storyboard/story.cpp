#include "host/storyboard/story.h"

#include "host/base/text.h"
#include "host/terminal/page_model.h"

#include <algorithm>
#include <set>
#include <utility>
#include <variant>

namespace tavenhall {

namespace {

std::string lastPart(const std::string& path) { return path.substr(path.rfind('/') + 1); }

class Replay {
 public:
  explicit Replay(const Introduction& introduction) : model_(introduction) {
    take(_("Before it begins"));
    model_.act(Action::press, {}, at(0.0));
    static_cast<void>(model_.takeRequests());
  }

  void show(const StoryEvent& timed) {
    seconds_ = timed.seconds;
    std::visit(
        EventVisitor{[this](const event::Phase& /*phase*/) { takeStart(); },
                     [this](const event::Alert& /*alert*/) { takeStart(); },
                     [this](const event::CopyBegin& /*copy*/) { takeStart(); },
                     [this](const event::CopyEnd& copy) { takeCopied(copy); }, [](const auto& /*other*/) {}},
        timed.event);
    model_.handle(timed.event, at(seconds_));
    std::visit([this](const auto& event) { update(event); }, timed.event);
    static_cast<void>(model_.takeRequests());
  }

  [[nodiscard]] std::vector<StoryScreen> screens() && { return std::move(screens_); }

 private:
  [[nodiscard]] static PageModel::Time at(double seconds) {
    using Duration = PageModel::Time::duration;
    return PageModel::Time() +
           std::chrono::duration_cast<Duration>(std::chrono::duration<double>(seconds + 1.0));
  }

  void take(std::string caption) {
    const bool isPage = model_.stage() == PageModel::Stage::page;
    const double span = maximum_ - minimum_;
    window_.bar = span > 0.0 ? std::clamp((value_ - minimum_) / span, 0.0, 1.0) : 0.0;
    window_.steps = model_.steps();
    screens_.push_back({std::move(caption), seconds_, isPage ? std::optional(window_) : std::nullopt,
                        layOut(model_, at(seconds_), kStoryTerminal, unicodeSigns())});
  }

  // The page as it is entered, before it does anything.
  void takeStart() {
    if (!hasStarted_) {
      hasStarted_ = true;
      take(_("The page is entered"));
    }
  }

  void takeCopied(const event::CopyEnd& copy) {
    if (copy.filesDone > 0) {
      take(format(_("At the end of {0}"), {lastPart(copy.source)}));
    }
  }

  void update(const event::Title& title) { window_.title = title.text; }
  void update(const event::Instructions& instructions) { window_.text = instructions.text; }
  void update(const event::Status& status) { window_.status = status.text; }
  void update(const event::ProgressMinimum& minimum) { minimum_ = minimum.value; }
  void update(const event::ProgressMaximum& maximum) { maximum_ = maximum.value; }
  void update(const event::ProgressValue& value) { value_ = value.value; }
  void update(const event::PreviousEnabled& previous) { window_.canGoBack = previous.isEnabled; }

  void update(const event::NextEnabled& next) {
    const bool isNew = next.isEnabled && !window_.canContinue;
    window_.canContinue = next.isEnabled;
    if (isNew && hasStarted_) {
      take(_("The page can be left"));
    }
  }

  void update(const event::Alert& alert) {
    window_.prompt = StoryWindow::Prompt{alert.message, alert.informative, alert.buttons};
    take(_("An alert"));
  }

  void update(const event::Answered& /*answered*/) { window_.prompt.reset(); }

  void update(const event::Sheet& sheet) {
    if (sheets_.insert(sheet.message).second) {
      window_.prompt = StoryWindow::Prompt{sheet.message, "", {sheet.button}};
      take(_("A failure"));
      window_.prompt.reset();
    }
    model_.act(Action::press, {}, at(seconds_));  // the user reads it
  }

  void update(const event::AuditFailure& failure) {
    failures_.add({failure.problem, failure.source, failure.detail});
  }

  void update(const event::Summary& summary) {
    RunResult result;
    result.status = static_cast<ExitStatus>(summary.status);
    result.hasSummary = true;
    result.bytes = static_cast<double>(summary.audit.bytes);
    result.destination = model_.introduction().destination;
    result.hasCopied = summary.filesDone > 0;
    result.remaining = remainingTexts(summary.remaining);
    result.time = std::chrono::duration<double>(summary.seconds);
    result.copyingSeconds = summary.copyingSeconds;
    result.waitingSeconds = summary.waitingSeconds;
    result.failures = failures_;
    model_.end(result, at(seconds_));
    take(_("Afterwards"));
  }

  template <typename Other>
  void update(const Other& /*other*/) {}

  PageModel model_;
  StoryWindow window_;
  std::vector<StoryScreen> screens_;
  std::set<std::string> sheets_;
  Failures failures_;
  double seconds_ = 0.0;
  double minimum_ = 0.0;
  double maximum_ = 100.0;
  double value_ = 0.0;
  bool hasStarted_ = false;
};

}  // namespace

std::vector<StoryScreen> screensOf(const Introduction& introduction, const std::vector<StoryEvent>& events) {
  Replay replay(introduction);
  for (const StoryEvent& event : events) {
    replay.show(event);
  }
  return std::move(replay).screens();
}

}  // namespace tavenhall

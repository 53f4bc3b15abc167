#include "host/terminal/page_model.h"

#include "host/base/text.h"

#include <algorithm>
#include <utility>

// The output of the model, computed at each call.
namespace tavenhall {

std::vector<Step> PageModel::steps() const {
  std::vector<Step> steps{{_("Introduction")}, {_("Installation")}, {title_}, {_("Summary")}};
  const std::size_t current = stage_ == Stage::introduction ? 0 : stage_ == Stage::page ? 2 : 3;
  for (std::size_t i = 0; i < current; ++i) {
    steps[i].state = StepState::done;
  }
  steps[current].state = StepState::current;
  if (stage_ == Stage::summary && !result_.isSuccess()) {
    steps[2].state = StepState::failed;
  }
  return steps;
}

Span PageModel::heading() const {
  switch (stage_) {
    case Stage::introduction:
      return {format(_("Welcome to the {0} installer"), {introduction_.productName}), Style::heading};
    case Stage::page: return {title_, Style::heading};
    case Stage::summary: break;
  }
  return resultHeading(result_);
}

std::vector<Line> PageModel::textLines(int width) const {
  switch (stage_) {
    case Stage::introduction: return introductionLines(introduction_, width);
    case Stage::page: return wrappedLines(instructions_, width);
    case Stage::summary: break;
  }
  return resultLines(result_, width);
}

// The page's own text at the end is the same after a success and a failure, so this line states the result.
Span PageModel::statusLine() const {
  if (stage_ == Stage::page && isIdle_ && hasFailed_) {
    return {_("Not everything was installed."), Style::bad};
  }
  return {status_, Style::text};
}

std::string PageModel::notice() const { return messages_.empty() ? std::string() : messages_.back(); }

std::vector<PageButton> PageModel::buttons() const {
  std::vector<PageButton> shown =
      ownButtons({N_("Go Back"), stage_ == Stage::summary ? N_("Close") : N_("Continue")});
  const bool isFree = !isLeaving_ && !isClosing_;
  shown[0].isEnabled = stage_ == Stage::page && previousIsEnabled_ && isFree;
  shown[1].isEnabled = stage_ != Stage::page || (nextIsEnabled_ && isFree);
  return shown;
}

std::optional<std::size_t> PageModel::focus() const {
  if (hasWindow()) {
    return std::nullopt;
  }
  const std::vector<PageButton> shown = buttons();
  for (const std::size_t index : {pageFocus_, std::size_t{1}, std::size_t{0}}) {
    if (shown[index].isEnabled) {
      return index;
    }
  }
  return std::nullopt;
}

PageWindow PageModel::helpWindow() const {
  PageWindow window;
  window.heading = _("Help");
  std::string now;
  switch (stage_) {
    case Stage::introduction:
      now = _("Nothing has been installed yet. Continue starts the installation.");
      break;
    case Stage::page:
      now = isIdle_ ? _("The installation has ended. Continue shows its result.") : phase_.explanation();
      break;
    case Stage::summary: now = _("The installation has ended."); break;
  }
  if (!now.empty()) {
    window.paragraphs = {{now, Style::text}, {}};
  }
  for (const char* key :
       {N_("Tab and arrow keys: choose a button"), N_("Enter or the underlined letter: press a button"),
        N_("Up, Down, Page Up, Page Down: scroll"), N_("Escape: close a box"),
        N_("q or Ctrl-C: leave; asks first"), N_("? or F1: this help"), N_("Ctrl-L: draw the screen again")}) {
    window.paragraphs.push_back({_(key), Style::text});
  }
  window.buttons = ownButtons({N_("Close")});
  return window;
}

TerminalNotice PageModel::terminalNotice() const {
  TerminalNotice notice;
  notice.product = introduction_.productName;
  if (stage_ == Stage::summary) {
    notice.end = result_.isSuccess() ? TerminalNotice::End::success : TerminalNotice::End::failure;
  } else if (meter_.isStarted()) {
    notice.percent = meter_.percent();
  }
  if (password_) {
    notice.need = _("A password is needed");
  } else if (alert_ && takesAnswers_) {
    notice.need = alertShown_.informative;
  }
  return notice;
}

std::vector<PageWindow> PageModel::windows() const {
  std::vector<PageWindow> shown;
  if (!sheets_.isEmpty()) {
    shown.push_back(sheets_.window(meter_.isRunning()));
    shown.back().scroll = sheetsState_.scroll;
  }
  if (alert_) {
    shown.push_back(*alert_);
  }
  if (password_) {
    shown.push_back(*password_);
  }
  if (question_) {
    shown.push_back(question_->window);
  }
  return shown;
}

}  // namespace tavenhall

#include "host/terminal/page_model.h"

#include "host/base/text.h"
#include "platform/installer_host.h"
#include "platform/installer_pane.h"

#include <algorithm>
#include <utility>

namespace tavenhall {

namespace {

constexpr std::size_t kMostMessages = 200;
constexpr std::size_t kLongestMessage = 500;  // bytes

}  // namespace

PageModel::PageModel(Introduction introduction)
    : introduction_(std::move(introduction)), title_(introduction_.pageTitle), meter_(introduction_.barWraps) {}

void PageModel::attach(const event::Attached& run, Time now) {
  isAttached_ = true;
  takesAnswers_ = run.takesAnswers;
  stage_ = Stage::page;
  if (run.seconds) {
    meter_.start(
        now - std::chrono::duration_cast<ProgressMeter::Clock::duration>(ProgressMeter::Seconds(*run.seconds)));
  }
}

// ---- Events ----

void PageModel::handle(const Event& event, Time now) {
  if (isAttached_ && !meter_.isStarted() && std::holds_alternative<event::NextEnabled>(event)) {
    meter_.start(now);  // the page's first act when it is entered
  }
  std::visit(
      EventVisitor{[this](const event::Title& title) { title_ = title.text; },
                   [this](const event::Instructions& instructions) {
                     if (instructions.text != instructions_) {
                       instructions_ = instructions.text;
                       textScroll_ = 0;
                     }
                   },
                   [this](const event::Status& status) {
                     status_ = status.text == " " ? "" : status.text;  // a blank clears the line
                   },
                   [this](const event::NextEnabled& next) { nextIsEnabled_ = next.isEnabled; },
                   [this](const event::PreviousEnabled& previous) { previousIsEnabled_ = previous.isEnabled; },
                   [this](const event::ProgressMinimum& minimum) { meter_.setMinimum(minimum.value); },
                   [this](const event::ProgressMaximum& maximum) { meter_.setMaximum(maximum.value); },
                   [this, now](const event::ProgressValue& progress) {
                     meter_.setValue(progress.value);
                     meter_.setBytes(progress.copy.bytesWritten, now);
                   },
                   [this](const event::Alert& alert) { handleAlert(alert); },
                   [this](const event::Answered& answered) {
                     if (answered.number == alertShown_.number) {
                       alert_.reset();
                     }
                   },
                   [this, now](const event::Phase& phase) {
                     phase_.set(phase, now);
                     meter_.setCopying(phase.kind == event::Phase::Kind::copying, now);
                   },
                   [this](const event::Sheet& sheet) {
                     sheets_.add(sheet.message, sheet.button);
                     hasFailed_ = true;
                   },
                   [this, now](const event::Idle& /*idle*/) {
                     isIdle_ = true;
                     phase_.clear();
                     meter_.finish(now);
                   },
                   [this](const event::Exit& exit) { handleExit(exit); },
                   [this](const event::Error& error) { addMessage(error.message); },
                   [](const auto& /*other*/) {}},
      event);
  endIfStuck();
}

void PageModel::handleAlert(const event::Alert& alert) {
  alertShown_ = alert;
  PageWindow window;
  window.heading = alert.message;
  window.paragraphs = {{alert.informative, Style::text}};
  if (takesAnswers_) {
    window.buttons = buttonsWithKeys(alert.buttons);
  } else {
    window.paragraphs.push_back({_("The program that runs the installation answers this."), Style::text});
    window.buttons = ownButtons({N_("Close")});
  }
  alert_ = std::move(window);
}

void PageModel::handleExit(const event::Exit& exit) {
  isLeaving_ = false;
  if (!exit.isAllowed) {
    return;
  }
  if (exit.direction == kDirectionForward) {
    isClosing_ = true;
    requests_.push_back({PageRequest::Kind::quit});
  } else {
    stage_ = Stage::introduction;
    pageFocus_ = 1;
    textScroll_ = 0;
  }
}

void PageModel::addMessage(std::string_view line) {
  if (line.empty()) {
    return;
  }
  messages_.emplace_back(line.substr(0, kLongestMessage));
  hasMessageSince_ = true;
  if (messages_.size() > kMostMessages) {
    messages_.pop_front();
  }
}

void PageModel::end(RunResult result, Time now) {
  meter_.finish(now);
  result_ = std::move(result);
  stage_ = Stage::summary;
  alert_.reset();
  question_.reset();
  password_.reset();
  typed_.clear();
  sheets_.clear();
  pageFocus_ = 1;
  textScroll_ = 0;
}

// Nothing runs, no button is enabled and no window is up: the last page has the rest.
void PageModel::endIfStuck() {
  const bool canMove = nextIsEnabled_ || previousIsEnabled_ || isLeaving_ || isClosing_ || hasWindow();
  if (stage_ == Stage::page && isIdle_ && !canMove) {
    isClosing_ = true;
    requests_.push_back({PageRequest::Kind::quit});
  }
}

// ---- Actions ----

void PageModel::act(Action action, ScrollExtent extent, Time now) {
  switch (action) {
    case Action::focusNext: moveFocus(1); break;
    case Action::focusPrevious: moveFocus(-1); break;
    case Action::press:
      if (const PageWindow* front = frontState()) {
        pressWindowButton(front->focus, now);
      } else if (const auto focused = focus()) {
        pressPageButton(*focused, now);
      }
      break;
    case Action::cancel: cancel(now); break;
    case Action::leave:
      if (stage_ == Stage::summary) {
        requests_.push_back({PageRequest::Kind::close});
      } else if (isAttached_) {
        requests_.push_back({PageRequest::Kind::leave});
      } else if (question_ && question_->question == Question::leave) {
        question_->window.focus = 1;  // the second Ctrl-C confirms the first
      } else {
        ask(Question::leave);
      }
      break;
    case Action::help:
      if (question_ && question_->question == Question::help) {
        question_.reset();
      } else if (!question_) {
        ask(Question::help);
      }
      break;
    default: scroll(action, extent); break;
  }
  endIfStuck();
}

bool PageModel::pressKey(char hotKey, Time now) {
  const auto windowsUp = windows();
  const std::vector<PageButton> shown = windowsUp.empty() ? buttons() : windowsUp.back().buttons;
  for (std::size_t i = 0; i < shown.size(); ++i) {
    if (shown[i].hotKey == hotKey) {
      pressButton(i, now);
      return true;
    }
  }
  return false;
}

void PageModel::pressButton(std::size_t index, Time now) {
  if (hasWindow()) {
    pressWindowButton(index, now);
  } else {
    pressPageButton(index, now);
  }
  endIfStuck();
}

PageWindow* PageModel::frontState() {
  return question_            ? &question_->window
         : password_          ? &*password_
         : alert_             ? &*alert_
         : !sheets_.isEmpty() ? &sheetsState_
                              : nullptr;
}

void PageModel::pressWindowButton(std::size_t index, Time now) {
  if (question_) {
    answerQuestion(index, now);
  } else if (password_) {
    answerPasswordQuestion(index, now);
  } else if (alert_) {
    alert_.reset();
    if (takesAnswers_) {
      requests_.push_back(
          {PageRequest::Kind::answer, kAlertFirstButtonReturn + static_cast<int>(index), alertShown_.number});
    }
  } else {
    sheets_.clear();
    sheetsState_ = {};
  }
}

void PageModel::pressPageButton(std::size_t index, Time now) {
  const std::vector<PageButton> shown = buttons();
  if (index >= shown.size() || !shown[index].isEnabled) {
    return;
  }
  pageFocus_ = index;
  switch (stage_) {
    case Stage::introduction:
      if (introduction_.isRoomShort()) {
        ask(Question::shortRoom);
      } else {
        enter(now);
      }
      break;
    case Stage::page:
      isLeaving_ = true;
      requests_.push_back({index == 0 ? PageRequest::Kind::back : PageRequest::Kind::forward});
      break;
    case Stage::summary: requests_.push_back({PageRequest::Kind::close}); break;
  }
}

void PageModel::enter(Time now) {
  stage_ = Stage::page;
  isIdle_ = false;
  hasFailed_ = false;
  nextIsEnabled_ = false;
  previousIsEnabled_ = false;
  textScroll_ = 0;
  instructions_.clear();
  status_.clear();
  meter_.start(now);
  requests_.push_back({PageRequest::Kind::enter});
}

// Escape never answers an alert or a password prompt, since that might skip a disc: it moves the focus to the
// last button. It closes a window with one button.
void PageModel::cancel(Time now) {
  PageWindow* front = frontState();
  if (front == nullptr) {
    act(Action::leave, {}, now);
  } else if (question_) {
    question_.reset();
  } else if (front->buttons.size() > 1) {
    front->focus = front->buttons.size() - 1;
  } else {
    pressWindowButton(0, now);
  }
}

void PageModel::moveFocus(int step) {
  PageWindow* front = frontState();
  if (front != nullptr) {
    const auto count = static_cast<int>(front->buttons.size());
    if (count > 0) {
      front->focus = static_cast<std::size_t>((static_cast<int>(front->focus) + step + count) % count);
    }
    return;
  }
  const std::vector<PageButton> shown = buttons();
  const auto count = static_cast<int>(shown.size());
  int at = static_cast<int>(pageFocus_);
  for (int tries = 0; tries < count; ++tries) {
    at = (at + step + count) % count;
    if (shown[static_cast<std::size_t>(at)].isEnabled) {
      pageFocus_ = static_cast<std::size_t>(at);
      return;
    }
  }
}

void PageModel::scroll(Action action, ScrollExtent extent) {
  PageWindow* front = frontState();
  int& line = front != nullptr ? front->scroll : textScroll_;
  // The text may be shorter, or the window higher, than when it was scrolled.
  line = std::clamp(line, 0, extent.maximum);
  switch (action) {
    case Action::lineUp: line -= 1; break;
    case Action::lineDown: line += 1; break;
    case Action::pageUp: line -= std::max(extent.page - 1, 1); break;
    case Action::pageDown: line += std::max(extent.page - 1, 1); break;
    case Action::toStart: line = 0; break;
    case Action::toEnd: line = extent.maximum; break;
    default: break;
  }
  line = std::clamp(line, 0, extent.maximum);
}

void PageModel::ask(Question question) {
  PageWindow window;
  if (question == Question::help) {
    window = helpWindow();
  } else if (question == Question::leave) {
    window.heading = _("Leave the installer?");
    window.headingStyle = Style::warning;
    window.paragraphs = {{leaveText(), Style::text}};
    window.buttons = ownButtons({N_("Go On"), N_("Leave")});
  } else {
    window.heading = _("There may not be enough space.");
    window.headingStyle = Style::warning;
    window.paragraphs = {
        {shortRoomText(introduction_), Style::text},
        {},
        {_("Files would then be missing or truncated. Data that is replaced needs no additional space."),
         Style::text}};
    window.buttons = ownButtons({N_("Do Not Install"), N_("Install Anyway")});
  }
  question_ = Asked{question, std::move(window)};
}

void PageModel::answerQuestion(std::size_t index, Time now) {
  const Question question = question_->question;
  question_.reset();
  if (index == 0 || question == Question::help) {
    return;
  }
  if (question == Question::leave) {
    requests_.push_back({PageRequest::Kind::leave});
  } else {
    enter(now);
  }
}

std::string PageModel::leaveText() const {
  if (stage_ == Stage::introduction) {
    return _("Nothing has been installed yet.");
  }
  if (isIdle_) {
    return hasFailed_ ? _("The installation has ended, but not everything was installed. The last page shows "
                          "what is missing.")
                      : _("The data is installed. Only the last page remains.");
  }
  std::string text = _("The installation is not finished. Leaving stops it.");
  if (const std::string amount = amountText(meter_); !amount.empty()) {
    const char* stays =
        alert_ ? _("{0} is copied and kept in {1}.")
               : _("{0} is copied and kept in {1}. The file that is being copied will be truncated.");
    text = join(text, format(stays, {amount, introduction_.destination}));
  }
  return join(text, _("To complete it, run the installer again. It copies everything again."));
}

}  // namespace tavenhall

#include "host/plain/plain_notices.h"

#include "host/base/text.h"

#include <variant>

namespace tavenhall {

PlainNotices::PlainNotices(const RunDescription& description)
    : notices_(description.notices),
      meter_(description.introduction.barWraps),
      hasPrompts_(!description.isUnattended),
      isPresent_(!description.attached) {
  notice_.product = description.introduction.productName;
}

std::string PlainNotices::handle(const Event& event) {
  std::visit(
      EventVisitor{[this](const event::ProgressMinimum& minimum) { meter_.setMinimum(minimum.value); },
                   [this](const event::ProgressMaximum& maximum) { meter_.setMaximum(maximum.value); },
                   [this](const event::ProgressValue& progress) {
                     meter_.setValue(progress.value);
                     notice_.percent = meter_.percent();
                   },
                   [this](const event::Alert& alert) { notice_.need = hasPrompts_ ? alert.informative : ""; },
                   [this](const event::Answered& /*answered*/) { notice_.need.clear(); },
                   [this](const event::Present& /*present*/) { isPresent_ = true; },
                   [](const auto& /*other*/) {}},
      event);
  return isPresent_ ? notices_.update(notice_) : "";
}

std::string PlainNotices::setPasswordIsNeeded(bool isNeeded) {
  notice_.need = isNeeded ? _("A password is needed") : "";
  return notices_.update(notice_);
}

std::string PlainNotices::end(bool isSuccess) {
  notice_.need.clear();
  notice_.end = isSuccess ? TerminalNotice::End::success : TerminalNotice::End::failure;
  return notices_.update(notice_);
}

}  // namespace tavenhall

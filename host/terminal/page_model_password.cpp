#include "host/terminal/page_model.h"

#include "host/base/text.h"

#include <algorithm>
#include <chrono>
#include <utility>

// A command of the installation asks for a password: the typed text goes to this command only.
namespace tavenhall {

namespace {

// The greatest width; of a longer password the end is shown.
constexpr std::size_t kFieldColumns = 32;

// A line that is printed just before the next prompt explains why the answer was wrong.
constexpr auto kSoon = std::chrono::seconds(10);

}  // namespace

void PageModel::setPasswordPrompt(const std::optional<std::string>& prompt, Time now) {
  typed_.clear();
  password_.reset();
  if (!prompt) {
    meter_.resume(now);
    return;
  }
  PageWindow window;
  window.heading = _("A password is needed");
  if (passwordSentAt_ && now - *passwordSentAt_ < kSoon && hasMessageSince_) {
    window.paragraphs = {{messages_.back(), Style::warning}, {}};
  }
  window.paragraphs.push_back({_("A command of the installation prompts:")});
  window.paragraphs.push_back({*prompt, Style::strong});
  window.paragraphs.emplace_back();
  window.paragraphs.push_back({"", Style::field});
  window.buttons = {{_("OK")}, {_("Cancel")}};  // without keys: every letter may belong to the password
  password_ = std::move(window);
  showTyped();
  meter_.pause(now);
}

void PageModel::type(std::string_view character) {
  typed_.append(character);
  showTyped();
}

void PageModel::eraseTyped() {
  typed_.dropLastCharacter();
  showTyped();
}

void PageModel::clearTyped() {
  typed_.clear();
  showTyped();
}

void PageModel::showTyped() {
  const std::size_t stars = std::min(typed_.characters(), kFieldColumns);
  password_->paragraphs.back().text = std::string(stars, '*') + std::string(kFieldColumns - stars, '_');
}

void PageModel::answerPasswordQuestion(std::size_t index, Time now) {
  password_.reset();
  meter_.resume(now);
  passwordSentAt_ = now;
  hasMessageSince_ = false;
  if (index == 0) {
    requests_.push_back({PageRequest::Kind::sendPassword});
  } else {
    typed_.clear();
    requests_.push_back({PageRequest::Kind::refusePassword});
  }
}

}  // namespace tavenhall

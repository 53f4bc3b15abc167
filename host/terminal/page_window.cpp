#include "host/terminal/page_window.h"

#include "host/base/text.h"

#include <algorithm>

namespace tavenhall {

namespace {

constexpr std::size_t kMostEntries = 200;

char asKey(char character) {
  if (character >= 'A' && character <= 'Z') {
    return static_cast<char>(character - 'A' + 'a');
  }
  const bool isKey = (character >= 'a' && character <= 'z') || (character >= '0' && character <= '9');
  return isKey ? character : '\0';
}

}  // namespace

std::vector<PageButton> buttonsWithKeys(const std::vector<std::string>& labels) {
  std::vector<PageButton> buttons;
  std::string taken;
  for (const std::string& label : labels) {
    char key = '\0';
    for (const char character : label) {
      key = asKey(character);
      if (key != '\0' && taken.find(key) == std::string::npos) {
        break;
      }
      key = '\0';
    }
    taken += key;
    buttons.push_back({label, true, key});
  }
  return buttons;
}

std::vector<PageButton> ownButtons(const std::vector<std::string>& english) {
  std::vector<std::string> labels;
  for (const PageButton& button : buttonsWithKeys(english)) {
    std::string& label = labels.emplace_back(_(button.label.c_str()));
    if (std::none_of(label.begin(), label.end(), asKey)) {
      label += std::string("(") + static_cast<char>(button.hotKey - 'a' + 'A') + ")";
    }
  }
  return buttonsWithKeys(labels);
}

void SheetList::add(const std::string& message, const std::string& button) {
  ++count_;
  button_ = button;
  const auto known = std::find_if(entries_.begin(), entries_.end(),
                                  [&message](const Entry& entry) { return entry.message == message; });
  if (known != entries_.end()) {
    ++known->count;
  } else if (entries_.size() < kMostEntries) {
    entries_.push_back({message, 1});
  } else {
    ++countBeyond_;
  }
}

PageWindow SheetList::window(bool installGoesOn) const {
  PageWindow window;
  window.heading =
      count_ == 1 ? _("A problem") : plural("{1} problem", "{1} problems", count_, {groupedNumber(count_)});
  window.headingStyle = Style::warning;
  for (const Entry& entry : entries_) {
    if (!window.paragraphs.empty()) {
      window.paragraphs.emplace_back();
    }
    window.paragraphs.push_back({entry.message, Style::text});
    if (entry.count > 1) {
      window.paragraphs.push_back(
          {plural("({1} time)", "({1} times)", entry.count, {groupedNumber(entry.count)}), Style::strong});
    }
  }
  if (countBeyond_ > 0) {
    window.paragraphs.emplace_back();
    window.paragraphs.push_back({format(_("and {0} more"), {groupedNumber(countBeyond_)}), Style::strong});
  }
  if (installGoesOn) {
    window.paragraphs.emplace_back();
    window.paragraphs.push_back({_("The installation continues meanwhile."), Style::dim});
  }
  window.buttons = button_.empty() ? ownButtons({N_("OK")}) : buttonsWithKeys({button_});
  return window;
}

}  // namespace tavenhall

#include "host/ui/terminal_notices.h"

#include "host/base/display_text.h"
#include "host/base/text.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace tavenhall {

namespace {

constexpr const char* kBell = "\a";
constexpr const char* kNoProgress = "\033]9;4;0\a";
constexpr int kMostColumns = 100;  // of a title or notification

bool startsWithOne(std::string_view text, const std::vector<std::string_view>& beginnings) {
  return std::any_of(beginnings.begin(), beginnings.end(),
                     [text](std::string_view beginning) { return text.starts_with(beginning); });
}

// Texts of a file must not end the sequence early and begin another.
std::string clean(const std::string& text) { return truncateEnd(printableLine(text), kMostColumns); }

std::string callOf(const TerminalNotice& notice) {
  switch (notice.end) {
    case TerminalNotice::End::success: return _("The installation was successful.");
    case TerminalNotice::End::failure: return _("The installation is not complete.");
    case TerminalNotice::End::none: break;
  }
  return notice.need;
}

std::string titleOf(const TerminalNotice& notice, const std::string& call) {
  const std::string state = !call.empty()    ? call
                            : notice.percent ? std::to_string(*notice.percent) + " %"
                                             : std::string();
  return clean(state.empty() ? notice.product : state + " - " + notice.product);
}

// The states of OSC 9;4: 0 none, 1 a percentage, 2 an error, 4 paused.
std::string progressOf(const TerminalNotice& notice) {
  if (notice.end == TerminalNotice::End::failure) {
    return "\033]9;4;2;100\a";
  }
  if (notice.end == TerminalNotice::End::success || !notice.percent) {
    return kNoProgress;
  }
  return std::string("\033]9;4;") + (notice.need.empty() ? "1" : "4") + ";" + std::to_string(*notice.percent) +
         "\a";
}

}  // namespace

// Of the terminals' own documentation: OSC 9 of iTerm2, kitty, WezTerm and Ghostty; OSC 9;4 of ConEmu, Windows
// Terminal, Ghostty, and VTE from 0.80 on. Older ones of some of them show the progress as a notification, so
// they are not in the list. Screen and tmux pass neither on.
NoticeAbilities noticeAbilities(const std::function<const char*(const char* name)>& variable) {
  const auto value = [&variable](const char* name) {
    const char* text = variable(name);
    return std::string_view(text != nullptr ? text : "");
  };
  NoticeAbilities abilities;
  abilities.bell = true;
  abilities.title = startsWithOne(value("TERM"), {"xterm", "tmux", "screen", "rxvt", "alacritty", "foot",
                                                  "kitty", "konsole", "vte", "gnome", "wezterm", "ghostty"});
  if (!abilities.title || startsWithOne(value("TERM"), {"tmux", "screen"})) {
    return abilities;
  }
  const std::string_view program = value("TERM_PROGRAM");
  const bool isGhostty = program == "ghostty";
  abilities.notification =
      isGhostty || program == "iTerm.app" || program == "WezTerm" || !value("KITTY_WINDOW_ID").empty();
  constexpr int kFirstVteWithProgress = 8000;
  abilities.progress = isGhostty || !value("WT_SESSION").empty() || value("ConEmuANSI") == "ON" ||
                       std::atoi(std::string(value("VTE_VERSION")).c_str()) >= kFirstVteWithProgress;
  return abilities;
}

std::string TerminalNotices::begin() const { return abilities_.title ? "\033[22;2t" : ""; }

std::string TerminalNotices::end() const {
  return std::string(abilities_.progress ? kNoProgress : "") + (abilities_.title ? "\033[23;2t" : "");
}

std::string TerminalNotices::update(const TerminalNotice& notice) {
  std::string sequences;
  const std::string call = callOf(notice);
  if (const std::string title = titleOf(notice, call); abilities_.title && title != title_) {
    title_ = title;
    sequences += "\033]2;" + title + "\a";
  }
  if (const std::string progress = progressOf(notice);
      abilities_.progress && progress != progress_ && !(progress_.empty() && progress == kNoProgress)) {
    progress_ = progress;
    sequences += progress;
  }
  if (call != call_) {
    call_ = call;
    if (!call.empty()) {
      sequences += abilities_.notification ? "\033]9;" + clean(notice.product + ": " + call) + "\a" : "";
      sequences += abilities_.bell ? kBell : "";
    }
  }
  return sequences;
}

}  // namespace tavenhall

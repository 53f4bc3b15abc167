#pragma once

#include "host/protocol/messages.h"
#include "host/terminal/page_layout.h"
#include "host/ui/introduction.h"

#include <optional>
#include <string>
#include <vector>

// What the user sees of an install, screen by screen, from the events of one. One thread.
namespace tavenhall {

struct StoryEvent {
  double seconds = 0.0;  // since the first
  Event event;
};

// The window of the macOS Installer.
struct StoryWindow {
  struct Prompt {
    std::string message;
    std::string informative;
    std::vector<std::string> buttons;
  };

  std::vector<Step> steps;
  std::string title;
  std::string text;
  std::string status;
  double bar = 0.0;  // from 0 to 1
  bool canGoBack = false;
  bool canContinue = false;
  std::optional<Prompt> prompt;  // an alert or a sheet
};

struct StoryScreen {
  std::string caption;  // in the current language
  double seconds = 0.0;
  std::optional<StoryWindow> window;  // none: what the terminal shows before and after the page
  std::vector<Layer> terminal;
};

inline constexpr Size kStoryTerminal{24, 80};

// The screens in order, with the program's own texts in the current language. A failure is shown once for each
// text.
[[nodiscard]] std::vector<StoryScreen> screensOf(const Introduction& introduction,
                                                 const std::vector<StoryEvent>& events);

}  // namespace tavenhall

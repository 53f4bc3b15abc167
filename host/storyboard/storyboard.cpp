#include "host/storyboard/storyboard.h"

#include "host/base/display_text.h"
#include "host/base/unicode.h"
#include "host/storyboard/storyboard_style.h"

#include <cmath>
#include <string_view>

namespace tavenhall {

namespace {

std::string escaped(std::string_view text) {
  std::string html;
  for (const char32_t character : decodeUtf8(text)) {
    switch (character) {
      case '&': html += "&amp;"; break;
      case '<': html += "&lt;"; break;
      case '>': html += "&gt;"; break;
      case '"': html += "&quot;"; break;
      case '\0': html += "\xEF\xBF\xBD"; break;
      default: html += encodeUtf8({&character, 1});
    }
  }
  return html;
}

std::string element(const char* name, const std::string& classes, const std::string& content) {
  return std::string("<") + name + (classes.empty() ? "" : " class=\"" + classes + "\"") + ">" + content +
         "</" + name + ">";
}

const char* classOf(Style style) {
  switch (style) {
    case Style::text: break;
    case Style::dim: return "dim";
    case Style::strong: return "strong";
    case Style::heading: return "heading";
    case Style::current: return "current";
    case Style::rule: return "rule";
    case Style::good: return "good";
    case Style::warning: return "warning";
    case Style::bad: return "bad";
    case Style::barDone: return "barDone";
    case Style::barAhead: return "barAhead";
    case Style::field: return "field";
    case Style::button: return "button-run";
    case Style::buttonFocused: return "button-focused";
    case Style::buttonOff: return "button-off";
  }
  return "";
}

// A position in the terminal's cells.
std::string cellStyle(int row, int column) {
  return "top:" + std::to_string(row) + ".0lh;left:" + std::to_string(column) + "ch";
}

std::string terminalHtml(const std::vector<Layer>& layers) {
  std::string html;
  for (const Layer& layer : layers) {
    std::string runs;
    for (const Run& run : layer.runs) {
      const std::string classes = std::string(classOf(run.style)) + (run.isUnderlined ? " underlined" : "");
      runs += "<span" + (classes.empty() ? "" : " class=\"" + classes + "\"") + " style=\"" +
              cellStyle(run.row, run.column) + "\">" + escaped(run.text) + "</span>";
    }
    html += "<div class=\"layer\" style=\"" + cellStyle(layer.place.row, layer.place.column) +
            ";width:" + std::to_string(layer.place.columns) + "ch;height:" + std::to_string(layer.place.rows) +
            "lh\">" + runs + "</div>";
  }
  return element("div", "terminal", html);
}

std::string buttonHtml(const std::string& label, bool isFirst, bool isEnabled) {
  return element("div", std::string("button") + (isFirst ? " first" : "") + (isEnabled ? "" : " off"),
                 escaped(label));
}

std::string promptHtml(const StoryWindow::Prompt& prompt) {
  std::string buttons;
  for (std::size_t i = 0; i < prompt.buttons.size(); ++i) {
    buttons += buttonHtml(prompt.buttons[i], i == 0, true);
  }
  return element("div", "prompt",
                 element("strong", "", escaped(prompt.message)) +
                     (prompt.informative.empty() ? "" : element("p", "", escaped(prompt.informative))) +
                     element("div", "row", buttons));
}

std::string stepsHtml(const std::vector<Step>& steps) {
  std::string items;
  for (const Step& step : steps) {
    const char* classes = step.state == StepState::current ? "current-step"
                          : step.state == StepState::ahead ? "ahead"
                                                           : "";
    items += element("li", classes, escaped(step.title));
  }
  return element("ul", "steps", items);
}

std::string windowHtml(const StoryWindow& window, const StoryLanguage& language) {
  constexpr double kPercent = 100.0;
  const std::string bar = "<div class=\"bar\"><div style=\"width:" +
                          std::to_string(static_cast<int>(std::lround(window.bar * kPercent))) +
                          "%\"></div></div>";
  return element("div", "window",
                 element("div", "strip", escaped(window.title)) + stepsHtml(window.steps) +
                     element("div", "title", escaped(window.title)) +
                     element("div", "pane",
                             element("div", "text", escaped(window.text)) + bar +
                                 element("div", "status", escaped(window.status))) +
                     element("div", "buttons",
                             buttonHtml(language.goBackLabel, false, window.canGoBack) +
                                 buttonHtml(language.continueLabel, true, window.canContinue)) +
                     (window.prompt ? promptHtml(*window.prompt) : ""));
}

std::string timeText(double seconds) {
  constexpr int kMinute = 60;
  const auto whole = static_cast<int>(seconds);
  const int rest = whole % kMinute;
  return std::to_string(whole / kMinute) + (rest < 10 ? ":0" : ":") + std::to_string(rest);
}

std::string storyHtml(const StoryLanguage& language) {
  std::string screens;
  int number = 0;
  for (const StoryScreen& screen : language.screens) {
    screens +=
        "<figure><figcaption>" + std::to_string(++number) + ". " + escaped(screen.caption) + " · " +
        timeText(screen.seconds) + "</figcaption>" +
        element("div", "pair",
                (screen.window ? windowHtml(*screen.window, language) : "") + terminalHtml(screen.terminal)) +
        "</figure>\n";
  }
  return "<section class=\"story\" id=\"story-" + language.code + "\" lang=\"" + language.code + "\">\n" +
         element("p", std::string("verdict ") + (language.isPassed ? "passed" : "failed"),
                 escaped(language.passed)) +
         "\n<div class=\"columns\">\n<div>\n" + screens + "</div>\n<aside>" +
         element("h2", "", escaped(language.diagnosticsHeading)) +
         element("pre", "", escaped(language.diagnostics)) +
         element("h2", "", escaped(language.reportHeading)) + element("pre", "", escaped(language.report)) +
         "</aside>\n</div>\n</section>\n";
}

}  // namespace

std::string storyboardHtml(const Storyboard& storyboard) {
  std::string rules;
  std::string tabs;
  std::string inputs;
  std::string stories;
  for (const StoryLanguage& language : storyboard.languages) {
    const std::string id = "language-" + language.code;
    rules += "#" + id + ":checked ~ #story-" + language.code + " { display: block; }\n#" + id +
             ":checked ~ nav label[for=" + id + "] { background: var(--card); font-weight: 600; }\n#" + id +
             ":focus-visible ~ nav label[for=" + id + "] { outline: 2px solid var(--accent); }\n";
    inputs += "<input type=\"radio\" name=\"language\" id=\"" + id + "\"" + (inputs.empty() ? " checked" : "") +
              ">\n";
    tabs += "<label for=\"" + id + "\" lang=\"" + language.code + "\">" + escaped(language.name) + "</label>";
    stories += storyHtml(language);
  }
  return "<!doctype html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
         "<meta name=\"viewport\" content=\"width=device-width\">\n<title>" +
         escaped(storyboard.title) + "</title>\n<style>" + kStoryboardStyle + rules +
         "</style>\n</head>\n<body>\n<header><h1>" + escaped(storyboard.title) + "</h1><p>" +
         escaped(storyboard.subtitle) + "</p></header>\n" + inputs + "<nav>" + tabs + "</nav>\n" + stories +
         "</body>\n</html>\n";
}

}  // namespace tavenhall

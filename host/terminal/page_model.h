#pragma once

#include "host/protocol/messages.h"
#include "host/protocol/password_terminal.h"
#include "host/terminal/page_window.h"
#include "host/ui/introduction.h"
#include "host/ui/phase_line.h"
#include "host/ui/progress_meter.h"
#include "host/ui/run_result.h"
#include "host/ui/styled_text.h"
#include "host/ui/terminal_notices.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavenhall {

// A user's action, by key or mouse.
enum class Action {
  focusNext,
  focusPrevious,
  press,   // the button with the focus
  cancel,  // close a window of the program's own, or leave the program
  leave,   // leave the program
  help,    // show the keys, and what is happening
  lineUp,
  lineDown,
  pageUp,
  pageDown,
  toStart,
  toEnd,
};

// How far the front text can be scrolled, as it was last laid out.
struct ScrollExtent {
  int page = 1;     // lines that are visible
  int maximum = 0;  // lines that are not
};

// The page's request to its program: send a command or an answer to the engine, answer a command's password
// prompt, or end.
struct PageRequest {
  enum class Kind { enter, forward, back, quit, answer, sendPassword, refusePassword, leave, close };
  Kind kind;
  int answer = 0;
  std::int64_t alert = 0;  // that it answers

  bool operator==(const PageRequest&) const = default;
};

enum class StepState { ahead, current, done, failed };

struct Step {
  std::string title;
  StepState state = StepState::ahead;
};

// The state of the terminal page, from the engine's events and the user's actions. Independent of curses; the
// caller passes the time. One thread.
class PageModel {
 public:
  using Time = ProgressMeter::Time;

  enum class Stage { introduction, page, summary };

  explicit PageModel(Introduction introduction);

  // The frontend has attached to a run: there is no introduction, and leaving does not end the run.
  void attach(const event::Attached& run, Time now);

  // ---- Input ----

  void handle(const Event& event, Time now);
  void addMessage(std::string_view line);  // what the engine or a command prints on standard error
  void end(RunResult result, Time now);    // the engine has ended: the last page

  // The password prompt of a command; none once it is over.
  void setPasswordPrompt(const std::optional<std::string>& prompt, Time now);

  void act(Action action, ScrollExtent extent, Time now);
  bool pressKey(char hotKey, Time now);           // false: no button has this key
  void pressButton(std::size_t index, Time now);  // of the window in front, or of the page

  // While a command asks for a password, characters are typed into it and press no button.
  [[nodiscard]] bool takesTyping() const { return password_ && !question_; }
  void type(std::string_view character);
  void eraseTyped();
  void clearTyped();

  // The typed password, for PageRequest::Kind::sendPassword; the caller clears it once it is sent.
  [[nodiscard]] const Secret& typedPassword() const { return typed_; }
  void clearPassword() { typed_.clear(); }

  // The requests since the last call, in order.
  [[nodiscard]] std::vector<PageRequest> takeRequests() { return std::exchange(requests_, {}); }

  // ---- Output ----

  [[nodiscard]] Stage stage() const { return stage_; }
  [[nodiscard]] const Introduction& introduction() const { return introduction_; }
  [[nodiscard]] std::vector<Step> steps() const;
  [[nodiscard]] Span heading() const;
  [[nodiscard]] std::vector<Line> textLines(int width) const;
  [[nodiscard]] int textScroll() const { return textScroll_; }
  [[nodiscard]] std::vector<std::string> phaseTexts(Time now) const { return phase_.texts(now); }
  [[nodiscard]] Span statusLine() const;
  [[nodiscard]] std::string notice() const;  // the latest message; empty before the first

  [[nodiscard]] std::vector<PageButton> buttons() const;
  [[nodiscard]] std::optional<std::size_t> focus() const;  // of the page's buttons; none while a window is up

  [[nodiscard]] std::vector<PageWindow> windows() const;  // the front one last
  [[nodiscard]] bool hasWindow() const { return question_ || password_ || alert_ || !sheets_.isEmpty(); }
  [[nodiscard]] bool isWaitingForUser() const { return password_ || alert_; }

  [[nodiscard]] TerminalNotice terminalNotice() const;

  [[nodiscard]] ProgressMeter& meter() { return meter_; }
  [[nodiscard]] const std::deque<std::string>& messages() const { return messages_; }
  [[nodiscard]] std::string leaveText() const;

 private:
  enum class Question { leave, shortRoom, help };

  struct Asked {
    Question question;
    PageWindow window;
  };

  void handleAlert(const event::Alert& alert);
  void handleExit(const event::Exit& exit);
  void pressWindowButton(std::size_t index, Time now);
  void answerPasswordQuestion(std::size_t index, Time now);
  void showTyped();
  void pressPageButton(std::size_t index, Time now);
  void answerQuestion(std::size_t index, Time now);
  void ask(Question question);
  [[nodiscard]] PageWindow helpWindow() const;
  void enter(Time now);
  void cancel(Time now);
  void moveFocus(int step);
  void scroll(Action action, ScrollExtent extent);
  void endIfStuck();

  // The focus and the scroll position of the window in front, or null.
  [[nodiscard]] PageWindow* frontState();

  Introduction introduction_;
  bool isAttached_ = false;
  bool takesAnswers_ = true;
  Stage stage_ = Stage::introduction;
  std::string title_;
  std::string instructions_;
  std::string status_;
  bool nextIsEnabled_ = false;
  bool previousIsEnabled_ = false;
  bool isIdle_ = false;     // no page thread runs
  bool isLeaving_ = false;  // the engine was asked to leave the page
  bool isClosing_ = false;  // the engine was asked to quit
  bool hasFailed_ = false;  // a sheet has reported a failure
  ProgressMeter meter_;
  PhaseLine phase_;
  std::deque<std::string> messages_;
  RunResult result_;

  std::optional<Asked> question_;
  std::optional<PageWindow> password_;  // its last paragraph shows that something is typed
  Secret typed_;
  std::optional<Time> passwordSentAt_;
  bool hasMessageSince_ = false;  // a message has come since a password was sent
  std::optional<PageWindow> alert_;
  event::Alert alertShown_;  // the latest
  SheetList sheets_;
  PageWindow sheetsState_;  // focus and scroll position alone
  std::size_t pageFocus_ = 1;
  int textScroll_ = 0;
  std::vector<PageRequest> requests_;
};

}  // namespace tavenhall

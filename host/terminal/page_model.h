#pragma once

#include "host/protocol/secret.h"
#include "host/terminal/page_window.h"
#include "host/ui/introduction.h"
#include "host/ui/progress_meter.h"
#include "host/ui/run_outcome.h"
#include "host/ui/styled_text.h"

#include <cstddef>
#include <deque>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavenhall {

// What the user does, whatever the key or the mouse that says so.
enum class Action {
  focusNext,
  focusPrevious,
  press,   // the button with the focus
  cancel,  // out of a window of the program's own, or out of the program
  leave,   // out of the program
  lineUp,
  lineDown,
  pageUp,
  pageDown,
  toStart,
  toEnd,
};

// How far the text in front can be scrolled, as it was last laid out.
struct ScrollExtent {
  int page = 1;     // lines that show at a time
  int maximum = 0;  // lines that do not
};

// What the page wants of the world: commands for the engine, an answer for a command that asks for a password,
// or the end of the program.
struct Wish {
  enum class Kind { enter, forward, back, quit, answer, tellPassword, refusePassword, leave, close };
  Kind kind;
  int answer = 0;

  bool operator==(const Wish&) const = default;
};

enum class StepState { ahead, current, done, failed };

struct Step {
  std::string title;
  StepState state = StepState::ahead;
};

// The state of the terminal page: what the engine has told and what the user has done. It knows no screen and
// no clock; every call that needs the time is told it. One thread.
class PageModel {
 public:
  using Time = ProgressMeter::Time;

  enum class Stage { introduction, page, summary };

  explicit PageModel(Introduction introduction);

  // ---- What happens ----

  void hear(const nlohmann::ordered_json& event, Time now);  // one line of the engine's
  void hearMessage(std::string_view line);                   // what it, or a command, says on standard error
  void end(RunOutcome outcome, Time now);                    // the engine has ended: the last page

  // A command asks for a password, or does not any more.
  void hearPasswordQuestion(const std::optional<std::string>& prompt, Time now);

  void act(Action action, ScrollExtent extent, Time now);
  void pressKey(char hotKey, Time now);
  void pressButton(std::size_t index, Time now);  // of the window in front, or of the page

  // While a password is asked for, characters are typed instead of pressed.
  [[nodiscard]] bool takesTyping() const { return password_ && !question_; }
  void type(std::string_view character);
  void eraseTyped();
  void clearTyped();

  // What was typed, for the wish to tell it; the caller forgets it as soon as it is told.
  [[nodiscard]] const Secret& typedPassword() const { return typed_; }
  void forgetPassword() { typed_.clear(); }

  // What is wanted since the last call, in order.
  [[nodiscard]] std::vector<Wish> takeWishes() { return std::exchange(wishes_, {}); }

  // ---- What shows ----

  [[nodiscard]] Stage stage() const { return stage_; }
  [[nodiscard]] const Introduction& introduction() const { return introduction_; }
  [[nodiscard]] std::vector<Step> steps() const;
  [[nodiscard]] Span heading() const;
  [[nodiscard]] std::vector<Line> textLines(int width) const;
  [[nodiscard]] int textScroll() const { return textScroll_; }
  [[nodiscard]] Span statusLine() const;
  [[nodiscard]] std::string notice() const;  // the latest message; empty before the first

  [[nodiscard]] std::vector<PageButton> buttons() const;
  [[nodiscard]] std::optional<std::size_t> focus() const;  // of the page's buttons; none while a window is up

  [[nodiscard]] std::vector<PageWindow> windows() const;  // the front one last
  [[nodiscard]] bool hasWindow() const { return question_ || password_ || alert_ || !sheets_.isEmpty(); }
  [[nodiscard]] bool isWaitingForUser() const { return password_ || alert_; }

  [[nodiscard]] ProgressMeter& meter() { return meter_; }
  [[nodiscard]] const std::deque<std::string>& messages() const { return messages_; }
  [[nodiscard]] std::string leaveText() const;

 private:
  enum class Question { leave, shortRoom };

  struct Asked {
    Question question;
    PageWindow window;
  };

  void hearControl(const std::string& name, const nlohmann::ordered_json& event, Time now);
  void hearExit(const nlohmann::ordered_json& event);
  void pressWindowButton(std::size_t index, Time now);
  void answerPasswordQuestion(std::size_t index, Time now);
  void showTyped();
  void resumeMeter(Time now);
  void pressPageButton(std::size_t index, Time now);
  void answerQuestion(std::size_t index, Time now);
  void ask(Question question);
  void enter(Time now);
  void cancel(Time now);
  void moveFocus(int step);
  void scroll(Action action, ScrollExtent extent);
  void endIfStuck();

  // The focus and the scroll position of the window in front, or null.
  [[nodiscard]] PageWindow* frontState();

  Introduction introduction_;
  Stage stage_ = Stage::introduction;
  std::string title_;
  std::string instructions_;
  std::string status_;
  bool nextIsEnabled_ = false;
  bool previousIsEnabled_ = false;
  bool isIdle_ = false;     // no page thread runs
  bool isAsked_ = false;    // the page was asked whether it may be left
  bool isClosing_ = false;  // the engine was told to quit
  bool hasFailed_ = false;  // a sheet has told of a failure
  ProgressMeter meter_;
  std::deque<std::string> messages_;
  RunOutcome outcome_;

  std::optional<Asked> question_;
  std::optional<PageWindow> password_;  // its last paragraph shows that something is typed
  Secret typed_;
  std::optional<Time> passwordToldAt_;
  bool hasHeardSince_ = false;  // a message has come since a password was told
  std::optional<PageWindow> alert_;
  SheetList sheets_;
  PageWindow sheetsState_;  // focus and scroll position alone
  std::size_t pageFocus_ = 1;
  int textScroll_ = 0;
  std::vector<Wish> wishes_;
};

}  // namespace tavenhall

#pragma once

#include "host/terminal/page_model.h"

#include <string>
#include <vector>

namespace tavenhall::test {

// A page model with the test's own clock, which gets its events as an engine's lines.
class PageDriver {
 public:
  explicit PageDriver(Introduction introduction = plainIntroduction());

  // Two discs of Tessaphon, 2.0 GB, with room for them.
  [[nodiscard]] static Introduction plainIntroduction();

  PageModel page;

  void at(double seconds) { now_ = PageModel::Time{} + since(seconds); }
  [[nodiscard]] PageModel::Time now() const { return now_; }

  // Handles an event, given as its line with ' for ". A value of the bar counts for as many bytes, 1024 a unit.
  void receive(std::string line);

  void act(Action action) { page.act(action, {5, 20}, now_); }
  void press(char key) { page.pressKey(key, now_); }

  // Goes from the first page to the page itself, and drops the requests on the way.
  void enter();

  // The requests since the last call: "enter", "answer 1001", ...
  [[nodiscard]] std::vector<std::string> requests();

  // Headings and paragraphs of the windows that are up, the front one last.
  [[nodiscard]] std::vector<std::string> windowTexts() const;

 private:
  static PageModel::Time::duration since(double seconds);

  PageModel::Time now_;
  std::int64_t bytesWritten_ = 0;
};

}  // namespace tavenhall::test

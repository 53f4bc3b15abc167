#pragma once

#include "host/terminal/page_model.h"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace tavenhall::test {

// A page's model with a clock of the test's, told its events as an engine would tell them.
class PageDriver {
 public:
  explicit PageDriver(Introduction introduction = plainIntroduction());

  // Two discs of Tessaphon, 2.0 GB, with room for them.
  [[nodiscard]] static Introduction plainIntroduction();

  PageModel page;

  void at(double seconds) { now_ = PageModel::Time{} + since(seconds); }
  [[nodiscard]] PageModel::Time now() const { return now_; }

  // An event as its line, with ' for ".
  void hear(std::string line);

  void act(Action action) { page.act(action, {5, 20}, now_); }
  void press(char key) { page.pressKey(key, now_); }

  // Goes from the first page to the page itself, and forgets the wishes on the way.
  void enter();

  // What is wanted since the last call: "enter", "answer 1001", ...
  [[nodiscard]] std::vector<std::string> wishes();

  // Headings and paragraphs of the windows that are up, the front one last.
  [[nodiscard]] std::vector<std::string> windowTexts() const;

 private:
  static PageModel::Time::duration since(double seconds);

  PageModel::Time now_;
};

}  // namespace tavenhall::test

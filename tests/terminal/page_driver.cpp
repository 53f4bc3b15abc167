#include "tests/terminal/page_driver.h"

#include <algorithm>
#include <chrono>
#include <map>

namespace tavenhall::test {

Introduction PageDriver::plainIntroduction() {
  Introduction introduction;
  introduction.productName = "Tessaphon";
  introduction.pageTitle = "Installing Tessaphon Data";
  introduction.what = "This installs the sample data of Tessaphon.";
  introduction.from = {"Disc Tavenhall Tessaphon A", "Disc Tessaphon B"};
  introduction.destination = "/Users/tester/Library/Application Support/Tavenhall/TANVO";
  introduction.to = {introduction.destination};
  introduction.neededBytes = 2000000000;
  introduction.freeBytes = 50000000000;
  return introduction;
}

PageDriver::PageDriver(Introduction introduction) : page(std::move(introduction)) {}

PageModel::Time::duration PageDriver::since(double seconds) {
  return std::chrono::duration_cast<PageModel::Time::duration>(std::chrono::duration<double>(seconds));
}

void PageDriver::hear(std::string line) {
  std::replace(line.begin(), line.end(), '\'', '"');
  page.hear(nlohmann::ordered_json::parse(line), now_);
}

void PageDriver::enter() {
  act(Action::press);
  static_cast<void>(page.takeWishes());
}

std::vector<std::string> PageDriver::wishes() {
  static const std::map<Wish::Kind, std::string> kNames{{Wish::Kind::enter, "enter"},
                                                        {Wish::Kind::forward, "forward"},
                                                        {Wish::Kind::back, "back"},
                                                        {Wish::Kind::quit, "quit"},
                                                        {Wish::Kind::leave, "leave"},
                                                        {Wish::Kind::tellPassword, "tell password"},
                                                        {Wish::Kind::refusePassword, "refuse password"},
                                                        {Wish::Kind::close, "close"}};
  std::vector<std::string> wishes;
  for (const Wish& wish : page.takeWishes()) {
    wishes.push_back(wish.kind == Wish::Kind::answer ? "answer " + std::to_string(wish.answer)
                                                     : kNames.at(wish.kind));
  }
  return wishes;
}

std::vector<std::string> PageDriver::windowTexts() const {
  std::vector<std::string> texts;
  for (const PageWindow& window : page.windows()) {
    texts.push_back(window.heading);
    for (const Span& paragraph : window.paragraphs) {
      if (!paragraph.text.empty()) {
        texts.push_back(paragraph.text);
      }
    }
  }
  return texts;
}

}  // namespace tavenhall::test

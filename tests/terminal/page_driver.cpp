#include "tests/terminal/page_driver.h"

#include "host/protocol/json_form.h"

#include <algorithm>
#include <chrono>
#include <gtest/gtest.h>
#include <map>
#include <variant>

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

void PageDriver::receive(std::string line) {
  std::replace(line.begin(), line.end(), '\'', '"');
  auto event = decodeEvent(line);
  ASSERT_TRUE(event) << line;
  if (auto* progress = std::get_if<event::ProgressValue>(&*event)) {
    if (progress->value > 1.0) {
      bytesWritten_ = static_cast<std::int64_t>(progress->value * 1024.0);
    }
    progress->copy.bytesWritten = bytesWritten_;
  }
  page.handle(*event, now_);
}

void PageDriver::enter() {
  act(Action::press);
  static_cast<void>(page.takeRequests());
}

std::vector<std::string> PageDriver::requests() {
  static const std::map<PageRequest::Kind, std::string> kNames{
      {PageRequest::Kind::enter, "enter"},
      {PageRequest::Kind::forward, "forward"},
      {PageRequest::Kind::back, "back"},
      {PageRequest::Kind::quit, "quit"},
      {PageRequest::Kind::leave, "leave"},
      {PageRequest::Kind::sendPassword, "send password"},
      {PageRequest::Kind::refusePassword, "refuse password"},
      {PageRequest::Kind::close, "close"}};
  std::vector<std::string> names;
  for (const PageRequest& request : page.takeRequests()) {
    names.push_back(request.kind == PageRequest::Kind::answer ? "answer " + std::to_string(request.answer)
                                                              : kNames.at(request.kind));
  }
  return names;
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

#pragma once

#include "host/ui/styled_text.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The windows above the page, independent of their position.
namespace tavenhall {

struct PageButton {
  std::string label;
  bool isEnabled = true;
  char hotKey = '\0';  // lower case; one of the label's letters or digits, or none
};

// Buttons with their hot keys: for each the first of its letters that no previous button uses.
[[nodiscard]] std::vector<PageButton> buttonsWithKeys(const std::vector<std::string>& labels);

// The program's own buttons, by their English labels. A translation that has no letter to press gets the
// English label's key: "閉じる(C)".
[[nodiscard]] std::vector<PageButton> ownButtons(const std::vector<std::string>& english);

struct PageWindow {
  std::string heading;
  Style headingStyle = Style::heading;
  std::vector<Span> paragraphs;  // each wrapped for itself; an empty one is a blank line
  std::vector<PageButton> buttons;
  std::size_t focus = 0;  // index into buttons
  int scroll = 0;         // lines
};

// The sheets that wait for the user, in one window. Equal sheets are counted, so thousands of failures take a
// few lines. One thread.
class SheetList {
 public:
  void add(const std::string& message, const std::string& button);
  void clear() { *this = SheetList(); }

  [[nodiscard]] bool isEmpty() const { return count_ == 0; }

  // `installGoesOn`: state that a sheet does not stop the copy.
  [[nodiscard]] PageWindow window(bool installGoesOn) const;

 private:
  struct Entry {
    std::string message;
    std::int64_t count = 0;
  };

  std::vector<Entry> entries_;  // in the order of their first coming
  std::int64_t count_ = 0;
  std::int64_t countBeyond_ = 0;  // of the messages for which there is no entry any more
  std::string button_;
};

}  // namespace tavenhall

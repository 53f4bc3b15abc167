#pragma once

#include <string>
#include <string_view>
#include <vector>

// Text in the cells of a terminal: wide characters take two cells, combining ones none. A character that the
// process's LC_CTYPE cannot show becomes "?". Any thread.
namespace tavenhall {

// Whether the locale can show characters beyond ASCII.
[[nodiscard]] bool localeShowsUnicode();

// The text (UTF-8) without anything that controls a terminal or turns its writing direction: tabs become
// blanks, other control characters "?". Line breaks stay. The functions below take any text and apply this
// first.
[[nodiscard]] std::string displayText(std::string_view text);

// The cells that the text takes on one line.
[[nodiscard]] int displayWidth(std::string_view text);

// The cells that its longest word takes. A line may break beside any wide character, so those are no words.
[[nodiscard]] int widestWord(std::string_view text);

// The text in lines of at most `width` cells, broken at blanks or beside a wide character, else after a '/', or
// where the line is full. No line begins with a closing punctuation mark. Line breaks and blank lines of the
// text stay. At least one line; a width below 2 counts as 2, which fits every character.
[[nodiscard]] std::vector<std::string> wrapText(std::string_view text, int width);

// The text on one line of at most `width` cells, with an ellipsis where something was removed: at the end, or
// at the start, which keeps a path's name. A path loses whole folders, as long as its name leaves room.
[[nodiscard]] std::string truncateEnd(std::string_view text, int width);
[[nodiscard]] std::string truncatePath(std::string_view path, int width);

// The text followed by blanks up to `width` cells, and by at least one.
[[nodiscard]] std::string padRight(std::string_view text, int width);

}  // namespace tavenhall

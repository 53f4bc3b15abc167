#pragma once

#include <string>
#include <string_view>
#include <vector>

// Text as a terminal's cells hold it: wide characters take two cells, combining ones none. What a character
// takes is for the process's LC_CTYPE to say; one that it cannot show becomes "?". Any thread.
namespace tavenhall {

// Can letters and signs beyond ASCII be shown at all?
[[nodiscard]] bool localeShowsUnicode();

// The text (UTF-8) without anything that could steer a terminal or turn its writing round: tabs become
// blanks, other control characters "?". Line breaks stay. The functions below take any text and do this.
[[nodiscard]] std::string shownText(std::string_view text);

// How many cells the text takes in one line.
[[nodiscard]] int widthOf(std::string_view text);

// How many cells its longest word takes. Wide characters are no words: a line may end beside any.
[[nodiscard]] int widestWord(std::string_view text);

// The text in lines of at most `width` cells, broken at blanks or beside a wide character, else after a '/', or
// where the line is full. No line begins with a mark that ends something. Its own line breaks and blank lines
// stay. At least one line; a width below 2 counts as 2, the least that takes every character.
[[nodiscard]] std::vector<std::string> wrapText(std::string_view text, int width);

// The text in one line of at most `width` cells, with an ellipsis where something had to go: at the end, or
// at the start, which keeps a path's name. A path goes by whole folders, as far as its name leaves room.
[[nodiscard]] std::string cutAtEnd(std::string_view text, int width);
[[nodiscard]] std::string shortPath(std::string_view path, int width);

}  // namespace tavenhall

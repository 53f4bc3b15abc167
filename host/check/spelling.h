#pragma once

#include <string>
#include <string_view>
#include <vector>

// Helpers for diagnostics that quote or correct what somebody wrote. Pure. Any thread.
namespace tavenhall {

// The edit distance of two words, ignoring the case of ASCII letters: insertions, deletions, substitutions, and
// transpositions of neighbours, each counted as 1.
[[nodiscard]] int editDistance(std::string_view one, std::string_view other);

// Whether somebody who wrote `written` probably meant `word`: at most a fifth of its letters differ, or one.
[[nodiscard]] bool isMisspellingOf(std::string_view written, std::string_view word);

// Compares ignoring the case of ASCII letters.
[[nodiscard]] bool equalsIgnoringCase(std::string_view one, std::string_view other);

// The text in quotation marks, truncated to about 60 bytes; control characters and bytes that are not UTF-8
// become U+FFFD.
[[nodiscard]] std::string quotedText(std::string_view text);

// The name among them that somebody who wrote `written` probably meant; empty if there is none.
[[nodiscard]] std::string nearestName(const std::vector<std::string>& names, std::string_view written);

}  // namespace tavenhall

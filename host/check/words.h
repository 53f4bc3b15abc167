#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Small helpers for the sentences of remarks. Pure. Any thread.
namespace tavenhall {

// What some editors put before the first character of a UTF-8 file.
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// How many letters must be changed, added or left away to make `other` of `one`, whatever their case; a pair
// of neighbours that changed places is one change.
[[nodiscard]] int lettersApart(std::string_view one, std::string_view other);

// Is it likely that somebody who wrote `written` meant `word`?
[[nodiscard]] bool isMisspeltFor(std::string_view written, std::string_view word);

// The same in any case (ASCII letters)?
[[nodiscard]] bool isSameInAnyCase(std::string_view one, std::string_view other);

[[nodiscard]] bool isUtf8(std::string_view text);

// In quotes, cut to a readable length, with a sign in the place of what cannot be shown.
[[nodiscard]] std::string inQuotes(std::string_view text);

// "12.3 MB", in millions of bytes.
[[nodiscard]] std::string megabytes(std::int64_t bytes);

// The name as a file system that does not tell cases apart sees it.
[[nodiscard]] std::string caseFolded(std::string_view name);

}  // namespace tavenhall

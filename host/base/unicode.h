#pragma once

#include <string>
#include <string_view>

// UTF-8, by libunistring. Pure. Any thread.
namespace tavenhall {

// The byte-order mark that some editors write.
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// The code points of `text`, one element each. Each maximal run of bytes that is not UTF-8 becomes one U+FFFD.
[[nodiscard]] std::u32string decodeUtf8(std::string_view text);

// The code points as UTF-8. Surrogates and values out of range become U+FFFD.
[[nodiscard]] std::string encodeUtf8(std::u32string_view text);

[[nodiscard]] bool isValidUtf8(std::string_view text);

// The name in lower case, as a file system that ignores case compares it. Bytes that are not UTF-8 stay.
[[nodiscard]] std::string foldCase(std::string_view name);

// The name as a file system compares it that ignores case and the ways to compose a letter, as those of macOS
// do. Bytes that are not UTF-8 stay.
[[nodiscard]] std::string comparedName(std::string_view name);

// A text in UTF-16, of the byte order that its mark or else its first bytes show. Without a mark in the result.
[[nodiscard]] std::string utf8OfUtf16(std::string_view bytes);

}  // namespace tavenhall

#pragma once

#include <functional>
#include <optional>
#include <string>

// The page's stop for a text that does not fit its buffer ends the process, as it should; a fuzzer that is to
// go on has to survive it, and to tell it from a crash.
namespace tavenhall::fuzz {

// Calls `body`; if it stops for want of room, gives the line that the stop wrote on standard error, without
// its newline. Every other end of the process stays one. One thread.
//
// The stop is left by a jump: the body's local objects are not destroyed, but for the folders that it had
// open, which are closed here. So the body holds no memory at the places where it may stop.
[[nodiscard]] std::optional<std::string> stopOf(const std::function<void()>& body);

// The line for a buffer of that many bytes.
[[nodiscard]] std::string stopLine(std::size_t limit);

// How many folders are open now.
[[nodiscard]] std::size_t openFolders();

}  // namespace tavenhall::fuzz

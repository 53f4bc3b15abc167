#pragma once

#include <cstdint>

// What the page keeps for the whole process rather than for one page.
namespace tavenhall {

// The two sleep-prevention holds. Taken on the main thread before the install thread starts, released by
// that thread at its end.
extern std::uint32_t assertionIDDisplay;
extern std::uint32_t assertionIDNoIdle;

// Counts the calls of updateProgress; nothing reads it. The thread of the copy engine.
extern int sAsteriskAnimationCounter;

// Bytes copied since the last progress line of the log, and how many lines there were; set back for every
// volume. The thread of the copy engine. Required as a 32-bit float: its rounding decides which chunk
// writes the line.
extern float progressSizeForLoggingUnitBytes;
extern std::int32_t progressCounterForLogging;

}  // namespace tavenhall

#pragma once

#include <cstdint>

// State of the process, not of one page.
namespace tavenhall {

// The two power assertions. Taken on the main thread before the install thread starts, released by that thread
// at its end.
extern std::uint32_t assertionIDDisplay;
extern std::uint32_t assertionIDNoIdle;

// Counts the calls of updateProgress; nothing reads it. The copy engine's thread.
extern int sAsteriskAnimationCounter;

// Bytes copied since the last progress line in the log, and the number of such lines; reset for every volume.
// The copy engine's thread. Required as a 32-bit float: its rounding decides which chunk writes the line.
extern float progressSizeForLoggingUnitBytes;
extern std::int32_t progressCounterForLogging;

}  // namespace tavenhall

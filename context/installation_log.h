#pragma once

#include "platform/visibility.h"

namespace tavenhall {

// Appends one record, "<local time> <host>: <message>\n", to installationLog.txt in the folder Tavenhall of
// the user's Caches folder, or in /tmp where the user has none. Every record is on disk when the call
// returns. A message of more than 4095 bytes is cut. Printf-style; a null format only creates the file.
//
// Any thread, at any time; nothing is shared between calls. Never fails its caller. Changes errno and does
// not restore it: a later line that reports the current errno means what this call left there, too.
extern "C" TAVENHALL_EXPORT void addEventToInstallationLog(const char* format, ...) noexcept
    __attribute__((format(printf, 1, 2)));

}  // namespace tavenhall

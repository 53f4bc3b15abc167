#pragma once

#include "platform/visibility.h"

namespace tavenhall {

// Appends one record, "<local time> <host>: <message>\n", to installationLog.txt in the folder Tavenhall of
// the user's Caches folder, or in /tmp if the user has none. The record has left the process's buffer when the
// call returns. A message of more than 4095 bytes is truncated. Printf-style; a null format only creates the
// file.
//
// Any thread. Reports no failure. Changes errno and does not restore it: a later line that reports the current
// errno may report what this call left there.
extern "C" TAVENHALL_EXPORT void addEventToInstallationLog(const char* format, ...) noexcept
    __attribute__((format(printf, 1, 2)));

}  // namespace tavenhall

#pragma once

namespace tavenhall {

// Gives everybody every right to `path`, and with a nonzero flag to all below it, by a shell command that
// is logged with its result; then, whatever that gave, to the one item itself. Required: the path goes into
// the command without quotes, so a path with blanks reaches the shell as several. Any thread.
void setPermissionTo_777(const char* path, int recursive) noexcept;

}  // namespace tavenhall

#pragma once

namespace tavenhall {

// Gives everybody all permissions for `path`, and with a nonzero flag for everything below it, by a shell
// command that it logs with its result. Then, whatever the result, sets them for `path` itself. Required: the
// path is not quoted in the command, so the shell splits a path with blanks. Any thread.
void setPermissionTo_777(const char* path, int recursive) noexcept;

}  // namespace tavenhall

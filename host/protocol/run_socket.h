#pragma once

#include <string>

// The Unix socket on which a running install of this user can be reached. It lies in a folder that nobody else
// can enter: the user's runtime folder, or /tmp where there is none. Its name comes from the folder that the
// install has locked, so whoever finds that lock held finds the socket, too. Any thread.
namespace tavenhall {

// A socket that listens, with close-on-exec set and mode 0700, in place of one that an ended install has left.
// -1 if there can be none: then the install cannot be reached. The caller has the install lock.
struct RunSocket {
  int descriptor = -1;
  std::string path;
};
[[nodiscard]] RunSocket listenForFrontends(const std::string& lockedFolder) noexcept;

// Accepts a frontend; -1 if there is none, or if it is neither this user's nor root's.
[[nodiscard]] int acceptFrontend(int socket) noexcept;

// Connects to this user's running install; -1 if there is none, if it cannot be reached, or if it is another
// user's program that listens. Never blocks.
[[nodiscard]] int connectToEngine(const std::string& lockedFolder) noexcept;

}  // namespace tavenhall

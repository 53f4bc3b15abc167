#pragma once

namespace tavenhall {

// Prevents a user from running two installs at a time, since both would write the same files and the same log.
// The lock is held until destruction or the end of the process.
//
// The lock is on the user's Application Support folder itself, so no file is made for it and none is left
// behind, and two users, or two private roots, never meet. Commands that the page runs do not hold it.
class InstallLock {
 public:
  // `mayMakeFolder`: make the folder where it is missing, as the pre-install step would do next. Throws
  // UsageError when another install has the lock. Without the folder there is nothing that two installs could
  // both write to; where the file system knows no such locks, installing is better than refusing.
  explicit InstallLock(bool mayMakeFolder);
  InstallLock(const InstallLock&) = delete;
  InstallLock& operator=(const InstallLock&) = delete;
  ~InstallLock();

 private:
  int folder_ = -1;
};

}  // namespace tavenhall

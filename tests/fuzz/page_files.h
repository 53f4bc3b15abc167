#pragma once

// The page's own files, and what it keeps of them for the process.
namespace tavenhall::fuzz {

inline constexpr const char* kLocationFile = "/tmp/TavInstallLoc";
inline constexpr const char* kChoiceFile = "/tmp/TavInstallType";

// Makes the next lookup the first one of its process: the location file is read anew, and the attributes
// file's found-or-not line is logged again.
void forgetWhatIsReadOncePerProcess();

}  // namespace tavenhall::fuzz

#include "tests/fuzz/page_files.h"

// What these two keep for the process is theirs alone, so they are compiled here as one with the function that
// sets it back.
#include "context/attributes_file.cpp"
#include "context/package_location.cpp"

#include <new>

namespace tavenhall::fuzz {

void forgetWhatIsReadOncePerProcess() {
  new (&sHaveReadTavLocFile) std::once_flag;
  sContentsOfTavLocFile.clear();
  foundMessageIssued = false;
}

}  // namespace tavenhall::fuzz

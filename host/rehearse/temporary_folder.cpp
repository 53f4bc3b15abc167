#include "host/rehearse/temporary_folder.h"

#include "host/usage_error.h"

#include <cstdlib>
#include <string>
#include <system_error>

namespace tavenhall {

TemporaryFolder::TemporaryFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "rehearsal-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) {
    throw UsageError("cannot make a temporary folder in " + std::filesystem::temp_directory_path().string());
  }
  path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code error;
  std::filesystem::remove_all(path_, error);
}

}  // namespace tavenhall

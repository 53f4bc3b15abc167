#include "host/base/temporary_folder.h"

#include "host/base/exit_status.h"
#include "host/base/text.h"

#include <cstdlib>
#include <string>
#include <system_error>
#include <unistd.h>  // mkdtemp, on macOS

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

// What was copied keeps its permission bits, and a folder that must not be written cannot be emptied.
void openFolders(const fs::path& top) {
  std::error_code error;
  fs::permissions(top, fs::perms::owner_all, fs::perm_options::add, error);
  for (fs::recursive_directory_iterator entry(top, fs::directory_options::skip_permission_denied, error), end;
       !error && entry != end; entry.increment(error)) {
    if (entry->is_directory(error) && !entry->is_symlink(error)) {
      fs::permissions(entry->path(), fs::perms::owner_all, fs::perm_options::add, error);
    }
  }
}

// A process that was just ended may still have put something in, so there is more than one go.
void removeAll(const fs::path& top) {
  constexpr int kGoes = 3;
  std::error_code error;
  fs::remove_all(top, error);
  for (int go = 1; error && go < kGoes; ++go) {
    openFolders(top);
    fs::remove_all(top, error);
  }
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
  const char* wanted = std::getenv("TMPDIR");
  const fs::path above = wanted != nullptr && *wanted != '\0' ? wanted : "/tmp";
  std::string name = (above / "tavinstall-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) {
    throw UsageError(
        format(_("cannot create a temporary folder in {0}; set TMPDIR to another folder"), {above.string()}));
  }
  path_ = fs::canonical(name);
}

TemporaryFolder::~TemporaryFolder() { removeAll(path_); }

KeptFolder::KeptFolder(const fs::path& path) : path_(fs::absolute(path).lexically_normal()) {
  std::error_code error;
  if (fs::exists(path_, error) && (!fs::is_directory(path_, error) || !fs::is_empty(path_, error))) {
    throw UsageError(
        format(_("the folder {0} is not empty; --keep needs a new or empty folder"), {path.string()}));
  }
  for (fs::path above = path_; !fs::exists(above, error); above = above.parent_path()) {
    highest_ = above;
  }
  fs::create_directories(path_, error);
  if (error) {
    const fs::path made = highest_;
    fs::remove(made, error);
    throw UsageError(
        format(_("cannot create the folder {0}; --keep needs a writable folder"), {path.string()}));
  }
  path_ = fs::canonical(path_);
}

KeptFolder::~KeptFolder() {
  if (isKept_) {
    return;
  }
  if (!highest_.empty()) {
    removeAll(highest_);
    return;
  }
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(path_, error)) {
    removeAll(entry.path());
  }
}

}  // namespace tavenhall

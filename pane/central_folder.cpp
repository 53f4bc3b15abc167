#include "context/installation_log.h"
#include "pane/install_data_pane.h"
#include "platform/system.h"

#include <cstdlib>
#include <filesystem>
#include <forward_list>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace tavenhall {

namespace {

constexpr std::size_t kLinkSize = 1024;
using LinkPath = BoundedText<kLinkSize>;

// The page keeps pointers to these paths for the rest of the process, so none is ever freed.
const char* keepForProcess(const char* path) {
  static auto* kept = new std::forward_list<std::string>;
  return kept->emplace_front(path).c_str();
}

bool canonicalise(const char* path, LinkPath& canonical) {
  const std::unique_ptr<char, decltype(&std::free)> real(realpath(path, nullptr), &std::free);
  if (real == nullptr) {
    return false;
  }
  canonical.assign(real.get());
  return true;
}

// Returns what a relative link at `path` leads to. A path of the link, "/../" and the target goes through the
// link itself, so it fails for a link to a folder beside it, which is what users make. Then the target is
// joined to the link's own folder; the caller tests whether anything is there.
void followRelativeLink(const char* path, const LinkPath& target, LinkPath& result) {
  LinkPath joined;
  joined.format("%s/../%s", path, target.c_str());
  if (canonicalise(joined.c_str(), result)) {
    return;
  }
  const std::filesystem::path beside = std::filesystem::path(path).parent_path() / target.c_str();
  if (!canonicalise(beside.c_str(), result)) {
    result.assign(beside.lexically_normal().native());
  }
}

// Follows one symbolic link, but not a target that is a link itself. Returns false if there is no link.
bool followLink(const char* path, LinkPath& result) {
  LinkPath target;
  const ssize_t length = readlink(path, target.data(), kLinkSize);
  if (length < 0) {
    return false;
  }
  if (static_cast<std::size_t>(length) == kLinkSize) {
    stopForWantOfRoom(kLinkSize);
  }
  target.data()[length] = '\0';
  if (target.view().starts_with('/')) {
    result.assign(target.view());  // as it is
  } else {
    followRelativeLink(path, target, result);
  }
  return true;
}

}  // namespace

const char* InstallDataPane::findCentralFolder(const char* name) noexcept {
  std::string applicationSupport;
  if (!firstUserSearchPath(SearchPath::applicationSupport, applicationSupport)) {
    applicationSupport = "(null)";  // no valid prefix; the test for existence decides
  }
  const std::string folderName = name != nullptr && *name != '\0' ? name : _localizedStringForKey("FolderName");
  std::string path = applicationSupport + "/Tavenhall/" + folderName;

  LinkPath linked;
  if (followLink(path.c_str(), linked)) {
    path = linked.c_str();
  }
  std::string aliased;
  if (resolveAlias(path.c_str(), aliased) && aliased.size() < kLinkSize) {
    path = aliased;  // a longer one counts as none
  }

  const char* buf = keepForProcess(path.c_str());
  addEventToInstallationLog("After resolve %d %s", 1, buf);  // required: the number is always 1
  struct stat found {};
  if (stat(buf, &found) != 0) {
    return nullptr;
  }
  addEventToInstallationLog("File exists");
  return buf;
}

}  // namespace tavenhall

#include "platform/host_system.h"

#include <acl/libacl.h>
#include <memory>
#include <optional>
#include <sys/acl.h>
#include <sys/stat.h>
#include <type_traits>
#include <unistd.h>

namespace tavenhall {

namespace {

using AccessList = std::unique_ptr<std::remove_pointer_t<acl_t>, int (*)(void*)>;

struct Entry {
  acl_tag_t tag = ACL_UNDEFINED_TAG;
  bool canWrite = false;
  std::optional<uid_t> user;  // of ACL_USER
};

std::optional<Entry> readEntry(acl_entry_t from) {
  Entry entry;
  acl_permset_t permissions = nullptr;
  if (acl_get_tag_type(from, &entry.tag) != 0 || acl_get_permset(from, &permissions) != 0) {
    return std::nullopt;
  }
  entry.canWrite = acl_get_perm(permissions, ACL_WRITE) == 1;
  if (entry.tag == ACL_USER) {
    const std::unique_ptr<void, int (*)(void*)> user(acl_get_qualifier(from), acl_free);
    if (user) {
      entry.user = *static_cast<uid_t*>(user.get());
    }
  }
  return entry;
}

}  // namespace

GroupWriters groupWritersOf(const char* path, mode_t mode, uid_t owner) noexcept {
  GroupWriters writers{.owningGroup = (mode & S_IWGRP) != 0};
  // With an ACL, the group's bits of the mode are the mask of what it may allow.
  if (!writers.owningGroup || acl_extended_file(path) <= 0) {
    return writers;
  }
  const AccessList list(acl_get_file(path, ACL_TYPE_ACCESS), acl_free);
  if (!list) {
    return {.owningGroup = true, .others = true};  // unknown, so the worst
  }
  writers.owningGroup = false;
  acl_entry_t at = nullptr;
  for (int more = acl_get_entry(list.get(), ACL_FIRST_ENTRY, &at); more == 1;
       more = acl_get_entry(list.get(), ACL_NEXT_ENTRY, &at)) {
    const std::optional<Entry> entry = readEntry(at);
    if (!entry) {
      return {.owningGroup = true, .others = true};
    }
    const bool isTrusted =
        entry->user && (*entry->user == owner || *entry->user == 0 || *entry->user == geteuid());
    writers.owningGroup = writers.owningGroup || (entry->tag == ACL_GROUP_OBJ && entry->canWrite);
    writers.others = writers.others ||
                     ((entry->tag == ACL_USER || entry->tag == ACL_GROUP) && entry->canWrite && !isTrusted);
  }
  return writers;
}

}  // namespace tavenhall

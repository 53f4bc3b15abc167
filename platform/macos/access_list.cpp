#include "platform/host_system.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <membership.h>
#include <memory>
#include <sys/acl.h>
#include <sys/stat.h>
#include <type_traits>
#include <unistd.h>

namespace tavenhall {

namespace {

using AccessList = std::unique_ptr<std::remove_pointer_t<acl_t>, int (*)(void*)>;

// Whoever has one of these can change a file, replace an entry of a folder, or give himself the rest.
constexpr std::array kChanges{ACL_WRITE_DATA,   ACL_APPEND_DATA,    ACL_DELETE,
                              ACL_DELETE_CHILD, ACL_WRITE_SECURITY, ACL_CHANGE_OWNER};

// Whether the entry lets somebody else change the file. Unknown is the worst.
bool letsOthersWrite(acl_entry_t entry, uid_t owner) {
  acl_tag_t tag = ACL_UNDEFINED_TAG;
  acl_permset_t permissions = nullptr;
  if (acl_get_tag_type(entry, &tag) != 0 || acl_get_permset(entry, &permissions) != 0) {
    return true;
  }
  const bool allowsChange = std::any_of(kChanges.begin(), kChanges.end(), [permissions](acl_perm_t change) {
    return acl_get_perm_np(permissions, change) == 1;
  });
  if (tag != ACL_EXTENDED_ALLOW || !allowsChange) {
    return false;
  }
  const std::unique_ptr<void, int (*)(void*)> who(acl_get_qualifier(entry), acl_free);
  id_t identifier = 0;
  int type = ID_TYPE_GID;
  if (!who || mbr_uuid_to_id(static_cast<const unsigned char*>(who.get()), &identifier, &type) != 0) {
    return true;
  }
  return type != ID_TYPE_UID || (identifier != owner && identifier != 0 && identifier != geteuid());
}

}  // namespace

// Here an ACL only adds to what the mode allows. Its entries name users and groups.
GroupWriters groupWritersOf(const char* path, mode_t mode, uid_t owner) noexcept {
  GroupWriters writers{.owningGroup = (mode & S_IWGRP) != 0};
  const AccessList list(acl_get_file(path, ACL_TYPE_EXTENDED), acl_free);
  if (!list) {
    const bool hasNone = errno == ENOENT || errno == ENOTSUP;
    return hasNone ? writers : GroupWriters{.owningGroup = true, .others = true};  // unknown, so the worst
  }
  acl_entry_t entry = nullptr;
  for (int result = acl_get_entry(list.get(), ACL_FIRST_ENTRY, &entry); result == 0;
       result = acl_get_entry(list.get(), ACL_NEXT_ENTRY, &entry)) {
    writers.others = writers.others || letsOthersWrite(entry, owner);
  }
  return writers;
}

}  // namespace tavenhall

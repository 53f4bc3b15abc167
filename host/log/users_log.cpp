#include "host/log/users_log.h"

#include "platform/system.h"

namespace tavenhall {

std::string usersInstallationLog() {
  std::string caches;
  return firstUserSearchPath(SearchPath::caches, caches) ? caches + "/Tavenhall/installationLog.txt"
                                                         : "/tmp/installationLog.txt";
}

}  // namespace tavenhall

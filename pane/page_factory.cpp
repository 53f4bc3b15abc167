#include "pane/install_data_pane.h"
#include "platform/visibility.h"

#include <new>

namespace tavenhall {

extern "C" TAVENHALL_EXPORT InstallerPane* createInstallDataPane(InstallerHost* host,
                                                                 std::uint32_t interfaceVersion) noexcept {
  if (host == nullptr || interfaceVersion != kInstallerInterfaceVersion) {
    return nullptr;
  }
  return new (std::nothrow) InstallDataPane(*host);
}

}  // namespace tavenhall
